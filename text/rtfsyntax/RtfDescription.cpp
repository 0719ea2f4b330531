#include "text/rtfsyntax/RtfDescription.h"

#include "text/Utf16.h"
#include "text/rtfsyntax/RtfKeywords.h"
#include "text/rtfsyntax/RtfLimits.h"

#include <algorithm>
#include <utility>

namespace text::rtf {

void DescriptionScan::Take(const Token& token) {
  const bool ofText =
      token.kind == TokenKind::kText || token.kind == TokenKind::kBytes || token.kind == TokenKind::kHex;
  if (!ofText) Flush();
  switch (token.kind) {
    case TokenKind::kOpen:
      fallbacks_.push_back(fallbacks_.back());
      return Leave();
    case TokenKind::kClose:
      if (fallbacks_.size() > 1) fallbacks_.pop_back();
      return Leave();
    case TokenKind::kWord:
      return Word(token);
    case TokenKind::kText:
    case TokenKind::kBytes:
      return Bytes(token.text);
    case TokenKind::kHex:
      if (token.parameter >= 0) Bytes(std::string(1, static_cast<char>(token.parameter)));
      return;
    case TokenKind::kSymbol:
      return Character(SymbolCharacter(token.text.front()));
    case TokenKind::kBinary:
    case TokenKind::kEnd:
      return;
  }
}

void DescriptionScan::Leave() {
  in_ = In::kNothing;
  skip_ = 0;
}

void DescriptionScan::Word(const Token& token) {
  const Keyword* word = FindKeyword(token.text);
  if (word && word->kind == Kind::kSymbol && word->op == Op::kCharacter)
    return Character(static_cast<char32_t>(word->value));
  skip_ = 0;
  if (token.text == "sn") in_ = In::kName, name_.clear();
  if (token.text == "sv" && name_ == "wzDescription" && value_.empty()) in_ = In::kValue;
  if (token.text == "uc") fallbacks_.back() = static_cast<uint8_t>(std::clamp(token.parameter, 0, 255));
  if (token.text != "u" || in_ != In::kValue) return;
  Unit(static_cast<char32_t>(token.parameter & 0xFFFF));
  skip_ = fallbacks_.back();
}

// Nothing where it is 0.
void DescriptionScan::Character(char32_t character) {
  if (skip_ > 0) {
    --skip_;
  } else if (character != 0 && in_ == In::kValue) {
    Unit(character);
  }
}

void DescriptionScan::Bytes(std::string_view bytes) {
  const size_t skipped = std::min(bytes.size(), static_cast<size_t>(skip_));
  skip_ -= static_cast<int>(skipped);
  bytes.remove_prefix(skipped);
  if (in_ == In::kName) name_ += bytes.substr(0, kMaxNameBytes - name_.size());
  if (in_ == In::kValue && value_.size() < kMaxDescriptionBytes)
    bytes_ += bytes.substr(0, kMaxDescriptionBytes - std::min(kMaxDescriptionBytes, bytes_.size()));
}

void DescriptionScan::Flush() {
  if (page_.multiByte()) {
    page_.Decode(bytes_, value_);
  } else {
    for (const char byte : bytes_) value_ += page_.Character(static_cast<uint8_t>(byte));
  }
  bytes_.clear();
}

void DescriptionScan::Unit(char32_t unit) {
  const char32_t high = std::exchange(high_, unit >= 0xD800 && unit <= 0xDBFF ? unit : 0);
  if (high_ != 0 || value_.size() >= kMaxDescriptionBytes) return;
  const bool low = unit >= 0xDC00 && unit <= 0xDFFF;
  AppendUtf8(value_, low && high != 0 ? 0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00) : unit);
}

std::string DescriptionScan::Finish() {
  Flush();
  if (value_.size() > kMaxDescriptionBytes) {
    size_t size = kMaxDescriptionBytes;
    while (size > 0 && (static_cast<unsigned char>(value_[size]) & 0xC0) == 0x80) --size;
    value_.resize(size);
  }
  for (char& c : value_)
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  return std::move(value_);
}

std::string FindDescription(RtfTokenizer tokenizer, size_t groups, size_t& mostBytes, const CodePage& page,
                            uint8_t fallbackCount) {
  DescriptionScan scan(page, fallbackCount);
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
  return scan.Finish();
}

}  // namespace text::rtf
