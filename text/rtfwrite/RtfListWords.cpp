// The words for lists and tables' rows.
#include "text/Utf16.h"
#include "text/rtf/RtfLists.h"
#include "text/rtfsyntax/RtfCharacters.h"
#include "text/rtfsyntax/RtfCodePages.h"
#include "text/rtfsyntax/RtfLimits.h"
#include "text/rtfwrite/RtfWords.h"

#include <algorithm>
#include <array>

namespace text::rtf {

namespace {

constexpr uint8_t kSymbolCharset = 2;

// \levelnfc of a NumberStyle.
constexpr std::array<int32_t, 7> kLevelKinds = {0, 1, 2, 3, 4, 5, 255};
constexpr size_t kMaxLabelCount = 31;  // what is larger could be taken for a character where the count is missing

// By NumberStyle.
constexpr std::array<std::string_view, 7> kOldStyles = {"pndec",   "pnucrm", "pnlcrm", "pnucltr",
                                                        "pnlcltr", "pnord",  "pndec"};

TextCoding CodingOf(const Font& font) {
  return {font.charset == kSymbolCharset ? kSymbolCodePage : 0, 1};
}

const ListLevel& LevelOf(const List& list, const ParaFormat& format) {
  return list.levels[std::min<size_t>(format.listLevel, list.levels.size() - 1)];
}

size_t CellsIn(std::string_view words) {
  size_t count = 0;
  for (size_t at = 0; (at = words.find("\\cellx", at)) != std::string_view::npos; ++at) ++count;
  return count;
}

}  // namespace

bool IsOldList(const List& list) {
  if (list.identity != 0 || list.levels.size() != 1) return false;
  const ListLevel& level = list.levels.front();
  if (IsBullet(level)) return level.style == NumberStyle::kNone && level.start == 1;
  const auto counted = [](char c) { return c >= 0 && static_cast<size_t>(c) < kMaxListLevels; };
  return level.style != NumberStyle::kNone && std::count_if(level.label.begin(), level.label.end(), counted) == 1 &&
         level.label.find('\0') != std::string::npos;
}

void RtfWords::Label(const ParaFormat& format, const FormatTable& formats, const TableNumbers& numbers) {
  if (!format.bullet) return;
  if (format.list == ListId::kNone) {
    Raw("{"), Word("pntext"), Word("f", numbers.symbolFont), Raw("\\'B7\\tab}");
    return;
  }
  const List& list = formats[format.list];
  const ListLevel& level = LevelOf(list, format);
  if (!IsBullet(level)) return;
  Raw("{"), Word(IsOldList(list) ? "pntext" : "listtext");
  if (level.font != FontId::kDefault) Word("f", numbers.font(level.font));
  Text(level.label, CodingOf(formats[level.font]));
  Raw("\\tab}");
}

void RtfWords::GiveList(const ParaFormat& format, const FormatTable& formats, const TableNumbers& numbers) {
  Label(format, formats, numbers);
  if (format.list == ListId::kNone) {
    if (format.bullet) Raw("{\\*\\pn\\pnlvlblt"), Word("pnf", numbers.symbolFont), Raw("\\pnindent0{\\pntxtb\\'B7}}");
    return;
  }
  const List& list = formats[format.list];
  if (!IsOldList(list)) {
    const int32_t number = numbers.list ? numbers.list(format.list) : 0;
    if (number > 0) Word("ls", number), Word("ilvl", format.listLevel);
    return;
  }
  const ListLevel& level = list.levels.front();
  const TextCoding coding = CodingOf(formats[level.font]);
  const auto text = [&](std::string_view word, std::string_view label) {
    if (label.empty()) return;
    Raw("{"), Word(word), Text(label, coding), Raw("}");
  };
  const std::string_view label = level.label;
  Raw("{\\*\\pn"), Word(IsBullet(level) ? "pnlvlblt" : "pnlvlbody");
  if (level.font != FontId::kDefault) Word("pnf", numbers.font(level.font));
  if (!IsBullet(level)) Word(kOldStyles[static_cast<size_t>(level.style)]), Word("pnstart", level.start);
  Word("pnindent", 0);
  const size_t number = label.find('\0');
  text("pntxtb", label.substr(0, number));
  if (number != std::string_view::npos) text("pntxta", label.substr(number + 1));
  Raw("}");
}

void RtfWords::LevelEntry(const ListLevel& level, const FormatTable& formats, const TableNumbers& numbers) {
  const bool bullet = IsBullet(level) && level.style == NumberStyle::kNone;
  const int32_t kind = bullet ? kBulletKind : kLevelKinds[static_cast<size_t>(level.style)];
  Raw("{"), Word("listlevel");
  for (const std::string_view word : {"levelnfc", "levelnfcn"}) Word(word, kind);
  for (const std::string_view word : {"leveljc", "leveljcn", "levelfollow"}) Word(word, 0);
  Word("levelstartat", level.start);
  std::string text, places;
  RtfWords label(text);
  const TextCoding coding{level.font != FontId::kDefault && formats[level.font].charset == 2 ? kSymbolCodePage : 0, 1};
  RtfWords placeWords(places);
  size_t units = 0;
  for (std::string_view rest = level.label; !rest.empty();) {
    const char32_t c = TakeCharacter(rest);
    const bool number = c < kMaxListLevels;
    units += c > 0xFFFF ? 2 : 1;
    if (number) placeWords.Hex(static_cast<uint8_t>(std::min<size_t>(units, 0xFF)));
    if (number || c < 0x20) {
      label.Hex(static_cast<uint8_t>(c));
    } else {
      std::string utf8;
      AppendUtf8(utf8, c);
      label.Text(utf8, coding);
    }
  }
  Raw("{\\leveltext"), Hex(static_cast<uint8_t>(std::min(units, kMaxLabelCount))), Raw(text + ";}");
  Raw("{\\levelnumbers" + places + ";}");
  if (level.font != FontId::kDefault) Word("f", numbers.font(level.font));
  Raw("}");
}

void RtfWords::ListEntry(const List& list, int32_t id, const FormatTable& formats, const TableNumbers& numbers) {
  Raw("{"), Word("list"), Word("listtemplateid", id);
  if (list.levels.size() == 1) Word("listsimple", 1);
  for (size_t level = 0; level < list.levels.size() && level < kMaxListLevels; ++level)
    LevelEntry(list.levels[level], formats, numbers);
  Raw("{\\listname ;}"), Word("listid", id), Raw("}\r\n");
}

void RtfWords::OverrideEntry(int32_t id, int32_t number) {
  Raw("{"), Word("listoverride"), Word("listid", id);
  Word("listoverridecount", 0), Word("ls", number), Raw("}");
}

void RtfWords::Break(const ParaFormat& format, const FormatTable& formats, const TableNumbers& numbers) {
  if (format.rowMark == RowMark::kNone || format.row == RowId::kNone) return Word("par");
  const TableRow& row = formats[format.row];
  const bool ends = format.rowMark == RowMark::kRowEnd;
  if (row.level <= 1) {
    Word("cell");
    if (ends) Word("row");
    return;
  }
  // Readers that know no tables in tables make paragraphs of their cells.
  constexpr std::string_view kElsewhere = "{\\nonesttables\\par}";
  Word("nestcell"), Raw(kElsewhere);
  if (!ends) return;
  Raw("{\\*\\nesttableprops"), Row(row, numbers), Word("nestrow"), Raw("}"), Raw(kElsewhere);
}

void RtfWords::Row(const TableRow& row, const TableNumbers& numbers) {
  const auto shade = [&](const TableCell& cell) {
    if (!cell.shading.isAuto()) Word("clcbpat", numbers.color(cell.shading));
  };
  if (CellsIn(row.words) == row.cells.size()) {
    std::string_view words = row.words;
    for (const TableCell& cell : row.cells) {
      const size_t at = words.find("\\cellx");
      Words(words.substr(0, at));
      shade(cell);
      words.remove_prefix(at);
      const size_t end = words.find('\\', 1);
      Words(words.substr(0, end));
      words.remove_prefix(std::min(end, words.size()));
    }
    return Words(words);
  }
  constexpr std::pair<uint8_t, std::string_view> kSides[] = {{TableCell::kTop, "clbrdrt"},
                                                             {TableCell::kLeft, "clbrdrl"},
                                                             {TableCell::kBottom, "clbrdrb"},
                                                             {TableCell::kRight, "clbrdrr"}};
  Word("trowd"), Word("trgaph", row.gap), Word("trleft", row.left);
  if (row.height != 0) Word("trrh", row.height);
  for (size_t i = 0; i < row.cells.size() && i < kMaxCells; ++i) {
    const TableCell& cell = row.cells[i];
    if (cell.joinsAbove) Word("clvmrg");
    if (cell.joinsLeft) Word("clmrg");
    if (!cell.joinsLeft && i + 1 < row.cells.size() && row.cells[i + 1].joinsLeft) Word("clmgf");
    for (const auto& [side, word] : kSides)
      if (cell.borders & side) Word(word), Word("brdrs"), Word("brdrw", 10);
    shade(cell);
    Word("cellx", cell.right);
  }
}

}  // namespace text::rtf
