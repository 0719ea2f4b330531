// Character and paragraph formats: small values, interned in the store's FormatTable, referred to by id.
// Lengths are twips (1440 per inch), sizes half points.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace text {

enum class FontId : uint32_t { kDefault = 0 };
enum class CharFormatId : uint32_t { kDefault = 0 };
enum class ParaFormatId : uint32_t { kDefault = 0 };
enum class TabsId : uint32_t { kNone = 0 };
// What these four refer to is in Objects.h; a link is its target, UTF-8, as it was written.
enum class ObjectId : uint32_t { kNone = 0 };
enum class ListId : uint32_t { kNone = 0 };
enum class RowId : uint32_t { kNone = 0 };
enum class LinkId : uint32_t { kNone = 0 };

// A font as a document names it. The empty name is "the document's default font".
struct Font {
  std::string name;     // UTF-8
  uint8_t charset = 1;  // RTF \fcharset; 1 = default
  uint8_t family = 0;   // 0 nil, 1 roman, 2 swiss, 3 modern, 4 script, 5 decor, 6 tech, 7 bidi
  bool operator==(const Font&) const = default;
};

// 0x00BBGGRR (red in the low byte), or "automatic": the palette's text colour.
struct Color {
  static constexpr uint32_t kAuto = 0xFF000000u;
  uint32_t rgb = kAuto;
  constexpr bool isAuto() const { return rgb == kAuto; }
  constexpr bool operator==(const Color&) const = default;
};

enum CharFlag : uint16_t {
  kBold = 1,
  kItalic = 2,
  kUnderline = 4,
  kStrikeThru = 8,
  kProtected = 16,
  kHidden = 32,
};
constexpr uint16_t kAllCharFlags = 63;

struct CharFormat {
  FontId font = FontId::kDefault;
  uint16_t halfPoints = 24;  // 1 .. 3276 (1638 points)
  uint16_t flags = 0;        // CharFlag
  Color color;
  Color background;                   // highlight; automatic = none
  int32_t offset = 0;                 // twips; positive raises, negative lowers
  ObjectId object = ObjectId::kNone;  // set only on U+FFFC
  LinkId link = LinkId::kNone;
  bool operator==(const CharFormat&) const = default;
};

// The numbers are those that SelAlignment gives.
enum class Alignment : uint8_t { kLeft = 0, kRight = 1, kCenter = 2, kJustify = 3 };

// What a paragraph's break ends besides it. Each cell of a row has at least one paragraph, the last one's break ends
// the cell, that of the last cell the row too. As plain text kCellEnd is a tab.
enum class RowMark : uint8_t { kNone, kCellEnd, kRowEnd };

// Lines around a paragraph, and what is behind it. Neighbours with equal boxes and indents stand in one.
struct ParaBox {
  enum Side : uint8_t { kLeft = 1, kTop = 2, kRight = 4, kBottom = 8, kBetween = 16 };
  uint8_t borders = 0;  // Side: which are drawn; without any the next three are as here
  uint16_t width = 0;   // of the lines; 0 = the thinnest
  uint16_t space = 0;   // between lines and text
  Color color;
  Color shading;  // automatic = none
  bool empty() const { return borders == 0 && shading.isAuto(); }
  bool operator==(const ParaBox&) const = default;
};
constexpr uint16_t kMaxBoxTwips = 1000;  // of width and space

struct ParaFormat {
  Alignment alignment = Alignment::kLeft;
  bool bullet = false;
  bool rightToLeft = false;
  int32_t leftIndent = 0;            // of every line but the first; RTF \li
  int32_t firstIndent = 0;           // the first line's, relative to leftIndent; negative = hanging; RTF \fi
  int32_t rightIndent = 0;           // RTF \ri
  int32_t spaceBefore = 0;           // RTF \sb
  int32_t spaceAfter = 0;            // RTF \sa
  int32_t lineSpacing = 0;           // RTF \sl; 0 = automatic
  bool lineSpacingMultiple = false;  // RTF \slmult1: lineSpacing is in 240ths of a line
  TabsId tabs = TabsId::kNone;
  ListId list = ListId::kNone;  // with `bullet`: whose bullets they are, none = the usual one; else its label's
  uint8_t listLevel = 0;        // 0 .. 8
  RowId row = RowId::kNone;     // the table's row that the paragraph is in
  RowMark rowMark = RowMark::kNone;
  ParaBox box;
  bool operator==(const ParaFormat&) const = default;
};

// What stands at the stop: the text's begin, middle, end or first decimal point up to the next tab or the line's end.
enum class TabKind : uint8_t { kLeft, kCenter, kRight, kDecimal };
// What fills the space before it.
enum class TabLeader : uint8_t { kNone, kDots, kMiddleDots, kHyphens, kLine, kThickLine, kEquals };
struct TabStop {
  int32_t position = 0;  // twips from the edge where the paragraph's lines begin
  TabKind kind = TabKind::kLeft;
  TabLeader leader = TabLeader::kNone;
  constexpr TabStop(int32_t at, TabKind itsKind = TabKind::kLeft, TabLeader itsLeader = TabLeader::kNone)
      : position(at), kind(itsKind), leader(itsLeader) {}
  bool operator==(const TabStop&) const = default;
  bool operator<(const TabStop& other) const {
    return std::tie(position, kind, leader) < std::tie(other.position, other.kind, other.leader);
  }
};
// Ascending, one at a position, at most kMaxTabs.
using Tabs = std::vector<TabStop>;
constexpr size_t kMaxTabs = 64;

// What to change of a character format; an empty field stays as it is.
struct CharFormatPatch {
  std::optional<FontId> font;
  std::optional<uint16_t> halfPoints;
  uint16_t setFlags = 0;
  uint16_t clearFlags = 0;
  std::optional<Color> color;
  std::optional<Color> background;
  std::optional<int32_t> offset;
  CharFormat Apply(CharFormat format) const;
};

struct ParaFormatPatch {
  std::optional<Alignment> alignment;
  std::optional<bool> bullet;
  std::optional<bool> rightToLeft;
  std::optional<int32_t> leftIndent, firstIndent, rightIndent;
  std::optional<TabsId> tabs;
  ParaFormat Apply(ParaFormat format) const;
};

// The state of many characters at once. A flag is "all" when only in allSet, "none" when in neither, else mixed.
struct CharSummary {
  bool any = false;      // false: no characters, the rest means nothing
  uint16_t allSet = 0;   // flags that every character has
  uint16_t someSet = 0;  // flags that at least one has
  std::optional<FontId> font;
  std::optional<uint16_t> halfPoints;
  std::optional<Color> color;
  std::optional<int32_t> offset;
  bool anyObject = false;

  // True, false, or empty when mixed.
  std::optional<bool> Flag(CharFlag flag) const {
    if (allSet & flag) return true;
    if (someSet & flag) return std::nullopt;
    return false;
  }
  bool operator==(const CharSummary&) const = default;
};

struct ParaSummary {
  bool any = false;
  std::optional<Alignment> alignment;
  std::optional<bool> bullet;
  std::optional<int32_t> leftIndent, firstIndent, rightIndent;
  std::optional<TabsId> tabs;
  bool operator==(const ParaSummary&) const = default;
};

// What new text takes from a character that it stands beside or replaces: it is never protected or hidden, and no
// object.
CharFormat ForNewText(CharFormat beside);
// The same for its line breaks: they end no cell.
ParaFormat ForNewText(ParaFormat paragraph);

CharSummary SummaryOf(const CharFormat& format);
ParaSummary SummaryOf(const ParaFormat& format);
CharSummary Combine(const CharSummary& a, const CharSummary& b);
ParaSummary Combine(const ParaSummary& a, const ParaSummary& b);

}  // namespace text
