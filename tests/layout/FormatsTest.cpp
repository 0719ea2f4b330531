// What formats do to places and pixels.
#include "LayoutTesting.h"
#include "text/layout/LayoutBlock.h"
#include "text/outline/SymbolFonts.h"

namespace text::layout {
namespace {

struct Formatted {
  Document document;
  TestView view;
  Formatted(std::string_view text, const CharFormat& chars, const ParaFormat& paragraph, double width = 400)
      : document(Make(text, chars, paragraph)), view(document, width, 600) {}
  static Content Make(std::string_view text, const CharFormat& chars, const ParaFormat& paragraph) {
    const Content empty;
    ContentBuilder builder(empty.store());
    const ParaFormatId id = empty.formats().Intern(paragraph);
    builder.Append(text, empty.formats().Intern(chars), id);
    return builder.Finish(id);
  }
  double Left(int64_t position) { return view.CaretRect({Units(position)}).left() - 4; }
};

std::string LongText() {
  return Repeated("words that wrap ", 20);
}

TEST(FontOf, PointsAreNinetySixDotsToTheInch) {
  FormatTable formats;
  CharFormat format;
  for (const auto& [halfPoints, zoom, pixels] :
       {std::tuple(24, 1.0, 16.0), {24, 2.0, 32.0}, {15, 1.0, 10.0}, {144, 0.5, 48.0}}) {
    format.halfPoints = static_cast<uint16_t>(halfPoints);
    const QFont font = FontOf(formats, format, QFont("DejaVu Sans"), zoom);
    EXPECT_NEAR(QFontInfo(font).pixelSize(), pixels, 0.6) << halfPoints << " at " << zoom;
  }
}

TEST(FontOf, TakesNameAndEmphasis) {
  FormatTable formats;
  CharFormat format;
  format.font = formats.Intern(Font{"Courier New", 0, 3});
  format.flags = kBold | kItalic | kUnderline | kStrikeThru;
  const QFont font = FontOf(formats, format, QFont("DejaVu Sans"), 1);
  EXPECT_EQ(font.family(), "Courier New");
  EXPECT_TRUE(font.bold() && font.italic() && font.underline() && font.strikeOut());
  EXPECT_EQ(FontOf(formats, CharFormat{}, QFont("DejaVu Serif"), 1).family(), "DejaVu Serif");
}

TEST(Edges, LinesBeginWhereTheFormatSays) {
  const struct {
    int left, first, right;  // twips
    bool bullet, justified;
    double firstLine, secondLine;  // pixels
  } kRows[] = {
      {0, 0, 0, false, false, 0, 0},       {600, 0, 0, false, false, 40, 40},
      {0, 300, 0, false, false, 20, 0},    {600, -300, 0, false, false, 20, 40},
      {300, -900, 0, false, false, 0, 20}, {0, 0, 1500, false, false, 0, 0},
      {360, -360, 0, true, false, 24, 24}, {2000000000, 2000000000, 0, false, false, 368, 368},
      {0, 0, 0, false, true, 0, 0},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(&row - kRows);
    ParaFormat format;
    format.leftIndent = row.left, format.firstIndent = row.first, format.rightIndent = row.right;
    format.bullet = row.bullet;
    if (row.justified) format.alignment = Alignment::kJustify;
    Formatted f(LongText(), {}, format);
    EXPECT_NEAR(f.Left(0), row.firstLine, 0.5);
    EXPECT_NEAR(f.Left(f.view.LineAt({Units(0)}).end.value()), row.secondLine, 0.5);
    for (int64_t at = 0; at < 200; ++at) {
      EXPECT_GE(f.Left(at), 0);
      EXPECT_LE(f.Left(at), 392 - row.right / 15.0 + 0.5);
    }
  }
}

TEST(Alignments, ShiftTheLine) {
  ParaFormat format;
  for (const auto& [alignment, part] :
       {std::pair(Alignment::kLeft, 0.0), {Alignment::kCenter, 0.5}, {Alignment::kRight, 1.0}}) {
    format.alignment = alignment;
    Formatted f("short", {}, format);
    const double width = f.Left(5) - f.Left(0);
    EXPECT_NEAR(f.Left(0), part * (392 - width), 1);
  }
  format.alignment = Alignment::kJustify;
  Formatted f(LongText(), {}, format);
  const Range line = f.view.LineAt({Units(0)});
  EXPECT_NEAR(f.Left(line.end.value() - 1), 392, 1) << "a full line reaches the right edge";
}

TEST(Directions, RightToLeftParagraphsBeginOnTheRight) {
  Formatted automatic(std::string("123 ") + kHebrew, {}, {});
  EXPECT_TRUE(automatic.view.IsRightToLeft(Breaks(0)));
  EXPECT_GT(automatic.Left(4), 300);
  ParaFormat format;
  format.rightToLeft = true;
  format.alignment = Alignment::kRight;
  format.leftIndent = 600;
  Formatted said("latin", {}, format);
  EXPECT_TRUE(said.view.IsRightToLeft(Breaks(0)));
  EXPECT_LT(said.Left(3), 392 - 40 + 0.5) << "indents count from the side where lines begin";
  EXPECT_GT(said.Left(3), 250);
  Formatted latin(std::string("abc ") + kHebrew, {}, {});
  EXPECT_FALSE(latin.view.IsRightToLeft(Breaks(0)));
}

TEST(Directions, LaterSegmentsFollowTheParagraph) {
  Document document = MakeDocument(kHebrew + Repeated(" latin words", 2000));
  TestView view(document);
  view.SetScrollValue(view.scrollMaximum());
  const Range line = view.LineAt({document.content().size()});
  EXPECT_GT(view.CaretRect({line.begin}).left(), 100) << "the last line begins on the right";
  Insert(document, Units(0), "latin ");
  const Range now = view.LineAt({document.content().size()});
  EXPECT_LT(view.CaretRect({now.begin}).left(), 10);
}

TEST(Tabs, StopsCountFromTheParagraphsEdge) {
  ParaFormat format;
  {
    Formatted plain("a\tb\tc", {}, format);
    EXPECT_NEAR(plain.Left(2), 48, 0.5);
    EXPECT_NEAR(plain.Left(4), 96, 0.5);
  }
  format.leftIndent = 300;
  Formatted indented("a\tb\tc", {}, format);
  EXPECT_NEAR(indented.Left(0), 20, 0.5);
  EXPECT_NEAR(indented.Left(2), 48, 0.5);
  FormatTable& formats = indented.document.formats();
  ParaFormatPatch patch;
  patch.tabs = formats.Intern(Tabs{1500, 3000});
  indented.document.PatchParagraphs({Units(0), Units(1)}, patch, {});
  EXPECT_NEAR(indented.Left(2), 100, 0.5);
  EXPECT_NEAR(indented.Left(4), 200, 0.5);
}

TEST(Tabs, DefaultStopsComeBehindTheParagraphsOwn) {
  struct Case {
    std::vector<int> defaults;
    Tabs own;
    std::vector<double> stops;  // pixels
  };
  const Case cases[] = {
      {{}, {}, {48, 96, 144}},                      // the regular distance, 720 twips
      {{1500, 3000}, {}, {100, 200, 240}},          // behind the last one the regular distance goes on
      {{3000, 1500, 1500, -5, 0}, {}, {100, 200}},  // in any order, nonsense left out
      {{1500, 3000}, {2250}, {150, 200, 240}},      // what lies before a stop of the paragraph does not count
      {{1500}, {2250}, {150, 192}},
  };
  for (const Case& c : cases) {
    Formatted f("\ta\tb\tc", {}, {});
    ParaFormatPatch patch;
    patch.tabs = f.document.formats().Intern(Tabs(c.own));
    f.document.PatchParagraphs({Units(0), Units(1)}, patch, {});
    const Revision revision = f.document.revision();
    f.view.SetDefaultTabStops(c.defaults);
    for (size_t i = 0; i < c.stops.size(); ++i) {
      EXPECT_NEAR(f.Left(static_cast<int>(2 * i + 1)), c.stops[i], 0.5) << &c - cases << " " << i;
    }
    EXPECT_EQ(f.document.revision(), revision);
    f.view.SetDefaultTabStops({});
    EXPECT_NEAR(f.Left(1), c.own.empty() ? 48 : c.own[0].position / 15.0, 0.5);
  }
}

TEST(Tabs, TextStandsAtItsStop) {
  struct Case {
    const char* text;
    Tabs stops;
    int place;
    double x;
    ParaFormat format = {};
  };
  ParaFormat indented, rightToLeft;
  indented.leftIndent = 300;
  rightToLeft.rightToLeft = true;
  rightToLeft.alignment = Alignment::kRight;
  const TabStop right{3000, TabKind::kRight}, center{3000, TabKind::kCenter}, decimal{3000, TabKind::kDecimal};
  const Case cases[] = {
      {"a\t12", {right}, 4, 200},
      {"a\t12\tb", {right, {3750}}, 4, 200},
      {"a\t12\tb", {right, {3750}}, 5, 250},
      {"a\t12", {right}, 4, 200, indented},
      {"a\u2028b\t12\u2028long and longer", {right}, 6, 200},
      {"a\t1234", {center}, 4, 200},
      {"a\t12.345", {decimal}, 4, 200},
      {"a\t12", {decimal}, 4, 200},
      {"a\t12\tb.c", {decimal, {3750}}, 4, 200},
      {"a\t12", {{30000, TabKind::kRight}}, 4, 391},     // at the line's end instead of past it
      {"\u05D0\t\u05D1", {right}, 3, 192, rightToLeft},  // from the right
      {"\u05D0\t\u05D1", {{3000}}, 2, 192, rightToLeft},
      {"\u05D0\t\u05D1", {{3000, TabKind::kLeft, TabLeader::kDots}}, 2, 192, rightToLeft},
  };
  for (const Case& c : cases) {
    Formatted f(c.text, {}, c.format);
    ParaFormatPatch patch;
    patch.tabs = f.document.formats().Intern(c.stops);
    f.document.PatchParagraphs({Units(0), Units(1)}, patch, {});
    EXPECT_NEAR(f.Left(c.place), c.x, 1.5) << &c - cases;
  }
}

// More text than there is room for goes on behind the tab, and wraps.
TEST(Tabs, LongTextBehindAStopStaysInTheLine) {
  Formatted f("a\t" + Repeated("word ", 60) + "\tend", {}, {});
  ParaFormatPatch patch;
  patch.tabs = f.document.formats().Intern(Tabs{{1500, TabKind::kRight, TabLeader::kDots}, {4000, TabKind::kRight}});
  f.document.PatchParagraphs({Units(0), Units(1)}, patch, {});
  EXPECT_LT(f.Left(2), 15);
  EXPECT_NEAR(f.Left(static_cast<int>(f.document.content().size().value())), 4000 / 15.0, 1.5);
}

TEST(Tabs, AHangingFirstLineStopsAtTheIndent) {
  ParaFormat format;
  format.leftIndent = 600;
  format.firstIndent = -600;
  Formatted f("1.\ttext", {}, format);
  EXPECT_NEAR(f.Left(3), 40, 0.5);
  // The stops of the lines behind it are others.
  Formatted wrapped("1.\t" + LongText(), {}, format);
  EXPECT_NEAR(wrapped.Left(3), 40, 0.5);
}

TEST(Spacing, BeforeAfterAndBetween) {
  const auto distance = [](void (*set)(ParaFormat&)) {
    ParaFormat format;
    set(format);
    Formatted f("one\ntwo", {}, format);
    return f.view.TopOf(Units(4)) - f.view.TopOf(Units(0));
  };
  const double plain = distance([](ParaFormat&) {});
  EXPECT_NEAR(distance([](ParaFormat& p) { p.spaceBefore = 300; }), plain + 20, 1);
  EXPECT_NEAR(distance([](ParaFormat& p) { p.spaceAfter = 150; }), plain + 10, 1);
  EXPECT_NEAR(distance([](ParaFormat& p) {
                p.lineSpacing = 480;
                p.lineSpacingMultiple = true;
              }),
              plain * 2, 1);
  EXPECT_NEAR(distance([](ParaFormat& p) { p.lineSpacing = 15; }), plain, 1) << "at least";
  EXPECT_NEAR(distance([](ParaFormat& p) { p.lineSpacing = 900; }), 60, 1) << "at least";
  EXPECT_NEAR(distance([](ParaFormat& p) { p.lineSpacing = -150; }), 10, 1) << "exactly";
  ParaFormat absurd;
  absurd.spaceBefore = absurd.spaceAfter = absurd.lineSpacing = 2000000000;
  Formatted f("one\ntwo", {}, absurd);
  EXPECT_LE(f.view.scrollMaximum(), 20000);
}

TEST(Offset, RaisedTextMakesTheLineHigherAndMovesTheCaret) {
  for (const int twips : {300, -300}) {
    Document document = MakeDocument("plain raised\nnext");
    TestView view(document);
    const double before = view.TopOf(Units(13)) - 4, plainTop = view.CaretRect({Units(2)}).top();
    CharFormatPatch patch;
    patch.offset = twips;
    document.PatchChars({Units(6), Units(12)}, patch, {});
    EXPECT_NEAR(view.TopOf(Units(13)) - 4, before + 20, 1) << twips;
    const double relative = view.CaretRect({Units(9)}).top() - view.CaretRect({Units(2)}).top();
    EXPECT_NEAR(relative, -twips / 15.0, 0.5);
    EXPECT_NEAR(view.CaretRect({Units(2)}).top() - plainTop, twips > 0 ? 20 : 0, 1);
    EXPECT_EQ(view.HitTest(view.CaretRect({Units(9)}).center()).position, Units(9));
  }
}

// Each line takes the raised text of its own runs, where a block has many of both.
TEST(Offset, RaisesOnlyItsLine) {
  Document document = MakeDocument(Repeated("ab cd\u2028", 30));
  CharFormatPatch bold, raised;
  bold.setFlags = kBold;
  raised.offset = 300;
  for (int line = 0; line < 30; ++line) document.PatchChars({Units(6 * line), Units(6 * line + 2)}, bold, {});
  document.PatchChars({Units(6 * 17 + 3), Units(6 * 17 + 4)}, raised, {});
  TestView view(document, 300, 3000);
  const auto bottom = [&](int line) { return view.CaretRect({Units(6 * line)}).bottom(); };
  for (int line = 1; line < 30; ++line) {
    const double step = bottom(line) - bottom(line - 1), plain = bottom(1) - bottom(0);
    EXPECT_NEAR(step, line == 17 ? plain + 20 : plain, 2) << line;
  }
}

TEST(Sizes, TheLargestTextOfALineSetsItsHeight) {
  Document document = MakeDocument("small BIG small\nnext");
  TestView view(document);
  const double before = view.TopOf(Units(16));
  CharFormatPatch patch;
  patch.halfPoints = 72;
  document.PatchChars({Units(6), Units(9)}, patch, {});
  EXPECT_GT(view.TopOf(Units(16)), before * 1.8);
  EXPECT_GT(view.CaretRect({Units(8)}).height(), 2 * view.CaretRect({Units(2)}).height());
}

TEST(Sizes, TheLargestFontInANarrowLongLineStaysInRange) {
  CharFormat format;
  format.halfPoints = 3276;
  Formatted f(std::string(9000, 'W'), format, {}, 60);
  f.view.SetZoom(10);
  f.view.SetScrollValue(f.view.scrollMaximum());
  EXPECT_EQ(f.view.VisibleRange().end, f.document.content().size());
  EXPECT_EQ(f.view.scrollValue(), f.view.scrollMaximum());
}

TEST(Shown, StrangeCharactersHaveAWidth) {
  const std::string strange("\0\x01\x0B\x1B\x7F\xFF\x80\xC2\x85", 9);
  Formatted f("a" + strange + "b", {}, {});
  const int64_t size = f.document.content().size().value();
  ASSERT_EQ(size, 10);
  for (int64_t at = 0; at < size; ++at) EXPECT_GT(f.Left(at + 1) - f.Left(at), 2) << at;
  EXPECT_EQ(f.view.LineAt({Units(0)}).end.value(), size) << "none of them breaks the line";
}

TEST(Shown, HiddenTextTakesNoRoom) {
  Document document = MakeDocument("seen hidden seen");
  TestView view(document);
  const double width = view.CaretRect({Units(16)}).left();
  CharFormatPatch patch;
  patch.setFlags = kHidden;
  document.PatchChars({Units(5), Units(12)}, patch, {});
  EXPECT_EQ(view.CaretRect({Units(5)}).left(), view.CaretRect({Units(12)}).left());
  EXPECT_LT(view.CaretRect({Units(16)}).left(), width - 30);
}

TEST(Shown, AnObjectIsABoxAsHighAsItsText) {
  CharFormat format;
  format.halfPoints = 60;
  Formatted f("\uFFFC\uFFFC", format, {});
  const QFontMetricsF metrics(FontOf(f.document.formats(), format, QFont("DejaVu Sans"), 1));
  EXPECT_NEAR(f.Left(1), metrics.height(), 1.5);
  EXPECT_NEAR(f.Left(2), 2 * metrics.height(), 3);
}

TEST(Shown, SymbolFontsAreReadAsUnicode) {
  struct Case {
    const char* font;
    char16_t unit, unicode;
  };
  for (const Case& c : {Case{"Symbol", 0xF061, 0x03B1},
                        {"Symbol", 0xF0B7, 0x2022},
                        {"Symbol", 0xF0FF, 0xF0FF},
                        {"Symbol", u'a', u'a'},
                        {"Wingdings", 0xF0A7, 0x25AA},
                        {"Wingdings", 0xF0FF, 0xF0FF},
                        {"Other", 0xF061, 0xF061}}) {
    EXPECT_EQ(UnicodeOfSymbol(c.font, c.unit), c.unicode) << c.font << std::hex << int(c.unit);
  }
  Document document = MakeDocument("\xEF\x81\xA1\xEF\x82\xB7 plain");
  CharFormatPatch patch;
  patch.font = document.formats().Intern(Font{"Symbol", 2, 0});
  document.PatchChars({Units(0), Units(2)}, patch, {});
  const BlockText shown = ReadBlockText(document, SpanAt(document.content(), Units(0), Bias::kRight), nullptr);
  EXPECT_EQ(shown.text, QString::fromUtf16(u"\u03B1\u2022 plain"));
}

}  // namespace
}  // namespace text::layout
