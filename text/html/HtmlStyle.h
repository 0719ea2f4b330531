// Inline styles and presentational attributes of HTML as changes of formats: a part of CSS 2.2.
#pragma once

#include "text/FormatTable.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace text::html {

// What elements hand down to those inside.
struct Look {
  enum class Side : uint8_t { kSaid, kStart, kEnd };  // of the paragraph's direction, or as the alignment says

  CharFormat chars;
  ParaFormat paragraph;
  Side side = Side::kStart;
  bool preserved = false;  // white space counts
  bool hidden = false;
};

// "font-weight: bold; color: #f00"; what is not understood is passed over. Lengths relative to the font are taken of
// the size in `look`.
void ApplyStyle(std::string_view declarations, FormatTable& formats, Look& look);
// One property by its lower-case name.
void ApplyProperty(std::string_view name, std::string_view value, FormatTable& formats, Look& look);
// Once all properties of an element are applied: the alignment, where it is a side of the direction.
void AlignToSide(Look& look);

// "#f00", "#ff0000", "rgb(255, 0, 0)", "red"; nothing for a transparent or unknown one.
std::optional<Color> ColorOf(std::string_view value);
void SetFont(std::string_view family, FormatTable& formats, Look& look);
void SetHalfPoints(double halfPoints, Look& look);

std::string Lower(std::string_view ascii);
std::string_view Trimmed(std::string_view ascii);

}  // namespace text::html
