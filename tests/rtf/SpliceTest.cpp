// Edited documents saved into the file they were read from.
#include "tests/rtf/EditedDocument.h"

namespace text::rtf {
namespace {

using Edit = std::function<void(Edited&)>;

Edit Type(const std::string& behind, const std::string& text) {
  return [=](Edited& e) { e.Type(e.Find(behind).end, text); };
}
Edit TypeBefore(const std::string& before, const std::string& text) {
  return [=](Edited& e) { e.Type(e.Find(before).begin, text); };
}
Edit Delete(const std::string& text) {
  return [=](Edited& e) { e.Delete(text); };
}
Edit Flag(const std::string& text, CharFlag flag) {
  return [=](Edited& e) { e.Chars(text, [=](CharFormat& f) { f.flags ^= flag; }); };
}
Edit Align(const std::string& text, Alignment alignment) {
  return [=](Edited& e) { e.Paragraphs(text, [=](ParaFormat& f) { f.alignment = alignment; }); };
}

struct Row {
  const char* source;
  Edit edit;
  const char* saved;
};

void Check(const Row& row) {
  Edited edited(row.source);
  const std::string before = Describe(edited.content);
  row.edit(edited);
  ASSERT_NE(Describe(edited.content), before) << row.source << ": nothing was edited";
  EXPECT_EQ(edited.Saved(), row.saved);
}

TEST(RtfSplice, UneditedIsTheFileItself) {
  const std::string source = " {\\rtf1 {\\*\\who knows}a\\par}\n" + std::string(1, 0) + "junk";
  EXPECT_EQ(Edited(source).Saved(), source);
}

TEST(RtfSplice, Text) {
  const Row kRows[] = {
      {"{\\rtf1 Hello world\\par}", Type("Hello", " new"), "{\\rtf1 Hello new world\\par}"},
      {"{\\rtf1 Hello world\\par}", Type("world", "!"), "{\\rtf1 Hello world!\\par}"},
      {"{\\rtf1 Hello world\\par}", TypeBefore("Hello", "Oh, "), "{\\rtf1 Oh, Hello world\\par}"},
      {"{\\rtf1 Hello world}", Type("world", "!"), "{\\rtf1 Hello world!}"},
      {"{\\rtf1\\ansi}", Type("", "new"), "{\\rtf1\\ansi new}"},
      {"{\\rtf1\\pard\\b Hello\\b0  world\\par}", Type("Hello", "X"), "{\\rtf1\\pard\\b HelloX\\b0  world\\par}"},
      {"{\\rtf1 one two three\\par}", Delete("two "), "{\\rtf1 one three\\par}"},
      {"{\\rtf1 one{\\*\\x y}\\b two\\b0  three\\par}", Delete("two "), "{\\rtf1 one{\\*\\x y}\\b \\b0 three\\par}"},
      {"{\\rtf1 a\\b\\'e9b\\b0 c\\par}", Delete("é"), "{\\rtf1 a\\b b\\b0 c\\par}"},
      {"{\\rtf1 a\\u8364?b\\par}", Delete("€"), "{\\rtf1 ab\\par}"},
      {"{\\rtf1 a\\'e\\'58b\\par}", Delete("X"), "{\\rtf1 a\\'exb\\par}"},
      {"{\\rtf1 a\\u8364?b\\par}", Type("€", "x"), "{\\rtf1 a\\u8364?{x}b\\par}"},
      {"{\\rtf1 a\\u-10179?\\u-8704?b\\par}", Delete("😀"), "{\\rtf1 ab\\par}"},
      {"{\\rtf1 a\\u-10179?\\u-8704?b\\par}", Type("😀", "x"), "{\\rtf1 a\\u-10179?\\u-8704?{x}b\\par}"},
      {"{\\rtf1\\uc2 a\\par}", Type("a", "Ж"), "{\\rtf1\\uc2 a\\u1046??\\par}"},
      {"{\\rtf1\\uc0 a b\\par}", Type("a", "Ж1"), "{\\rtf1\\uc0 a\\u1046 1 b\\par}"},
      {"{\\rtf1 a\\emdash b\\par}", Type("—", "x"), "{\\rtf1 a\\emdash xb\\par}"},
      {"{\\rtf1 a{}b\\line c\\par}", Delete("b\u2028"), "{\\rtf1 a{}c\\par}"},
      {"{\\rtf1 a\\\\b\\par}", Type("b", "5{"), "{\\rtf1 a\\\\b5\\{\\par}"},
      {"{\\rtf1 abc", Type("b", "x"), "{\\rtf1 abxc"},
      {"{\\rtf1 abc}}}\n}", Type("c", "x"), "{\\rtf1 abcx}}}\n}"},
      {"{\\rtf1\\ansicpg932{\\fonttbl{\\f0\\fcharset128 M;}}\\f0\\'83A\\'83B\\par}", Delete("ア"),
       "{\\rtf1\\ansicpg932{\\fonttbl{\\f0\\fcharset128 M;}}\\f0\\'83B\\par}"},
      {"{\\rtf1\\ansicpg932{\\fonttbl{\\f0\\fcharset128 M;}}\\f0\\'83\\'41\\'83\\'43\\par}", Delete("ア"),
       "{\\rtf1\\ansicpg932{\\fonttbl{\\f0\\fcharset128 M;}}\\f0\\u12452?\\par}"},
      // readers that do not know the code page would take the space for a second half
      {"{\\rtf1{\\fonttbl{\\f0\\fcharset128\\cpg65001 M;}}\\f0\\'c3\\'8b\\par}", Type("Ë", " x"),
       "{\\rtf1{\\fonttbl{\\f0\\fcharset128\\cpg65001 M;}}\\f0\\'c3\\'8b{\\u32?\\u120?}\\par}"},
      {"{\\rtf1\\u128512\r\n\\u1041?b\\par}", Delete("Б"), "{\\rtf1\\u128512\r\n{}b\\par}"},
      {"{\\rtf1{\\NeXTGraphic x}\\b\\'ac c\\par}", Delete("\uFFFC"), "{\\rtf1\\b  c\\par}"},
      {"{\\rtf1{\\NeXTGraphic x}\\b\\'ac c\\par}", Type("\uFFFC", "Z"),
       "{\\rtf1{\\NeXTGraphic x}\\b\\'ac{\\b0 Z} c\\par}"},
  };
  for (const Row& row : kRows) Check(row);
}

TEST(RtfSplice, CharacterFormats) {
  const Row kRows[] = {
      {"{\\rtf1 one two three\\par}", Flag("two", kBold), "{\\rtf1 one {\\b two} three\\par}"},
      {"{\\rtf1\\kerning1 one {\\i\\lang1 two} three\\par}", Flag("two", kBold),
       "{\\rtf1\\kerning1 one {\\i\\lang1 {\\b two}} three\\par}"},
      {"{\\rtf1 one\\b  two\\par}", Flag(" two", kBold), "{\\rtf1 one two\\b \\par}"},
      {"{\\rtf1 a\\'e9\\u8364?b\\lang1 c\\par}", Flag("aé€bc", kBold),
       "{\\rtf1 {\\b a\\'e9\\'80b}\\lang1 {\\b c}\\par}"},
      {"{\\rtf1{\\super 2}\\par}", [](Edited& e) { e.Chars("2", [](CharFormat& f) { f.offset = 0; }); },
       "{\\rtf1{\\super {\\nosupersub\\fs16 2}}\\par}"},
      {"{\\rtf1 a\\par}", [](Edited& e) { e.Chars("a", [](CharFormat& f) { f.color.rgb = 255; }); },
       "{\\rtf1 {\\colortbl;\\red255\\green0\\blue0;}{\\cf1 a}\\par}"},
      {"{\\rtf1{\\colortbl;\\red1\\green2\\blue3}\\cf7 a\\par}",
       [](Edited& e) { e.Chars("a", [](CharFormat& f) { f.color.rgb = 255; }); },
       "{\\rtf1{\\colortbl;\\red1\\green2\\blue3;;;;;;;\\red255\\green0\\blue0;}\\cf7 {\\cf8 a}\\par}"},
      {"{\\rtf1{\\fonttbl\\f0 Arial;}\\f3 a\\par}",
       [](Edited& e) { e.Chars("a", [&](CharFormat& f) {
                         f.font = e.formats().Intern(Font{"Ünter", 0, 2});
                       }); },
       "{\\rtf1{\\fonttbl\\f0 Arial;{\\f4\\fswiss\\fcharset0 \\u220?nter;}}\\f3 {\\f4 a}\\par}"},
      {"{\\rtf1 a\\par}",
       [](Edited& e) { e.Chars("a", [&](CharFormat& f) {
                         f.font = e.formats().Intern(Font{"Arial", 0, 2});
                       }); },
       "{\\rtf1 {\\fonttbl{\\f1\\fswiss\\fcharset0 Arial;}}{\\f1 a}\\par}"},
  };
  for (const Row& row : kRows) Check(row);
}

TEST(RtfSplice, Paragraphs) {
  const Row kRows[] = {
      {"{\\rtf1 one two\\par three\\par}", Type("one", "\r\n"), "{\\rtf1 one\\par\r\n two\\par three\\par}"},
      {"{\\rtf1\\pard\\qc one\\par\\pard two\\par}", Delete("one\r\n"), "{\\rtf1\\pard\\qc \\pard two\\par}"},
      {"{\\rtf1\\b one\\par two\\par}", Delete("\r\n"), "{\\rtf1\\b onetwo\\par}"},
      {"{\\rtf1 one\\par two}", Delete("two"), "{\\rtf1 one\\par \\par\r\n}"},
      {"{\\rtf1 one}", Type("one", "\r\n"), "{\\rtf1 one\\par\r\n\\par\r\n}"},
      {"{\\rtf1 one\\par}", Type("one", "\r\n"), "{\\rtf1 one\\par\r\n\\par}"},
      {"{\\rtf1\\keepn one\\par two\\par}", Align("one", Alignment::kCenter),
       "{\\rtf1\\keepn \\qc one\\par \\ql two\\par}"},
      {"{\\rtf1 one\\par\\pard two\\par}", Align("one", Alignment::kCenter), "{\\rtf1 \\qc one\\par\\pard two\\par}"},
      {"{\\rtf1 {\\b one}\\par two\\par three\\par}", Align("one\r\ntwo", Alignment::kCenter),
       "{\\rtf1 \\qc{\\b one}\\par two\\par \\ql three\\par}"},
      {"{\\rtf1{one\\par two\\par}three\\par}", Align("two", Alignment::kCenter),
       "{\\rtf1{one\\par \\qc two\\par}three\\par}"},
      {"{\\rtf1 one}", Align("one", Alignment::kRight), "{\\rtf1 \\qr one}"},
      {"{\\rtf1\\keepn{\\pard\\keepn\\itap0\\tx720\\keepn\\itap0 one\\par}}",
       [](Edited& e) { e.Paragraphs("one", [](ParaFormat& f) { f.tabs = TabsId::kNone; }); },
       "{\\rtf1\\keepn{\\pard\\keepn\\itap0\\tx720\\keepn\\itap0 \\pard\\keepn\\itap0 one\\par}}"},
      {"{\\rtf1\\pard\\keepn\\tx720\\s3 one\\par}",
       [](Edited& e) { e.Paragraphs("one", [](ParaFormat& f) { f.tabs = TabsId::kNone; }); },
       "{\\rtf1\\pard\\keepn\\tx720\\s3 \\pard\\keepn\\s3 one\\par}"},
      {"{\\rtf1\\pard\\lin720\\li0\\tx720 one\\par}",
       [](Edited& e) { e.Paragraphs("one", [](ParaFormat& f) { f.tabs = TabsId::kNone; }); },
       "{\\rtf1\\pard\\lin720\\li0\\tx720 \\pard one\\par}"},
      {"{\\rtf1\\pard\\box\\brdrdb\\tx720 one\\par}",
       [](Edited& e) { e.Paragraphs("one", [](ParaFormat& f) { f.tabs = TabsId::kNone; }); },
       "{\\rtf1\\pard\\box\\brdrdb\\tx720 \\pard\\box\\brdrdb one\\par}"},
      {"{\\rtf1\\pard\\box\\brdrdb\\s3 one\\par}",
       [](Edited& e) { e.Paragraphs("one", [](ParaFormat& f) { f.box = {}; }); },
       "{\\rtf1\\pard\\box\\brdrdb\\s3 \\pard\\s3 one\\par}"},
  };
  for (const Row& row : kRows) Check(row);
}

TEST(RtfSplice, GroupsAndTables) {
  const std::string link = "{\\field{\\*\\fldinst HYPERLINK \"http://x\"}{\\fldrslt link}}";
  const auto linked = [&](const std::string& before, const std::string& after) {
    return "{\\rtf1 " + before + link + after + "\\par}";
  };
  const auto check = [](const std::string& source, const Edit& edit, const std::string& saved) {
    Check({source.c_str(), edit, saved.c_str()});
  };
  const auto unlink = [](Edited& e) { e.Chars("nk", [](CharFormat& f) { f.link = LinkId::kNone; }); };
  check(linked("a", "b"), Delete("link"), "{\\rtf1 ab\\par}");
  check(linked("a", "b"), Type("lin", "x"), linked("a", "b").replace(linked("a", "b").find("link"), 4, "linxk"));
  check(linked("a", "b"), TypeBefore("b", "x"), linked("a", "b").replace(linked("a", "b").find("link"), 4, "linkx"));
  check(linked("a", "b"), Type("a", "x"), linked("ax", "b"));
  check(linked("a", "b"), unlink, linked("a", "nkb").replace(linked("a", "nkb").find("link"), 4, "li"));
  check(
      "{\\rtf1 a b\\par}",
      [](Edited& e) { e.Chars("b", [&](CharFormat& f) { f.link = e.formats().InternLink("http://x"); }); },
      "{\\rtf1 a {\\field{\\*\\fldinst HYPERLINK \"http://x\"}{\\fldrslt{b}}}\\par}");
  const Row kRows[] = {
      {"{\\rtf1 a{\\*\\shppict{\\pict\\pngblip 00}}{\\nonshppict{\\pict 00}}b\\par}", Delete("\uFFFC"),
       "{\\rtf1 ab\\par}"},
      {"{\\rtf1 a{\\pict\\pngblip 00}b\\par}", Flag("\uFFFC", kBold), "{\\rtf1 a{\\b{\\pict\\pngblip 00}}b\\par}"},
      {"{\\rtf1 {\\footnote {a} b}c\\par}", Delete("\uFFFC"), "{\\rtf1 c\\par}"},
      {"{\\rtf1\\pard{\\pntext\\'B7}{\\*\\pn\\pnlvlblt}a\\par{\\pntext\\'B7}b\\par}", Delete("\r\n"),
       "{\\rtf1\\pard{\\pntext\\'B7}{\\*\\pn\\pnlvlblt}ab\\par}"},
      {"{\\rtf1\\trowd\\cellx9\\pard\\intbl a\\cell\\row\\pard b\\par}", Type("a", "\r\n"),
       "{\\rtf1\\trowd\\cellx9\\pard\\intbl a\\par\r\n\\cell\\row\\pard b\\par}"},
      {"{\\rtf1\\trowd\\cellx9\\pard\\intbl a\\cell\\row\\pard b\\par}", Delete("a\r\n"),
       "{\\rtf1\\trowd\\cellx9\\pard\\intbl \\pard b\\par}"},
      {"{\\rtf1\\trowd\\cellx9\\pard\\intbl a\\cell\\row\\pard b\\par}",
       [](Edited& e) {
         e.content = e.content.WithReplaced({Units(2), Units(2)}, e.content.Slice({Units(0), Units(2)}));
       },
       "{\\rtf1\\trowd\\cellx9\\pard\\intbl a\\cell\\row\\trowd\\cellx9\\pard\\intbl a\\cell\\row\r\n\\pard b\\par}"},
      {"{\\rtf1\\trowd\\cellx9\\pard\\intbl a\\cell\\row}", Type("", "b"),
       "{\\rtf1\\trowd\\cellx9\\pard\\intbl a\\cell\\row\\pard b}"},
      {"{\\rtf1 ab\\par}",
       [](Edited& e) {
         EmbeddedObject picture;
         picture.type = PictureType::kJpeg;
         picture.picture = SharedBytes("\xFF\xD8\xFF");
         picture.width = picture.height = 300;
         CharFormat format;
         format.object = e.formats().Add(picture);
         e.Put({Units(1), Units(1)}, "\uFFFC", e.formats().Intern(format));
       },
       "{\\rtf1 a{{\\pict\\jpegblip\\picwgoal300\\pichgoal300\r\nffd8ff\r\n}}b\\par}"},
  };
  for (const Row& row : kRows) Check(row);
}

TEST(RtfSplice, SavingIsCancelledAtEachReport) {
  const std::string paragraph = "a" + std::string(1 << 20, 'x') + "\\par ";
  Edited edited("{\\rtf1 " + paragraph + paragraph + paragraph + "}");
  edited.Type(Units(1), "b");
  int64_t last = 0;
  int reports = 0;
  const auto count = [&](int64_t done) { return ++reports, last <= std::exchange(last, done); };
  ASSERT_TRUE(edited.Saved(count).starts_with("{\\rtf1 ab"));
  EXPECT_GT(reports, 8);
  EXPECT_LE(last, 4 << 20);
  for (; reports > 0; --reports) {
    int left = reports;
    EXPECT_EQ(edited.Saved([&](int64_t) { return --left > 0; }), "CANCELLED") << reports;
  }
}

// What the model does not know stays where it is, whatever happens beside it.
TEST(RtfSplice, Unknown) {
  const auto bullet = [](const std::string& text) -> Edit {
    return [=](Edited& e) { e.Paragraphs(text, [](ParaFormat& f) { f.bullet = !f.bullet, f.list = ListId::kNone; }); };
  };
  const auto replace = [](const std::string& old, const std::string& text) -> Edit {
    return [=](Edited& e) { e.Put(e.Find(old), text, e.content.CharFormatAt(e.Find(old).begin)); };
  };
  const auto listed = [](const std::string& text) -> Edit {
    return [=](Edited& e) {
      e.Paragraphs(text, [&](ParaFormat& f) {
        const std::string label(1, 0);
        f.list = e.formats().Intern(List{5, {{.label = label + "."}, {.label = label + ")"}}});
      });
    };
  };
  const auto moveNote = [](Edited& e) {
    const Range note = e.Find("\uFFFC");
    const Content moved = e.content.Slice(note);
    e.content = e.content.WithReplaced(note, Content(e.content.store())).WithReplaced({Units(0), Units(0)}, moved);
  };
  const Row kRows[] = {
      {"{\\rtf1\\pard\\plain a\\par\\pard\\plain\\pagebb\\keepn\\caps b\\par}", Type("a", "\r\nq"),
       "{\\rtf1\\pard\\plain a\\par\r\nq\\par\\pard\\plain\\pagebb\\keepn\\caps b\\par}"},
      {"{\\rtf1\\pard\\tqr\\tldot\\tx900\\absw300 a\\par b\\par}", bullet("a"),
       "{\\rtf1{\\fonttbl{\\f1\\fnil\\fcharset2 Symbol;}}\\pard\\tqr\\tldot\\tx900\\absw300 "
       "{\\pntext\\f1\\'B7\\tab}{\\*\\pn\\pnlvlblt\\pnf1\\pnindent0{\\pntxtb\\'B7}}a\\par "
       "\\pard\\tqr\\tldot\\tx900\\absw300 b\\par}"},
      {"{\\rtf1\\pard\\tqr\\tx900{\\keep\\tqc\\tx500 a\\par}b\\par}",
       [](Edited& e) {
         e.Paragraphs("a", [&](ParaFormat& f) { f.tabs = e.formats().Intern(Tabs{{500, TabKind::kCenter}}); });
       },
       "{\\rtf1\\pard\\tqr\\tx900{\\keep\\tqc\\tx500 \\pard\\keep\\tqc\\tx500 a\\par}b\\par}"},
      {"{\\rtf1 a {\\uldb dou ble} b\\par}", replace("dou ble", "xyz"), "{\\rtf1 a {\\uldb xyz} b\\par}"},
      {"{\\rtf1 {\\*\\bkmkstart m}bc{\\*\\bkmkend m}\\par}", replace("bc", "X"),
       "{\\rtf1 {\\*\\bkmkstart m}X{\\*\\bkmkend m}\\par}"},
      {"{\\rtf1{\\field{\\*\\fldinst FORMTEXT}{\\fldrslt old}}\\par}", replace("old", "new"),
       "{\\rtf1{\\field{\\*\\fldinst FORMTEXT}{\\fldrslt new}}\\par}"},
      {"{\\rtf1 a{\\uc0\\chftn{\\footnote \\u8364 N}}\\par}",
       [](Edited& e) {
         const Content copied = e.content.Slice(e.Find("\uFFFC"));
         e.content = e.content.WithReplaced({Units(0), Units(0)}, copied);
       },
       "{\\rtf1 {\\uc0\\chftn{\\footnote \\u8364 N}}a{\\uc0\\chftn{\\footnote \\u8364 N}}\\par}"},
      {"{\\rtf1 a\\chftn{\\footnote {\\b N}}\\par}", moveNote, "{\\rtf1 \\chftn{\\footnote {\\b N}}a\\par}"},
      {"{\\rtf1{\\*\\listtable{\\list{\\listlevel\\levelnfc23{\\leveltext\\'01\\'b7;}}{\\listlevel\\levelnfc23\\li9{"
       "\\leveltext\\'01o;}}\\listid7}}{\\*\\listoverridetable{\\listoverride\\listid7\\ls2}}\\pard\\ls2\\ilvl1 a\\par "
       "b\\par}",
       bullet("a"),
       "{\\rtf1{\\*\\listtable{\\list{\\listlevel\\levelnfc23{\\leveltext\\'01\\'b7;}}{\\listlevel\\levelnfc23\\li9{"
       "\\leveltext\\'01o;}}\\listid7}}{\\*\\listoverridetable{\\listoverride\\listid7\\ls2}}\\pard\\ls2\\ilvl1 "
       "\\pard\\li9 a\\par \\ls2\\ilvl1\\fi0\\li9 b\\par}"},
      {"{\\rtf1\\ansi a\\par b\\par}", listed("a"),
       "{\\rtf1\\ansi "
       "{\\*\\listtable{\\list\\listtemplateid5{"
       "\\listlevel\\levelnfc0\\levelnfcn0\\leveljc0\\leveljcn0\\levelfollow0\\levelstartat1{\\leveltext\\'02\\'00.;}{"
       "\\levelnumbers\\'01;}}{\\listlevel\\levelnfc0\\levelnfcn0\\leveljc0\\leveljcn0\\levelfollow0\\levelstartat1{"
       "\\leveltext\\'02\\'00);}{\\levelnumbers\\'01;}}{\\listname "
       ";}\\listid5}\r\n}{\\*\\listoverridetable{\\listoverride\\listid5\\listoverridecount0\\ls101}}"
       "\\ls101\\ilvl0\\fi0\\li0 a\\par "
       "\\pard b\\par}"},
      {"{\\rtf1{\\colortbl\\red0;\\red255;}{\\highlight1 a}\\par}",
       [](Edited& e) { e.Chars("a", [](CharFormat& f) { f.background = Color{}; }); },
       "{\\rtf1{\\colortbl\\red0;\\red255;}{\\highlight1 {\\highlight0 a}}\\par}"},
      {"{\\rtf1 a{\\field{\\*\\fldinst SYMBOL 183 \\\\f \"Symbol\"}}b\\par}", Flag("\uF0B7", kBold),
       "{\\rtf1 {\\fonttbl{\\f1\\fnil\\fcharset2 Symbol;}}a{\\b\\f1\\'b7}b\\par}"},
      {"{\\rtf1\\uc2 ab\\par}",
       [](Edited& e) {
         EmbeddedObject picture;
         picture.name = "\u4E00x";
         CharFormat format;
         format.object = e.formats().Add(picture);
         e.Put({Units(1), Units(1)}, "\uFFFC", e.formats().Intern(format));
       },
       "{\\rtf1\\uc2 a{\\uc1{\\pict{\\*\\picprop{\\sp{\\sn wzDescription}{\\sv \\u19968?x}}}\r\n}}b\\par}"},
      {"{\\rtf1\\deff2147483647 a\\par}",
       [](Edited& e) { e.Chars("a", [&](CharFormat& f) { f.font = e.formats().Intern(Font{"N"}); }); },
       "{\\rtf1\\deff2147483647 {\\fonttbl{\\f1073741825\\fnil\\fcharset1 N;}}{\\f1073741825 a}\\par}"},
      {"{\\rtf1 a{\\object{\\result{bc}}}d\\par}", Delete("bc"), "{\\rtf1 ad\\par}"},
      {"{\\rtf1 a\\u8364\\par b\\par}", Delete("\r\n"), "{\\rtf1 a\\u8364{}b\\par}"},
      {"{\\rtf1{\\stylesheet{\\s1\\li300\\sb240\\b H;}}\\pard\\s1\\tx9 a\\par}",
       [](Edited& e) { e.Paragraphs("a", [](ParaFormat& f) { f.tabs = TabsId::kNone; }); },
       "{\\rtf1{\\stylesheet{\\s1\\li300\\sb240\\b H;}}\\pard\\s1\\tx9 \\pard\\s1\\li300\\sb240 a\\par}"},
  };
  for (const Row& row : kRows) Check(row);
}

// What stands beside a table says so, and what ends in a cell stands in it: other programs lose it where it does not.
TEST(RtfSplice, BesideTables) {
  const auto put = [](const std::string& old, const std::string& text) {
    return [=](Edited& e) { e.Put(e.Find(old), text, CharFormatId::kDefault); };
  };
  const auto putBeside = [](const std::string& before, const std::string& text) {
    return [=](Edited& e) {
      ContentBuilder builder(e.content.store());
      builder.Append(text, CharFormatId::kDefault, ParaFormatId::kDefault);
      const Units at = e.Find(before).begin;
      e.content = e.content.WithReplaced({at, at}, builder.Finish());
    };
  };
  const Row kRows[] = {
      {"{\\rtf1\\trowd\\cellx9\\intbl a\\cell\\row}", Type("", "b\r\nc"),
       "{\\rtf1\\trowd\\cellx9\\intbl a\\cell\\row\\pard b\\par\r\n\\pard c}"},
      {"{\\rtf1\\trowd\\cellx9\\intbl a\\cell\\row\\trowd\\cellx9 b\\cell\\row\\pard c\\par}",
       putBeside("b", "x\r\ny\r\n"),
       "{\\rtf1\\trowd\\cellx9\\intbl a\\cell\\row\\pard x\\par\r\ny\\par\r\n\\pard\\intbl\\trowd\\cellx9 b\\cell"
       "\\row\\pard c\\par}"},
      {"{\\rtf1\\trowd\\cellx9\\pard\\intbl\\keepn\\qc\\brdrl\\brdrdash a\\cell\\row\\trowd\\cellx9 b\\cell\\row}",
       putBeside("b", "x\r\n"),
       "{\\rtf1\\trowd\\cellx9\\pard\\intbl\\keepn\\qc\\brdrl\\brdrdash a\\cell\\row\\pard x\\par\r\n"
       "\\pard\\intbl\\keepn\\brdrl\\brdrdash\\qc\\trowd\\cellx9 b\\cell\\row}"},
      {"{\\rtf1\\trowd\\cellx9\\pard\\intbl\\keepn a\\cell\\row\\trowd\\cellx9 b\\cell\\row}",
       [=](Edited& e) {
         putBeside("b", "x\r\ny\r\n")(e);
         e.Paragraphs("x", [&](ParaFormat& f) { f.tabs = e.formats().Intern(Tabs{{500}}); });
       },
       "{\\rtf1\\trowd\\cellx9\\pard\\intbl\\keepn a\\cell\\row\\pard\\tx500 x\\par\r\n\\pard y\\par\r\n"
       "\\pard\\intbl\\keepn\\trowd\\cellx9 b\\cell\\row}"},
      {"{\\rtf1{\\fonttbl{\\f0 T;}}\\trowd\\cellx9\\pard\\intbl a\\cell\\row}",
       [](Edited& e) {
         e.Type(e.content.size(), "x\r\ny");
         e.Paragraphs("x\r\ny", [](ParaFormat& f) { f.bullet = true; });
       },
       "{\\rtf1{\\fonttbl{\\f0 T;}{\\f1\\fnil\\fcharset2 Symbol;}}\\trowd\\cellx9\\pard\\intbl a\\cell\\row"
       "\\pard{\\pntext\\f1\\'B7\\tab}{\\*\\pn\\pnlvlblt\\pnf1\\pnindent0{\\pntxtb\\'B7}}x\\par\r\n"
       "\\pard{\\pntext\\f1\\'B7\\tab}{\\*\\pn\\pnlvlblt\\pnf1\\pnindent0{\\pntxtb\\'B7}}y}"},
      {"{\\rtf1\\pard b\\par\\trowd\\cellx9\\pard\\intbl a\\cell\\row\\pard c\\par}", put("b\r\na", "X"),
       "{\\rtf1\\pard \\trowd\\cellx9\\pard\\intbl X\\cell\\row\\pard c\\par}"},
      {"{\\rtf1\\pard b\\par\\trowd\\cellx9\\pard\\intbl a\\cell\\row\\pard c\\par}", put("b\r\na", "X\r\nY"),
       "{\\rtf1\\pard X\\par\\trowd\\cellx9\\pard\\intbl Y\\cell\\row\\pard c\\par}"},
      {"{\\rtf1\\pard b{\\i d}\\par\\trowd\\cellx9\\pard\\intbl a\\cell\\row\\pard c\\par}", Delete("\r\n"),
       "{\\rtf1\\pard {\\i }\\trowd\\cellx9\\pard\\intbl b{\\i d}a\\cell\\row\\pard c\\par}"},
      {"{\\rtf1\\trowd\\cellx9\\cellx19 a\\intbl\\cell b\\intbl\\cell\\row}",
       [](Edited& e) {
         e.Type(e.content.size(), "x\r\n");
         e.Chars("a\r\nb", [](CharFormat& f) { f.flags = kBold; });
       },
       "{\\rtf1\\trowd\\cellx9\\cellx19 {\\b a}\\intbl{\\b\\cell }{\\b b}\\intbl\\cell\\row\\pard "
       "x\\par\r\n\\pard\\par\r\n}"},
  };
  for (const Row& row : kRows) Check(row);
}

// A field that goes takes with it the places for new text that were in it.
TEST(RtfSplice, WholeFields) {
  std::string inner;
  for (int i = 0; i < 30; ++i) inner += "x{\\field{\\*\\fldinst PAGEREF m}{\\fldrslt 1}}";
  Edited edited("{\\rtf1{\\field{\\*\\fldinst DATE}{\\fldrslt a" + inner +
                "b}}{\\field{\\*\\fldinst HYPERLINK y}{\\fldrslt c}}\\par}");
  const Range all{edited.Find("a").begin, edited.Find("b").end};
  CharFormat bold;
  bold.flags = kBold;
  edited.Put(all, "XYZ", edited.formats().Intern(bold));
  EXPECT_EQ(edited.Saved(), "{\\rtf1{\\b XYZ}{\\field{\\*\\fldinst HYPERLINK y}{\\fldrslt c}}\\par}");
}

// Whatever is edited, it finds its place in the file, and the words of the paragraphs around stay in force.
TEST(RtfSplice, RandomEdits) {
  const std::string kSources[] = {
      "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}{\\f1\\fcharset2 "
      "Symbol;}}{\\colortbl;\\red255\\green0\\blue0;}\\pard\\qc\\b One two"
      "\\b0  three\\par\\pard{\\pntext\\f1\\'B7\\tab}{\\*\\pn\\pnlvlblt\\pnf1{\\pntxtb\\'B7}}\\fi-360\\li720 "
      "item\\par\r\n"
      "{\\pntext\\f1\\'B7\\tab}{\\i item} two\\par\\pard\\tx100 \\u8364?x\\u-10179?\\u-8704?\\line end\\par}",
      "{\\rtf1 {a {\\i b\\qr c}\\par\\sa3 d}\\par{\\field{\\*\\fldinst HYPERLINK \"http://x\"}{\\fldrslt li\\b nk}} "
      "{\\field{\\*\\fldinst PAGE}{\\fldrslt 12}}e{\\super 2}\\par\\pard\\keepn f g}",
      "{\\rtf1 x{\\footnote note}y{\\*\\shppict{\\pict\\pngblip 00}}{\\nonshppict{\\pict\\wmetafile8 "
      "00}}z\\par\\trowd\\cellx100"
      "\\cellx200\\pard\\intbl a b\\cell c\\par d\\cell\\row\\pard after\\par}",
      "{\\rtf1\\ansicpg932{\\fonttbl{\\f0\\fcharset128 M;}}\\f0\\'83A\\'83\\'42\\'83\\'43a\\\n\\uc2\\u12450\\'83A\\cf9 "
      "b\\sect c",
      "{\\rtf1{\\stylesheet{\\s1\\li300\\b "
      "H;}}{\\*\\listtable{\\list{\\listlevel\\levelnfc0\\li9{\\leveltext\\'02\\'00.;}}"
      "\\listid7}}{\\*\\listoverridetable{\\listoverride\\listid7\\ls2}}\\pard\\s1\\pagebb\\brdrb\\brdrs\\caps "
      "one\\par "
      "\\pard\\plain\\tqr\\tldot\\tx900{\\*\\bkmkstart m}two{\\*\\bkmkend m} 2\\par three\\par\\pard\\ls2\\keepn "
      "four\\par "
      "five\\par\\absw300 six\\par}",
  };
  for (uint32_t seed = 1; seed <= 2000; ++seed) {
    std::mt19937 random(seed);
    Edited edited(kSources[seed % std::size(kSources)]);
    for (uint32_t count = 1 + seed % 3; count > 0; --count) EditAtRandom(edited, random);
    const std::string saved = edited.Saved();
    ASSERT_NE(saved, "ANEW") << "seed " << seed << "\n" << edited.Tried();
    ASSERT_EQ(edited.LostParagraphWords(saved), "") << "seed " << seed << "\n" << saved;
  }
}

}  // namespace
}  // namespace text::rtf
