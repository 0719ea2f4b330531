#include "text/layout/View.h"

#include <algorithm>
#include <cmath>

namespace text::layout {
namespace {

// Farther outside than this many viewports a point counts as lying there.
constexpr double kReach = 3;

}  // namespace

bool PlacedBlock::Holds(CaretPlace place) const {
  if (place.position < span.range.begin || place.position > span.range.end) return false;
  if (place.position == span.range.begin && !span.startsParagraph()) return place.affinity == Bias::kRight;
  if (place.position == span.range.end && !span.endsParagraph()) return place.affinity == Bias::kLeft;
  return true;
}

PlacedPart PlacedBlock::Part(size_t index) const {
  const RowPart& part = row->parts()[index];
  const Range range{span.range.begin + Units(part.begin), span.range.begin + Units(part.end)};
  const Color behind = part.block->box().shading;
  return {part.block.get(), range, part.x, top + part.y, index, behind.isAuto() ? part.behind : behind};
}

PlacedPart PlacedBlock::PartOf(CaretPlace place) const {
  return Part(row->PartOf(static_cast<int>((place.position - span.range.begin).value()), place.affinity));
}

RowLine PlacedBlock::LineOf(CaretPlace place) const {
  const PlacedPart part = PartOf(place);
  return {part.index, part.block->LineOf(part.ShownOffset(place.position), place.affinity)};
}

Units PlacedBlock::BeginOf(RowLine line) const {
  return Part(line.part).PositionOf(row->LineAt(line).begin);
}

void View::SetSize(QSizeF size, double margin) {
  size_ = size;
  margin_ = margin;
  Invalidate();
}

void View::FillUp() {
  while (placed_.front().top > 0) {
    const auto before = SpanBefore(blocks_.content(), placed_.front().span);
    if (!before) return;
    PlacedBlock block = Place(*before, 0);
    block.top = placed_.front().top - block.row->height();
    placed_.push_front(std::move(block));
    while (placed_.size() > 1 && placed_.back().top >= height()) placed_.pop_back();
  }
}

void View::FillDown() {
  while (placed_.back().bottom() < height()) {
    const auto after = SpanAfter(blocks_.content(), placed_.back().span);
    if (!after) return;
    placed_.push_back(Place(*after, placed_.back().bottom()));
    while (placed_.size() > 1 && placed_.front().bottom() <= 0) placed_.pop_front();
  }
}

void View::Shift(double by) {
  for (PlacedBlock& block : placed_) block.top += by;
  corrected_ += by;
}

void View::Arrange() {
  const Content& content = blocks_.content();
  placed_.clear();
  corrected_ = 0;
  if (anchor_.atTop) anchor_.position = Units(0);
  placed_.push_back(Place(SpanAt(content, anchor_.position, Bias::kRight), 0));
  PlacedBlock& start = placed_.front();
  const RowLine line = start.LineOf({content.Snap(anchor_.position, Bias::kLeft), Bias::kRight});
  start.top = anchor_.atTop ? margin_ : anchor_.y - start.row->TopOf(line);
  FillUp();
  FillDown();
  if (placed_.back().bottom() + margin_ < height() && placed_.back().span.range.end == content.size()) {
    Shift(height() - margin_ - placed_.back().bottom());
    FillUp();
  }
  if (placed_.front().top > margin_ && placed_.front().span.range.begin == Units(0)) {
    Shift(margin_ - placed_.front().top);
    FillDown();
  }
  while (placed_.size() > 1 && placed_.front().bottom() <= 0) placed_.pop_front();
  while (placed_.size() > 1 && placed_.back().top >= height()) placed_.pop_back();
  size_t parts = 0;
  for (const PlacedBlock& block : placed_) parts += block.row->parts().size();
  blocks_.SetCapacity(2 * placed_.size(), 2 * parts);
  KeepAnchor();
  arranged_ = true;
}

// The anchor goes to the first visible line. While that is still the line of the old anchor only its height changes, or
// a window made wider and narrower again would end up elsewhere.
void View::KeepAnchor() {
  const PlacedBlock& front = placed_.front();
  const RowLine line = front.row->LineBelow(-front.top);
  const bool same =
      front.Holds({anchor_.position, Bias::kRight}) && front.LineOf({anchor_.position, Bias::kRight}) == line;
  if (!same) anchor_.position = front.BeginOf(line);
  anchor_.y = front.top + front.row->TopOf(line);
  anchor_.atTop = front.span.range.begin == Units(0) && front.top == margin_;
}

const std::deque<PlacedBlock>& View::Visible() {
  if (!arranged_) Arrange();
  return placed_;
}

const PlacedBlock* View::FindVisible(CaretPlace place) {
  const auto& blocks = Visible();
  const auto found =
      std::upper_bound(blocks.begin(), blocks.end(), place.position,
                       [](Units position, const PlacedBlock& b) { return position < b.span.range.begin; });
  if (found == blocks.begin()) return nullptr;
  const PlacedBlock& block = *std::prev(found);
  if (block.Holds(place)) return &block;
  if (std::prev(found) == blocks.begin()) return nullptr;
  return std::prev(found, 2)->Holds(place) ? &*std::prev(found, 2) : nullptr;
}

PlacedBlock View::BlockAt(double y) {
  const auto& blocks = Visible();
  y = std::clamp(y, -kReach * height(), (1 + kReach) * height());
  PlacedBlock block = y < blocks.front().top ? blocks.front() : blocks.back();
  for (const PlacedBlock& placed : blocks) {
    if (y >= placed.top && y < placed.bottom()) return placed;
  }
  while (y < block.top) {
    const auto before = SpanBefore(blocks_.content(), block.span);
    if (!before) break;
    PlacedBlock next = Place(*before, 0);
    next.top = block.top - next.row->height();
    block = std::move(next);
  }
  while (y >= block.bottom()) {
    const auto after = SpanAfter(blocks_.content(), block.span);
    if (!after) break;
    block = Place(*after, block.bottom());
  }
  return block;
}

double View::ScrollBy(double pixels) {
  Visible();
  anchor_.y -= pixels;
  anchor_.atTop = false;
  Arrange();
  return pixels - corrected_;
}

void View::PlaceBlock(const BlockSpan& span, double top) {
  anchor_ = {span.range.begin, top + blocks_.Get(span)->TopOf({}), false};
  Invalidate();
}

void View::PlaceLine(CaretPlace place, double top) {
  const PlacedBlock block = Place(SpanAt(blocks_.content(), place.position, place.affinity), 0);
  anchor_ = {block.BeginOf(block.LineOf(place)), top, false};
  Invalidate();
}

void View::ToTop() {
  anchor_ = {};
  Invalidate();
}

void View::ToBottom() {
  const BlockSpan last = SpanAt(blocks_.content(), blocks_.content().size(), Bias::kRight);
  PlaceBlock(last, height() - margin_ - blocks_.Get(last)->height());
}

std::deque<PlacedBlock> View::LastScreen() {
  const auto measured = [this](const BlockSpan& span) { return PlacedBlock{span, blocks_.GetRoughly(span), 0}; };
  std::deque<PlacedBlock> blocks{measured(SpanAt(blocks_.content(), blocks_.content().size(), Bias::kRight))};
  blocks.front().top = height() - margin_ - blocks.front().row->height();
  while (blocks.front().top > 0) {
    const auto before = SpanBefore(blocks_.content(), blocks.front().span);
    if (!before) break;
    PlacedBlock block = measured(*before);
    block.top = blocks.front().top - block.row->height();
    blocks.push_front(std::move(block));
  }
  return blocks;
}

}  // namespace text::layout
