// Comparing ASCII words without regard to letter case: extensions, schemes, names of programs.
#pragma once

#include <string_view>
#include <strings.h>

namespace files {

inline bool SameAnyCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}
inline bool EndsWithAnyCase(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && SameAnyCase(text.substr(text.size() - end.size()), end);
}

}  // namespace files
