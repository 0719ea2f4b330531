// What files of other writers, good and bad, are read as.
#include "tests/rtf/RtfTestSupport.h"

#include <gtest/gtest.h>

namespace text::rtf {
namespace {

struct Row {
  std::string rtf;       // inside "{\rtf1" and "}"
  std::string document;  // as Describe gives it
};

class RtfReading : public testing::TestWithParam<Row> {};

TEST_P(RtfReading, Gives) {
  const ReadResult result = ReadNew("{\\rtf1" + GetParam().rtf + "}");
  ASSERT_TRUE(result.isRtf);
  EXPECT_EQ(Describe(result.content), GetParam().document) << GetParam().rtf;
  result.content.CheckInvariants();
  EXPECT_EQ(ReadAgain(result), "") << GetParam().rtf;
  const std::string written = Written(result);
  const ReadResult again = ReadNew(written);
  EXPECT_EQ(Describe(again.content), GetParam().document) << written;
  EXPECT_EQ(Written(again), written) << GetParam().rtf;
}

const std::string kFonts =
    "\\deff0{\\fonttbl{\\f0\\fcharset0 A;}{\\f1\\fcharset128 J;}{\\f2\\fcharset2 S;}{\\f3\\fcharset1\\cpg65001 "
    "U;}{\\f4\\fcharset130 K;}}";

const Row kCharacters[] = {
    {" x", "x"},
    {"\\par", ""},
    {"\\par\\par", "\n"},
    {" a\\\r\nb\\\nc", "a\nb\nc"},
    {" \\'0da\\'0ab", "\na\nb"},
    {" a\\'00b\\'09c", "ab\tc"},
    {" a\\u0?b\\u0 ?c", "abc"},
    {" a\\sect b", "a\nb"},
    {" \\lquote\\rdblquote\\emdash\\bullet\\zwj", "‘”—•\u200D"},
    {" a\\unknown\\unknown5 b\\unknown c",
     "ab"
     "c"},
    {" \\'e4\xF6\\'80", "äö€"},
    {"\\ansicpg1251 \\'e4", "д"},
    {"\\mac \\'8a", "ä"},
    {"\\pc \\'81", "ü"},
    {"\\mac\\ansicpg1250 \\'e8", "č"},
    {"\\u228?\\u-3913?x", "ä\uF0B7x"},
    {"\\u65000?", "\uFDE8"},
    {"\\u128512?", "😀"},
    {"\\u-10179?\\u-8704?", "😀"},
    {"\\u-10179?\\uc1\\u-8704?", "😀"},
    {"\\u-10179?x", "\uFFFDx"},
    {"\\u-8704?", "\uFFFD"},
    {"\\u-10179?", "\uFFFD"},
    {"\\u-10179?\\u-10179?\\u-8704?", "\uFFFD😀"},
    {"\\u-99999?x", "\uFFFDx"},
    {"{\\u-10179?}{\\u-8704?}", "😀"},
    {"\\u-10179?{\\* gone}x", "\uFFFDx"},
    {"\\u-10179?{\\fonttbl{\\f5 \\u-8704?;}}x", "\uFFFDx"},
    {"{\\fonttbl{\\f5 A\\u-10240?;}}x", "x"},
    {"{\\upr{\\u-10240?}{\\*\\ud{n}}}x", "nx"},
    {"\\uc0\\u228 x", "äx"},
    {"\\uc2\\u228\\'e4\\'e4x", "äx"},
    {"\\uc2\\u228 abc", "äc"},
    {"{\\uc2\\u228 ab}\\u228 bc", "ääc"},
    {"\\u228\\~x", "äx"},
    {"\\u8212\\emdash x", "—x"},
    {"\\u228{?}x", "ä?x"},
    {"\\u228\\par x", "ä\nx"},
    {"\\u228\\u246?", "äö"},
    {"\\u228\\bin3 {}}x", "äx"},
    {"\\upr{old}", "old"},
    {"{\\upr{old}{\\*\\ud{n\\u228?w}}} x", "näw x"},
    {"{\\*\\ud{x}}", "x"},
    {"{\\htmlrtf b\\htmlrtf0 c}", "bc"},
};

const Row kFormats[] = {
    {" a{\\b b{\\i c}d}e", "a<b>b<b i>c<b>d<>e"},
    {"\\b1 a\\b0 b", "<b>a<>b"},
    {"\\b\\i\\plain a", "a"},
    {"\\ul0 a\\uldb b\\ulnone c", "a<ul>b<>c"},
    {"\\striked1 a\\striked0 b", "<strike>a<>b"},
    {"\\fs0 a\\fs-4 b\\fs99999 c", "ab<fs3276>c"},
    {"\\up a\\up0 b\\dn c\\dn4 d", "<up60>a<>b<up-60>c<up-40>d"},
    {"\\super a\\nosupersub b\\sub c\\sub0 d", "<fs16 up80>a<>b<fs16 up-40>c<>d"},
    {"{\\colortbl;\\red255;\\blue7\\green1;}\\cf1 a\\cf2 b\\cf9 c\\cf-1 d\\cf0 e", "<cf0000ff>a<cf070100>b<>cde"},
    {"{\\colortbl\\red1;\\red2;}\\cf0 a\\highlight0 b\\highlight1 c", "<cf000001>ab<cf000001 bg000002>c"},
    {"{\\colortbl ;\\red300\\green-1;}\\cf1 a", "<cf0000ff>a"},
    {kFonts + "\\f0 a\\f7 b\\plain c", "<A/0/0>abc"},
    {"{\\fonttbl\\f0\\fswiss A;\\f1\\froman B{\\*\\falt C};}\\f1 a", "<B/1/1>a"},
    {"{\\fonttbl{\\f1 B}}\\deff1 a", "<B/1/0>a"},
    {"{\\fonttbl{\\f1 B\\u-10240?}{\\f2 C;}}\\f1 a\\f2 b", "<B\uFFFD/1/0>a<C/1/0>b"},
    {"{\\fonttbl\\f1 B\\u-10240?;\\f2 C\\u-10240?D;}\\f1 a\\f2 b", "<B\uFFFD/1/0>a<C\uFFFDD/1/0>b"},
    {"\\f3 a{\\fonttbl{\\f3 L;}}b", "a<L/1/0>b"},
    {kFonts + "\\f1 \\'93\\'fa\\'96{\\b x}", "<J/128/0>日\uFFFD<b J/128/0>x"},
    {kFonts + "\\f1 \\'83A\\'83\r\nA\\'b1", "<J/128/0>アアｱ"},
    {kFonts + "\\f1 \\'93\\par\\'93\\'0dx", "<J/128/0>\uFFFD\n\uFFFD\nx"},
    {kFonts + "\\f2 \\'b7a\\'61", "<S/2/0>\uF0B7a\uF061"},
    {kFonts + "\\f3 \\'e4\\'b8\\'ad\xC3\xA4", "<U/1/0>中ä"},
    {kFonts + "\\f4 \\'d0e", "<K/130/0>한"},
    {"{\\upr{\\fonttbl{\\f0 A;}}{\\*\\ud{\\fonttbl{\\f0 B;}}}}x", "<B/1/0>x"},
};

const Row kParagraphs[] = {
    {"\\qc a\\par b\\pard\\par c", "a\n[center]b\nc"},
    {"{\\qr a\\par}b", "a\n[right]b"},
    {"{\\pard\\qc a}", "a$[center]"},
    {"{\\pard\\qc a}\\par", "a"},
    {"\\li100\\fi-50\\ri7\\lin9 a", "a$[fi-50 li100 ri7]"},
    {"\\li9999999 a", "a$[li1000000]"},
    {"\\tx300\\tx100\\tx300\\tx-5 a", "a$[tx100 tx300]"},
    {"\\tx1{\\tx2 a\\par}b", "a\n[tx1 tx2]b$[tx1]"},
    {"\\tqr\\tldot\\tx3\\tx1\\tqdec\\tx2\\tx3\\tqc\\tleq\\tx4\\tqr\\tb5\\tx6 a", "a$[tx1 txd2 tx3 txc4/6 tx6]"},
    {"\\tqr\\pard\\tqc\\tx3\\tqr\\tx3\\tlul\\tx4 a", "a$[txr3 tx4/4]"},
    {"\\lin9\\rin8 a\\par\\li7 b\\par\\lin5\\rin6 c", "a\n[li9 ri8]b\n[li7 ri8]c$[li7 ri6]"},
    {"\\box\\brdrdb\\brdrw30\\brsp20\\brdrl\\brdrnil a\\par\\pard\\brdrb\\brdrw9 b\\par\\cbpat0 c",
     "a\n[box14/30/20/-/-]b\nc"},
    {"\\trowd\\clbrdrt\\brdrs\\brdrw9\\cellx1\\pard\\intbl\\brdrt\\brdrs a\\cell\\row\\pard b",
     "a||[box2/0/0/-/- row1/0/1b2]b"},
    {"\\sl240\\slmult1 a\\par\\slmult0 b", "a\n[slm240]b$[sl240]"},
    {"\\rtlpar a\\par\\ltrpar b", "a\n[rtl]b"},
    {"{\\pntext x\\tab}{\\*\\pn\\pnlvlblt\\pnf1{\\pntxtb\\'B7}}a\\par{\\pntext x}b\\par\\pard c",
     "a\n[bullet]b\n[bullet]c"},
    {"{\\pntext 1.}{\\*\\pn\\pnlvlbody\\pndec{\\pntxta.}}a", "a$[list0/0/1@1'%1.']"},
    {"{\\*\\pnseclvl1\\pndec{\\pntxta .}}a", "a"},
    {"{\\*\\listtable{\\list{\\listlevel\\levelnfc0}{\\listlevel\\levelnfc23{\\leveltext\\'01\\'b7;}}\\listid-7}}"
     "{\\*\\listoverridetable{\\listoverride\\listid-7\\listoverridecount0\\ls2}}"
     "\\ls2\\ilvl1{\\listtext x}a\\par\\ilvl0 b\\par\\ls9 c",
     "a\n[bullet]b\nc"},
};

const Row kGroups[] = {
    {"{\\info{\\title t}}{\\stylesheet{\\s1 h;}}a{\\*\\unknown{b}}{\\footnote c}d", "a<note/'c'>\uFFFC<>d"},
    {"{\\unknown a}", "a"},
    {" a\\*\\b b} c", "a"},
    {" a{b\\*\\x c}d", "abd"},
    {"{\\* a}b", "b"},
    {"{\\*}b", "b"},
    {"{\\*{a}}b", "b"},
    {"{\\*\\b a}b", "b"},
    {" a\\footnote b", "ab"},
    {"{\\pict\\pngblip 0011\\bin4 {{{{}a", "<picture>\uFFFC<>a"},
    {"{\\*\\shppict{\\pict 00}}{\\nonshppict{\\pict 11}}a", "<picture>\uFFFC<>a"},
    {"{\\object\\objemb{\\*\\objclass P}{\\*\\objdata 00}{\\result{b}}}", "b"},
    {"{\\field{\\*\\fldinst HYPERLINK \"x\"}{\\fldrslt a}}b", "<->x>a<>b"},
    {"{\\field{\\*\\fldinst PAGE}}b", "b"},
    {"{\\field{\\*\\fldinst X {\\field{\\*\\fldinst Y}{\\fldrslt q}}}{\\fldrslt a}}", "a"},
    {"{\\field{\\*\\fldinst SYMBOL 183 \\\\f \"Symbol\" \\\\s 10}{\\fldrslt}}", "<Symbol/2/0>\uF0B7"},
    {"{\\field{\\*\\fldinst SYMBOL 0x41}{\\fldrslt r}}", "r"},
    {"{\\field{\\*\\fldinst SYMBOL 65}}{\\field{\\*\\fldinst SYMBOL 128}}", "A€"},
    {"{\\field{\\*\\fldinst SYMBOL 8364 \\\\u}}", "€"},
    {"a{\\field{\\*\\fldinst SYMBOL 10 \\\\u}}b{\\field{\\*\\fldinst SYMBOL 0xD \\\\u}}\\qc c", "a\nb\nc$[center]"},
    {"{\\field{\\*\\fldinst SYMBOL \"}}x", "x"},
    {"\\trowd\\cellx1 a\\cell b\\cell\\row c", "a|[row1/0/1]b||[row1/0/1]c"},
    {"\\trowd a\\cell\\cell\\row\\row b", "a|[row1/0/4500/9000]||[row1/0/4500/9000]||[row1/0/9000]b"},
    {" a\\cell b\\par c\\cell", "a|[row1/0/4500/9000]b\n[row1/0/4500/9000]c||[row1/0/4500/9000]"},
    {"\\trowd a{\\*\\nesttableprops\\trowd}b\\nestcell c\\nestcell\\nestrow d\\cell\\row",
     "ab|[row2/0/4500/9000]c||[row2/0/4500/9000]d||[row1/0/9000]"},
    {"{{\\NeXTGraphic x.tiff }\\'ac}a\\'ac", "<picture/'x.tiff'>\uFFFC<>a¬"},
    {"{{\\NeXTGraphic x}\xAC}\xAC", "<picture/'x'>\uFFFC<>¬"},
    {"{\\NeXTGraphic x}\\par \xAC", "<picture/'x'>\uFFFC<>\n¬"},
    {"{{\\NeXTGraphic x}}{\xAC\\'ac}", "<picture/'x'>\uFFFC<>¬¬"},
    {"{\r\n\\NeXTGraphic x}\\'ac\\'ac{\\*\\NeXTGraphic y}\\'ac\\'ac", "<picture/'x'>\uFFFC<>¬<picture/'y'>\uFFFC<>¬"},
    {"{{\\NeXTGraphic x}{\\footnote n}\\'ac}b", "<picture/'x'>\uFFFC<note/'n'>\uFFFC<>¬b"},
    {"{\\list Q}{\\listlevel Q}{\\*\\leveltext\\'01\\'b7;}{\\listoverride Q}{\\lfolevel Q}{\\pntxta Q}{\\*\\pntxtb Q}x",
     "x"},
    {"{\\sv Q}{\\shp{\\*\\shpinst{\\sp{\\sn pib}{\\sv{\\pict\\pngblip 89}Q}}}}x", "<picture>\uFFFC<>x"},
    {"{\\pict{\\*\\picprop{\\sp{\\sn wzDescription\xE4}{\\sv x}}{\\sp{\\sn wzDescr\\'69ption}{\\sv "
     "\\u8364\\'80\xE4\\'e4}}}\\pngblip 89}",
     "<picture/'€ää'>\uFFFC"},
    {"\\ansicpg932\\uc2{\\pict{\\*\\picprop{\\sp{\\sn wzDescription}{\\sv "
     "\\'83\\'65\\u12473\\'83\\'58\x83\\'67\\uc1\\u12473?\\uc0\\u66 C}}}\\pngblip 89}",
     "<picture/'テストスBC'>\uFFFC"},
    {"\\ansicpg65001{\\pict{\\*\\picprop{\\sp{\\sn wzDescription}{\\sv caf\xC3\xA9\\'c3\\'a9}}}\\pngblip 89}",
     "<picture/'caféé'>\uFFFC"},
    {"{\\pict{\\*\\picprop{\\sp{\\sn wzDescription}{\\sv a\\{b\\}\\\\c\\~d\\emdash e\\u8364\\emdash\\_}}}\\pngblip 89}",
     "<picture/'a{b}\\c\u00A0d—e€\u2011'>\uFFFC"},
    {"\\ansicpg932{{\\NeXTGraphic x}\\'82\xAC\\'82\\'ac}", "<picture/'x'>\uFFFC<>ぎぎ"},
};

const Row kLinks[] = {
    {R"({\field{\*\fldinst HYPERLINK "c:\\\\temp\\\\a b" \\o "tip" \\l "m"}{\fldrslt a}})", "<->c:\\temp\\a b#m>a"},
    {R"({\field{\*\fldinst{ hyperlink }{http://x/\u228?}}{\fldrslt{\b a\plain b}}}c)",
     "<b ->http://x/ä>a<->http://x/ä>b<>c"},
    {R"({\field{\*\fldinst HYPERLINK \\l "m"}{\fldrslt a{\field{\*\fldinst PAGEREF m}{\fldrslt 1}}\par b}})",
     "<->#m>a1<>\n<->#m>b"},
    {R"({\field{\*\fldinst HYPERLINK \\h}{\fldrslt a}})", "a"},
};

const Row kLists[] = {
    {R"({\pntext 1}{\*\pn\pnlvlbody\pnucrm\pnstart3{\pntxtb (}{\pntxta )}}a\par b\par\pard c)",
     "a\n[list0/0/I@3'(%1)']b\n[list0/0/I@3'(%1)']c"},
    {R"({\fonttbl{\f1\fcharset2 Wingdings;}}{\*\pn\pnlvlblt\pnf1{\pntxtb\'a7}}a)",
     "a$[bullet list0/0/-@1'\uF0A7'Wingdings]"},
    {R"({\fonttbl{\f1\fcharset2 Wingdings;}}{\*\pn\pnlvlblt\pnf1{\pntxtb l}}a)",
     "a$[bullet list0/0/-@1'\uF06C'Wingdings]"},
    {R"({\*\pn\pnlvlcont}a)", "a"},
    {R"({\*\listtable{\list\listtemplateid1{\listlevel\levelnfc0\levelstartat4{\leveltext\'02\'00.;}{\levelnumbers\'01;}}{\listlevel\levelnfc4{\leveltext\'04\'00.\'01);}{\levelnumbers\'01\'03;}}\listid-7}}{\*\listoverridetable{\listoverride\listid-7\listoverridecount0\ls1}{\listoverride\listid-7\listoverridecount1{\lfolevel\listoverridestartat\levelstartat9}\ls2}}\ls1{\listtext 1.\tab}a\par\ilvl1 b\par\ilvl0\ls2 c\par\ilvl5 d)",
     "a\n[list-7/0/1@4'%1.'/a@1'%1.%2)']b\n[list-7/1/1@4'%1.'/a@1'%1.%2)']c\n[list-215/0/1@9'%1.'/"
     "a@1'%1.%2)']d$[list-215/1/1@9'%1.'/a@1'%1.%2)']"},
    {R"({\fonttbl{\f1\fcharset2 Wingdings;}}{\*\listtable{\list{\listlevel\levelnfc23{\leveltext\'01\u-3929 ?;}{\levelnumbers;}\f1}{\listlevel\levelnfc255{\leveltext\'00;}}\listid1}}{\*\listoverridetable{\listoverride\listid1\ls1}}\ls1 a\par\ilvl1 b)",
     "a\n[bullet list1/0/-@1'\uF0A7'Wingdings/-@1'']b"},
    {R"({\pict\pngblip\picw10\pich20\picwgoal3000\pichgoal1500\picscalex50\piccropl300\piccropb-150 89504e470d0a1a0a 0})",
     "<picture/png/1350x1650/crop1000,0,0,-1000>\uFFFC"},
    {R"({\shp{\*\shpinst\shpleft1{\sp{\sn pib}{\sv{\pict\pngblip 89504e470d0a1a0a}}}{\sp{\sn a}{\sv 1}}{\shptxt t}}{\shprslt r}})",
     "<picture/png>\uFFFC<>t"},
    {R"({\pict{\*\picprop{\sp{\sn wzName}{\sv n}}{\sp{\sn wzDescription}{\sv a\u8364?b\'e4}}}\pngblip 89504e470d0a1a0a})",
     "<picture/png/'a€bä'>\uFFFC"},
    {R"({\shp{\*\shpinst{\sp{\sn pib}{\sv{\pict\pngblip 89504e470d0a1a0a}}}{\sp{\sn wzDescription}{\sv x}}}}{\sp{\sn wzDescription}{\sv y}})",
     "<picture/png/'x'>\uFFFC"},
    {R"({\object\objemb\objw300\objh200{\*\objclass A.B}{\*\objdata 0102}{\result{\pict\pngblip\picwgoal30 89504e470d0a1a0a}}}x)",
     "<embedded/png/30x200/'A.B'>\uFFFC<>x"},
};

const std::string kStyles =
    "{\\stylesheet{\\fs30 N;}{\\s1\\b\\fs40\\li300 H;}{\\s2\\sbasedon1\\i\\tx9 S;}{\\*\\cs3\\additive\\ul "
    "C;}{\\s4\\sbasedon5\\qc;}{\\s5\\sbasedon4\\b;}{\\ts6\\b;}}\\pard";

const Row kStyled[] = {
    {kStyles + "\\s1 a\\par\\pard b", "<b fs40>a\n[li300]<>b"},
    {kStyles + "\\s1\\li300\\fs40 a\\par b\\li0\\par", "<fs40>a\n[li300]b"},
    {kStyles + "\\s1\\ul\\sb20 a\\fs20 b\\par", "<b ul fs40>a<b ul fs20>b$[li300 sb20]"},
    {kStyles + "\\s1 a{\\plain b}c\\plain d\\par\\pard\\plain\\s1\\plain e",
     "<b fs40>a<>b<b fs40>c<>d\n[li300]<b fs40>e$[li300]"},
    {kStyles + "\\s2 a{\\cs3 b}{\\cs3\\ul0 c}d", "<b i fs40>a<b i ul fs40>b<b i fs40>cd$[li300 tx9]"},
    {kStyles + "\\s4 a\\s0 b\\s6 c\\s9 d", "<b>a<fs30>b<>cd"},
    {kStyles + "\\s1\\lang9 a\\par\\pard\\s1 b", "<b fs40>a\n[li300]b$[li300]"},
    {"{\\*\\listtable{\\list{\\listlevel\\levelnfc23\\fi-9\\li70}\\listid7}}{\\*\\listoverridetable{"
     "\\listoverride\\listid7\\ls1}}"
     "\\ls1 a\\par\\li0 b\\par\\pard c",
     "a\n[bullet fi-9 li70]b\n[bullet fi-9]c"},
};

const Row kObjects[] = {
    {R"({\pict\wmetafile8\picw2540\pich1270 01000900000300000000000000000000000000})", "<picture/wmf/1440x720>\uFFFC"},
    {R"({\pict\dibitmap0\picw2\pich2 424d})", "<picture/30x30>\uFFFC"},
    {R"({\b x\pict 00}y)", "<b>x<b picture>\uFFFC<>y"},
    {R"({\object\objemb{\*\objclass A}{\*\objdata 01}{\result{\pict 00}text\par}}x)", "<picture>\uFFFC<>text\nx"},
    {R"({\object\objemb\objw300{\*\objclass A}}x)", "<embedded/300x0/'A'>\uFFFC<>x"},
    {R"(a{\super\chftn{\footnote\pard\plain{\super\chftn} N\'e4m\u8364?\par two{\footnote x}}}b)",
     "a<fs16 up80 note/'Näm€\ntwo'>\uFFFC<>b"},
};

const Row kTables[] = {
    {R"(\trowd\trleft-100\trgaph50\trrh300\trbrdrl\brdrs\trbrdrh\brdrs\clbrdrt\brdrnone\clcbpat1\cellx1000\clmrg\clvmrg\clshdng5000\cellx2000\pard\intbl\qc a\par b\cell\pard\intbl\qr c\cell\row\pard d)",
     "a\n[center row1/-100/gap50/high300/1000b9/2000b10#7f7f7f<^]b|[center "
     "row1/-100/gap50/high300/1000b9/2000b10#7f7f7f<^]c||[right row1/-100/gap50/high300/1000b9/2000b10#7f7f7f<^]d"},
    {R"(\intbl a\cell b\cell\trowd\cellx1\cellx2\row)", "a|[row1/0/1/2]b||[row1/0/1/2]"},
    {R"(\intbl a\par\pard b)", "a\nb"},
    {R"(\trowd\cellx1\intbl a\cell\pard b\par c)", "a||[row1/0/1]b\nc"},
    {R"(\trowd\cellx9\intbl\itap1 a\par\itap2 n\nestcell m\nestcell{\*\nesttableprops\trowd\cellx5\cellx6\nestrow}{\nonesttables\par}\pard\intbl\cell\row)",
     "a\n[row1/0/9]n|[row2/0/5/6]m||[row2/0/5/6]||[row1/0/9]"},
    {R"(\trowd\trgaph1\unknown7\cellx5\row\pard\cellx6\row)", "||[row1/0/gap1/5]||[row1/0/6]"},
};

INSTANTIATE_TEST_SUITE_P(Characters, RtfReading, testing::ValuesIn(kCharacters));
INSTANTIATE_TEST_SUITE_P(Formats, RtfReading, testing::ValuesIn(kFormats));
INSTANTIATE_TEST_SUITE_P(Paragraphs, RtfReading, testing::ValuesIn(kParagraphs));
INSTANTIATE_TEST_SUITE_P(Groups, RtfReading, testing::ValuesIn(kGroups));
INSTANTIATE_TEST_SUITE_P(Links, RtfReading, testing::ValuesIn(kLinks));
INSTANTIATE_TEST_SUITE_P(Lists, RtfReading, testing::ValuesIn(kLists));
INSTANTIATE_TEST_SUITE_P(Styled, RtfReading, testing::ValuesIn(kStyled));
INSTANTIATE_TEST_SUITE_P(Objects, RtfReading, testing::ValuesIn(kObjects));
INSTANTIATE_TEST_SUITE_P(Tables, RtfReading, testing::ValuesIn(kTables));

struct WholeRow {
  std::string bytes;
  bool isRtf;
  std::string text;
};

TEST(RtfReader, RecognisesRtfAndItsEnd) {
  const WholeRow rows[] = {
      {"", true, ""},
      {"{\\rtf1 a}", true, "a"},
      {"{\\rtf a}", true, "a"},
      {"{\\rtf", true, ""},
      {"{\\rtf0 a}", true, "a"},
      {"\xEF\xBB\xBF{\\rtf1 a}", true, "a"},
      {std::string(" \r\n\0{\\rtf1 a}", 13), true, "a"},
      {"{\\rtf1 a", true, "a"},
      {"{\\rtf1 a{b{\\b c", true, "abc"},
      {"{\\rtf1 a}}b}", true, "a"},
      {"{\\rtf1 a}\r\n{b}", true, "a"},
      {std::string("{\\rtf1 a}\0", 10), true, "a"},
      {"{\\rtfx a}", false, ""},
      {"\\rtf1 a", false, ""},
      {"{{\\rtf1 a}}", false, ""},
      {"{\\rt", false, ""},
      {"text", false, ""},
  };
  for (const WholeRow& row : rows) {
    const ReadResult result = ReadNew(row.bytes);
    EXPECT_EQ(result.isRtf, row.isRtf) << row.bytes;
    EXPECT_EQ(TextOf(result.content), row.text) << row.bytes;
  }
}

TEST(RtfReader, FragmentsKeepTheirClosingBreak) {
  EXPECT_EQ(Describe(ReadFragment("{\\rtf1\\qc a\\par}", NewStore()).content), "a\n[center]$[center]");
  EXPECT_EQ(Describe(ReadFragment("{\\rtf1 a}", NewStore()).content), "a");
  EXPECT_FALSE(ReadFragment("a", NewStore()).isRtf);
}

TEST(RtfReader, CanBeCancelled) {
  const std::string bytes = "{\\rtf1 " + std::string(5 << 20, 'x') + "\\par " + std::string(5 << 20, 'y') + "}";
  std::vector<int64_t> reports;
  const ReadResult whole = Read(bytes, NewStore(), [&](int64_t done) { return reports.push_back(done), true; });
  EXPECT_FALSE(whole.cancelled);
  EXPECT_FALSE(reports.empty());
  EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));
  const ReadResult cancelled = Read(bytes, NewStore(), [](int64_t) { return false; });
  EXPECT_TRUE(cancelled.cancelled);
  EXPECT_EQ(cancelled.content.size(), Units(0));
}

}  // namespace
}  // namespace text::rtf
