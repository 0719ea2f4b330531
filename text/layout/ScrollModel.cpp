#include "text/layout/ScrollModel.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace text::layout {

void ScrollModel::Refresh() {
  if (generation_ == blocks_.generation() && viewHeight_ == view_.height() && margin_ == view_.margin()) return;
  generation_ = blocks_.generation();
  viewHeight_ = view_.height();
  margin_ = view_.margin();
  const Sums sums = blocks_.content().sums();
  spans_.clear();
  heights_.clear();
  if (sums.breaks.value() <= kExactBreaks && sums.units.value() <= kExactUnits) {
    MeasureAll();
  } else {
    const FormatLook look = blocks_.fonts().Make(blocks_.content().formats(), CharFormat{});
    const QFontMetricsF metrics(look.font);
    lineHeight_ = std::max(1.0, std::ceil(look.ascent) + std::ceil(look.descent) + std::ceil(look.leading));
    charsPerLine_ = std::max(1.0, (view_.width() - 2 * margin_) / std::max(1.0, metrics.averageCharWidth()));
    total_ = HeightBefore(sums.units) + lineHeight_;
  }
  const auto last = view_.LastScreen();
  const bool fits = last.front().span.range.begin == Units(0) && last.front().top >= margin_;
  bottom_ = fits ? 0 : HeightAtTop(last);
}

void ScrollModel::MeasureAll() {
  total_ = 0;
  std::optional<BlockSpan> span = SpanAt(blocks_.content(), Units(0), Bias::kRight);
  for (; span; span = SpanAfter(blocks_.content(), *span)) {
    spans_.push_back(*span);
    heights_.push_back(total_);
    total_ += blocks_.GetRoughly(*span)->height();
  }
}

double ScrollModel::HeightBefore(Units position) {
  if (!spans_.empty()) {
    const auto behind = std::upper_bound(spans_.begin(), spans_.end(), position,
                                         [](Units p, const BlockSpan& span) { return p < span.range.begin; });
    return heights_[static_cast<size_t>(behind - spans_.begin()) - 1];
  }
  const Sums sums = blocks_.content().SumsBefore(position);
  return lineHeight_ *
         (static_cast<double>(sums.breaks.value()) + static_cast<double>(sums.units.value()) / charsPerLine_);
}

double ScrollModel::HeightBehind(const BlockSpan& span) {
  const Units size = blocks_.content().size();
  return span.range.end == size ? total_ : HeightBefore(NextStart(span, size));
}

// At the upper margin, where the first line stands when nothing is scrolled.
double ScrollModel::HeightAtTop(const std::deque<PlacedBlock>& blocks) {
  const auto found =
      std::find_if(blocks.begin(), blocks.end(), [&](const PlacedBlock& b) { return b.bottom() > margin_; });
  const PlacedBlock& block = found == blocks.end() ? blocks.back() : *found;
  const double part = std::clamp((margin_ - block.top) / std::max(1.0, block.row->height()), 0.0, 1.0);
  const double before = HeightBefore(block.span.range.begin);
  return before + part * (HeightBehind(block.span) - before);
}

BlockSpan ScrollModel::SpanAtHeight(double height) {
  if (!spans_.empty()) {
    const auto behind = std::upper_bound(heights_.begin(), heights_.end(), height);
    return spans_[static_cast<size_t>(std::max<ptrdiff_t>(behind - heights_.begin(), 1)) - 1];
  }
  const Content& content = blocks_.content();
  int64_t low = 0, high = content.breaks().value();  // the last paragraph that begins at or above the height
  while (low < high) {
    const int64_t middle = low + (high - low + 1) / 2;
    if (HeightBefore(content.ParagraphStart(Breaks(middle))) <= height) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  const Units start = content.ParagraphStart(Breaks(low)), end = content.ParagraphEnd(Breaks(low));
  const double units = (height - HeightBefore(start)) / lineHeight_ * charsPerLine_;
  return SpanAt(content, std::min(end, start + Units(static_cast<int64_t>(std::max(0.0, units)))), Bias::kRight);
}

void ScrollModel::PlaceAtHeight(double height) {
  if (height <= 0) return view_.ToTop();
  if (height >= bottom_) return view_.ToBottom();
  const BlockSpan span = SpanAtHeight(height);
  const double before = HeightBefore(span.range.begin);
  const double part = std::clamp((height - before) / std::max(1e-9, HeightBehind(span) - before), 0.0, 1.0);
  view_.PlaceBlock(span, margin_ - part * blocks_.Get(span)->height());
}

int ScrollModel::Maximum() {
  Refresh();
  return bottom_ <= 0 ? 0 : static_cast<int>(std::clamp(std::round(bottom_), 1.0, double(kMaxValue)));
}

int ScrollModel::Page() {
  const int maximum = Maximum();
  const double scale = maximum > 0 ? maximum / bottom_ : 1;
  return static_cast<int>(std::clamp(std::round((view_.height() - 2 * margin_) * scale), 1.0, double(kMaxValue)));
}

int ScrollModel::Value() {
  const int maximum = Maximum();
  if (maximum == 0) return 0;
  return static_cast<int>(
      std::clamp(std::round(HeightAtTop(view_.Visible()) * (maximum / bottom_)), 0.0, double(maximum)));
}

void ScrollModel::SetValue(int value) {
  const int maximum = Maximum();
  // Where it is already it stays to the fraction of a pixel, or a bar that is told its own value would move the text.
  if (value == Value() && value > 0 && value < maximum) return;
  if (value >= maximum) return maximum > 0 ? view_.ToBottom() : view_.ToTop();
  PlaceAtHeight(value * (bottom_ / std::max(1, maximum)));
}

void ScrollModel::JumpBy(double pixels) {
  Refresh();
  PlaceAtHeight(HeightAtTop(view_.Visible()) + pixels);
}

}  // namespace text::layout
