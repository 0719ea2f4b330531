#include "text/rtfsyntax/RtfTokenizer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace text::rtf {

namespace {

enum ByteClass : uint8_t { kPlain, kHigh, kSpecial, kIgnored };

constexpr std::array<uint8_t, 256> kClasses = [] {
  std::array<uint8_t, 256> classes{};
  for (size_t i = 0x80; i < 256; ++i) classes[i] = kHigh;
  for (unsigned char c : {'{', '}', '\\'}) classes[c] = kSpecial;
  for (unsigned char c : {'\r', '\n', '\0'}) classes[c] = kIgnored;
  return classes;
}();

uint8_t ClassOf(char c) {
  return kClasses[static_cast<unsigned char>(c)];
}
bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

int HexValue(char c) {
  if (IsDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// The length of the plain text that begins at p.
size_t PlainLength(const char* const begin, const char* const end) {
  const char* p = begin;
#ifdef __SSE2__
  for (; end - p >= 16; p += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const auto is = [v](char c) { return _mm_cmpeq_epi8(v, _mm_set1_epi8(c)); };
    const __m128i special = _mm_or_si128(is('\\'), _mm_or_si128(is('{'), is('}')));
    const __m128i ignored = _mm_or_si128(is('\0'), _mm_or_si128(is('\r'), is('\n')));
    const __m128i stop = _mm_or_si128(v, _mm_or_si128(special, ignored));  // the top bit says what is not ASCII
    if (const auto mask = static_cast<unsigned>(_mm_movemask_epi8(stop)))
      return static_cast<size_t>(p - begin) + static_cast<size_t>(std::countr_zero(mask));
  }
#endif
  while (p < end && ClassOf(*p) == kPlain) ++p;
  return static_cast<size_t>(p - begin);
}

}  // namespace

bool RtfTokenizer::AtClose() {
  while (position_ < bytes_.size() && ClassOf(bytes_[position_]) == kIgnored) ++position_;
  return position_ == bytes_.size() || bytes_[position_] == '}';
}

Token RtfTokenizer::Next() {
  while (position_ < bytes_.size() && ClassOf(bytes_[position_]) == kIgnored) ++position_;
  begin_ = position_;
  if (position_ == bytes_.size()) return {};
  const char first = bytes_[position_];
  const uint8_t kind = ClassOf(first);
  const size_t begin = position_++;
  if (kind == kSpecial) {
    if (first == '{') return {TokenKind::kOpen, false, 0, {}};
    if (first == '}') return {TokenKind::kClose, false, 0, {}};
    return Backslash();
  }
  if (kind == kPlain) {
    position_ += PlainLength(bytes_.data() + position_, bytes_.data() + bytes_.size());
  } else {
    while (position_ < bytes_.size() && ClassOf(bytes_[position_]) == kind) ++position_;
  }
  return {kind == kHigh ? TokenKind::kBytes : TokenKind::kText, false, 0, bytes_.substr(begin, position_ - begin)};
}

Token RtfTokenizer::Backslash() {
  if (position_ == bytes_.size()) return {};
  const char c = bytes_[position_];
  if (IsLetter(c)) return Word();
  const std::string_view symbol = bytes_.substr(position_++, 1);
  if (c == '\'') return Hex();
  // \ CR LF is one symbol.
  if (c == '\r' && position_ < bytes_.size() && bytes_[position_] == '\n') ++position_;
  return {TokenKind::kSymbol, false, 0, symbol};
}

Token RtfTokenizer::Word() {
  const size_t begin = position_;
  while (position_ < bytes_.size() && IsLetter(bytes_[position_])) ++position_;
  Token token{TokenKind::kWord, false, 0, bytes_.substr(begin, std::min(position_ - begin, kMaxWord))};
  size_t digits = position_;
  const bool negative = digits < bytes_.size() && bytes_[digits] == '-';
  if (negative) ++digits;
  bool overflow = false;
  if (digits < bytes_.size() && IsDigit(bytes_[digits])) {
    constexpr int64_t kLimit = std::numeric_limits<int32_t>::max();
    int64_t value = 0;
    for (; digits < bytes_.size() && IsDigit(bytes_[digits]); ++digits)
      if (value <= kLimit) value = value * 10 + (bytes_[digits] - '0');
    overflow = value > kLimit;
    value = std::min(value, kLimit);
    token.hasParameter = true;
    token.parameter = static_cast<int32_t>(negative ? -value : value);
    position_ = digits;
  }
  if (position_ < bytes_.size() && bytes_[position_] == ' ') ++position_;
  if (token.text != "bin") return token;
  const size_t count = overflow || token.parameter < 0 ? 0 : static_cast<size_t>(token.parameter);
  const std::string_view data = bytes_.substr(position_, count);
  position_ += data.size();
  return {TokenKind::kBinary, false, 0, data};
}

Token RtfTokenizer::Hex() {
  Token token{TokenKind::kHex, true, -1, {}};
  int value = 0;
  for (int i = 0; i < 2; ++i) {
    if (position_ == bytes_.size() || ClassOf(bytes_[position_]) == kSpecial) return token;
    const int digit = HexValue(bytes_[position_++]);
    value = digit < 0 || value < 0 ? -1 : value * 16 + digit;
  }
  token.parameter = value;
  return token;
}

void RtfTokenizer::SkipGroup() {
  size_t depth = 0;
  while (position_ < bytes_.size()) {
    const char c = bytes_[position_];
    if (ClassOf(c) != kSpecial) {
      ++position_;
    } else if (c == '{') {
      ++depth, ++position_;
    } else if (c == '}') {
      if (depth == 0) return;
      --depth, ++position_;
    } else {
      ++position_;
      Backslash();  // steps over \{ and \} and the data of \bin
    }
  }
}

}  // namespace text::rtf
