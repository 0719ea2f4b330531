// Which paragraphs make a table's row, and how they are divided among its cells.
//
// A row is all paragraphs from behind the last row's end to the one whose break ends it, those of tables in its cells
// (of a higher level) included.
#pragma once

#include "text/Content.h"

#include <optional>
#include <vector>

namespace text::layout {

// What is larger is shown as ordinary paragraphs, so that no text makes an edit slow.
constexpr int64_t kMaxRowParagraphs = 1024;
constexpr int64_t kMaxRowUnits = 128 * 1024;

struct RowParagraphs {
  Breaks first, last;
};

// The outermost row that the paragraph is in. O(paragraphs of the row); a single comparison in a text without tables.
std::optional<RowParagraphs> RowOf(const Content& content, Breaks paragraph);

// A paragraph of a row.
struct CellText {
  Range range;  // without its break
  Breaks paragraph;
  RowId row = RowId::kNone;
  uint8_t level = 1;
  RowMark mark = RowMark::kNone;
};

std::vector<CellText> CellTexts(const Content& content, RowParagraphs row);

// The cell of a position, with all of its paragraphs and tables: one text, in the outermost row.
struct CellPlace {
  RowParagraphs row;
  std::vector<Range> cells;  // of the row, in order
  size_t cell = 0;           // the one that the position is in
};
std::optional<CellPlace> CellOf(const Content& content, Units position);

}  // namespace text::layout
