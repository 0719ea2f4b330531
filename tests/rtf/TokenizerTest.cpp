#include "text/rtfsyntax/RtfTokenizer.h"

#include <gtest/gtest.h>

#include <string>

namespace text::rtf {
namespace {

// {word:12} for a control word, (~) for a symbol, 'e4 for hex, <...> for binary, [...] for raw bytes; text and braces
// stand for themselves.
std::string Tokens(std::string_view bytes) {
  RtfTokenizer tokenizer(bytes);
  std::string line;
  size_t before = 0;
  for (;;) {
    const Token token = tokenizer.Next();
    if (token.kind == TokenKind::kEnd) return line;
    EXPECT_GT(tokenizer.position(), before);
    before = tokenizer.position();
    const std::string text(token.text);
    switch (token.kind) {
      case TokenKind::kOpen:
        line += '{';
        break;
      case TokenKind::kClose:
        line += '}';
        break;
      case TokenKind::kText:
        line += text;
        break;
      case TokenKind::kBytes:
        line += "[" + text + "]";
        break;
      case TokenKind::kHex:
        line += "'" + std::to_string(token.parameter);
        break;
      case TokenKind::kSymbol:
        line += "(" + text + ")";
        break;
      case TokenKind::kBinary:
        line += "<" + text + ">";
        break;
      case TokenKind::kWord:
        line += "\\" + text + (token.hasParameter ? ":" + std::to_string(token.parameter) : "") + " ";
        break;
      case TokenKind::kEnd:
        break;
    }
  }
}

struct Row {
  std::string bytes, tokens;
};

class RtfTokens : public testing::TestWithParam<Row> {};

TEST_P(RtfTokens, AreCut) {
  EXPECT_EQ(Tokens(GetParam().bytes), GetParam().tokens);
}

const Row kRows[] = {
    {"", ""},
    {"{}", "{}"},
    {"a\tb", "a\tb"},
    {"a\r\nb\nc\rd", "abcd"},
    {std::string("a\0b\0", 4), "ab"},
    {"\\b bold", "\\b bold"},
    {"\\b  two", "\\b  two"},
    {"\\b0text", "\\b:0 text"},
    {"\\li-720 x", "\\li:-720 x"},
    {"\\foo-bar", "\\foo -bar"},
    {"\\foo- 1", "\\foo - 1"},
    {"\\par\r\ntext", "\\par text"},
    {"\\Par\\par", "\\Par \\par "},
    {"\\fs99999999999999", "\\fs:2147483647 "},
    {"\\fs-99999999999999", "\\fs:-2147483647 "},
    {"\\fs2147483647", "\\fs:2147483647 "},
    {"\\{\\}\\\\", "({)(})(\\)"},
    {"\\~ x", "(~) x"},
    {"\\*\\b", "(*)\\b "},
    {"\\\r\nx", "(\r)x"},
    {"\\\nx", "(\n)x"},
    {"\\'e4\\'E4", "'228'228"},
    {"\\'3?x", "'-1x"},
    {"\\'g1x", "'-1x"},
    {"\\'}x", "'-1}x"},
    {"\\'4\\b x", "'-1\\b x"},
    {"\\'", "'-1"},
    {"\\'4", "'-1"},
    {"a\xE4\xF6z", "a[\xE4\xF6]z"},
    {"\\bin3 }{\\x", "<}{\\>x"},
    {"\\bin3{}\\x", "<{}\\>x"},
    {"\\bin0 x", "<>x"},
    {"\\bin x", "<>x"},
    {"\\bin-5 x", "<>x"},
    {"\\bin99 x", "<x>"},
    {"\\bin99999999999 x", "<>x"},
    {"\\binx1 y", "\\binx:1 y"},
    {"\\", ""},
    {"\\b", "\\b "},
    {"\\b-", "\\b -"},
    {"\\" + std::string(100, 'q') + "7 x", "\\" + std::string(32, 'q') + ":7 x"},
};
INSTANTIATE_TEST_SUITE_P(Rows, RtfTokens, testing::ValuesIn(kRows));

TEST(RtfTokenizer, SkipsToTheBraceThatClosesTheGroup) {
  const Row rows[] = {
      {"a}b", "}b"},         {"a{b{c}d}e}f", "}f"}, {"\\}x}f", "}f"}, {"\\'}f", "}f"},
      {"\\bin1 }x}f", "}f"}, {"\\{x}f", "}f"},      {"a{b}", ""},     {"\\bin9 }", ""},
  };
  for (const Row& row : rows) {
    RtfTokenizer tokenizer(row.bytes);
    tokenizer.SkipGroup();
    EXPECT_EQ(row.bytes.substr(tokenizer.position()), row.tokens) << row.bytes;
  }
}

}  // namespace
}  // namespace text::rtf
