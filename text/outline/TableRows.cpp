#include "text/outline/TableRows.h"

#include <algorithm>

namespace text::layout {
namespace {

// The paragraph's place in tables, read once.
struct InRow {
  RowId row;
  uint8_t level;
  RowMark mark;
};

InRow Read(const Content& content, Breaks paragraph) {
  const FormatTable& formats = content.formats();
  const ParaFormat& format = formats[content.ParaFormatOf(paragraph)];
  if (format.row == RowId::kNone) return {RowId::kNone, 0, RowMark::kNone};
  return {format.row, std::max<uint8_t>(1, formats[format.row].level), format.rowMark};
}

// Whether a row ends between two neighbours.
bool Parts(const InRow& before, const InRow& after) {
  if (before.row == RowId::kNone || after.row == RowId::kNone) return true;
  if (before.level > 1) return false;
  return before.mark == RowMark::kRowEnd || (after.level == 1 && after.row != before.row);
}

}  // namespace

std::optional<RowParagraphs> RowOf(const Content& content, Breaks paragraph) {
  if (!content.formats().hasRows()) return std::nullopt;
  const InRow here = Read(content, paragraph);
  if (here.row == RowId::kNone) return std::nullopt;
  RowParagraphs row{paragraph, paragraph};
  for (InRow after = here; row.first > Breaks(0); --row.first) {
    const InRow before = Read(content, row.first - Breaks(1));
    if (Parts(before, after)) break;
    if ((paragraph - row.first).value() >= kMaxRowParagraphs) return std::nullopt;
    after = before;
  }
  for (InRow before = here; row.last < content.breaks(); ++row.last) {
    const InRow after = Read(content, row.last + Breaks(1));
    if (Parts(before, after)) break;
    if ((row.last - row.first).value() + 1 >= kMaxRowParagraphs) return std::nullopt;
    before = after;
  }
  const bool large = content.ParagraphEnd(row.last) - content.ParagraphStart(row.first) > Units(kMaxRowUnits);
  return large ? std::nullopt : std::optional(row);
}

std::vector<CellText> CellTexts(const Content& content, RowParagraphs row) {
  std::vector<CellText> texts;
  for (Breaks paragraph = row.first; paragraph <= row.last; ++paragraph) {
    const InRow in = Read(content, paragraph);
    texts.push_back(
        {{content.ParagraphStart(paragraph), content.ParagraphEnd(paragraph)}, paragraph, in.row, in.level, in.mark});
  }
  return texts;
}

std::optional<CellPlace> CellOf(const Content& content, Units position) {
  const auto row = RowOf(content, content.ParagraphAt(position));
  if (!row) return std::nullopt;
  CellPlace place{*row, {}, 0};
  const std::vector<CellText> texts = CellTexts(content, *row);
  const uint8_t level = std::min_element(texts.begin(), texts.end(), [](const CellText& a, const CellText& b) {
                          return a.level < b.level;
                        })->level;
  bool open = false;
  for (const CellText& text : texts) {
    if (!open) place.cells.push_back(text.range);
    place.cells.back().end = text.range.end;
    open = text.level > level || text.mark == RowMark::kNone;
  }
  while (place.cell + 1 < place.cells.size() && position > place.cells[place.cell].end) ++place.cell;
  return place;
}

}  // namespace text::layout
