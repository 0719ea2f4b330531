// Control symbols, words that stand for a character or an end, and \u.
#include "text/Utf16.h"
#include "text/rtf/RtfCharacters.h"
#include "text/rtf/RtfReader.h"

namespace text::rtf {

namespace {

constexpr bool IsHighSurrogate(char32_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char32_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}

// 0 for a symbol that is no character.
char32_t CharacterOf(char symbol) {
  switch (symbol) {
    case '\\':
    case '{':
    case '}':
      return static_cast<char32_t>(symbol);
    case '~':
      return 0xA0;
    case '_':
      return 0x2011;
    case '-':
      return 0xAD;
    case '\t':
      return '\t';
    default:
      return 0;
  }
}

}  // namespace

void RtfReader::ControlSymbol(char symbol) {
  if (symbol == '\r' || symbol == '\n') {
    skipUnits_ = 0;
    return Paragraph();
  }
  if (skipUnits_ > 0) {
    --skipUnits_;
    return;
  }
  if (const char32_t character = CharacterOf(symbol)) Character(character);
}

void RtfReader::Character(char32_t character) {
  char small = static_cast<char>(character);
  if (character < 0x80) return Emit({&small, 1});
  std::string utf8;
  AppendUtf8(utf8, character);
  Emit(utf8);
}

void RtfReader::Symbol(const Keyword& word) {
  if (word.op == Op::kCharacter) return Character(static_cast<char32_t>(word.value));
  if (word.op == Op::kParagraph) return Paragraph();
  if (state().mode != Mode::kBody) return;
  Report(Dropped::kTables);
  FlushSurrogate();
  if (word.op == Op::kCell) return output_.Cell();
  tailParagraph_ = CurrentParagraph();
  output_.Row(CurrentChars(), tailParagraph_);
  tailDepth_ = 0;
  sawText_ = true;
}

void RtfReader::Paragraph() {
  if (state().mode != Mode::kBody) return;
  FlushSurrogate();
  tailParagraph_ = CurrentParagraph();
  output_.Break(CurrentChars(), tailParagraph_);
  tailDepth_ = 0;
  sawText_ = true;
}

// Numbers are signed 16 bit, but some writers give them unsigned, and a few whole characters past U+FFFF.
void RtfReader::Unicode(int32_t number) {
  skipUnits_ = state().fallbackCount;
  if (number < 0) number += 0x10000;
  const char32_t unit = number < 0 ? 0xFFFD : static_cast<char32_t>(number);
  if (IsLowSurrogate(unit) && highSurrogate_ != 0) {
    const char32_t pair = 0x10000 + ((highSurrogate_ - 0xD800) << 10) + (unit - 0xDC00);
    highSurrogate_ = 0;
    return Character(pair);
  }
  FlushSurrogate();
  if (IsHighSurrogate(unit)) {
    highSurrogate_ = unit;
  } else if (unit == '\r' || unit == '\n') {
    Paragraph();
  } else if (unit != 0) {  // a NUL is dropped in every spelling
    Character(unit);
  }
}

}  // namespace text::rtf
