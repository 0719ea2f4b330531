// The way through text full of near misses: no character is looked at again however much of the needle it matched.
// After Knuth, Morris and Pratt, "Fast pattern matching in strings" (1977), with characters for letters.
#include "text/TextStore.h"
#include "text/search/Needle.h"

#include <algorithm>

namespace text {
namespace {

// So much is looked at between two chances to cancel.
#ifdef QUILLMARK_TINY_TREE
constexpr ptrdiff_t kPortion = 16;
#else
constexpr ptrdiff_t kPortion = ptrdiff_t{1} << 20;
#endif

// p itself, or the first border of characters behind it.
const char* BorderFrom(const Window& window, const char* p) {
  while (p > window.begin && p < window.end && IsContinuation(*p) && !window.IsStray(p)) ++p;
  return p > window.begin && p < window.end && *p == '\n' && p[-1] == '\r' ? p + 1 : p;
}

const char* BehindCharacter(const Window& window, const char* p) {
  if (*p == '\r' && p + 1 < window.end && p[1] == '\n') return p + 2;
  return p + std::max(1, window.LengthAt(p));
}

}  // namespace

bool Needle::Element::Equals(const Element& other) const {
  if (kind != other.kind || count != other.count) return false;
  const auto has = [&other](const Spelling& mine) {
    return std::any_of(other.spelling, other.spelling + other.count,
                       [&mine](const Spelling& theirs) { return theirs.view() == mine.view(); });
  };
  return std::all_of(spelling, spelling + count, has);
}

// The spellings of two elements are the same or have none in common, so elements can be compared in place of text.
void Needle::FindFallbacks() {
  fallback_.assign(elements_.size() + 1, 0);
  uint32_t matched = 0;
  for (size_t i = 1; i < elements_.size(); ++i) {
    while (matched > 0 && !elements_[i].Equals(elements_[matched])) matched = fallback_[matched];
    if (elements_[i].Equals(elements_[matched])) ++matched;
    fallback_[i + 1] = matched;
  }
}

std::optional<ByteMatch> Needle::NextByFallbacks(const Window& window, const char*& p, int64_t* compared) const {
  const size_t size = elements_.size();
  const auto before = static_cast<ptrdiff_t>(before_);
  const char* at = BorderFrom(window, p - std::min(before, p - window.begin));
  const char* const stop = at + std::min(window.end - at, kPortion + 4 * static_cast<ptrdiff_t>(before_ + behind_));
  std::vector<const char*> begins(size);  // of the last characters, as many as the needle has; cyclic
  size_t matched = 0, index = 0;
  for (; at < stop; ++index) {
    begins[index % size] = at;
    const char* behind = nullptr;
    while (++*compared, !(behind = MatchBehind(elements_[matched], window, at)) && matched > 0) {
      matched = fallback_[matched];
    }
    at = behind ? behind : BehindCharacter(window, at);
    if (behind) ++matched;
    if (matched < size) continue;
    const char* const place = begins[(index + 1 + anchor_) % size];
    if (place >= window.until) {
      p = window.until;
      return std::nullopt;
    }
    if (place >= p) {
      p = place;
      return ByteMatch{begins[(index + 1) % size], at};
    }
    matched = fallback_[matched];
  }
  // What has begun to match may go on behind the portion.
  const char* const open = matched > 0 ? begins[(index - matched) % size] : at;
  p = at >= window.end ? window.until : std::max(p, std::min(window.until, open));
  return std::nullopt;
}

}  // namespace text
