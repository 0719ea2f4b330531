#include "text/layout/LayoutRow.h"

#include <algorithm>
#include <tuple>

namespace text::layout {
namespace {

double Outside(double at, double from, double to) {
  return std::max({0.0, from - at, at - to});
}

}  // namespace

LayoutRow::LayoutRow(std::shared_ptr<const LayoutBlock> alone) : height_(alone->height()) {
  const int units = alone->units();
  const double width = alone->width();
  parts_.push_back({std::move(alone), 0, units, 0, 0, 0, width, {}});
}

size_t LayoutRow::PartOf(int offset, Bias bias) const {
  const auto behind = std::upper_bound(parts_.begin(), parts_.end(), offset,
                                       [](int at, const RowPart& part) { return at < part.begin; });
  const size_t part = behind == parts_.begin() ? 0 : static_cast<size_t>(behind - parts_.begin()) - 1;
  const bool border = bias == Bias::kLeft && part > 0 && parts_[part - 1].end == offset;
  return border ? part - 1 : part;
}

size_t LayoutRow::PartAt(QPointF point) const {
  const auto distance = [&](const RowPart& part) {
    return std::pair(Outside(point.x(), part.left, part.right), Outside(point.y(), part.y, part.bottom()));
  };
  const auto nearest = std::min_element(parts_.begin(), parts_.end(),
                                        [&](const RowPart& a, const RowPart& b) { return distance(a) < distance(b); });
  return static_cast<size_t>(nearest - parts_.begin());
}

std::optional<size_t> LayoutRow::Beside(size_t from, double x, bool below) const {
  const RowPart& start = parts_[from];
  std::optional<size_t> best;
  std::tuple<bool, double, double> least;
  for (size_t i = 0; i < parts_.size(); ++i) {
    const RowPart& part = parts_[i];
    const bool beyond = below ? part.y >= start.bottom() - 0.5 : part.bottom() <= start.y + 0.5;
    const bool sameColumn = part.right > start.left + 1 && part.left < start.right - 1;
    if (i == from || !beyond || !sameColumn) continue;
    const double aside = Outside(x, part.left, part.right);
    const std::tuple measure(aside > 0, below ? part.y : -part.bottom(), aside);
    if (best && measure >= least) continue;
    best = i;
    least = measure;
  }
  return best;
}

RowLine LayoutRow::LineBelow(double y) const {
  RowLine best{0, parts_.front().block->LineAtY(y - parts_.front().y)};
  const auto reaches = [&](RowLine at) { return TopOf(at) + LineAt(at).height > y; };
  for (size_t i = 1; i < parts_.size(); ++i) {
    const RowLine at{i, parts_[i].block->LineAtY(y - parts_[i].y)};
    if (reaches(at) > reaches(best) || (reaches(at) && TopOf(at) < TopOf(best))) best = at;
  }
  return best;
}

}  // namespace text::layout
