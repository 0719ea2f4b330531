// The Unicode bidirectional algorithm (UAX #9) for one paragraph of text.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace text {

// The embedding level of each unit: odd runs to the left. Empty when memory or the library fails.
std::vector<uint8_t> BidiLevels(std::u16string_view paragraph, bool rightToLeft);

// Rule L1 of the units [begin, end) of a line: blanks at its end and before tabs go with the paragraph.
void EndLineAt(std::u16string_view text, size_t begin, size_t end, bool rightToLeft, std::vector<uint8_t>* levels);

// From left to right as they are seen: the index of each unit of a line with these levels.
std::vector<int> VisualOrder(const uint8_t* levels, size_t count);

}  // namespace text
