#include "text/rtfsave/RtfCanonical.h"

#include "text/rtfsyntax/RtfTokenizer.h"
#include "text/rtfwrite/RtfWords.h"

#include <utility>

namespace text::rtf {

namespace {

// Stands for one that is no ASCII character: it means nothing either, and ends a run of bytes or a fallback alike.
constexpr std::string_view kUnknownSymbol = "\\!";

class Canonicalizer {
 public:
  explicit Canonicalizer(std::string_view source) : source_(source), tokenizer_(source) {
    out_.reserve(source.size() + source.size() / 8);
  }

  std::string Run() {
    do {
      const size_t end = tokenizer_.position();
      const Token token = tokenizer_.Next();
      LineEnds(source_.substr(end, tokenizer_.begin() - end));
      if (token.kind == TokenKind::kEnd) break;
      Put(token);
    } while (depth_ > 0);
    out_.append(depth_, '}');
    return std::move(out_);
  }

 private:
  void LineEnds(std::string_view ignored) {
    for (size_t i = 0; i < ignored.size(); ++i) {
      if (ignored[i] == '\0' || ignored.substr(i).starts_with("\r\n")) continue;
      out_ += "\r\n";
      openWord_ = false;
    }
  }

  void Put(const Token& token) {
    const std::string_view bytes = source_.substr(tokenizer_.begin(), tokenizer_.position() - tokenizer_.begin());
    const bool first = groupBegins_;
    groupBegins_ = token.kind == TokenKind::kOpen || (first && token.kind == TokenKind::kSymbol && token.text == "*");
    depth_ += token.kind == TokenKind::kOpen ? 1 : 0;
    depth_ -= token.kind == TokenKind::kClose ? 1 : 0;
    if (token.kind == TokenKind::kBytes) return Bytes(bytes);
    if (token.kind == TokenKind::kHex) return Hex(bytes);
    if (token.kind == TokenKind::kBinary)
      return Raw("\\bin" + std::to_string(token.text.size()) + " "), Raw(token.text);
    if (token.kind == TokenKind::kSymbol && bytes.back() <= 0) return Raw(kUnknownSymbol);
    if (first && token.kind == TokenKind::kWord && token.text == "generator" && depth_ == 2) return Generator();
    if (openWord_ && token.kind == TokenKind::kText && ContinuesWord(bytes)) out_ += ' ';
    Raw(bytes);
    openWord_ = token.kind == TokenKind::kWord && bytes.back() != ' ';
  }

  void Bytes(std::string_view bytes) {
    for (const char c : bytes) RtfWords(out_).Hex(static_cast<uint8_t>(c));
    openWord_ = false;
  }

  // Bad digits mean the same whatever they are.
  void Hex(std::string_view bytes) {
    for (const char c : bytes) out_ += c > ' ' && c < 0x7F ? c : 'x';
    openWord_ = false;
  }

  void Generator() {
    Raw("\\generator ");
    Raw(kGenerator);
    Raw(";");
    tokenizer_.SkipGroup();
  }

  void Raw(std::string_view bytes) {
    out_ += bytes;
    openWord_ = false;
  }

  std::string_view source_;
  RtfTokenizer tokenizer_;
  std::string out_;
  size_t depth_ = 0;
  bool groupBegins_ = false;  // the next word says what the group is
  bool openWord_ = false;     // a word stands last, without the space that would end it
};

}  // namespace

std::string Canonical(std::string_view rtf) {
  return Canonicalizer(rtf).Run();
}

}  // namespace text::rtf
