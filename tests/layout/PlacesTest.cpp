// Places in the text and points in the viewport: there and back, along lines, across wraps and directions.
#include "LayoutTesting.h"
#include "text/Movement.h"

#include <algorithm>

namespace text::layout {
namespace {

struct Sample {
  const char* name;
  std::string text;
  double width;
  bool mixed = false;      // a line may hold both directions
  bool invisible = false;  // and characters of no width: places beside them look alike
};

class Places : public testing::TestWithParam<Sample> {};

TEST_P(Places, APointOfACaretGivesItsPlaceBack) {
  const Document document = MakeDocument(GetParam().text);
  TestView view(document, GetParam().width, 3000);
  const Content& content = document.content();
  ASSERT_EQ(view.scrollMaximum(), 0) << "the sample must be visible as a whole";
  for (Units at;; at = NextGrapheme(content, at)) {
    const QRectF caret = view.CaretRect({at});
    const CaretPlace hit = view.HitTest(caret.center());
    if (!GetParam().invisible) {
      EXPECT_EQ(hit.position.value(), at.value());
    }
    EXPECT_EQ(view.CaretRect(hit), caret) << at.value();
    if (at == content.size()) break;
  }
}

TEST_P(Places, LinesFollowEachOtherWithoutAGap) {
  const Document document = MakeDocument(GetParam().text);
  TestView view(document, GetParam().width, 3000);
  Units next;
  CaretPlace place{Units(0)};
  for (int lines = 1; lines < 10000; ++lines) {
    const Range line = view.LineAt(place);
    EXPECT_EQ(line.begin, next);
    if (line.end == document.content().size()) return;
    // Behind a wrap the next line begins at once, else behind one character that ends the line.
    const bool wraps = view.LineAt({line.end, Bias::kRight}).begin == line.end && !line.empty();
    next = wraps ? line.end : line.end + Units(1);
    place = {next};
    EXPECT_GT(view.TopOf(next), view.TopOf(line.begin));
  }
  FAIL() << "the lines do not end";
}

// From a place to the side until it goes no further; every position on the way. In one line the caret really goes
// there.
std::vector<int64_t> WalkVisually(ViewLayout& view, CaretPlace place, bool right, size_t limit, double least) {
  std::vector<int64_t> visited{place.position.value()};
  while (visited.size() <= limit) {
    const QRectF before = view.CaretRect(place);
    const Range line = view.LineAt(place);
    place = view.MoveVisually(place, right);
    if (place.position.value() == visited.back()) break;
    const QRectF now = view.CaretRect(place);
    if (view.LineAt(place) == line) {
      EXPECT_GE((now.left() - before.left()) * (right ? 1 : -1), least) << place.position.value();
    }
    visited.push_back(place.position.value());
  }
  return visited;
}

TEST_P(Places, EveryPlaceIsReachedVisuallyFromOneEndToTheOther) {
  const Document document = MakeDocument(GetParam().text);
  TestView view(document, GetParam().width, 3000);
  const Content& content = document.content();
  std::vector<int64_t> places{0};
  for (Units at; at < content.size(); places.push_back(at.value())) at = NextGrapheme(content, at);
  const bool forward = !view.IsRightToLeft(Breaks(0));
  const double least = GetParam().invisible ? 0 : 0.5;  // pixels
  std::vector<int64_t> there = WalkVisually(view, {Units(0)}, forward, places.size(), least);
  EXPECT_EQ(there.front(), places.front());
  EXPECT_EQ(there.back(), places.back());
  std::vector<int64_t> back = WalkVisually(view, {Units(there.back())}, !forward, places.size(), least);
  std::reverse(back.begin(), back.end());
  EXPECT_EQ(back, there);
  if (GetParam().mixed) std::sort(there.begin(), there.end());
  EXPECT_EQ(there, places);
}

TEST_P(Places, LinesDownAndUpAgainKeepTheColumn) {
  const Document document = MakeDocument(GetParam().text);
  TestView view(document, GetParam().width, 3000);
  const CaretPlace start{Units(0)};
  const double x = view.CaretRect(start).left();
  const CaretPlace down = view.MoveByLines(start, 3, x);
  EXPECT_EQ(view.MoveByLines(down, -3, x).position, start.position);
  const CaretPlace end = view.MoveByLines(start, 1000000, x);
  EXPECT_EQ(view.LineAt(end).end, document.content().size());
}

INSTANTIATE_TEST_SUITE_P(
    All, Places,
    testing::Values(
        Sample{"empty", "", 300}, Sample{"plain", "one two\nthree\n\nfour\n", 300},
        Sample{"crLf", "one\r\ntwo\r\n\r\nthree", 300},
        Sample{"wrapped", Repeated("some words that wrap ", 30) + "\nend", 200},
        Sample{"wrapsAnywhere", std::string(300, 'm') + "\nend", 120},
        Sample{"hebrew", std::string(kHebrew) + "\n" + kHebrew, 300},
        Sample{"hebrewWrapped", Repeated(std::string(kHebrew) + " ", 20), 200},
        Sample{"arabic", Repeated(std::string(kArabic) + " ", 8), 200, true},
        Sample{"latinWithHebrew", "abc " + std::string(kHebrew) + " def 123", 400, true},
        Sample{"hebrewWithLatin", std::string(kHebrew) + " abc def " + kHebrew + " 123 " + kHebrew, 200, true},
        Sample{"latinWrappedWithHebrew", Repeated("abc " + std::string(kHebrew) + " def 12 ", 6), 150, true},
        Sample{"hebrewWithNumbers", std::string(kHebrew) + " 12.5 " + kHebrew + " (3-4) 5", 150, true},
        Sample{"arabicNumbers", "abc \u0661\u0662 " + std::string(kArabic) + " 12% def", 300, true},
        Sample{"beginsAndEndsTheOtherWay", std::string("\u200E") + kHebrew + "\nabc " + kHebrew, 300, true, true},
        Sample{"isolates", "ab \u2067\u05D0\u05D1 cd\u2069 ef", 300, true, true},
        Sample{"hebrewWithTabs", "\u05D0\u05D1\t\u05D2\tab\t\u05D3", 400, true},
        Sample{"latinWithTabbedHebrew", "ab\t\u05D0\u05D1\t\u05D2 c", 400, true},
        Sample{"pointedHebrew", "\u05D1\u05BC\u05B0\u05E8\u05B5\u05D0 abc \u05E9\u05C1\u05B4", 300, true},
        Sample{"hebrewAndEmoji", "\u05D0\U0001F600\u05D1 \U0001F468\u200D\U0001F469\u200D\U0001F467 ab", 300, true},
        Sample{"marks", "e\u0301a\u0323\u0301 o\u0308\nu\u0308", 300},
        Sample{"emoji", "a\U0001F600b\U0001F1E9\U0001F1EA c \U0001F468\u200D\U0001F469\u200D\U0001F467 d", 300},
        Sample{"strayBytes", "a\xFF\xFE\x80z\nq\xC3", 300},
        Sample{"controls", std::string("a\0b\x01\x7F\x1B[0m\vend", 12), 300}, Sample{"tabs", "a\tb\t\tc\n\t\td", 400},
        Sample{"separators", "one\u2028two\u2029three\ffour\f", 300}),
    [](const auto& sample) { return std::string(sample.param.name); });

TEST(CaretPlaces, AtAWrapBothLinesHaveTheirSide) {
  const Document document = MakeDocument(std::string(200, 'm'));
  TestView view(document, 120);
  const Units wrap = view.LineAt({Units(0)}).end;
  const QRectF end = view.CaretRect({wrap, Bias::kLeft}), begin = view.CaretRect({wrap, Bias::kRight});
  EXPECT_LT(end.top(), begin.top());
  EXPECT_GT(end.left(), begin.left());
  EXPECT_EQ(view.LineAt({wrap, Bias::kLeft}).begin, Units(0));
  EXPECT_EQ(view.LineAt({wrap, Bias::kRight}).begin, wrap);
  EXPECT_EQ(view.HitTest({119, end.center().y()}).affinity, Bias::kLeft);
}

TEST(CaretPlaces, PointsOutsideGiveTheNearestPlace) {
  const Document document = MakeDocument("first line\nlast line");
  TestView view(document);
  EXPECT_EQ(view.HitTest({-50, -50}).position, Units(0));
  EXPECT_EQ(view.HitTest({5000, 5000}).position, document.content().size());
  EXPECT_EQ(view.HitTest({5000, 5}).position, Units(10));
  EXPECT_TRUE(view.IsOnText({10, 10}));
  EXPECT_FALSE(view.IsOnText({290, 10}));
  EXPECT_FALSE(view.IsOnText({10, 190}));
}

TEST(CaretPlaces, LinesAndPlacesGoOnAcrossSegments) {
  const Document document = MakeDocument(Repeated("word and word ", 3000));
  TestView view(document, 300, 200);
  const Content& content = document.content();
  const auto lineEnds = [&](CaretPlace place) { return view.LineAt(place); };
  Units at;
  int lines = 0;
  while (at < content.size()) {
    const Range line = lineEnds({at});
    ASSERT_EQ(line.begin, at);
    ASSERT_GT(line.end, at);
    at = line.end;
    ++lines;
  }
  const CaretPlace last = view.MoveByLines({Units(0)}, lines - 1, 4);
  EXPECT_EQ(view.LineAt(last).end, content.size());
  EXPECT_EQ(view.MoveByLines(last, -(lines - 1), 4).position, Units(0));
}

TEST(CaretPlaces, VisualSteppingCrossesSegmentsBothWays) {
  const Document document = MakeDocument(std::string(20000, 'x'));
  TestView view(document, 300, 200);
  for (const int64_t from : {8100, 7000}) {
    CaretPlace place{Units(from)};
    for (int i = 0; i < 1500; ++i) place = view.MoveVisually(place, true);
    EXPECT_EQ(place.position, Units(from + 1500));
    for (int i = 0; i < 1500; ++i) place = view.MoveVisually(place, false);
    EXPECT_EQ(place.position, Units(from));
  }
}

TEST(Ranges, RectanglesCoverTheirCharacters) {
  const std::string hebrew = kHebrew;
  for (const std::string& text :
       {"left to right " + hebrew + " and on " + hebrew + " until it wraps", hebrew + "\t\t1\ta",
        hebrew + "\t" + hebrew + "\t12 a\t" + hebrew, "a\t" + hebrew + "\t" + hebrew + "\tb"}) {
    const Document document = MakeDocument(text);
    TestView view(document, 260, 400);
    const Content& content = document.content();
    // The widths of two pieces add up to the whole's, wherever it is cut.
    const auto widthOf = [&](Range range) {
      double width = 0;
      for (const QRectF& rect : view.RangeRects(range)) width += rect.width();
      return width;
    };
    const double whole = widthOf({Units(1), content.size() - Units(1)});
    for (Units cut(1); cut < content.size(); cut = NextGrapheme(content, cut)) {
      EXPECT_NEAR(widthOf({Units(1), cut}) + widthOf({cut, content.size() - Units(1)}), whole, 6)
          << text << cut.value();
    }
    double sum = 0;
    for (Units at(0), next; at < content.size(); at = next) {
      next = NextGrapheme(content, at);
      sum += widthOf({at, next});
      EXPECT_GT(widthOf({at, next}), 1) << text << at.value();
    }
    EXPECT_NEAR(sum, widthOf(content.all()), 6) << text;
  }
}

}  // namespace
}  // namespace text::layout
