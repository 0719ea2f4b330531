// Formats, pictures and characters as HTML markup.
#pragma once

#include "text/FormatTable.h"

#include <string>
#include <string_view>

namespace text::html {

// An element's beginning and end around something.
struct Tags {
  std::string open, close;
  void Add(const char* name, const std::string& attributes = {}) {
    open += '<' + std::string(name) + attributes + '>';
    close = "</" + std::string(name) + '>' + close;
  }
};

// The character at the end of `out`; nothing for one that HTML does not allow.
void AppendEscaped(std::string& out, char32_t c);
// The code point at `i`, which moves behind it; a lone surrogate, and so a stray byte, is U+FFFD.
char32_t NextCodePoint(std::u16string_view text, size_t& i);
std::string Escaped(std::string_view bytes);
// A name as a CSS string that stands in an attribute and, where text is raw, in a style element.
std::string CssFamily(std::string_view name);
std::string CssColor(Color color);
// A length of twips in points, without trailing zeros, whatever the locale.
std::string Points(int64_t twips);
// ' style="..."', or nothing.
std::string StyleAttribute(const std::string& style);

// What differs from 12 points in the default font. A link that could run something is none.
Tags TagsOf(const CharFormat& format, const FormatTable& formats, std::string_view defaultFont);
// `saysSide`: the alignment is told even where it follows from the direction.
std::string ParagraphStyle(const ParaFormat& format, bool pageBreak, bool saysSide);
// The picture itself for those that every browser shows, else its name.
std::string Picture(const EmbeddedObject& object);

}  // namespace text::html
