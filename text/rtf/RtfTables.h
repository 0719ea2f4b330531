// The numbered tables at the beginning of a document: fonts and colours.
#pragma once

#include "text/Formats.h"
#include "text/rtfsyntax/RtfCodePages.h"
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
  int32_t defaultFont = 0;
  int32_t ansiCodePage = 0;  // 0: not said
  int32_t characterSet = 1252;

  std::vector<Color> colors;

  int codePage() const { return ansiCodePage > 0 ? ansiCodePage : characterSet; }
  int CodePageOf(const FontEntry& entry) const {
    return entry.codePage > 0 ? entry.codePage : CodePageOfCharset(entry.charset, codePage());
  }
  // Automatic past the table's end.
  Color ColorAt(int32_t index) const {
    return index < 0 || static_cast<size_t>(index) >= colors.size() ? Color{} : colors[static_cast<size_t>(index)];
  }
};

}  // namespace text::rtf
