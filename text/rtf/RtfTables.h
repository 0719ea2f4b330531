// The numbered tables at the beginning of a document: fonts and colours.
#pragma once

#include "text/Formats.h"
#include "text/rtfsyntax/RtfKeywords.h"
#include "text/rtfsyntax/RtfLimits.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace text::rtf {

struct FontEntry {
  Font font;
  int32_t charset = 1;    // as written; may be past a byte
  int32_t codePage = -1;  // \cpg
  std::optional<FontId> id;
};

struct Tables {
  std::map<int32_t, FontEntry> fonts;
  uint32_t fontGeneration = 1;  // grows when the table or what its meaning depends on changes

  std::vector<Color> colors;
};

}  // namespace text::rtf
