// The text that says what a picture shows, from the properties of pictures and shapes.
#pragma once

#include "text/rtfsyntax/RtfCodePages.h"
#include "text/rtfsyntax/RtfTokenizer.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace text::rtf {

// Follows {\sp{\sn name}{\sv value}} through the tokens of a group, with the page and the \uc that are in force there.
class DescriptionScan {
 public:
  DescriptionScan(const CodePage& page, uint8_t fallbackCount) : page_(page), fallbacks_{fallbackCount} {}
  void Take(const Token& token);
  // Of the first property of that name; UTF-8, empty when there was none.
  std::string Finish();

 private:
  enum class In : uint8_t { kNothing, kName, kValue };
  void Leave();
  void Word(const Token& token);
  void Character(char32_t character);
  void Bytes(std::string_view bytes);
  void Unit(char32_t unit);
  void Flush();

  const CodePage& page_;
  In in_ = In::kNothing;
  std::string name_, value_;
  std::string bytes_;  // of the value, not decoded yet
  char32_t high_ = 0;
  int skip_ = 0;                    // what is left of a \u's fallback
  std::vector<uint8_t> fallbacks_;  // of the open groups, by \uc
};

// The same from where a tokenizer stands to the end of so many groups, or of the bytes that may be looked at, which are
// counted down.
std::string FindDescription(RtfTokenizer tokenizer, size_t groups, size_t& mostBytes, const CodePage& page,
                            uint8_t fallbackCount);

}  // namespace text::rtf
