#include "LayoutTesting.h"
#include "text/layout/ScrollModel.h"

#include <random>

namespace text::layout {
namespace {

struct Shape {
  const char* name;
  std::string text;
};

class Scrolling : public testing::TestWithParam<Shape> {
 protected:
  Document document_ = MakeDocument(GetParam().text);
  TestView view_{document_};
};

TEST_P(Scrolling, BothEndsAreReachedExactly) {
  const int maximum = view_.scrollMaximum();
  ASSERT_GT(maximum, 0);
  ASSERT_LE(maximum, 1 << 30);
  EXPECT_EQ(view_.scrollValue(), 0);
  EXPECT_DOUBLE_EQ(view_.TopOf(Units(0)), 4);
  view_.SetScrollValue(maximum);
  EXPECT_EQ(view_.scrollValue(), maximum);
  EXPECT_EQ(view_.VisibleRange().end, document_.content().size());
  EXPECT_NEAR(view_.CaretRect({document_.content().size()}).bottom(), 200 - 4, 1);
  EXPECT_EQ(view_.ScrollBy(100), 0);
  EXPECT_EQ(view_.scrollMaximum(), maximum);
  view_.SetScrollValue(0);
  EXPECT_DOUBLE_EQ(view_.TopOf(Units(0)), 4);
}

TEST_P(Scrolling, TheValueGrowsWithTheTextAndCanBeSetBack) {
  const int maximum = view_.scrollMaximum();
  Units last;
  for (int step = 0; step <= 40; ++step) {
    const int value = static_cast<int>(int64_t{maximum} * step / 40);
    view_.SetScrollValue(value);
    EXPECT_NEAR(view_.scrollValue(), value, 1);
    EXPECT_GE(view_.VisibleRange().begin, last);
    last = view_.VisibleRange().begin;
  }
}

TEST_P(Scrolling, PixelsDownAndBackUpReturnToTheSamePlace) {
  view_.SetScrollValue(view_.scrollMaximum() / 3);
  const Units first = view_.VisibleRange().begin;
  const double top = view_.TopOf(first);
  double moved = 0;
  for (const double pixels : {1.0, 16.0, 37.0, 150.0, 555.0}) moved += view_.ScrollBy(pixels);
  EXPECT_DOUBLE_EQ(moved, 759);
  int value = view_.scrollValue();
  for (const double pixels : {-555.0, -37.0, -1.0, -16.0, -150.0}) {
    moved += view_.ScrollBy(pixels);
    EXPECT_LE(view_.scrollValue(), value);
    value = view_.scrollValue();
  }
  EXPECT_NEAR(moved, 0, 1e-9);
  EXPECT_EQ(view_.VisibleRange().begin, first);
  EXPECT_NEAR(view_.TopOf(first), top, 1e-6);
}

TEST_P(Scrolling, EditsOutsideTheViewportDoNotMoveIt) {
  view_.SetScrollValue(view_.scrollMaximum() / 2);
  view_.ScrollBy(3);
  const Range visible = view_.VisibleRange();
  const Units mark = visible.begin + Units(visible.size().value() / 2);
  const double top = view_.TopOf(mark), firstTop = view_.TopOf(visible.begin);
  Units shift;
  const auto expectStill = [&](const char* what) {
    // Without any space the borders move along with what is typed before, and the lines' begins with them; the
    // character at the top stays in the top line even so.
    EXPECT_EQ(view_.LineAt({visible.begin + shift}).begin, view_.VisibleRange().begin) << what;
    EXPECT_NEAR(view_.TopOf(visible.begin + shift), firstTop, 1e-6) << what;
    if (std::string_view(GetParam().name) == "longLineWithoutSpace") return;
    EXPECT_NEAR(view_.TopOf(mark + shift), top, 1e-6) << what;
  };
  const bool oneLine = document_.content().breaks() == Breaks(0);
  Insert(document_, Units(0), oneLine ? "new" : "new\nlines\nabove");
  shift = document_.content().size() - MakeContent(GetParam().text).size();
  expectStill("inserted above");
  Remove(document_, {Units(0), Units(1)});
  shift -= Units(1);
  expectStill("removed above");
  Insert(document_, document_.content().size(), "\nbelow");
  expectStill("inserted below");
  document_.Undo();
  expectStill("undone below");
}

TEST_P(Scrolling, BlocksHeldAreBounded) {
  const int maximum = view_.scrollMaximum();
  for (int step = 0; step <= 1000; ++step) {
    view_.SetScrollValue(static_cast<int>(int64_t{maximum} * step / 1000));
    view_.VisibleRange();
    ASSERT_LE(view_.cachedBlocks(), 512u);
  }
}

INSTANTIATE_TEST_SUITE_P(All, Scrolling,
                         testing::Values(Shape{"short", Paragraphs(120)}, Shape{"manyLines", Paragraphs(5000)},
                                         Shape{"longLine", Repeated("some more words ", 12000)},
                                         Shape{"longLineWithoutSpace", std::string(60000, 'n')},
                                         Shape{"both", Paragraphs(400) + Repeated("in one line ", 5000) + "\n" +
                                                           Paragraphs(400)}),
                         [](const auto& sample) { return std::string(sample.param.name); });

TEST(Scroll, AShortDocumentIsMeasuredExactly) {
  const Document document = MakeDocument(Paragraphs(100));
  TestView view(document);
  const int maximum = view.scrollMaximum();
  EXPECT_EQ(static_cast<int>(view.ScrollBy(1e6 / 200) + view.ScrollBy(5000) + view.ScrollBy(5000)), maximum);
  for (const int value : {10, 333, 1000}) {
    view.SetScrollValue(0);
    view.ScrollBy(value);
    EXPECT_EQ(view.scrollValue(), value);
  }
}

TEST(Scroll, TextThatFitsDoesNotScroll) {
  Document document = MakeDocument("one\ntwo");
  TestView view(document);
  EXPECT_EQ(view.scrollMaximum(), 0);
  EXPECT_EQ(view.ScrollBy(50), 0);
  EXPECT_EQ(view.ScrollBy(-50), 0);
  EXPECT_DOUBLE_EQ(view.TopOf(Units(0)), 4);
  Insert(document, Units(0), Paragraphs(50));
  EXPECT_GT(view.scrollMaximum(), 0);
  EXPECT_DOUBLE_EQ(view.TopOf(Units(0)), 4) << "what is inserted at the top is seen there";
  view.SetScrollValue(view.scrollMaximum());
  Remove(document, {Units(4), document.content().size()});
  EXPECT_EQ(view.scrollMaximum(), 0);
  EXPECT_DOUBLE_EQ(view.TopOf(Units(0)), 4) << "the text is shorter than the viewport again";
}

TEST(Scroll, FarJumpsAreBoundedAndStopAtTheEnds) {
  const Document document = MakeDocument(Paragraphs(20000));
  TestView view(document);
  EXPECT_GT(view.ScrollBy(100000), 0);
  EXPECT_GT(view.VisibleRange().begin, Units(0));
  view.ScrollBy(1e12);
  EXPECT_EQ(view.scrollValue(), view.scrollMaximum());
  view.ScrollBy(-1e12);
  EXPECT_EQ(view.scrollValue(), 0);
  EXPECT_LE(view.cachedBlocks(), 512u);
}

TEST(Scroll, AWidthThereAndBackKeepsTheTopLine) {
  const Document document = MakeDocument(Paragraphs(500));
  TestView view(document);
  view.SetScrollValue(view.scrollMaximum() / 2);
  const Units first = view.VisibleRange().begin;
  const double top = view.TopOf(first);
  for (int width = 300; width > 150; width -= 7) {
    view.SetViewport({static_cast<double>(width), 200});
    const Range line = view.LineAt({view.VisibleRange().begin});
    EXPECT_LE(line.begin, first);
    EXPECT_GE(line.end, first);
  }
  view.SetViewport({300, 200});
  EXPECT_EQ(view.VisibleRange().begin, first);
  EXPECT_NEAR(view.TopOf(first), top, 1e-6);
}

TEST(Scroll, EnsureVisibleScrollsAsLittleAsNeeded) {
  const Document document = MakeDocument(Paragraphs(3000));
  TestView view(document);
  const Content& content = document.content();
  EXPECT_FALSE(view.EnsureVisible({Units(5)}));
  for (const int64_t paragraph : {2000, 1999, 2004, 2003, 10, 2999, 0}) {
    const CaretPlace place{content.ParagraphStart(Breaks(paragraph))};
    view.EnsureVisible(place, 20);
    const QRectF rect = view.CaretRect(place);
    EXPECT_GE(rect.top(), std::min(20.0, 4.0)) << paragraph;
    EXPECT_LE(rect.bottom(), 200) << paragraph;
    EXPECT_FALSE(view.EnsureVisible(place, 20)) << paragraph;
  }
  view.EnsureVisible({content.ParagraphStart(Breaks(1000))});
  view.EnsureVisible({content.ParagraphStart(Breaks(1500))});
  EXPECT_GT(view.TopOf(content.ParagraphStart(Breaks(1500))), 150) << "from above it comes in at the lower edge";
  view.EnsureVisible({content.ParagraphStart(Breaks(900))});
  EXPECT_LT(view.TopOf(content.ParagraphStart(Breaks(900))), 50);
}

TEST(Scroll, ATallFirstLineIsSeenFromItsTopWhereTheCaretThenIsSeenToo) {
  for (const bool fits : {true, false}) {
    RichText text;
    CharFormat chars;
    EmbeddedObject object;
    object.width = 900;
    object.height = (fits ? 150 : 400) * 15;
    chars.object = text.formats().Add(object);
    text.Add("\uFFFC", {}, chars);
    for (int i = 0; i < 500; ++i) text.Add("line");
    const Document document = text.Finish();
    const Content& content = document.content();
    TestView view(document);
    for (const int64_t from : {3, 400}) {  // the first line is in sight, or far away
      for (const CaretPlace place : {CaretPlace{Units(0)}, {Units(1)}}) {
        view.SetScrollValue(view.scrollMaximum());
        view.EnsureVisible({content.ParagraphStart(Breaks(from))});
        EXPECT_TRUE(view.EnsureVisible(place, 4));
        EXPECT_EQ(view.scrollValue() == 0, fits) << from;
        const QRectF rect = view.CaretRect(place);
        EXPECT_TRUE(rect.bottom() > 0 && rect.bottom() <= 200) << from << " " << rect.bottom();
        EXPECT_FALSE(view.EnsureVisible(place, 4)) << from;
      }
    }
  }
}

TEST(Scroll, TheEstimateGrowsWithThePosition) {
  const Document document = MakeDocument(Paragraphs(2000) + Repeated("long line ", 5000));
  Blocks blocks(document);
  View view(blocks);
  view.SetSize({300, 200}, 4);
  blocks.SetWidth(292);
  ScrollModel scroll(blocks, view);
  scroll.Maximum();
  double last = -1;
  for (int64_t at = 0; at <= document.content().size().value(); at += 37) {
    const double height = scroll.HeightBefore(Units(at));
    EXPECT_GT(height, last);
    last = height;
  }
}

}  // namespace
}  // namespace text::layout
