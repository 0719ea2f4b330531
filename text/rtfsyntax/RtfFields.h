// What a field's instruction says.
#pragma once

#include <string>
#include <string_view>

namespace text::rtf {

struct SymbolField {
  char32_t character = 0;  // 0: the instruction is no complete SYMBOL
  std::string font;        // empty: that of the text around
};

// SYMBOL 183 \f "Symbol" \s 10, the number also as 0xB7; with \u it is a Unicode character, without a font
// one of Windows-1252.
SymbolField ParseSymbol(std::string_view instruction);

// HYPERLINK "target" \l "mark" as target#mark, either of which may be missing; empty for any other instruction.
std::string LinkTarget(std::string_view instruction);

// The instruction that means this target, in a field's own quoting, not RTF's.
std::string LinkInstruction(std::string_view target);

}  // namespace text::rtf
