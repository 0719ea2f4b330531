// The bytes of an RTF file in one form.
#pragma once

#include <string>
#include <string_view>

namespace text::rtf {

// From the first brace on, with every token as it was but for: bytes above 0x7F, which become \'hh, or \! behind a
// backslash; ends of lines, which become CR LF; NUL and what follows the brace that closes everything, which go; \' with
// bad digits, which become x; closing braces that are missing; and a \generator, which comes to name this program. Data
// of \bin stay as they are.
std::string Canonical(std::string_view rtf);

}  // namespace text::rtf
