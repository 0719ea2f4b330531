// One walk of a needle through a range of a content. Internal to text/.
#pragma once

#include "text/Needle.h"
#include "text/Search.h"

#include <functional>

namespace text {

class SearchRun {
 public:
  SearchRun(const Needle& needle, SearchOptions options, Units gap, const std::atomic<bool>* cancel)
      : needle_(needle), options_(options), gap_(gap.value()), cancel_(cancel) {}

  // Gets a match as byte offsets of the content; false ends the walk.
  using OnMatch = std::function<bool(int64_t begin, int64_t end)>;
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
  const std::atomic<bool>* const cancel_;
  int64_t resume_ = 0;   // no match begins before this byte
  int64_t gapLeft_ = 0;  // units to go on from there, not passed yet
  int64_t limit_ = 0;    // no match ends behind this byte
  bool cancelled_ = false;
};

}  // namespace text
