#include "text/html/HtmlBlocks.h"

#include "text/html/HtmlMarkup.h"

#include <algorithm>

namespace text::html {
namespace {

bool HasLabel(const ParaFormat& format) {
  return format.bullet || format.list != ListId::kNone;
}

const char* TypeOf(NumberStyle style) {
  switch (style) {
    case NumberStyle::kUpperRoman:
      return " type=\"I\"";
    case NumberStyle::kLowerRoman:
      return " type=\"i\"";
    case NumberStyle::kUpperLetter:
      return " type=\"A\"";
    case NumberStyle::kLowerLetter:
      return " type=\"a\"";
    case NumberStyle::kDecimal:
    case NumberStyle::kOrdinal:
    case NumberStyle::kNone:
      return "";
  }
  return "";
}

// A table in a cell of another is shown as its text.
bool IsInTable(const FormatTable& formats, const ParaFormat& format) {
  return format.row != RowId::kNone && formats[format.row].level == 1;
}

}  // namespace

const char* HtmlBlocks::Open(const ParaFormat& format, bool empty) {
  if (IsInTable(formats_, format)) {
    if (!inCell_) OpenCell(formats_[format.row], empty);
    if (skipsCell_) return nullptr;
  } else if (format.row == RowId::kNone && inTable_) {
    SetLists({});
    out_ += "</table>\n";
    inTable_ = false;
  }
  SetLists(format);
  if (!HasLabel(format)) return "p";
  lists_.back().turned = inTurnedItem() || format.rightToLeft || format.alignment != Alignment::kLeft;
  return "li";
}

void HtmlBlocks::OpenCell(const TableRow& row, bool empty) {
  if (!inTable_) {
    SetLists({});
    out_ += "<table>\n";
  }
  if (!inRow_) {
    out_ += "<tr>\n";
    cell_ = 0;
  }
  inTable_ = inRow_ = inCell_ = true;
  const auto joins = [&](size_t i) { return i < row.cells.size() && row.cells[i].joinsLeft; };
  skipsCell_ = empty && joins(cell_);
  if (skipsCell_) return;
  std::string attributes;
  size_t span = 1;
  while (joins(cell_ + span)) ++span;
  if (span > 1) attributes = " colspan=\"" + std::to_string(span) + '"';
  std::string style;
  if (cell_ < row.cells.size()) {
    if (row.cells[cell_].borders) style = "border:1px solid";
    if (!row.cells[cell_].shading.isAuto())
      style += (style.empty() ? "" : ";") + ("background-color:" + CssColor(row.cells[cell_].shading));
  }
  out_ += "<td" + attributes + StyleAttribute(style) + ">\n";
}

void HtmlBlocks::Close(const ParaFormat& format) {
  if (!IsInTable(formats_, format) || format.rowMark == RowMark::kNone) return;
  SetLists({});
  if (!skipsCell_) out_ += "</td>\n";
  inCell_ = skipsCell_ = false;
  ++cell_;
  if (format.rowMark == RowMark::kCellEnd) return;
  out_ += "</tr>\n";
  inRow_ = false;
}

void HtmlBlocks::CloseAll() {
  SetLists({});
  if (inCell_ && !skipsCell_) out_ += "</td>\n";
  if (inRow_) out_ += "</tr>\n";
  if (inTable_) out_ += "</table>\n";
  inTable_ = inRow_ = inCell_ = false;
}

// Leaves the lists open that the paragraph is in, and its own without an open item.
void HtmlBlocks::SetLists(const ParaFormat& format) {
  const size_t depth = HasLabel(format) ? std::min<size_t>(format.listLevel, 8) + 1 : 0;
  while (lists_.size() > depth) PopList();
  const auto differs = [&](const OpenList& open) { return open.list != format.list || open.bullets != format.bullet; };
  if (depth > 0 && lists_.size() == depth) {
    if (differs(lists_.back())) {
      PopList();
    } else {
      out_ += "</li>\n";
    }
  }
  while (lists_.size() < depth) {
    PushList(format, static_cast<uint8_t>(lists_.size()));
    if (lists_.size() < depth) out_ += "<li>\n";
  }
  if (depth > 0) ++numbers_[{format.list, static_cast<uint8_t>(depth - 1)}];
}

void HtmlBlocks::PushList(const ParaFormat& format, uint8_t level) {
  lists_.push_back({format.list, format.bullet, !lists_.empty() && lists_.back().turned});
  if (format.bullet) {
    out_ += "<ul>\n";
    return;
  }
  const List& list = formats_[format.list];
  const ListLevel numbers = level < list.levels.size() ? list.levels[level] : ListLevel{};
  const bool restarts = list.identity == 0 || level > 0;
  int32_t& count = numbers_[{format.list, level}];
  if (restarts) count = 0;
  const int32_t first = numbers.start + count;
  out_ += "<ol" + std::string(TypeOf(numbers.style));
  if (first != 1) out_ += " start=\"" + std::to_string(first) + '"';
  out_ += ">\n";
}

void HtmlBlocks::PopList() {
  out_ += lists_.back().bullets ? "</li>\n</ul>\n" : "</li>\n</ol>\n";
  lists_.pop_back();
}

}  // namespace text::html
