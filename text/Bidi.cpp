#include "text/Bidi.h"

#include <unicode/ubidi.h>
#include <unicode/uchar.h>

#include <memory>

namespace text {
namespace {

struct CloseBidi {
  void operator()(UBiDi* bidi) const { ubidi_close(bidi); }
};

// What rule L1 lets go with the separator or the line's end behind it.
bool IsBlankOfLine(char16_t unit) {
  const auto direction = u_charDirection(unit);
  return direction == U_WHITE_SPACE_NEUTRAL ||
         (direction >= U_FIRST_STRONG_ISOLATE && direction <= U_POP_DIRECTIONAL_ISOLATE) ||
         direction == U_BOUNDARY_NEUTRAL;
}

bool IsSeparator(char16_t unit) {
  const auto direction = u_charDirection(unit);
  return direction == U_SEGMENT_SEPARATOR || direction == U_BLOCK_SEPARATOR;
}

}  // namespace

std::vector<uint8_t> BidiLevels(std::u16string_view paragraph, bool rightToLeft) {
  UErrorCode status = U_ZERO_ERROR;
  const auto size = static_cast<int32_t>(paragraph.size());
  const std::unique_ptr<UBiDi, CloseBidi> bidi(ubidi_openSized(size, 0, &status));
  if (U_FAILURE(status) || size == 0) return {};
  ubidi_setPara(bidi.get(), paragraph.data(), size, rightToLeft ? 1 : 0, nullptr, &status);
  const UBiDiLevel* levels = ubidi_getLevels(bidi.get(), &status);
  if (U_FAILURE(status) || ubidi_getProcessedLength(bidi.get()) != size) return {};
  return {levels, levels + size};
}

void EndLineAt(std::u16string_view text, size_t begin, size_t end, bool rightToLeft, std::vector<uint8_t>* levels) {
  bool atEnd = true;
  for (size_t i = end; i-- > begin;) {
    const bool separator = IsSeparator(text[i]);
    atEnd = separator || (atEnd && IsBlankOfLine(text[i]));
    if (atEnd) (*levels)[i] = rightToLeft ? 1 : 0;
  }
}

std::vector<int> VisualOrder(const uint8_t* levels, size_t count) {
  std::vector<int> order(count);
  ubidi_reorderVisual(levels, static_cast<int32_t>(count), order.data());
  return order;
}

}  // namespace text
