#include "text/search/SearchRun.h"

#include <algorithm>

namespace text {
namespace {

// So much is searched between two tellings of the progress.
constexpr ptrdiff_t kSlice = 262144;

}  // namespace

bool SearchRun::Walk(const Content& content, Range range, const OnMatch& onMatch) {
  Sums begin = content.SumsBefore(range.begin);
  // Between the halves of a surrogate pair: behind it.
  if (begin.units < std::min(range.begin, content.size())) begin = {begin.bytes + Bytes(4), begin.units + Units(2), {}};
  const Sums end = content.SumsBefore(range.end);
  if (!needle_.possible() || begin.units >= end.units) return true;
  resume_ = start_ = begin.bytes.value();
  limit_ = end.bytes.value();
  // A character more on both sides, for the sake of whole words.
  const Sums before = content.SumsBefore(begin.units - Units(1));
  const Range around{before.units, content.Snap(end.units + Units(1), Bias::kRight)};
  WindowFeed feed(needle_.before(), needle_.behind(), before.bytes.value());
  const auto look = [&](const Window& window) { return Look(window, onMatch); };
  bool on = true;
  content.ForEachSpan(around, [&](std::string_view span) { return on = feed.Take(span, look); });
  if (on) feed.Finish(look);
  return !cancelled_;
}

bool SearchRun::Look(const Window& window, const OnMatch& onMatch) {
  SkipGap(window);
  const char* place = std::max(window.from, Resume(window));
  while (place < window.until) {
    if (progress_ && !progress_(window.OffsetOf(place) - start_)) {
      cancelled_ = true;
      return false;
    }
    Window slice = window;
    slice.until = place + std::min(kSlice, window.until - place);
    while (const auto match = needle_.Next(slice, place)) {
      if (!Offer(window, *match, place, onMatch)) return false;
      if (place >= slice.until) break;
    }
  }
  return true;
}

// Takes the match or leaves it, and moves the place on.
bool SearchRun::Offer(const Window& window, const ByteMatch& match, const char*& place, const OnMatch& onMatch) {
  ++place;
  const int64_t begin = window.OffsetOf(match.begin), end = window.OffsetOf(match.end);
  if (begin >= limit_) return false;
  if (begin < resume_ || gapLeft_ > 0 || end > limit_) return true;
  if (options_.wholeWord && !IsWholeWord(window, match)) return true;
  const char before = match.begin > window.begin ? match.begin[-1] : '\0';
  if (!onMatch({begin, end, before, match.end < window.end ? *match.end : '\0'})) return false;
  resume_ = end;
  gapLeft_ = gap_;
  SkipGap(window);
  place = std::max(place, Resume(window));
  return true;
}

// As far as the window's characters are whole; the rest is skipped in the next one.
void SearchRun::SkipGap(const Window& window) {
  const bool last = window.until == window.end;
  while (gapLeft_ > 0) {
    const char* const p = Resume(window);
    if (p == window.end || (window.end - p < 4 && !last)) return;
    int length = std::max(1, window.LengthAt(p));
    if (*p == '\r' && p + 1 < window.end && p[1] == '\n') length = 2;
    gapLeft_ = std::max<int64_t>(0, gapLeft_ - (length == 4 || *p == '\r' || *p == '\n' ? 2 : 1));
    resume_ += length;
  }
}

const char* SearchRun::Resume(const Window& window) const {
  return resume_ <= window.offset
             ? window.begin
             : window.begin + std::min<int64_t>(resume_ - window.offset, window.end - window.begin);
}

bool SearchRun::IsWholeWord(const Window& window, const ByteMatch& match) const {
  return !IsWordCharacter(window.Before(match.begin)) && !IsWordCharacter(window.Behind(match.end));
}

}  // namespace text
