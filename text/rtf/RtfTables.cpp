// Fonts and colours as the header's tables give them.
#include "text/rtf/RtfReader.h"
#include "text/rtfsyntax/RtfCharacters.h"

#include <algorithm>
#include <utility>

namespace text::rtf {

void RtfReader::FontWord(const Keyword& word, int32_t number) {
  switch (word.op) {
    case Op::kFont:
      FinishFont();
      fontNumber_ = number;
      return;
    case Op::kFontFamily:
      font_.font.family = static_cast<uint8_t>(word.value);
      return;
    case Op::kFontCharset:
      font_.charset = number;
      font_.font.charset = static_cast<uint8_t>(number >= 0 && number <= 255 ? number : 1);
      return;
    case Op::kFontCodePage:
      font_.codePage = number;
      return;
    case Op::kFallbackCount:
      state().fallbackCount = static_cast<uint8_t>(std::clamp(number, 0, 255));
      return;
    default:
      return;
  }
}

// A raw semicolon ends the entry; one that is part of the name is written as \'3b.
void RtfReader::FontText(std::string_view text) {
  const size_t end = text.find(';');
  Emit(text.substr(0, end));
  if (end != std::string_view::npos) FinishFont();
}

void RtfReader::FinishFont() {
  FlushSurrogate();
  FontEntry entry = std::move(font_);
  font_ = FontEntry{};
  const std::optional<int32_t> number = std::exchange(fontNumber_, std::nullopt);
  if (!number) return;
  Tables& tables = inForce_.tables();
  if (tables.fonts.size() == kMaxFonts && !tables.fonts.contains(*number)) {
    result_.limited = true;
    return;
  }
  entry.font.name = CleanFontName(entry.font.name);
  tables.fonts.insert_or_assign(*number, std::move(entry));
  ++tables.fontGeneration;
}

void RtfReader::ColorWord(const Keyword& word, int32_t number) {
  const int shift = word.op == Op::kRed ? 0 : word.op == Op::kGreen ? 8 : word.op == Op::kBlue ? 16 : -1;
  if (shift < 0) return;
  if (color_.isAuto()) color_.rgb = 0;
  const auto level = static_cast<uint32_t>(std::clamp(number, 0, 255));
  color_.rgb = (color_.rgb & ~(0xFFu << shift)) | level << shift;
}

void RtfReader::ColorText(std::string_view text) {
  Tables& tables = inForce_.tables();
  for (char c : text) {
    if (c != ';') continue;
    if (tables.colors.size() == kMaxColors) {
      result_.limited = true;
      return;
    }
    tables.colors.push_back(std::exchange(color_, Color{}));
  }
}

void RtfReader::LimitUnless(bool whole) {
  if (!whole) result_.limited = true;
}

}  // namespace text::rtf
