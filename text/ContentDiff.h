// Which stretches of one content another one still has: what was edited is the rest.
#pragma once

#include "text/Content.h"

#include <functional>
#include <vector>

namespace text {

// Equal text in both, never empty; ranges of equal size that begin and end at characters' borders.
struct Match {
  Range before;
  Range after;
  // False: the two ranges have one character format each (and, where they are line breaks, one paragraph format), and
  // these differ. Text that is no break has no paragraph format here.
  bool sameFormats = true;
  bool operator==(const Match&) const = default;
};

// In order, both ranges ascending without overlap. What lies between two matches was deleted, inserted or replaced.
// Both contents are of one store. The last paragraphs' formats are not compared. Stretches that moved count as deleted
// and inserted. O(n log n) of the bytes between the first and the last difference, O(pieces) of the rest.
// `goOn` is asked now and then; after its no what was not compared yet is in no match.
std::vector<Match> Compare(const Content& before, const Content& after, const std::function<bool()>& goOn = {});

}  // namespace text
