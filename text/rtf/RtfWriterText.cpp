// The writer's characters: which stand for themselves, which have a word, which go as \'hh and which as \u.
#include "text/rtf/RtfCharacters.h"
#include "text/rtf/RtfWriter.h"

namespace text::rtf {

namespace {

bool IsPlain(char c) {
  return c >= ' ' && c < 0x7F && c != '\\' && c != '{' && c != '}';
}

bool WouldJoinWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == ' ';
}

}  // namespace

void RtfWriter::Text(std::string_view bytes) {
  while (!bytes.empty() && !refused_) {
    size_t plain = 0;
    while (plain < bytes.size() && IsPlain(bytes[plain])) ++plain;
    if (plain > 0) {
      if (needsDelimiter_ && WouldJoinWord(bytes.front())) out_ += ' ';
      Raw(bytes.substr(0, plain));
      bytes.remove_prefix(plain);
    } else {
      Special(TakeCharacter(bytes));
    }
    SendIfLarge();
  }
}

void RtfWriter::Special(char32_t c) {
  switch (c) {
    case 0:  // no reader of rich text keeps it
      return;
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
  if (c < 0x20) return Hex(static_cast<uint8_t>(c));
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
  charset_ = 255;  // one whose bytes are never written as such
  while (!utf8.empty()) {
    const char32_t c = TakeCharacter(utf8);
    if (c == ';') {
      Hex(';');
    } else if (c < 0x80 && IsPlain(static_cast<char>(c))) {
      out_ += static_cast<char>(c);
    } else {
      Special(c);
    }
  }
}

}  // namespace text::rtf
