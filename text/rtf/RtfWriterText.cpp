// The writer's characters: which stand for themselves, which have a word, which go as \'hh and which as \u.
#include "text/TextStore.h"
#include "text/rtf/RtfWriter.h"

#include <array>

namespace text::rtf {

namespace {

constexpr std::array<char16_t, 32> kWindows1252 = {0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021,
                                                   0x2C6,  0x2030, 0x160,  0x2039, 0x152,  0x8D,   0x17D,  0x8F,
                                                   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                   0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};

// The Windows-1252 byte of a character past ASCII, or 0.
uint8_t Windows1252Byte(char32_t c) {
  if (c >= 0xA0 && c <= 0xFF) return static_cast<uint8_t>(c);
  for (size_t i = 0; i < kWindows1252.size(); ++i)
    if (kWindows1252[i] == c) return static_cast<uint8_t>(0x80 + i);
  return 0;
}

bool IsPlain(char c) {
  return c >= ' ' && c < 0x7F && c != '\\' && c != '{' && c != '}';
}

bool WouldJoinWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == ' ';
}

char32_t Decoded(const char* p, int length) {
  const auto byte = [p](int i) { return static_cast<char32_t>(static_cast<uint8_t>(p[i])); };
  switch (length) {
    // A stray byte goes out as the character it most likely was meant to be.
    case 0:
      return byte(0) < 0xA0 ? kWindows1252[byte(0) - 0x80] : byte(0);
    case 1:
      return byte(0);
    case 2:
      return (byte(0) & 0x1F) << 6 | (byte(1) & 0x3F);
    case 3:
      return (byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
    default:
      return (byte(0) & 0x07) << 18 | (byte(1) & 0x3F) << 12 | (byte(2) & 0x3F) << 6 | (byte(3) & 0x3F);
  }
}

}  // namespace

void RtfWriter::Text(std::string_view bytes) {
  const char* p = bytes.data();
  const char* const end = p + bytes.size();
  while (p < end) {
    const char* const begin = p;
    while (p < end && IsPlain(*p)) ++p;
    if (p > begin) {
      if (needsDelimiter_ && WouldJoinWord(*begin)) out_ += ' ';
      Raw({begin, static_cast<size_t>(p - begin)});
    } else {
      const int length = Utf8Length(p, end);
      Special(Decoded(p, length));
      p += length == 0 ? 1 : length;
    }
    SendIfLarge();
  }
}

void RtfWriter::Special(char32_t c) {
  switch (c) {
    case '\\':
      return Raw("\\\\");
    case '{':
      return Raw("\\{");
    case '}':
      return Raw("\\}");
    case '\t':
      return Word("tab");
    case '\f':
      return Word("page");
    case 0x2028:
      return Word("line");
    case 0xA0:
      return Raw("\\~");
    case 0x2011:
      return Raw("\\_");
    case 0xAD:
      return Raw("\\-");
    default:
      break;
  }
  if (c > 0 && c < 0x20) return Hex(static_cast<uint8_t>(c));
  if (charset_ == 2 && c >= 0xF020 && c <= 0xF0FF) return Hex(static_cast<uint8_t>(c & 0xFF));
  const bool western = charset_ == 0 || (charset_ == 1 && properties_.codePage == 1252);
  if (const uint8_t byte = western && c >= 0x80 ? Windows1252Byte(c) : 0) return Hex(byte);
  if (c < 0x10000) return UnicodeWord(c);
  UnicodeWord(0xD800 + ((c - 0x10000) >> 10));
  UnicodeWord(0xDC00 + (c & 0x3FF));
}

void RtfWriter::Word(std::string_view word, int64_t number) {
  Word(word);
  out_ += std::to_string(number);
}

void RtfWriter::Hex(uint8_t byte) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const char escaped[] = {'\\', '\'', kDigits[byte >> 4], kDigits[byte & 15]};
  Raw({escaped, sizeof escaped});
}

void RtfWriter::UnicodeWord(char32_t unit) {
  Word("u", static_cast<int16_t>(unit));
  Raw("?");
}

// A font's name: readers take it in the code page of the font, so only ASCII stands for itself.
void RtfWriter::Name(std::string_view utf8) {
  for (const char *p = utf8.data(), *end = p + utf8.size(); p < end;) {
    const int length = Utf8Length(p, end);
    const char32_t c = Decoded(p, length);
    p += length == 0 ? 1 : length;
    if (c == ';') {
      Hex(';');
    } else if (c < 0x80 && IsPlain(static_cast<char>(c))) {
      out_ += static_cast<char>(c);
    } else if (c >= 0x20) {
      charset_ = 255;  // none whose bytes are written as such
      Special(c);
    }
  }
}

}  // namespace text::rtf
