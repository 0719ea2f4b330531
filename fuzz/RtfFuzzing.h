// What the RTF fuzz targets share.
#pragma once

#include "text/TextStore.h"
#include "text/rtf/Rtf.h"
#include "text/rtfsave/RtfSave.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace fuzzing {

inline std::string TextOf(const text::Content& content) {
  return content.ByteString(content.all());
}

// As written without the file that was read.
inline std::string Written(const text::Content& content, text::rtf::DocumentProperties properties) {
  std::string bytes;
  properties.source = nullptr;
  text::rtf::Write(content, properties, [&](std::string_view part) {
    bytes += part;
    return true;
  });
  return bytes;
}

// Fails with both values, so that a finding explains itself.
inline void MustEqual(std::string_view a, std::string_view b, const char* what) {
  if (a == b) return;
  std::fprintf(stderr, "%s differ:\n%.*s\n---\n%.*s\n", what, static_cast<int>(a.size()), a.data(),
               static_cast<int>(b.size()), b.data());
  std::abort();
}

}  // namespace fuzzing
