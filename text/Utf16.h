// Conversions between the engine's bytes and UTF-16. Internal to text/ and its folders; the public ones are in
// Content.h.
#pragma once

#include "text/Content.h"

namespace text {

// Appends whole characters; a stray byte b becomes 0xDC00 + b.
void AppendUtf16(std::u16string& units, std::string_view bytes, BreakAs breakAs);
// Appends the UTF-8 of a character; what is no scalar value becomes U+FFFD.
void AppendUtf8(std::string& bytes, char32_t scalar);
// The code point at p and its length in bytes; a stray byte gives 0xDC00 + byte. p < end.
struct Decoded {
  char32_t scalar;
  int length;
};
Decoded Decode(const char* p, const char* end);

// Where the first CR or LF at or behind `from` stands, or the size. (find_first_of calls a function for every byte.)
inline size_t FindBreak(std::string_view bytes, size_t from = 0) {
  while (from < bytes.size() && (bytes[from] > '\r' || (bytes[from] != '\r' && bytes[from] != '\n'))) ++from;
  return from;
}

}  // namespace text
