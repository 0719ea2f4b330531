#include "text/Utf16.h"

#include "text/TextStore.h"

namespace text {

Decoded Decode(const char* p, const char* end) {
  const auto at = [p](int i) { return static_cast<char32_t>(static_cast<unsigned char>(p[i])); };
  switch (Utf8Length(p, end)) {
    case 1:
      return {at(0), 1};
    case 2:
      return {(at(0) & 0x1F) << 6 | (at(1) & 0x3F), 2};
    case 3:
      return {(at(0) & 0x0F) << 12 | (at(1) & 0x3F) << 6 | (at(2) & 0x3F), 3};
    case 4:
      return {(at(0) & 0x07) << 18 | (at(1) & 0x3F) << 12 | (at(2) & 0x3F) << 6 | (at(3) & 0x3F), 4};
    default:
      return {0xDC00 + at(0), 1};
  }
}

void AppendUtf16(std::u16string& units, std::string_view bytes, BreakAs breakAs) {
  const char* p = bytes.data();
  const char* const end = p + bytes.size();
  while (p < end) {
    if (*p == '\r' || *p == '\n') {
      if (breakAs == BreakAs::kCrLf) units += u'\r';
      units += u'\n';
      p += *p == '\r' && p + 1 < end && p[1] == '\n' ? 2 : 1;
      continue;
    }
    const auto [scalar, length] = Decode(p, end);
    if (scalar < 0x10000) {
      units += static_cast<char16_t>(scalar);
    } else {
      units += static_cast<char16_t>(0xD7C0 + (scalar >> 10));
      units += static_cast<char16_t>(0xDC00 + (scalar & 0x3FF));
    }
    p += length;
  }
}

void AppendUtf8(std::string& bytes, char32_t scalar) {
  if (scalar > 0x10FFFF || (scalar >= 0xD800 && scalar < 0xE000)) scalar = 0xFFFD;
  const auto put = [&bytes](char32_t byte) { bytes += static_cast<char>(byte); };
  if (scalar < 0x80) {
    put(scalar);
  } else if (scalar < 0x800) {
    put(0xC0 | scalar >> 6), put(0x80 | (scalar & 0x3F));
  } else if (scalar < 0x10000) {
    put(0xE0 | scalar >> 12), put(0x80 | (scalar >> 6 & 0x3F)), put(0x80 | (scalar & 0x3F));
  } else {
    put(0xF0 | scalar >> 18), put(0x80 | (scalar >> 12 & 0x3F)), put(0x80 | (scalar >> 6 & 0x3F));
    put(0x80 | (scalar & 0x3F));
  }
}

std::u16string Utf16OfBytes(std::string_view bytes, BreakAs breakAs) {
  std::u16string units;
  units.reserve(bytes.size());
  AppendUtf16(units, bytes, breakAs);
  return units;
}

std::string BytesOfUtf16(std::u16string_view units, std::optional<LineEnd> lineEnd) {
  std::string bytes;
  bytes.reserve(units.size());
  const auto isLow = [](char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; };
  for (size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    if (lineEnd && (unit == u'\r' || unit == u'\n')) {
      if (unit == u'\r' && i + 1 < units.size() && units[i + 1] == u'\n') ++i;
      bytes += *lineEnd == LineEnd::kCrLf ? "\r\n" : *lineEnd == LineEnd::kLf ? "\n" : "\r";
    } else if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < units.size() && isLow(units[i + 1])) {
      AppendUtf8(bytes, 0x10000 + ((unit - 0xD800u) << 10) + (units[++i] - 0xDC00u));
    } else if (unit >= 0xDC80 && unit <= 0xDCFF) {
      bytes += static_cast<char>(unit - 0xDC00);
    } else {
      AppendUtf8(bytes, unit);
    }
  }
  return bytes;
}

}  // namespace text
