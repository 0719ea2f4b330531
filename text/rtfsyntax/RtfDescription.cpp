#include "text/rtfsyntax/RtfDescription.h"

#include "text/Utf16.h"
#include "text/rtfsyntax/RtfLimits.h"

#include <algorithm>
#include <utility>

namespace text::rtf {

void DescriptionScan::Take(const Token& token) {
  switch (token.kind) {
    case TokenKind::kOpen:
    case TokenKind::kClose:
      in_ = In::kNothing;
      skip_ = 0;
      return;
    case TokenKind::kWord:
      if (token.text == "sn") in_ = In::kName, name_.clear();
      if (token.text == "sv" && name_ == "wzDescription" && value_.empty()) in_ = In::kValue;
      if (token.text == "u" && in_ == In::kValue) Unit(static_cast<char32_t>(token.parameter & 0xFFFF)), skip_ = 1;
      return;
    case TokenKind::kText:
    case TokenKind::kBytes:
      return Bytes(token.text);
    case TokenKind::kHex:
      if (token.parameter >= 0) Bytes(std::string(1, static_cast<char>(token.parameter)));
      return;
    case TokenKind::kSymbol:
    case TokenKind::kBinary:
    case TokenKind::kEnd:
      return;
  }
}

// Without the characters of several bytes, whose fallbacks cannot be told from them here.
void DescriptionScan::Bytes(std::string_view bytes) {
  bytes.remove_prefix(std::min(bytes.size(), static_cast<size_t>(std::exchange(skip_, 0))));
  if (in_ == In::kName) name_ += bytes.substr(0, kMaxNameBytes - name_.size());
  if (in_ != In::kValue) return;
  for (const char c : bytes) {
    if (value_.size() >= kMaxDescriptionBytes) return;
    const auto byte = static_cast<uint8_t>(c);
    if (!page_.multiByte()) {
      value_ += page_.Character(byte);
    } else if (byte < 0x80) {
      value_ += c;
    }
  }
}

void DescriptionScan::Unit(char32_t unit) {
  const char32_t high = std::exchange(high_, unit >= 0xD800 && unit <= 0xDBFF ? unit : 0);
  if (high_ != 0 || value_.size() >= kMaxDescriptionBytes) return;
  const bool low = unit >= 0xDC00 && unit <= 0xDFFF;
  AppendUtf8(value_, low && high != 0 ? 0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00) : unit);
}

std::string DescriptionScan::description() const {
  std::string clean = value_;
  for (char& c : clean)
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  return clean;
}

std::string FindDescription(RtfTokenizer tokenizer, size_t groups, size_t& mostBytes, const CodePage& page) {
  DescriptionScan scan(page);
  const size_t begin = tokenizer.position();
  size_t depth = groups;
  while (depth > 0 && tokenizer.position() - begin < mostBytes) {
    const Token token = tokenizer.Next();
    if (token.kind == TokenKind::kEnd) break;
    if (token.kind == TokenKind::kOpen) ++depth;
    if (token.kind == TokenKind::kClose) --depth;
    scan.Take(token);
  }
  mostBytes -= std::min(mostBytes, tokenizer.position() - begin);
  return scan.description();
}

}  // namespace text::rtf
