// The text that says what a picture shows, from the properties of pictures and shapes.
#pragma once

#include "text/rtfsyntax/RtfCodePages.h"
#include "text/rtfsyntax/RtfTokenizer.h"

#include <string>

namespace text::rtf {

// Follows {\sp{\sn name}{\sv value}} through the tokens of a group.
class DescriptionScan {
 public:
  explicit DescriptionScan(const CodePage& page) : page_(page) {}
  void Take(const Token& token);
  // Of the first property of that name; UTF-8, empty when there was none.
  std::string description() const;

 private:
  enum class In : uint8_t { kNothing, kName, kValue };
  void Bytes(std::string_view bytes);
  void Unit(char32_t unit);

  const CodePage& page_;
  In in_ = In::kNothing;
  std::string name_, value_;
  char32_t high_ = 0;
  int32_t skip_ = 0;  // what is left of a \u's fallback
};

// The same from where a tokenizer stands to the end of so many groups, or of the bytes that may be looked at, which are
// counted down.
std::string FindDescription(RtfTokenizer tokenizer, size_t groups, size_t& mostBytes, const CodePage& page);

}  // namespace text::rtf
