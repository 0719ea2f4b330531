// A layout that lived through edits shows what a fresh one shows.
#include "LayoutTesting.h"
#include "text/Movement.h"

#include <random>

namespace text::layout {
namespace {

// Everything visible is where a fresh layout would put it, given the same first line at the same height.
void ExpectLikeFresh(TestView& view, const Document& document) {
  const Range visible = view.VisibleRange();
  TestView fresh(document);
  fresh.SetZoom(view.zoom());
  fresh.EnsureVisible({visible.begin});
  fresh.ScrollBy(fresh.TopOf(visible.begin) - view.TopOf(visible.begin));
  ASSERT_EQ(fresh.VisibleRange().begin, visible.begin);
  ASSERT_EQ(fresh.VisibleRange().end, visible.end);
  EXPECT_EQ(fresh.scrollMaximum(), view.scrollMaximum());
  for (Units at = visible.begin; at < visible.end; at = NextGrapheme(document.content(), at)) {
    const QRectF expected = fresh.CaretRect({at}), actual = view.CaretRect({at});
    ASSERT_NEAR(expected.top(), actual.top(), 1e-6) << at.value();
    ASSERT_EQ(expected.left(), actual.left()) << at.value();
    ASSERT_EQ(expected.height(), actual.height()) << at.value();
  }
}

class RandomEdits : public testing::TestWithParam<unsigned> {
 protected:
  Units Somewhere(const Document& document, TestView& view) {
    const int64_t size = document.content().size().value();
    // Half of the edits where they are seen.
    const Range visible = view.VisibleRange();
    const int64_t at =
        random_() % 2 ? visible.begin.value() + int64_t(random_() % 300) : int64_t(random_() % (size + 1));
    return document.content().Snap(Units(std::min(at, size)), Bias::kLeft);
  }
  void Edit(Document& document, TestView& view) {
    static const char* const kTexts[] = {"x",    "word ",        "\n",     "two\nlines\n", "\r",
                                         "\xFF", "\u05E9\u05DC", "\u2028", "\t",           "\U0001F600"};
    const Units at = Somewhere(document, view);
    const Units end = std::min(document.content().size(), at + Units(int64_t(random_() % 60)));
    CharFormatPatch bigger;
    bigger.halfPoints = uint16_t(12 + random_() % 40);
    bigger.offset = random_() % 3 == 0 ? 60 : 0;
    ParaFormatPatch paragraph;
    paragraph.alignment = Alignment(random_() % 4);
    paragraph.leftIndent = int(random_() % 1000);
    switch (random_() % 8) {
      case 0:
        return Remove(document, {at, end});
      case 1:
        return document.PatchChars({at, end}, bigger, {at, end});
      case 2:
        return document.PatchParagraphs({at, end}, paragraph, {at, end});
      case 3:
        document.Undo();
        return;
      case 4:
        document.Redo();
        return;
      default:
        return Insert(document, at, kTexts[random_() % std::size(kTexts)]);
    }
  }
  std::mt19937 random_{GetParam()};
};

TEST_P(RandomEdits, LeaveTheViewAsAFreshOneWouldBe) {
  const bool longLine = GetParam() % 3 == 0;
  Document document =
      MakeDocument(longLine ? Repeated("a long line of words ", 2500) : Paragraphs(GetParam() % 2 ? 60 : 600));
  TestView view(document);
  view.SetScrollValue(view.scrollMaximum() / 2);
  for (int step = 0; step < 40; ++step) {
    for (unsigned burst = random_() % 3; burst > 0; --burst) Edit(document, view);
    Edit(document, view);
    if (random_() % 5 == 0) view.ScrollBy(double(random_() % 300) - 150);
    ExpectLikeFresh(view, document);
    if (HasFatalFailure() || HasNonfatalFailure()) FAIL() << "seed " << GetParam() << ", step " << step;
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEdits, testing::Range(1u, 13u));

TEST(Updates, AChangeNobodyRemembersIsTakenIn) {
  Document document = MakeDocument(Paragraphs(1000));
  TestView view(document);
  view.SetScrollValue(view.scrollMaximum());
  document.Reset(MakeContent("short"));
  EXPECT_EQ(view.scrollMaximum(), 0);
  EXPECT_EQ(view.VisibleRange(), (Range{Units(0), Units(5)}));
  ExpectLikeFresh(view, document);
}

TEST(Updates, AKeyLaysOutNothingButItsParagraph) {
  Document document = MakeDocument(Paragraphs(200));
  TestView view(document);
  const Units at = document.content().ParagraphStart(Breaks(3));
  const QImage before = PaintToImage(view);
  const size_t held = view.cachedBlocks();
  Insert(document, at, "k");
  view.Update();
  EXPECT_EQ(view.cachedBlocks(), held - 1);
  EXPECT_NE(PaintToImage(view), before);
  EXPECT_EQ(view.cachedBlocks(), held);
}

TEST(Updates, UndoAndRedoChangeWhatIsShown) {
  Document document = MakeDocument(Paragraphs(20));
  TestView view(document);
  const QImage before = PaintToImage(view);
  Insert(document, Units(3), "something\nelse");
  const QImage after = PaintToImage(view);
  EXPECT_NE(after, before);
  document.Undo();
  EXPECT_EQ(PaintToImage(view), before);
  document.Redo();
  EXPECT_EQ(PaintToImage(view), after);
}

TEST(Updates, TheEmptyTextTakesTheFormatItIsGiven) {
  Document document;
  TestView view(document);
  const double small = view.CaretRect({Units(0)}).height();
  CharFormat big;
  big.halfPoints = 72;
  ParaFormat centred;
  centred.alignment = Alignment::kCenter;
  document.SetEmptyFormat(document.formats().Intern(big), document.formats().Intern(centred));
  const QRectF caret = view.CaretRect({Units(0)});
  EXPECT_GT(caret.height(), 2.5 * small);
  EXPECT_NEAR(caret.left(), 150, 1);
}

TEST(Updates, ZoomKeepsTheTopLineAndScalesTheText) {
  const Document document = MakeDocument(Paragraphs(600));
  TestView view(document);
  view.SetScrollValue(view.scrollMaximum() / 2);
  const Units first = view.VisibleRange().begin;
  const double height = view.CaretRect({first}).height();
  view.SetZoom(2);
  const Range line = view.LineAt({view.VisibleRange().begin});
  EXPECT_LE(line.begin, first);
  EXPECT_GE(line.end, first);
  EXPECT_NEAR(view.CaretRect({first}).height(), 2 * height, 2);
}

}  // namespace
}  // namespace text::layout
