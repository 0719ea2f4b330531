// Documents and their written form, checked in both directions.
#include "tests/rtf/RtfTestSupport.h"
#include "text/rtfsave/RtfSave.h"
#include "text/rtfwrite/RtfWrite.h"

#include <gtest/gtest.h>

namespace text::rtf {
namespace {

struct Row {
  std::string document;  // as Describe gives it
  std::string body;      // of the file, without the closing brace
  std::string fonts = "{\\f0\\fnil\\fcharset1 ;}";
  std::string colors = {};
};

std::string FileOf(const Row& row) {
  std::string file = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\nouicompat{\\fonttbl" + row.fonts + "}\r\n";
  if (!row.colors.empty()) file += "{\\colortbl ;" + row.colors + "}\r\n";
  return file + "{\\*\\generator Quillmark 0.1.0;}\\viewkind4\\uc1\r\n" + row.body + "}\r\n";
}

class RtfRows : public testing::TestWithParam<Row> {};

TEST_P(RtfRows, ReadAndWrite) {
  const ReadResult result = ReadNew(FileOf(GetParam()));
  EXPECT_EQ(Describe(result.content), GetParam().document);
  EXPECT_EQ(Written(result), FileOf(GetParam()));
  EXPECT_FALSE(result.limited);
}

const std::string kPard = "\\pard\\f0\\fs24";
const std::string kArial = "{\\f0\\fswiss\\fcharset0 Arial;}";

const Row kRows[] = {
    // Paragraphs
    {"", "\\pard\\par\r\n"},
    {"one", kPard + " one\\par\r\n"},
    {"one\n", kPard + " one\\par\r\n\\par\r\n"},
    {"one\ntwo", kPard + " one\\par\r\ntwo\\par\r\n"},
    {"\n\n", kPard + "\\par\r\n\\par\r\n\\par\r\n"},
    // Characters
    {"<b>x<> y", "\\pard\\b\\f0\\fs24 x\\b0  y\\par\r\n"},
    {"<b i ul strike prot v>x", "\\pard\\b\\i\\ul\\strike\\protect\\v\\f0\\fs24 x\\par\r\n"},
    {"a<ul>b<>c", kPard + " a\\ul b\\ulnone c\\par\r\n"},
    {"a<fs13>1", kPard + " a\\fs13 1\\par\r\n"},
    {"<up60>a<up-40>b<>c", kPard + "\\up6 a\\dn4 b\\up0 c\\par\r\n"},
    {"<cf0000ff>red<cf000000>black<>auto", kPard + "\\cf1 red\\cf2 black\\cf0 auto\\par\r\n",
     "{\\f0\\fnil\\fcharset1 ;}", "\\red255\\green0\\blue0;\\red0\\green0\\blue0;"},
    {"<bg00ffff>mark<>x", kPard + "\\highlight1 mark\\highlight0 x\\par\r\n", "{\\f0\\fnil\\fcharset1 ;}",
     "\\red255\\green255\\blue0;"},
    {"<Arial/0/2>a<Courier/0/3>b", kPard + " a\\f1 b\\par\r\n", kArial + "{\\f1\\fmodern\\fcharset0 Courier;}"},
    {"<a;b ä/0/0>x", kPard + " x\\par\r\n", "{\\f0\\fnil\\fcharset0 a\\'3bb \\u228?;}"},
    // The character format of a break stays its own.
    {"a<b>\n<>b", kPard + " a\\b\\par\r\n\\b0 b\\par\r\n"},
    // Text
    {"a\\{b}", kPard + " a\\\\\\{b\\}\\par\r\n"},
    {"-1 ", kPard + " -1 \\par\r\n"},
    {"a\tb", kPard + " a\\tab b\\par\r\n"},
    {"a\t\\", kPard + " a\\tab\\\\\\par\r\n"},
    {"a\u2028b", kPard + " a\\line b\\par\r\n"},
    {"a\fb", kPard + " a\\page b\\par\r\n"},
    {"\u00A0\u2011\u00AD", kPard + "\\~\\_\\-\\par\r\n"},
    {"ä€\u0081", kPard + "\\'e4\\'80\\'81\\par\r\n"},
    {"Ωﬀ", kPard + "\\u937?\\u-1280?\\par\r\n"},
    {"a😀1", kPard + " a\\u-10179?\\u-8704?1\\par\r\n"},
    {"\x01\x7F", kPard + "\\'01\\u127?\\par\r\n"},
    {"<Symbol/2/0>\uF0B7a", kPard + "\\'b7a\\par\r\n", "{\\f0\\fnil\\fcharset2 Symbol;}"},
    {"<Times CE/238/1>č", kPard + "\\u269?\\par\r\n", "{\\f0\\froman\\fcharset238 Times CE;}"},
    // Paragraph formats
    {"a\n[center]b\n[right]c$[justify]", "\\pard\\qc\\f0\\fs24 a\\par\r\n\\pard\\qr b\\par\r\n\\pard\\qj c\\par\r\n"},
    {"a$[fi-360 li720 ri100]", "\\pard\\fi-360\\li720\\ri100\\f0\\fs24 a\\par\r\n"},
    {"a$[sb120 sa240 slm276]", "\\pard\\sb120\\sa240\\sl276\\slmult1\\f0\\fs24 a\\par\r\n"},
    {"a$[sl-240]", "\\pard\\sl-240\\slmult0\\f0\\fs24 a\\par\r\n"},
    {"a$[box10/15/80/0000ff/00ffff]",
     "\\pard\\brdrt\\brdrs\\brdrw15\\brsp80\\brdrcf1\\brdrb\\brdrs\\brdrw15\\brsp80\\brdrcf1\\cbpat2\\f0\\fs24 "
     "a\\par\r\n",
     "{\\f0\\fnil\\fcharset1 ;}", "\\red255\\green0\\blue0;\\red255\\green255\\blue0;"},
    {"a$[rtl]", "\\pard\\rtlpar\\f0\\fs24 a\\par\r\n"},
    {"a\tb$[tx720 tx1440]", "\\pard\\tx720\\tx1440\\f0\\fs24 a\\tab b\\par\r\n"},
    {"a\n[bullet fi-360 li720]b\n[bullet fi-360 li720]c",
     "\\pard{\\pntext\\f1\\'B7\\tab}{\\*\\pn\\pnlvlblt\\pnf1\\pnindent0{\\pntxtb\\'B7}}\\fi-360\\li720\\f0\\fs24 "
     "a\\par\r\n{\\pntext\\f1\\'B7\\tab}b\\par\r\n\\pard c\\par\r\n",
     "{\\f0\\fnil\\fcharset1 ;}{\\f1\\fnil\\fcharset2 Symbol;}"},
};
INSTANTIATE_TEST_SUITE_P(Rows, RtfRows, testing::ValuesIn(kRows));

TEST(RtfWriter, StrayBytesBecomeTheCharactersTheyMostLikelyWere) {
  ContentBuilder builder(NewStore());
  builder.Append("a\xE4\x80 \xF0\x9F");
  EXPECT_EQ(TextOf(ReadNew(Written(builder.Finish())).content), "aä€ ðŸ");
}

TEST(RtfWriter, EveryBreakSpellingIsAParagraph) {
  ContentBuilder builder(NewStore());
  builder.Append("a\nb\rc\r\n\rd");
  EXPECT_EQ(TextOf(ReadNew(Written(builder.Finish())).content), "a\r\nb\r\nc\r\n\r\nd");
}

TEST(RtfWriter, NulIsLeftOut) {
  ContentBuilder builder(NewStore());
  builder.Append(std::string_view("a\0b\0", 4));
  const std::string written = Written(builder.Finish());
  EXPECT_EQ(written.find("\\u0"), std::string::npos) << written;
  EXPECT_EQ(TextOf(ReadNew(written).content), "ab");
}

TEST(RtfWriter, FormatsThatAreWrittenAlikeAreOne) {
  const auto store = NewStore();
  FormatTable& formats = store->formats();
  ContentBuilder builder(store);
  for (const int32_t twips : {2'000'000, 3'000'000, 1'000'000}) {
    ParaFormat paragraph;
    paragraph.leftIndent = twips;
    CharFormat chars;
    chars.offset = 60 + twips / 1'000'000;
    chars.color.rgb = twips == 1'000'000 ? 0x000102 : 0x01000102;
    chars.font = formats.Intern(Font{twips == 1'000'000 ? "A" : "A ", 0, 0});
    builder.Append("x\r\n", formats.Intern(chars), formats.Intern(paragraph));
  }
  const std::string written = Written(builder.Finish());
  EXPECT_NE(written.find("\\pard\\li1000000\\f1\\fs24\\cf1\\up6 x\\par\r\nx\\par\r\nx\\par\r\n"), std::string::npos)
      << written;
  EXPECT_EQ(Written(ReadNew(written)), written);
}

TEST(RtfWriter, StopsWhenTheSinkRefuses) {
  ContentBuilder builder(NewStore());
  for (int i = 0; i < 1000; ++i) builder.Append(std::string(999, 'x') + "\r\n");
  const Content content = builder.Finish();
  for (const int accepted : {0, 1, 5}) {
    int calls = 0;
    EXPECT_FALSE(Write(content, {}, [&](std::string_view) { return calls++ < accepted; }));
    EXPECT_EQ(calls, accepted + 1);
  }
}

TEST(RtfWriter, GathersNoMoreAfterARefusal) {
  ContentBuilder builder(NewStore());
  builder.Append(std::string(16 << 20, 'x'));
  const Content content = builder.Finish();
  largestNew = 0;
  EXPECT_FALSE(Write(content, {}, [](std::string_view) { return false; }));
  EXPECT_LE(largestNew, size_t{512} << 10);
}

TEST(RtfWriter, SendsInModeratePieces) {
  ContentBuilder builder(NewStore());
  builder.Append(std::string(1 << 20, 'x'));
  for (int i = 0; i < 50000; ++i) builder.Append("\\ä\t");
  size_t total = 0, largest = 0;
  EXPECT_TRUE(Write(builder.Finish(), {}, [&](std::string_view part) {
    total += part.size();
    largest = std::max(largest, part.size());
    return true;
  }));
  EXPECT_GT(total, size_t{1} << 20);
  EXPECT_LE(largest, size_t{256} << 10);
}

TEST(RtfWriter, DocumentPropertiesComeBack) {
  const std::string file =
      "{\\rtf1\\ansi\\ansicpg1251\\deff1\\deflang1049{\\fonttbl{\\f0 A;}{\\f1 B;}}{\\info{\\title \xCF}{\\author "
      "x}}{\\*\\userprops {\\propname p}}\\paperw11906\\margl1000\\deftab500\\landscape text\\par}";
  const ReadResult first = ReadNew(file);
  const std::string written = Written(first);
  EXPECT_NE(written.find("{\\info{\\title \\'cf}{\\author x}}{\\*\\userprops {\\propname p}}"), std::string::npos);
  const ReadResult second = ReadNew(written);
  EXPECT_EQ(second.properties.codePage, 1251);
  EXPECT_EQ(second.properties.defaultTab, 500);
  EXPECT_EQ(second.properties.defaultLanguage, 1049);
  EXPECT_EQ(second.properties.headerWords, "\\paperw11906\\margl1000\\landscape");
  EXPECT_EQ(second.content.formats()[second.properties.defaultFont].name, "B");
  EXPECT_EQ(Written(second), written);
}

TEST(RtfWriter, TakesWhatTheFileItWasReadFromHas) {
  const std::pair<std::string, std::string> rows[] = {
      {"{\\fonttbl{\\f3 A;}{\\f7 B;}}{\\colortbl;;\\red9;}{\\header\\s1\\f7\\cf2 h\\par}{\\*\\x{\\header i}}{\\header "
       "j}x",
       "{\\header\\f1\\cf1 h\\par}\r\n\\pard"},
      {"{\\fonttbl{\\f7 B;}}x\\chftn{\\footnote\\f7{\\b y}}", "x\\chftn{\\footnote\\f1{\\b y}}"},
      {"\\uc2{\\info{\\title\\u8364??}}{\\header\\u8364??h}x", "\\uc2{\\info{\\title\\u8364??}}\\uc1 "},
      {"\\uc2{\\info{\\title\\u8364??}}{\\header\\u8364??h}x", "\\uc2{\\header\\u8364??h}\\uc1"},
      {"\\uc2 x\\chftn{\\footnote\\u12486\\'83\\'65}y", "x\\uc2\\chftn{\\footnote\\u12486\\'83\\'65}\\uc1 y"},
      // Other programs leave a table in a table with its row.
      {"\\trowd\\cellx9\\itap2 a\\nestcell "
       "b\\nestcell{\\*\\nesttableprops\\trowd\\cellx5\\cellx7\\nestrow}c\\nestcell{\\*"
       "\\nesttableprops\\trowd\\cellx5\\nestrow}\\itap1\\cell\\row",
       "\\nestrow}{\\nonesttables\\par}\r\n\\pard\\intbl\\itap2 c\\nestcell"},
      // A paragraph's border is none of its row's.
      {"\\trowd\\cellx9\\pard\\intbl\\brdrl\\brdrs a\\cell\\row", "\\trowd\\cellx9\\pard"},
      {"\\trowd\\clx\\brdrt\\brdrs\\brdrw9\\cellx9\\pard\\intbl a\\cell\\row", "\\trowd\\clx\\cellx9\\pard"},
      {"\\trowd\\cellx9\\chftn{\\footnote n}\\cell\\row", "\\pard\\intbl\\f0\\fs24\\chftn{\\footnote n}\\cell"},
      // The text's font comes before the label's, wherever the link and the paragraph end.
      {"{\\fonttbl{\\f1 e;}{\\f2 b;}}\\f1{\\field{\\fldinst HYPERLINK#}{\\fldrslt{\\pn\\pnlvl\\pnf2} \\u10?i}}",
       "{\\f1\\fnil\\fcharset1 e;}{\\f2\\fnil\\fcharset1 b;}"},
      // They number these lists themselves.
      {"{\\*\\listtable{\\list{\\listlevel\\levelnfc0{\\leveltext\\'01\\'00;}}\\listid7}}{\\*\\listoverridetable{"
       "\\listoverride\\listid7\\ls1}}{\\*\\pn\\pnlvlblt}x\\par\\pard\\ls1 y",
       "\\ls101\\ilvl0"},
  };
  for (const auto& [read, written] : rows) {
    const ReadResult result = ReadNew("{\\rtf1" + read + "}");
    const std::string anew = Written(result.content, result.properties);
    EXPECT_NE(anew.find(written), std::string::npos) << anew;
    const ReadResult again = ReadNew(anew);
    EXPECT_EQ(Written(again.content, again.properties), anew);
  }
}

TEST(RtfWriter, KeptGroupsStaySound) {
  const std::pair<std::string, std::string> rows[] = {
      {std::string("{\\info\0tle}", 11), "{\\info\ntle}"},
      {"{\\info \xE4\\\xE4\\'\xE4}", "{\\info \\'e4\\\\'e4\\'\\'e4}"},
      {"{\\info\\bin1 }}", ""},  // raw data cannot be written in 7 bits
      {"{\\info", ""},
  };
  for (const auto& [read, kept] : rows) {
    const ReadResult result = ReadNew("{\\rtf1" + read + (kept.empty() ? "" : "a}"));
    const std::string written = Written(result);
    EXPECT_EQ(written.find("\\info") != std::string::npos, !kept.empty()) << written;
    EXPECT_NE(written.find(kept), std::string::npos) << written;
    EXPECT_EQ(Written(ReadNew(written)), written);
  }
}

struct FragmentRow {
  std::string document;  // read back as a fragment, after being written as one
  int64_t begin, end;
};

TEST(RtfFragments, CloseOnlyParagraphsWhoseBreakIsInside) {
  const auto store = NewStore();
  const ReadResult whole =
      Read(std::string("{\\rtf1 one\\par\\pard\\qc two {\\b bold}\\par\\pard{\\*\\pn\\pnlvlblt}three}"), store);
  ASSERT_EQ(Describe(whole.content), "one\ntwo <b>bold<>\n[center]three$[bullet]");
  const FragmentRow rows[] = {
      {"", 0, 0},
      {"one", 0, 3},
      {"one\n", 0, 4},
      {"ne\ntw$[center]", 1, 6},
      {"<b>ol$[center]", 9, 11},
      {"<b>d<>\n[center]th$[bullet]", 11, 15},
  };
  for (const FragmentRow& row : rows) {
    const std::string fragment = WriteFragment(whole.content, {Units(row.begin), Units(row.end)}, {});
    EXPECT_EQ(Describe(ReadFragment(fragment, NewStore()).content), row.document) << fragment;
  }
}

}  // namespace
}  // namespace text::rtf
