#include "text/search/AnchorScan.h"

#include <algorithm>
#include <bit>
#if defined(__SSE2__) && !defined(QUILLMARK_TINY_TREE)
#include <emmintrin.h>
#define QUILLMARK_SIMD_SEARCH 1
#endif

namespace text {

AnchorScan::AnchorScan(Test first, Test second)
    : first_(first), second_(second), reach_(std::max(first.offset, second.offset)) {
  // One, two or four values, the last one repeated.
  const int count = std::max(first.count, second.count);
  for (Test* test : {&first_, &second_}) {
    std::fill(test->values.begin() + test->count, test->values.end(),
              test->values[static_cast<size_t>(test->count - 1)]);
    test->count = count > 2 ? 4 : count;
  }
}

#ifdef QUILLMARK_SIMD_SEARCH
namespace {

template <int Values>
class Matcher {
 public:
  explicit Matcher(const AnchorScan::Test& test) : offset_(test.offset) {
    for (size_t i = 0; i < Values; ++i) value_[i] = _mm_set1_epi8(test.values[i]);
  }
  __m128i operator()(const char* p) const {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + offset_));
    __m128i equal = _mm_cmpeq_epi8(bytes, value_[0]);
    for (size_t i = 1; i < Values; ++i) equal = _mm_or_si128(equal, _mm_cmpeq_epi8(bytes, value_[i]));
    return equal;
  }

 private:
  size_t offset_;
  __m128i value_[Values];
};

}  // namespace
#endif

template <int Values>
const char* AnchorScan::NextWith(const char* p, const char* until, const char* end) const {
#ifdef QUILLMARK_SIMD_SEARCH
  const Matcher<Values> first(first_), second(second_);
  const auto place = [until](const char* at, unsigned mask) { return std::min(at + std::countr_zero(mask), until); };
  const auto reach = static_cast<ptrdiff_t>(reach_);
  // Two strides at once while nothing is found.
  for (; p < until && end - p >= reach + 32; p += 32) {
    const __m128i low = _mm_and_si128(first(p), second(p));
    const __m128i high = _mm_and_si128(first(p + 16), second(p + 16));
    if (_mm_movemask_epi8(_mm_or_si128(low, high)) == 0) continue;
    return place(p, static_cast<unsigned>(_mm_movemask_epi8(low)) | static_cast<unsigned>(_mm_movemask_epi8(high))
                                                                        << 16);
  }
#endif
  for (const char* const stop = std::min(until, end - std::min<ptrdiff_t>(end - p, static_cast<ptrdiff_t>(reach_)));
       p < stop; ++p)
    if (first_.Holds(p) && second_.Holds(p)) return p;
  return until;
}

const char* AnchorScan::Next(const char* p, const char* until, const char* end) const {
  if (p >= until) return until;
  switch (first_.count) {
    case 1:
      return NextWith<1>(p, until, end);
    case 2:
      return NextWith<2>(p, until, end);
    default:
      return NextWith<4>(p, until, end);
  }
}

}  // namespace text
