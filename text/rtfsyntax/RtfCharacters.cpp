#include "text/rtfsyntax/RtfCharacters.h"

#include "text/Utf16.h"
#include "text/plain/Encodings.h"
#include "text/rtfsyntax/RtfLimits.h"

namespace text::rtf {

char32_t TakeCharacter(std::string_view& utf8) {
  const auto [scalar, length] = Decode(utf8.data(), utf8.data() + utf8.size());
  utf8.remove_prefix(static_cast<size_t>(length));
  return scalar >= 0xDC80 && scalar <= 0xDCFF ? FromWindows1252(static_cast<unsigned char>(scalar & 0xFF)) : scalar;
}

uint8_t Windows1252Byte(char32_t c) {
  return c < 0x80 ? 0 : ToWindows1252(c).value_or(0);
}

std::string CleanFontName(std::string_view name) {
  std::string clean;
  while (!name.empty()) {
    const char32_t character = TakeCharacter(name);
    if (character < 0x20 || character == 0x7F || character == 0x2028) continue;
    const size_t before = clean.size();
    AppendUtf8(clean, character);
    if (clean.size() <= kMaxNameBytes) continue;
    clean.resize(before);
    break;
  }
  while (clean.ends_with(' ')) clean.pop_back();
  return clean;
}

}  // namespace text::rtf
