// One walk of a needle through a range of a content. Internal to text/.
#pragma once

#include "text/search/Needle.h"
#include "text/search/Search.h"

#include <functional>

namespace text {

// A match as byte offsets of the content.
struct FoundBytes {
  int64_t begin, end;
  char before, after;  // the bytes beside it, 0 where there are none
};

class SearchRun {
 public:
  SearchRun(const Needle& needle, SearchOptions options, SurfaceUnits gap, const SearchProgress& progress)
      : needle_(needle), options_(options), gap_(gap.value()), progress_(progress) {}

  // False ends the walk.
  using OnMatch = std::function<bool(const FoundBytes& match)>;
  // Matches in order that do not overlap. False when cancelled.
  bool Walk(const Content& content, Range range, const OnMatch& onMatch);

 private:
  bool Look(const Window& window, const OnMatch& onMatch);
  bool Offer(const Window& window, const ByteMatch& match, const char*& place, const OnMatch& onMatch);
  void SkipGap(const Window& window);
  const char* Resume(const Window& window) const;
  bool IsWholeWord(const Window& window, const ByteMatch& match) const;

  const Needle& needle_;
  const SearchOptions options_;
  const int64_t gap_;
  const SearchProgress& progress_;
  int64_t start_ = 0;    // the byte it begins at
  int64_t resume_ = 0;   // no match begins before this byte
  int64_t gapLeft_ = 0;  // surface units to go on from there, not passed yet
  int64_t limit_ = 0;    // no match ends behind this byte
  bool cancelled_ = false;
};

}  // namespace text
