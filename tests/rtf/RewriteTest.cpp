// Files of which all text is written again where it stood.
#include "tests/rtf/RtfTestSupport.h"
#include "text/rtfsave/RtfCanonical.h"
#include "text/rtfsave/RtfSave.h"
#include "text/rtfwrite/RtfWords.h"

#include <gtest/gtest.h>

namespace text::rtf {
namespace {

using namespace std::literals;

const std::string kProgram(kGenerator);

TEST(RtfRewrite, TextInTheWritersCodeAllElseAsItWas) {
  struct Row {
    std::string source, rewritten;
  };
  const Row rows[] = {
      {"{\\rtf1}", "{\\rtf1}"},
      {"\xEF\xBB\xBF {\\rtf1 a\nb\\par}\n\0junk"s, "{\\rtf1 a\r\nb\\par}"},
      {"{\\rtf1\\ansi caf\xE9 \\'e9\\par}", "{\\rtf1\\ansi caf\\'e9 \\'e9\\par}"},
      {"{\\rtf1{\\fonttbl{\\f0\\fcharset204 \xC0\xC1;}}\\f0\\'c0{\\b\\'c1}\\par}",
       "{\\rtf1{\\fonttbl{\\f0\\fcharset204 \\'c0\\'c1;}}\\f0\\u1040?{\\b\\u1041?}\\par}"},
      {"{\\rtf1\\ansi\\ansicpg932 \\'82\xA0 a\\par}", "{\\rtf1\\ansi\\ansicpg932 \\u12354? a\\par}"},
      {"{\\rtf1\\uc2 \\u1040\\'84\\'40\\u1041\x84\x41z\\par}", "{\\rtf1\\uc2 \\u1040??\\u1041??z\\par}"},
      {"{\\rtf1\\uc0 \\u1040 \\u8364 z\\par}", "{\\rtf1\\uc0 \\u1040\\'80z\\par}"},
      {"{\\rtf1\\uc9 a\\u1040 123456789b\\par}", "{\\rtf1\\uc9 a{\\uc1\\u1040?}b\\par}"},
      {"{\\rtf1{\\stylesheet{\\s1\\b \xDC;}}{\\*\\who {\\knows}\xE9}\\pard\\s1\\keepn\\lang1031 \\'fc\\par{\\header "
       "\xE9}}",
       "{\\rtf1{\\stylesheet{\\s1\\b \\'dc;}}{\\*\\who {\\knows}\\'e9}\\pard\\s1\\keepn\\lang1031 \\'fc\\par{\\header "
       "\\'e9}}"},
      {"{\\rtf1{\\*\\generator Other {1};}{\\field{\\*\\fldinst HYPERLINK \"http://a/\"}{\\fldrslt \x80}}\\par}",
       "{\\rtf1{\\*\\generator " + kProgram +
           ";}{\\field{\\*\\fldinst HYPERLINK \"http://a/\"}{\\fldrslt "
           "\\'80}}\\par}"},
      {"{\\rtf1 \\lquote a\\rquote\\~\\_\\-\\{\\'7d\\bullet\\par}",
       "{\\rtf1 \\lquote a\\rquote\\~\\_\\-\\{\\}\\bullet\\par}"},
      {"{\\rtf1 a\\u-10179?b\\u-8704?\\par}", "{\\rtf1 a\\u-10179?b\\u-8704?\\par}"},
      {"{\\rtf1{\\pict\\pngblip 89\nzz}\xE9{\\object\\objemb{\\*\\objdata 00}{\\result \xE8}}\\par}",
       "{\\rtf1{\\pict\\pngblip 89\r\nzz}\\'e9{\\object\\objemb{\\*\\objdata 00}{\\result \\'e8}}\\par}"},
      {"{\\rtf1\\trowd\\cellx100\\intbl \x80\\cell\\row\\pard \x99\\par}",
       "{\\rtf1\\trowd\\cellx100\\intbl \\'80\\cell\\row\\pard \\'99\\par}"},
      {"{\\rtf1\\upr{\\b A}{\\*\\ud{B}}\\chdate\\page x\\par}",
       "{\\rtf1\\upr{\\b A}{\\*\\ud{B}}\\chdate\\page x\\par}"},
      {"{\\rtf1 one{\\b two", "{\\rtf1 one{\\b two}}"},
      {"{\\rtf1 a\tb\x1F\x7F \\'e9\\par}", "{\\rtf1 a\tb\x1F\x7F \\'e9\\par}"},
      {"{\\rtf1{\\field{\\*\\fldinst SYMBOL 183 \\\\f \"Symbol\"}{\\fldrslt}}\\u8232?\\par}",
       "{\\rtf1{\\field{\\*\\fldinst SYMBOL 183 \\\\f \"Symbol\"}{\\fldrslt}}\\u8232?\\par}"},
      {"{\\rtf1\\u-10179?\\b\\u-8704?{\\u-10179?}\\i{\\u-8704?}\\'e9\\par}",
       "{\\rtf1\\u-10179?\\b\\u-8704?{\\u-10179?}\\i{\\u-8704?}\\'e9\\par}"},
      {"{\\rtf1 \\'e\\'41\\'\\'42\\b\\'e\\u67?\\par}", "{\\rtf1 \\'exA\\'xxB\\b\\'exC\\par}"},
      {"{\\rtf1{\\b a\\'}\\u65?b\\par}", "{\\rtf1{\\b a\\'}Ab\\par}"},
      {"{\\rtf1\\ansicpg65001 \\'c3\\'a9\\'e2\\'80\\'a8\\par}",
       "{\\rtf1\\ansicpg65001 \\'c3\\'a9\\'e2\\'80\\'a8\\par}"},
      {"{\\rtf1\\uc2\\u8232?\\u8364??z\\u8232?\\u32?? \\u8364??\\par}",
       "{\\rtf1\\uc2\\u8232?{}\\'80z\\u8232?\\u32?? \\'80\\par}"},
      {"{\\rtf1\\u128512\r\n\\u1041?\\par}", "{\\rtf1\\u128512\r\n{}\\u1041?\\par}"},
      {"{\\rtf1\\ansicpg932 \\'82\r\n\\u65?b\\par}", "{\\rtf1\\ansicpg932 \\'82\r\n{A}b\\par}"},
      {"{\\rtf1\\ansicpg65001 \\'f0\\'9f\\'98\\'80\\'c3\\'a9\\par}",
       "{\\rtf1\\ansicpg65001 \\u-10179?\\u-8704?\\u233?\\par}"},
      {"{\\rtf1\\ansicpg932\\uc0 \\'82\\u65 b\\par}", "{\\rtf1\\ansicpg932\\uc0 \\'82{A}b\\par}"},
      {"{\\rtf1\\ansicpg65001 \\'ff\\'41bc\\par}", "{\\rtf1\\ansicpg65001 \\'ff\\'41bc\\par}"},
      {"{\\rtf1{{\\NeXTGraphic a.tiff}\xAC}x\\par}", "{\\rtf1{{\\NeXTGraphic a.tiff}\\'ac}x\\par}"},
      {"{\\rtf1{\\header\\u1040\\\xE9x\\par}y\\par}", "{\\rtf1{\\header\\u1040\\!x\\par}y\\par}"},
  };
  for (const Row& row : rows) {
    const ReadResult read = ReadNew(row.source);
    const Saved saved = Rewrite(read.content, read.properties);
    ASSERT_EQ(saved.as, SavedAs::kSpliced) << row.source;
    EXPECT_EQ(*saved.bytes, row.rewritten);
  }
}

TEST(RtfRewrite, OnlyWhatWasReadAndIsTheSame) {
  const ReadResult read = ReadNew("{\\rtf1 one\\par}");
  EXPECT_EQ(Rewrite(read.content, {}).as, SavedAs::kAnew) << "no source";
  const Content edited = read.content.WithReplaced({Units(0), Units(1)}, Content(read.content.store()));
  EXPECT_EQ(Rewrite(edited, read.properties).as, SavedAs::kAnew);
}

TEST(RtfRewrite, Canonical) {
  const std::pair<std::string, std::string> rows[] = {
      {"{\\rtf1\\b\0a\\i\0-1 \0\\b0\0 }"s, "{\\rtf1\\b a\\i -1 \\b0  }"},
      {"{\\rtf1\r\n\ra\n\nb}", "{\\rtf1\r\n\r\na\r\n\r\nb}"},
      {"{\\rtf1 \\'e\xE9\\'\0\0\\\xE9\\\0z}"s, "{\\rtf1 \\'ex\\'xx\\!\\!z}"},
      {"{\\rtf1{\\pict\\bin4 \xFF}\\z}}x", "{\\rtf1{\\pict\\bin4 \xFF}\\z}}"},
      {"{\\rtf1{\\pict\\bin2147483647 ab}}", "{\\rtf1{\\pict\\bin4 ab}}}}"},
      {"{\\rtf1{\\pict\\bin-3 ab}}", "{\\rtf1{\\pict\\bin0 ab}}"},
      {"{\\rtf1{\\a{\\*\\generator x;}}{\\generator y}{\\*\\z\\generator}}",
       "{\\rtf1{\\a{\\*\\generator x;}}{\\generator " + kProgram + ";}{\\*\\z\\generator}}"},
      {"{\\rtf1 a\\", "{\\rtf1 a}"},
      {"{\\rtf1{generator\\b x}}", "{\\rtf1{generator\\b x}}"},
  };
  for (const auto& [source, canonical] : rows) {
    EXPECT_EQ(Canonical(source), canonical);
    EXPECT_EQ(Canonical(canonical), canonical);
  }
}

}  // namespace
}  // namespace text::rtf
