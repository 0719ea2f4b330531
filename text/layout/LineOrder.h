// Where the caret stands in a line whose characters run in both directions.
//
// Between the n characters of a line, as they are seen, and at its ends are n + 1 gaps, 0 being the leftmost. Every
// place has a gap of its own: where the direction turns, it stands beside that neighbour which runs in the outer
// direction. So each place is seen once on the way through the line, and no two look alike. A place with kLeft stands
// beside the character before it instead: there the next character of its kind will appear.
#pragma once

#include "text/Units.h"

#include <cstdint>
#include <vector>

namespace text::layout {

class LineOrder {
 public:
  // The levels of the line's characters; they must outlive this. None is below the paragraph's.
  LineOrder(const uint8_t* levels, int count, uint8_t paragraphLevel);

  int count() const { return count_; }
  // Places are 0 .. count().
  int GapOf(int place, Bias side) const;
  int PlaceOf(int gap) const { return places_[static_cast<size_t>(gap)]; }
  // Where the reading of the line ends.
  int lastGap() const { return paragraph_ % 2 ? 0 : count_; }
  // The character on the left or right of a gap, -1 at the line's edge.
  int LeftOf(int gap) const { return gap > 0 ? seen_[static_cast<size_t>(gap - 1)] : -1; }
  int RightOf(int gap) const { return gap < count_ ? seen_[static_cast<size_t>(gap)] : -1; }

 private:
  int Beside(int character, bool behind) const;

  const uint8_t* levels_;
  int count_;
  uint8_t paragraph_;
  std::vector<int> seen_;     // the characters from left to right
  std::vector<int> indexOf_;  // the reverse of it
  std::vector<int> places_;   // of the gaps
};

}  // namespace text::layout
