#include "files/operations/FreeName.h"

#include <algorithm>

namespace files {

namespace {

constexpr size_t kLongestName = 255;
constexpr size_t kLongestExtension = 32;  // anything longer is hardly one
constexpr size_t kMostDigits = 9;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// The beginning of `text` in at most `size` bytes. Bytes that are no UTF-8 may be parted anywhere.
std::string Shortened(const std::string& text, size_t size) {
  if (text.size() <= size) return text;
  size_t end = size;
  const auto continues = [&](size_t at) { return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80; };
  for (int i = 0; i < 3 && end > 0 && continues(end); ++i) --end;
  return text.substr(0, end > 0 && !continues(end) ? end : size);
}

}  // namespace

NumberedNames::NumberedNames(const std::string& name, bool folder) : stem_(name) {
  const size_t dot = name.rfind('.');
  if (!folder && dot != std::string::npos && dot > 0 && name.size() - dot <= kLongestExtension) {
    stem_ = name.substr(0, dot);
    extension_ = name.substr(dot);
  }
  const size_t open = stem_.rfind(" (");
  if (open == std::string::npos || open == 0 || !stem_.ends_with(')')) return;
  const std::string digits = stem_.substr(open + 2, stem_.size() - open - 3);
  if (digits.empty() || digits.size() > kMostDigits || !std::all_of(digits.begin(), digits.end(), IsDigit)) return;
  number_ = std::stoull(digits) + 1;
  stem_.resize(open);
}

std::string NumberedNames::Next() {
  const std::string end = " (" + std::to_string(number_++) + ")" + extension_;
  return Shortened(stem_, kLongestName - end.size()) + end;
}

}  // namespace files
