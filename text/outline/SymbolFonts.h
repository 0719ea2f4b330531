// Characters of symbol fonts, which a document gives as U+F020 .. U+F0FF, in Unicode: such fonts are rarely installed.
#pragma once

#include <cstdint>
#include <string_view>

namespace text::layout {

constexpr uint8_t kSymbolCharset = 2;

// The unit itself when the font or the place in it is not known.
char16_t UnicodeOfSymbol(std::string_view fontName, char16_t unit);

}  // namespace text::layout
