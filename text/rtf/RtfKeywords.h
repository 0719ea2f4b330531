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
  kCharEffectFlag,  // a flag whose exact form is lost
  kUnderlineOff,
  kFont,
  kFontSize,
  kColor,
  kBackground,
  kUp,
  kDown,
  kScript,
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
  kListOverride,
  kListLevel,
  // What is lost: always, when on, when not 0, a bar tab
  kReport,
  kReportToggle,
  kReportValue,
  kReportTab,
  // Inside the header's tables
  kFontFamily,
  kFontCharset,
  kFontCodePage,
  kRed,
  kGreen,
  kBlue,
  kLevelKind,
  kListId,
  kNumbering,
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
  kOpenColors,
  kOpenLists,
  kOpenList,
  kOpenListLevel,
  kOpenOverrides,
  kOpenOverride,
  kOpenNumbering,
  kOpenField,
  kOpenInstruction,
  kOpenAlternative,
  kOpenUnicode,
};

// What a save loses, in the words of DroppedName.
enum class Dropped : uint8_t {
  kNothing,
  kTables,
  kPictures,
  kObjects,
  kDrawings,
  kFootnotes,
  kHeadersFooters,
  kComments,
  kRevisions,
  kLinks,
  kFields,
  kNumbering,
  kStyles,
  kBookmarks,
  kIndexEntries,
  kFormulas,
  kPageLayout,
  kBorders,
  kTabKinds,
  kEffects,
  kMarkup,
  kUnknown,
  kCount,
};
std::string_view DroppedName(Dropped what);

// How a paragraph is numbered.
enum class ListKind : uint8_t { kNone, kBullet, kNumber };

struct Keyword {
  std::string_view word;
  Kind kind;
  Op op;
  int32_t value;
};

// Null for a word that is not in the table. O(1).
const Keyword* FindKeyword(std::string_view word);

}  // namespace text::rtf
