// Control symbols, words that stand for a character or an end, and \u.
#include "text/Utf16.h"
#include "text/rtf/RtfReader.h"
#include "text/rtfsyntax/RtfCharacters.h"

#include <algorithm>

namespace text::rtf {

namespace {

constexpr bool IsHighSurrogate(char32_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char32_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}

}  // namespace

void RtfReader::ControlSymbol(char symbol) {
  if (symbol == '\r' || symbol == '\n') {
    skipUnits_ = 0;
    return Paragraph();
  }
  if (skipUnits_ > 0) return TellSkipped(1, span_);
  if (const char32_t character = SymbolCharacter(symbol)) Character(character);
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
  if (word.op == Op::kParagraph || state().mode == Mode::kNote) return Paragraph();
  if (state().mode != Mode::kBody) return;
  FlushSurrogate();
  const bool nested = word.value > 1;
  const uint8_t level = nested ? std::max<uint8_t>(state().tableLevel, 2) : 1;
  if (word.op == Op::kCell) {
    EndCell(level);
  } else {
    EndRow(level);
  }
  tailParagraph_ = CurrentParagraph();
  tailLevel_ = state().level();
  tailDepth_ = 0;
  SawText();
}

void RtfReader::EndCell(uint8_t level) {
  attachmentEnds_ = 0;
  if (watcher_) TellBreak(false);
  const ParaFormatId format = rows_.AtCell(CurrentParagraph(), level, output_.breaks(), state().level() > 0);
  output_.Break(CharsOfBreak(), format);
}

// The row's last cell ends with it.
void RtfReader::EndRow(uint8_t level) {
  attachmentEnds_ = 0;
  if (watcher_) TellBreak(output_.atCellEnd());
  if (output_.atCellEnd()) {
    ParaFormatId& cell = output_.heldParagraph();
    cell = rows_.AtRow(cell, level, output_.breaks() - 1);
  } else {
    const ParaFormatId format = rows_.AtRow(CurrentParagraph(), level, output_.breaks());
    output_.Break(CharsOfBreak(), format);
  }
}

void RtfReader::Paragraph() {
  if (state().mode == Mode::kNote) return Character('\n');
  if (state().mode != Mode::kBody) return;
  FlushSurrogate();
  attachmentEnds_ = 0;
  tailParagraph_ = CurrentParagraph();
  tailLevel_ = state().level();
  const bool inTable = rows_.any() || tailLevel_ > 0;
  const ParaFormatId format = inTable ? rows_.AtBreak(tailParagraph_, tailLevel_, output_.breaks()) : tailParagraph_;
  if (watcher_) TellBreak(false);
  output_.Break(CharsOfBreak(), format);
  tailDepth_ = 0;
  SawText();
}

// Numbers are signed 16 bit, but some writers give them unsigned, and a few whole characters past U+FFFF.
void RtfReader::Unicode(int32_t number) {
  skipUnits_ = state().fallbackCount;
  if (number < 0) number += 0x10000;
  const char32_t unit = number < 0 ? 0xFFFD : static_cast<char32_t>(number);
  if (IsLowSurrogate(unit) && highSurrogate_ != 0) {
    const char32_t pair = 0x10000 + ((highSurrogate_ - 0xD800) << 10) + (unit - 0xDC00);
    highSurrogate_ = 0;
    span_.begin = surrogateSpan_.begin;
    spanKind_ = RtfWatcher::Text::kOpen;
    return Character(pair);
  }
  FlushSurrogate();
  fallbackCounts_ = false;
  spanKind_ = RtfWatcher::Text::kOpen;
  if (IsHighSurrogate(unit)) {
    highSurrogate_ = unit;
    surrogateSpan_ = span_;
  } else if (unit == '\r' || unit == '\n') {
    Paragraph();
  } else if (unit != 0) {  // a NUL is dropped in every spelling
    Character(unit);
  }
}

}  // namespace text::rtf
