// Single characters of a text with stray bytes, and what a font's name may hold.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace text::rtf {

// Takes the first character off the text, which is not empty. A stray byte gives the Windows-1252 character that it
// most likely was meant to be.
char32_t TakeCharacter(std::string_view& utf8);

// The Windows-1252 byte of a character past ASCII, or 0.
uint8_t Windows1252Byte(char32_t character);

// A name as it survives writing and reading: valid UTF-8, no control characters or line breaks, no blanks at its end,
// at most kMaxNameBytes.
std::string CleanFontName(std::string_view name);

}  // namespace text::rtf
