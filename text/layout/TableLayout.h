// Puts the texts of a table's row side by side.
#pragma once

#include "text/layout/LayoutRow.h"
#include "text/outline/TableRows.h"

#include <functional>
#include <memory>

namespace text::layout {

// What the layout of a row asks for: a stretch of a cell's text in a width.
using LayPart = std::function<std::shared_ptr<const LayoutBlock>(const BlockSpan& span, double width)>;

// The definition of the row below when cells of it continue cells of this one, else none.
RowId RowJoinedBelow(const Content& content, const BlockSpan& row);

// `width` is the text area's, in pixels. A row that is wider is made as narrow as that.
std::shared_ptr<const LayoutRow> LayTableRow(const Content& content, const BlockSpan& span, double width, double zoom,
                                             const LayPart& lay);

}  // namespace text::layout
