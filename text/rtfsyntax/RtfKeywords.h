// The control words that mean something here: one sorted table, found by hash.
#pragma once

#include <cstdint>
#include <string_view>

namespace text::rtf {

enum class Kind : uint8_t {
  kFlag,         // does the same whatever its parameter
  kToggle,       // on without a parameter or with any but 0
  kValue,        // a number
  kSymbol,       // a character or the end of something
  kRow,          // part of the definition of a table's row
  kDestination,  // as the first word of a group: says what the group holds
};

// What a word does. `value` in the table completes it: which flag, which code page; of a number its default.
enum class Op : uint8_t {
  // The document
  kAnsiCodePage,
  kCharacterSet,
  kDefaultFont,
  kDefaultTab,
  kDefaultLanguage,
  kFallbackCount,
  kHeaderWord,  // given back on saving
  // Characters
  kPlain,
  kCharFlag,
  kUnderlineOff,
  kFont,
  kFontSize,
  kColor,
  kBackground,
  kUp,
  kDown,
  kScript,
  kLanguage,  // not read; says that a style's words are repeated
  kCharStyle,
  // Paragraphs
  kParagraphDefault,
  kAlign,
  kLeftIndent,
  kFirstIndent,
  kRightIndent,
  kSpaceBefore,
  kSpaceAfter,
  kLineSpacing,
  kLineSpacingMultiple,
  kDirection,
  kTab,
  kTabKind,      // of the next stop
  kTabLeader,    // in front of it
  kBarTab,       // passed over
  kStartIndent,  // what \li and \ri say too, mostly
  kEndIndent,
  kListOverride,
  kListLevel,
  kParagraphShading,
  kInTable,
  kTableLevel,
  kParagraphStyle,
  // Inside the header's tables
  kOtherStyle,  // of sections and tables
  kStyleBase,
  kFontFamily,
  kFontCharset,
  kFontCodePage,
  kRed,
  kGreen,
  kBlue,
  kLevelKind,
  kLevelStart,
  kListId,
  kNumbering,
  kNumberStyle,
  kNumberStart,
  kNumberFont,
  // Definitions of rows
  kRowDefault,
  kRowLeft,
  kRowGap,
  kRowHeight,
  kRowBorder,
  kRowPassing,  // counts rows or refers to tables of the file
  kCellEdge,
  kCellBorder,
  kCellColor,
  kCellPattern,
  kCellPatternColor,
  kCellJoinsLeft,
  kCellJoinsAbove,
  kOtherBorder,  // of paragraphs (ParaBox::Side), of pages (0)
  kBorderStyle,
  kBorderWidth,
  kBorderSpace,
  kBorderColor,
  // Symbols
  kCharacter,
  kParagraph,
  kCell,
  kRow,
  kUnicode,
  // Destinations
  kTransparent,  // the group's text is text like that around it
  kSkipGroup,
  kKeepGroup,  // skipped, its bytes given back on saving
  kOpenFonts,
  kOpenStyles,
  kOpenColors,
  kOpenLists,
  kOpenList,
  kOpenListLevel,
  kOpenLevelText,
  kOpenOverrides,
  kOpenOverride,
  kOpenOverrideLevel,
  kOpenNumbering,
  kOpenLabelBefore,
  kOpenLabelAfter,
  kOpenField,
  kOpenInstruction,
  kOpenResult,
  kOpenNote,
  kOpenNestedRow,
  kOpenShapePicture,
  kOpenOldPicture,
  kOpenShapeProperty,
  kOpenShapeName,
  kOpenShapeValue,
  kPicture,
  kObject,
  kNextGraphic,
  kOpenAlternative,
  kOpenUnicode,
};

// What {\*\pn} makes of a paragraph.
enum class PnKind : uint8_t { kNone, kBullet, kNumber };

// With those of TableCell, the sides of a row's borders: between its rows, between its cells.
constexpr int32_t kInnerAcross = 16, kInnerDown = 32;

struct Keyword {
  std::string_view word;
  Kind kind;
  Op op;
  int32_t value;
};

// Null for a word that is not in the table. O(1).
const Keyword* FindKeyword(std::string_view word);

// What a backslash and one character stand for; 0 for a symbol that is no character.
char32_t SymbolCharacter(char symbol);

}  // namespace text::rtf
