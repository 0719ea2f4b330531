#include "text/layout/LineOrder.h"

#include "text/Bidi.h"

namespace text::layout {

LineOrder::LineOrder(const uint8_t* levels, int count, uint8_t paragraphLevel)
    : levels_(levels),
      count_(count),
      paragraph_(paragraphLevel),
      seen_(VisualOrder(levels, static_cast<size_t>(count))) {
  indexOf_.resize(seen_.size());
  for (size_t i = 0; i < seen_.size(); ++i) indexOf_[static_cast<size_t>(seen_[i])] = static_cast<int>(i);
  places_.resize(seen_.size() + 1);
  for (int place = 0; place <= count; ++place) places_[static_cast<size_t>(GapOf(place, Bias::kRight))] = place;
}

// The gap in front of the character or behind it, in the character's own direction.
int LineOrder::Beside(int character, bool behind) const {
  const bool right = behind != (levels_[character] % 2 != 0);
  return indexOf_[static_cast<size_t>(character)] + (right ? 1 : 0);
}

int LineOrder::GapOf(int place, Bias side) const {
  if (place == 0) return count_ - lastGap();
  const uint8_t after = place == count_ ? paragraph_ : levels_[place];
  if (side == Bias::kLeft || levels_[place - 1] <= after) return Beside(place - 1, true);
  return place == count_ ? lastGap() : Beside(place, false);
}

}  // namespace text::layout
