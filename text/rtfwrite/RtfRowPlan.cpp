#include "text/rtfwrite/RtfRowPlan.h"

namespace text::rtf {

void RtfRowPlan::Add(const FormatTable& formats, ParaFormatId id, int64_t count) {
  const int64_t paragraph = added_;
  added_ += count;
  const ParaFormat& format = formats[id];
  if (format.row == RowId::kNone) return EndStretch();
  if (first_ < 0) first_ = paragraph, rowBegins_ = true;
  const bool outermost = formats[format.row].level <= 1;
  const bool ends = format.rowMark == RowMark::kRowEnd;
  if (outermost) {
    const int64_t begin = unknown_.value_or(paragraph);
    unknown_.reset();
    if (rowBegins_ || begin < paragraph) outers_.push_back({begin, format.row});
    // Each that ends a row begins the next.
    for (int64_t i = 1; ends && i < count; ++i) outers_.push_back({paragraph + i, format.row});
    rowBegins_ = ends;
  } else if (rowBegins_) {
    unknown_ = paragraph;
    rowBegins_ = false;
  }
  if (ends) lastEnd_ = added_ - 1;
}

void RtfRowPlan::EndStretch() {
  if (lastEnd_ >= 0) stretches_.push_back({first_, lastEnd_});
  first_ = lastEnd_ = -1;
  unknown_.reset();
}

bool RtfRowPlan::Contains(int64_t paragraph) {
  while (nextStretch_ < stretches_.size() && stretches_[nextStretch_].last < paragraph) ++nextStretch_;
  return nextStretch_ < stretches_.size() && stretches_[nextStretch_].first <= paragraph;
}

std::optional<RowId> RtfRowPlan::RowAt(int64_t paragraph) {
  while (nextOuter_ < outers_.size() && outers_[nextOuter_].paragraph < paragraph) ++nextOuter_;
  if (nextOuter_ == outers_.size() || outers_[nextOuter_].paragraph != paragraph) return std::nullopt;
  return outers_[nextOuter_].row;
}

}  // namespace text::rtf
