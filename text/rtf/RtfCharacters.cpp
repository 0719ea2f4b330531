#include "text/rtf/RtfCharacters.h"

#include "text/TextStore.h"
#include "text/rtf/RtfLimits.h"

#include <array>

namespace text::rtf {

namespace {

constexpr std::array<char16_t, 32> kWindows1252 = {0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021,
                                                   0x2C6,  0x2030, 0x160,  0x2039, 0x152,  0x8D,   0x17D,  0x8F,
                                                   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                   0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};

}  // namespace

void AppendUtf8(char32_t c, std::string& out) {
  if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) c = 0xFFFD;
  const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    tail(0);
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    tail(6), tail(0);
  } else {
    out += static_cast<char>(0xF0 | (c >> 18));
    tail(12), tail(6), tail(0);
  }
}

char32_t TakeCharacter(std::string_view& utf8) {
  const int length = Utf8Length(utf8.data(), utf8.data() + utf8.size());
  const auto byte = [p = utf8.data()](int i) { return static_cast<char32_t>(static_cast<uint8_t>(p[i])); };
  const auto tail = [&](int i) { return byte(i) & 0x3F; };
  char32_t c = byte(0);
  switch (length) {
    case 0:
      c = c < 0xA0 ? kWindows1252[c - 0x80] : c;
      break;
    case 1:
      break;
    case 2:
      c = (c & 0x1F) << 6 | tail(1);
      break;
    case 3:
      c = (c & 0x0F) << 12 | tail(1) << 6 | tail(2);
      break;
    default:
      c = (c & 0x07) << 18 | tail(1) << 12 | tail(2) << 6 | tail(3);
      break;
  }
  utf8.remove_prefix(length == 0 ? 1 : static_cast<size_t>(length));
  return c;
}

uint8_t Windows1252Byte(char32_t c) {
  if (c >= 0xA0 && c <= 0xFF) return static_cast<uint8_t>(c);
  for (size_t i = 0; i < kWindows1252.size(); ++i)
    if (kWindows1252[i] == c) return static_cast<uint8_t>(0x80 + i);
  return 0;
}

std::string CleanFontName(std::string_view name) {
  std::string clean;
  while (!name.empty()) {
    const char32_t character = TakeCharacter(name);
    if (character < 0x20 || character == 0x7F || character == 0x2028) continue;
    const size_t before = clean.size();
    AppendUtf8(character, clean);
    if (clean.size() <= kMaxNameBytes) continue;
    clean.resize(before);
    break;
  }
  while (clean.ends_with(' ')) clean.pop_back();
  return clean;
}

}  // namespace text::rtf
