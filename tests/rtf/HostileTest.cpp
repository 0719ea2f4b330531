// Files cut short and files made to do harm: nothing crashes, and the text that is there is read and can be rewritten.
#include "tests/rtf/RtfTestSupport.h"
#include "text/rtfsave/RtfSave.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace text::rtf {
namespace {

std::string Repeat(std::string_view part, size_t times) {
  std::string all;
  all.reserve(part.size() * times);
  for (size_t i = 0; i < times; ++i) all += part;
  return all;
}

std::string Numbered(size_t count, const std::function<std::string(size_t)>& part) {
  std::string all;
  for (size_t i = 0; i < count; ++i) all += part(i);
  return all;
}

// Text read must be what was read of a shorter file, and more.
TEST(RtfTruncated, KeepsTheTextBeforeTheCut) {
  const std::string files[] = {
      "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fcharset0 Arial;}{\\f1\\fcharset128 J{\\*\\falt K};}}{\\colortbl "
      ";\\red1\\green2\\blue3;}\\f0\\fs20 one \\b two\\b0\\par\\cf1 three \\'e4\\u8364?\\u-10179?\\u-8704?\\par}",
      "{\\rtf1 a\\trowd\\cellx1 b\\cell c\\cell\\row{\\field{\\*\\fldinst HYPERLINK \"x\"}{\\fldrslt link}}{\\pict "
      "\\bin3 }}}00}end\\line x\\par}",
      "{\\rtf1{\\info{\\title t}}\\pard{\\pntext\\'B7\\tab}{\\*\\pn\\pnlvlblt{\\pntxtb\\'B7}}\\fi-360\\li720 "
      "item\\par{\\upr{a}{\\*\\ud{b}}}c\\~\\-\\_\\{\\}\\\\}",
  };
  for (const std::string& file : files) {
    const std::string whole = TextOf(ReadNew(file).content);
    ASSERT_FALSE(whole.empty());
    std::string before;
    for (size_t length = 0; length <= file.size(); ++length) {
      const ReadResult result = ReadNew(file.substr(0, length));
      result.content.CheckInvariants();
      const std::string text = TextOf(result.content);
      EXPECT_EQ(result.isRtf, length == 0 || length >= 5) << length;
      if (length < 5) continue;
      // What a cut leaves behind may differ at its end: half a surrogate pair, a word that was cut to another.
      const std::string stable = before.substr(0, before.size() - std::min<size_t>(before.size(), 8));
      EXPECT_TRUE(text.starts_with(stable)) << length << ": '" << text << "' after '" << before << "'";
      before = text;
    }
    EXPECT_EQ(before, whole);
  }
}

TEST(RtfTruncated, ChangedBytesDoNoHarm) {
  const std::string file =
      "{\\rtf1\\ansi{\\fonttbl{\\f0\\fcharset0 A;}}{\\*\\listtable{\\list{\\listlevel\\levelnfc23}\\listid1}}"
      "\\ls1\\uc1 a\\u228?{\\field{\\*\\fldinst SYMBOL 65}}\\tx5\\'e4\\bin2 xx{\\upr{b}{\\*\\ud{c}}}\\par}";
  for (uint32_t seed = 1; seed <= 3000; ++seed) {
    std::mt19937 random(seed);
    std::string changed = file;
    for (uint32_t i = random() % 6; i < 6; ++i) {
      const size_t at = 5 + random() % (changed.size() - 5);
      if (random() % 3 == 0) {
        changed.erase(at, random() % 8);
        changed.resize(std::max<size_t>(changed.size(), 8), '}');
      } else {
        changed[at] = "{}\\'*0 a"[random() % 8];
      }
    }
    const ReadResult result = ReadNew(changed);
    result.content.CheckInvariants();
    const std::string written = Written(result);
    ASSERT_EQ(Written(ReadNew(written)), written) << "seed " << seed;
  }
}

// A definition that thousands of rows share is not written for each of them.
TEST(RtfHostile, WideRowsOfFewCellsDoNotGrow) {
  const std::string file = "{\\rtf1\\trowd" +
                           Numbered(1000, [](size_t i) { return "\\cellx" + std::to_string(i * 10 + 10); }) +
                           Repeat("\\intbl a\\cell\\row ", 2000) + "}";
  const ReadResult read = ReadNew(file);
  const std::string written = Written(read.content, read.properties);
  EXPECT_LT(written.size(), 3 * file.size());
  EXPECT_EQ(Describe(ReadNew(written).content), Describe(read.content));
}

struct HostileRow {
  const char* name;
  std::function<std::string()> file;
  std::string text;
  bool limited = false;
};

void PrintTo(const HostileRow& row, std::ostream* out) {
  *out << row.name;
}

class RtfHostile : public testing::TestWithParam<HostileRow> {};

TEST_P(RtfHostile, IsReadAsFarAsItMakesSense) {
  const ReadResult result = ReadNew(GetParam().file());
  EXPECT_TRUE(result.isRtf);
  EXPECT_EQ(result.limited, GetParam().limited);
  const std::string text = PlainLines(result.content);
  if (text.size() < 10000) {
    EXPECT_EQ(text, GetParam().text);
  } else {
    EXPECT_TRUE(text == GetParam().text) << text.size() << " bytes instead of " << GetParam().text.size();
  }
  const Saved saved = Rewrite(result.content, result.properties);
  ASSERT_TRUE(saved.bytes);
  EXPECT_TRUE(PlainLines(ReadNew(*saved.bytes).content) == text) << "rewritten";
}

std::string Rtf(const std::string& body) {
  return "{\\rtf1 " + body + "}";
}

const HostileRow kHostile[] = {
    {"million_groups", [] { return Rtf(Repeat("{", 1000000) + "deep" + Repeat("}", 1000000) + "end"); }, "deepend",
     true},
    {"open_groups", [] { return "{\\rtf1 a" + Repeat("{\\b ", 500000) + "b"; }, "ab", true},
    {"only_closing", [] { return "{\\rtf1 a" + Repeat("}", 1000000) + "b"; }, "a"},
    {"deep_skipped", [] { return Rtf("{\\*\\unknown" + Repeat("{", 1000000) + Repeat("}", 1000000) + "x}end"); },
     "end"},
    {"skipped_past_depth",
     [] { return Rtf(Repeat("{", 100010) + "{\\*\\x a}{\\pict 00}b\\b c" + Repeat("}", 100010) + "end"); }, "bcend",
     true},
    {"bin_huge", [] { return Rtf("a\\bin2147483647 b}c"); }, "a"},
    {"bin_negative", [] { return Rtf("a\\bin-5 b"); }, "ab"},
    {"bin_overflow", [] { return Rtf("a\\bin99999999999999999999 b"); }, "ab"},
    {"bin_in_skipped", [] { return Rtf("a{\\*\\x\\bin2147483647 b}c}d"); }, "a"},
    {"many_colors", [] { return Rtf("{\\colortbl" + Repeat("\\red1\\green2\\blue3;", 500000) + "}\\cf499999 a"); }, "a",
     true},
    {"many_tabs", [] { return Rtf(Numbered(100000, [](size_t i) { return "\\tx" + std::to_string(i); }) + " a"); }, "a",
     true},
    {"many_tabs_in_groups", [] { return Rtf(Repeat("\\tx1\\tx2{\\tx3\\tx4}", 100000) + "a"); }, "a"},
    {"many_fonts",
     [] {
       return Rtf("{\\fonttbl" +
                  Numbered(32761,
                           [](size_t i) {
                             return "{\\f" + std::to_string(i) + "\\fcharset" + std::to_string(i % 300) + " F;}";
                           }) +
                  "}\\f32760 a");
     },
     "a"},
    {"too_many_fonts",
     [] {
       return Rtf("{\\fonttbl" + Numbered(40000, [](size_t i) { return "{\\f" + std::to_string(i) + " F;}"; }) +
                  "}\\f39999 a");
     },
     "a", true},
    {"long_word", [] { return Rtf("a\\" + std::string(1 << 20, 'w') + " b"); }, "ab"},
    {"long_number", [] { return Rtf("a\\fs" + std::string(1 << 20, '9') + " b"); }, "ab"},
    {"deep_fields",
     [] { return Rtf(Repeat("{\\field{\\*\\fldinst X}{\\fldrslt ", 30000) + "a" + Repeat("}}", 30000) + "b"); }, "ab"},
    {"fields_in_instructions",
     [] { return Rtf(Repeat("{\\field{\\*\\fldinst ", 30000) + "a" + Repeat("}{\\fldrslt b}}", 30000)); }, "b"},
    {"deep_alternatives", [] { return Rtf(Repeat("{\\upr{a}{\\*\\ud{", 20000) + "b" + Repeat("}}}", 20000)); }, "b"},
    {"many_cells", [] { return Rtf("\\trowd " + Repeat("x\\cell ", 50000) + "\\row"); },
     Repeat("x\t", 1024) + Repeat("x\n", 48976) + "\n"},
    {"empty_cells", [] { return Rtf(Repeat("\\cell", 300000) + " a"); },
     Repeat("\t", 1023) + Repeat("\n", 300000 - 1023) + "a"},
    {"list_levels",
     [] { return Rtf("{\\*\\listtable{\\list" + Repeat("{\\listlevel\\levelnfc23}", 100000) + "\\listid1}}a"); }, "a",
     true},
    {"shape_properties", [] { return Rtf("{\\*\\shpinst" + Repeat("{\\sp{\\sn n}{\\sv v}}", 20000) + "}a"); }, "a"},
    {"deep_objects", [] { return Rtf(Repeat("{\\object{\\result ", 30000) + "a" + Repeat("}}", 30000) + "b"); }, "ab"},
    {"deep_notes", [] { return Rtf(Repeat("{\\footnote ", 50000) + "a" + Repeat("}", 50000) + "b"); }, "b"},
    {"nested_rows",
     [] {
       return Rtf(Numbered(2000, [](size_t i) { return "\\intbl\\itap" + std::to_string(i) + " x\\nestcell "; }) + "y");
     },
     "x\tx\tx\n" + Repeat("x\n", 29) + Repeat("x\t", 1023) + Repeat("x\n", 945) + "y"},
    {"growing_definitions",
     [] { return Rtf("\\trowd" + Repeat("\\clbrdrt\\brdrs\\cellx9\\intbl x\\cell", 20000) + "\\row"); },
     Repeat("x\t", 1024) + Repeat("x\n", 18976) + "\n"},
    {"row_per_edge", [] { return Rtf("\\trowd" + Repeat("\\cellx9\\row", 50000)); }, Repeat("\n", 50000)},
    {"long_picture", [] { return Rtf("a{\\pict " + std::string(8 << 20, '0') + "}b"); }, "ab"},
    {"picture_of_a_billion_pixels", [] { return Rtf("{\\pict 89504e470d0a1a0a0000000d494844527fffffff7fffffff}b"); },
     "b", true},
    {"many_lists",
     [] {
       return Rtf("{\\*\\listtable" +
                  Numbered(30000, [](size_t i) { return "{\\list{\\listlevel}\\listid" + std::to_string(i) + "}"; }) +
                  "}" + Repeat("\\ls7\\ilvl3 a\\par", 1000));
     },
     Repeat("a\n", 999) + "a"},
    {"upr_tables", [] { return Rtf(Repeat("{\\upr{\\fonttbl{\\f0 A;}}{\\*\\ud{\\fonttbl{\\f0 B;}}}}x", 20000)); },
     Repeat("x", 20000)},
    {"font_table_per_character", [] { return Rtf(Repeat("{", 50000) + Repeat("{\\fonttbl{\\f0 A;}}x", 50000)); },
     Repeat("x", 50000)},
    {"letters_in_codes", [] { return Rtf(Repeat("a\\'61", 200000)); }, Repeat("a", 400000)},
    {"numbers_in_codes", [] { return Rtf(Repeat("12\\u51?", 200000)); }, Repeat("123", 200000)},
    {"lines_behind_half_a_character",
     [] { return Rtf("\\u128512" + Repeat("\r\n", 500000) + Repeat("\\u65?\\b ", 100000)); },
     "\U0001F600" + Repeat("A", 100000)},
    {"lead_bytes", [] { return Rtf("\\ansicpg932 " + Repeat("\\'81", 200001)); }, Repeat("＝", 100000) + "\uFFFD"},
    {"styles_on_each_other",
     [] {
       return Rtf("{\\stylesheet" +
                  Numbered(40000,
                           [](size_t i) {
                             return "{\\s" + std::to_string(i) + "\\sbasedon" + std::to_string(i + 1) + "\\b F;}";
                           }) +
                  "}" + Numbered(40000, [](size_t i) { return "\\s" + std::to_string(i) + " a"; }));
     },
     Repeat("a", 40000), true},
    {"lines_behind_a_row", [] { return Rtf("\\trowd" + Repeat("\\cellx9", 1024) + Repeat("\\brdrs\\row", 20000)); },
     Repeat("\n", 20000)},
    {"descriptions",
     [] { return Rtf(Repeat("{\\shp{\\sp{\\sn pib}{\\sv{\\pict}}}", 20000) + Repeat("}", 20000) + "a"); }, "a"},
};
INSTANTIATE_TEST_SUITE_P(Files, RtfHostile, testing::ValuesIn(kHostile),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace text::rtf
