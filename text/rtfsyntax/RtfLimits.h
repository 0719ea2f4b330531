// Where reading stops following the file, and the ranges that reader and writer agree on.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace text::rtf {

constexpr size_t kMaxDepth = 100'000;  // groups; deeper ones are only counted
constexpr size_t kMaxFonts = 32'768;
constexpr size_t kMaxColors = 65'536;
constexpr size_t kMaxStyles = 32'768;
constexpr size_t kMaxLists = 32'768;
constexpr size_t kMaxListLevels = 9;
constexpr uint8_t kMaxTableLevel = 32;
constexpr size_t kMaxNameBytes = 256;            // of a font name
constexpr size_t kMaxInstructionBytes = 4096;    // of a field's instruction
constexpr size_t kMaxLabelBytes = 128;           // of a list's label
constexpr size_t kMaxNoteBytes = 1 << 16;        // of a note's text as its anchor shows it
constexpr size_t kMaxRowWords = 1 << 16;         // bytes of a row's definition that are given back
constexpr size_t kMaxDescriptionBytes = 4096;    // of a picture
constexpr size_t kMaxDescriptionScan = 1 << 20;  // bytes behind pictures that are searched for one, in all
constexpr size_t kMaxPictureBytes = 64 << 20;
constexpr int64_t kMaxPicturePixels = 64 << 20;
constexpr size_t kMaxKeptHeader = 1 << 20;  // bytes of header groups that are given back

constexpr int32_t kTwipsPerPixel = 15;     // at 96 dots an inch
constexpr int32_t kMaxLength = 1'000'000;  // twips, either sign
constexpr int32_t kMaxHalfPoints = 3276;

constexpr int32_t ClampLength(int32_t twips) {
  return std::clamp(twips, -kMaxLength, kMaxLength);
}

}  // namespace text::rtf
