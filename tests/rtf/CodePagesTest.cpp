#include "text/rtfsyntax/RtfCharacters.h"
#include "text/rtfsyntax/RtfCodePages.h"

#include <gtest/gtest.h>

namespace text::rtf {
namespace {

std::string Decoded(int number, std::string_view bytes) {
  CodePages pages;
  const CodePage& page = pages[number];
  std::string utf8;
  if (page.multiByte()) {
    page.Decode(bytes, utf8);
  } else {
    for (char byte : bytes) utf8 += page.Character(static_cast<uint8_t>(byte));
  }
  return utf8;
}

struct Row {
  int codePage;
  std::string bytes, utf8;
};

class RtfCodePage : public testing::TestWithParam<Row> {};

TEST_P(RtfCodePage, Decodes) {
  EXPECT_EQ(Decoded(GetParam().codePage, GetParam().bytes), GetParam().utf8);
}

const Row kRows[] = {
    {437, "\x81\xE1", "üß"},
    {850, "\x81\x9B", "üø"},
    {852, "\xA9", "ę"},
    {866, "\x8F", "П"},
    {874, "\xA1", "ก"},
    {932, "\x93\xFA\x96{\xB1", "日本ｱ"},
    {936, "\xD6\xD0\xB9\xFA", "中国"},
    {949, "\xC7\xD1", "한"},
    {950, "\xA4\xA4", "中"},
    {1250, "\xE8", "č"},
    {1251, "\xCF", "П"},
    {1252, "\x80\x81\x93", "€\xC2\x81“"},
    {1253, "\xE1", "α"},
    {1254, "\xFE", "ş"},
    {1255, "\xE0", "א"},
    {1256, "\xC7", "ا"},
    {1257, "\xE0", "ą"},
    {1258, "\xF0", "đ"},
    {1361, "\xD0\x65\x8B\x69", "한글"},
    {10000, "\x8A\xA5", "ä•"},
    {10001, "\x93\xFA", "日"},
    {10005, "\xE0", "א"},
    {10006, "\xE1", "α"},
    {10007, "\x8F", "П"},
    {10029, "\x8B", "č"},
    {10081, "\xDF", "ş"},
    {65001, "\xE4\xB8\xAD\xC3\xA4", "中ä"},
    {kSymbolCodePage, "\xB7 ", "\uF0B7\uF020"},
    {99999, "\xE4", "ä"},
    {932, "\x93", "\uFFFD"},
    {65001, "\xE4\xB8", "\uFFFD"},
    {1361, "\xD0", "\uFFFD"},
};
INSTANTIATE_TEST_SUITE_P(Rows, RtfCodePage, testing::ValuesIn(kRows));

TEST(RtfCharacters, FontNamesAreCleaned) {
  const std::pair<std::string, std::string> rows[] = {
      {"Arial", "Arial"},
      {" a\x19 b\u2028 \x7F ", " a b"},
      {"\xE4\x80x", "ä€x"},
      {std::string(300, 'x'), std::string(256, 'x')},
      {std::string(255, 'x') + "ä", std::string(255, 'x')},
  };
  for (const auto& [name, clean] : rows) {
    EXPECT_EQ(CleanFontName(name), clean);
    EXPECT_EQ(CleanFontName(clean), clean);
  }
}

}  // namespace
}  // namespace text::rtf
