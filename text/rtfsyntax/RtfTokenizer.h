// Cuts RTF bytes into groups, control words, hex, binary and text. Knows no word but \bin.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace text::rtf {

enum class TokenKind : uint8_t {
  kEnd,
  kOpen,    // {
  kClose,   // }
  kText,    // bytes 0x01 .. 0x7F that stand for themselves
  kBytes,   // raw bytes from 0x80 on
  kHex,     // \'hh; the parameter is the byte, or -1 when the digits are bad
  kWord,    // \word, \word123, \word-123; text is the word
  kSymbol,  // \ and one character that is no letter; text is that character
  kBinary,  // \binN; text is the data, cut to what is left
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  bool hasParameter = false;
  int32_t parameter = 0;  // saturated
  std::string_view text;
};

class RtfTokenizer {
 public:
  explicit RtfTokenizer(std::string_view bytes) : bytes_(bytes) {}

  // Every call but the last consumes at least one byte. CR, LF and NUL between tokens are no text and vanish.
  Token Next();
  // Goes to the brace that closes the group in which the reading stands, without reading what is between. The brace is
  // the next token; without one the end is.
  void SkipGroup();
  // True when the next token closes a group or is the end.
  bool AtClose();
  // Offset of the next unread byte.
  size_t position() const { return position_; }
  // Of the first byte of the last token.
  size_t begin() const { return begin_; }

 private:
  static constexpr size_t kMaxWord = 32;

  Token Backslash();
  Token Word();
  Token Hex();

  std::string_view bytes_;
  size_t position_ = 0;
  size_t begin_ = 0;
};

}  // namespace text::rtf
