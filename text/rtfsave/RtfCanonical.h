// The bytes of an RTF file in one form.
#pragma once

#include <string>
#include <string_view>

namespace text::rtf {

// From the first brace on, with every token as it was but for: bytes above 0x7F, which become \'hh; ends of lines that
// are none behind a backslash, which become CR LF; NUL, a backslash at the very end and what follows the brace that
// closes everything, which go; a backslash with NUL or a byte above 0x7F, which becomes \!; what is no visible ASCII in
// the digits of \', which becomes x; counts of \bin that do not fit; closing braces that are missing; and a \generator,
// which comes to name this program. Data of \bin stay as they are.
std::string Canonical(std::string_view rtf);

}  // namespace text::rtf
