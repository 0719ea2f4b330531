#include "text/rtfwrite/RtfRowPlan.h"

#include "text/rtfsyntax/RtfLimits.h"

#include <algorithm>
#include <utility>

namespace text::rtf {

void RtfRowPlan::Add(const FormatTable& formats, ParaFormatId id, int64_t count) {
  if (count == 0) return;
  const ParaFormat& format = formats[id];
  const int64_t first = added_;
  added_ += count;
  if (format.row == RowId::kNone) return EndTable();
  const auto level = std::clamp<size_t>(formats[format.row].level, 1, kMaxTableLevel);
  for (int64_t number = first; number < added_; ++number) Put(number, {format.row, format.rowMark}, level);
}

void RtfRowPlan::Put(int64_t number, Given given, size_t level) {
  GiveUpAbove(level);
  deepest_ = std::max(deepest_, level);
  if (rows_.size() <= level) rows_.resize(level + 1);
  OpenRow& row = rows_[level];
  if (given.mark == RowMark::kCellEnd && ++row.cells > kMaxCells) given.mark = RowMark::kNone;
  row.paragraphs.push_back(paragraphs_.size());
  paragraphs_.push_back({given, number});
  if (given.mark != RowMark::kRowEnd) return;
  for (const size_t at : row.paragraphs) paragraphs_[at].row = given.row;
  row = {};
  deepest_ = level - 1;
  if (level > 1) return;
  outers_.push_back({paragraphs_[begin_].number, given.row});
  begin_ = paragraphs_.size();
}

void RtfRowPlan::GiveUpAbove(size_t level) {
  for (; deepest_ > level; --deepest_) {
    const OpenRow row = std::exchange(rows_[deepest_], {});
    for (const size_t at : row.paragraphs) {
      static_cast<Given&>(paragraphs_[at]) = {};
      if (deepest_ > 1) rows_[deepest_ - 1].paragraphs.push_back(at);
    }
  }
}

void RtfRowPlan::EndTable() {
  GiveUpAbove(0);
  begin_ = paragraphs_.size();
}

RtfRowPlan::Given RtfRowPlan::At(int64_t paragraph) {
  while (next_ < paragraphs_.size() && paragraphs_[next_].number < paragraph) ++next_;
  return next_ < paragraphs_.size() && paragraphs_[next_].number == paragraph ? paragraphs_[next_] : Given();
}

std::optional<RowId> RtfRowPlan::RowAt(int64_t paragraph) {
  while (nextOuter_ < outers_.size() && outers_[nextOuter_].paragraph < paragraph) ++nextOuter_;
  if (nextOuter_ == outers_.size() || outers_[nextOuter_].paragraph != paragraph) return std::nullopt;
  return outers_[nextOuter_].row;
}

std::vector<RowId> RtfRowPlan::Rows() const {
  std::vector<RowId> rows;
  for (const Paragraph& paragraph : paragraphs_)
    if (paragraph.row != RowId::kNone && (rows.empty() || rows.back() != paragraph.row)) rows.push_back(paragraph.row);
  return rows;
}

}  // namespace text::rtf
