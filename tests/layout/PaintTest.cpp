#include "LayoutTesting.h"

#include <set>

namespace text::layout {
namespace {

PaintOptions Options(bool dark = false) {
  PaintOptions options;
  for (const auto group : {QPalette::Active, QPalette::Inactive}) {
    options.palette.setColor(group, QPalette::Base, dark ? QColor(20, 20, 20) : QColor(255, 255, 255));
    options.palette.setColor(group, QPalette::Text, dark ? QColor(230, 230, 230) : QColor(0, 0, 0));
    options.palette.setColor(group, QPalette::HighlightedText, QColor(255, 255, 0));
  }
  options.palette.setColor(QPalette::Active, QPalette::Highlight, QColor(0, 0, 200));
  options.palette.setColor(QPalette::Inactive, QPalette::Highlight, QColor(90, 90, 90));
  return options;
}

int CountOf(const QImage& image, QColor color, QRect area = {}) {
  if (area.isNull()) area = image.rect();
  int count = 0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) count += image.pixelColor(x, y) == color;
  }
  return count;
}

TEST(Paint, ColoursComeFromThePalette) {
  const Document document = MakeDocument("HHHH");
  TestView view(document);
  for (const bool dark : {false, true}) {
    const PaintOptions options = Options(dark);
    const QImage image = PaintToImage(view, options);
    EXPECT_EQ(image.pixelColor(250, 150), options.palette.color(QPalette::Base));
    EXPECT_GT(CountOf(image, options.palette.color(QPalette::Text)), 20);
    EXPECT_EQ(CountOf(image, Qt::magenta), 0) << "nothing is left unpainted";
  }
  PaintOptions options = Options();
  options.background = QColor(200, 255, 200);
  EXPECT_EQ(PaintToImage(view, options).pixelColor(250, 150), QColor(200, 255, 200));
}

TEST(Paint, TheSelectionIsHighlightedWithItsBreak) {
  const Document document = MakeDocument("HHHH\nHHHH\n\nHHHH");
  TestView view(document);
  PaintOptions options = Options();
  options.selection = {Units(2), Units(10)};
  const QImage image = PaintToImage(view, options);
  const QColor highlight(0, 0, 200);
  const QRectF second = view.CaretRect({Units(9)}), empty = view.CaretRect({Units(10)});
  EXPECT_EQ(image.pixelColor(int(second.left()) + 3, int(second.center().y())), highlight) << "the break";
  EXPECT_NE(image.pixelColor(int(empty.left()) + 3, int(empty.center().y())), highlight) << "not selected any more";
  const QRectF first = view.CaretRect({Units(2)});
  const QRect before(0, 0, int(first.left()) - 1, int(first.bottom()));
  EXPECT_EQ(CountOf(image, highlight, before), 0);
  EXPECT_GT(CountOf(image, QColor(255, 255, 0)), 20) << "highlighted text";
  options.selectionActive = false;
  EXPECT_GT(CountOf(PaintToImage(view, options), QColor(90, 90, 90)), 200);
}

// Formats that draw outside the line's own height keep the highlighted colour.
TEST(Paint, SelectedTextTakesTheHighlightedColourWhateverItsFormat) {
  Document document = MakeDocument("HHHHHHHH");
  CharFormatPatch patch;
  patch.offset = 225;
  patch.color = Color{0x0000FF};
  patch.background = Color{0x00FF00};
  patch.setFlags = kUnderline | kStrikeThru;
  document.PatchChars({Units(2), Units(6)}, patch, {});
  TestView view(document);
  PaintOptions options = Options();
  EXPECT_GT(CountOf(PaintToImage(view, options), QColor(255, 0, 0)), 20);
  EXPECT_GT(CountOf(PaintToImage(view, options), QColor(0, 255, 0)), 100);
  options.selection = {Units(0), Units(8)};
  const QImage image = PaintToImage(view, options);
  EXPECT_EQ(CountOf(image, QColor(255, 0, 0)), 0);
  EXPECT_EQ(CountOf(image, QColor(0, 255, 0)), 0);
  EXPECT_EQ(CountOf(image, QColor(0, 0, 0)), 0);
}

// A part selected looks as it does when everything is, pixel for pixel away from its edges.
TEST(Paint, BackgroundsStandBehindTheirOwnText) {
  Document document = MakeDocument("ab cd\u2028ab cd\u2028ab cd\u2028ab cd");
  CharFormatPatch patch;
  for (const uint32_t rgb : {0x0000F1u, 0x00F200u, 0xF30000u}) {
    patch.background = Color{rgb};
    const int line = rgb == 0x0000F1u ? 0 : rgb == 0x00F200u ? 1 : 3;
    document.PatchChars({Units(6 * line + 1), Units(6 * line + 4)}, patch, {});
  }
  TestView view(document);
  const QImage image = PaintToImage(view, Options());
  const QColor colours[] = {QColor(0xF1, 0, 0), QColor(0, 0xF2, 0), QColor(), QColor(0, 0, 0xF3)};
  for (int line = 0; line < 4; ++line) {
    const QRect row = view.CaretRect({Units(6 * line)}).toAlignedRect().adjusted(-2, 2, 200, -2);
    for (int other : {0, 1, 3}) {
      EXPECT_EQ(CountOf(image, colours[other], row) > 40, other == line) << line << " " << other;
    }
  }
}

TEST(Paint, APartlySelectedLineShowsTheSameGlyphs) {
  const Document document = MakeDocument("some words in a row");
  TestView view(document);
  PaintOptions none = Options(), part = Options();
  part.selection = {Units(5), Units(10)};
  const QImage plain = PaintToImage(view, none), selected = PaintToImage(view, part);
  const int left = int(view.CaretRect({Units(5)}).left()), right = int(view.CaretRect({Units(10)}).left());
  for (int y = 0; y < plain.height(); ++y) {
    for (int x = 0; x < plain.width(); ++x) {
      if (x >= left - 1 && x <= right + 1) continue;
      ASSERT_EQ(plain.pixel(x, y), selected.pixel(x, y)) << x << ", " << y;
    }
  }
}

TEST(Paint, OnlyTheClipIsTouched) {
  const Document document = MakeDocument(Paragraphs(30));
  TestView view(document);
  QImage image(300, 200, QImage::Format_RGB32);
  image.fill(Qt::magenta);
  QPainter painter(&image);
  const QRect clip(50, 40, 100, 60);
  view.Paint(painter, clip, Options());
  painter.end();
  EXPECT_EQ(CountOf(image, Qt::magenta), 300 * 200 - clip.width() * clip.height());
  const QImage whole = PaintToImage(view, Options());
  EXPECT_EQ(image.copy(clip), whole.copy(clip));
}

TEST(Paint, TheCaretIsWhereTheSelectionIs) {
  const Document document = MakeDocument("caret\n\nhere");
  TestView view(document);
  PaintOptions options = Options();
  const QImage without = PaintToImage(view, options);
  options.showCaret = true;
  for (const int64_t at : {0, 3, 6, 7, 11}) {
    options.selection = {Units(at), Units(at)};
    const QRectF rect = view.CaretRect({Units(at)});
    for (const bool overtype : {false, true}) {
      options.overtype = overtype;
      const QImage with = PaintToImage(view, options);
      QRect changed;
      for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 300; ++x) {
          if (with.pixel(x, y) != without.pixel(x, y)) changed |= QRect(x, y, 1, 1);
        }
      }
      EXPECT_NEAR(changed.left(), rect.left(), 1) << at;
      EXPECT_NEAR(changed.center().y(), rect.center().y(), 3) << at;
      const bool onCharacter = at == 0 || at == 3 || at == 7;
      EXPECT_EQ(changed.width() > 3, overtype && onCharacter) << at;
    }
  }
}

TEST(Preedit, IsShownInPlaceAndLeavesPositionsAlone) {
  Document document = MakeDocument("one two\nthree");
  TestView view(document);
  const QImage before = PaintToImage(view, Options());
  const double x4 = view.CaretRect({Units(4)}).left(), x6 = view.CaretRect({Units(6)}).left();
  Preedit preedit{Units(4), "compose", 3, {}};
  view.SetPreedit(preedit);
  EXPECT_NE(PaintToImage(view, Options()), before);
  EXPECT_GT(view.CaretRect({Units(4)}).left(), x4 + 10) << "behind three characters of it";
  EXPECT_GT(view.CaretRect({Units(6)}).left(), x6 + 40);
  for (const int64_t at : {0, 2, 6, 7, 9, 13}) {
    EXPECT_EQ(view.HitTest(view.CaretRect({Units(at)}).center()).position, Units(at)) << at;
  }
  EXPECT_EQ(view.LineAt({Units(2)}), (Range{Units(0), Units(7)}));
  view.SetPreedit(std::nullopt);
  EXPECT_EQ(PaintToImage(view, Options()), before);
}

TEST(Preedit, InAnEmptyTextAndAtEveryEdge) {
  for (const char* text : {"", "a", "\n", "one\n\ntwo"}) {
    const Document document = MakeDocument(text);
    for (int64_t at = 0; at <= document.content().size().value(); ++at) {
      TestView view(document);
      const double x = view.CaretRect({Units(at)}).left();
      view.SetPreedit(Preedit{Units(at), "\u3042x", 2, {}});
      EXPECT_GT(view.CaretRect({Units(at)}).left(), x + 5) << text << at;
    }
  }
}

// Black letters of a document are no black ones on a dark desktop, but on shading and on paper.
TEST(Paint, ColoursAreLegibleOnDarkPaper) {
  CharFormat black, marked, orange;
  black.color = Color{0};
  marked = orange = black;
  marked.background = Color{0x00FFFF};
  orange.color = Color{0x0080FF};
  RichText text;
  Document document = text.Add("HHHH", {}, black).Add("HHHH", {}, marked).Add("HHHH", {}, orange).Finish();
  TestView view(document);
  const auto row = [&](int paragraph) { return view.CaretRect({Units(5 * paragraph)}).toRect().adjusted(0, 0, 60, 0); };
  for (const bool printing : {false, true}) {
    PaintOptions options = Options(true);
    options.printing = printing;
    const QImage image = PaintToImage(view, options);
    EXPECT_EQ(CountOf(image, Qt::black, row(0)) == 0, !printing);
    EXPECT_EQ(CountOf(image, Qt::white, row(0)) > 20, !printing);
    EXPECT_GT(CountOf(image, Qt::black, row(1)), 20);
    EXPECT_GT(CountOf(image, QColor(255, 128, 0), row(2)), 20);
  }
  EXPECT_GT(CountOf(PaintToImage(view, Options(false)), Qt::black, row(0)), 20);
  ParaFormat boxed;
  boxed.box = {ParaBox::kBottom, 30, 0, Color{0}, {}};
  Document line = RichText().Add("", boxed).Finish();
  TestView lineView(line);
  EXPECT_EQ(CountOf(PaintToImage(lineView, Options(true)), Qt::black), 0);
}

struct BoxCase {
  const char* name;
  uint8_t borders;
  int indent;  // of the second paragraph
  int lines;   // across a column beside the text
};

TEST(Boxes, NeighboursShareOne) {
  constexpr uint8_t kAll = ParaBox::kLeft | ParaBox::kTop | ParaBox::kRight | ParaBox::kBottom;
  for (const BoxCase& c : {BoxCase{"one box", kAll, 0, 2},
                           {"between", kAll | ParaBox::kBetween, 0, 3},
                           {"of different indents", kAll, 300, 4},
                           {"a line below", ParaBox::kBottom, 0, 1},
                           {"only shaded", 0, 0, 0}}) {
    ParaFormat format, plain;
    format.box = {c.borders, 30, 45, Color{0x0000FF}, Color{0x00FFFF}};
    format.spaceBefore = format.spaceAfter = plain.spaceBefore = 150;
    RichText text;
    text.Add("H", plain).Add("H", format);
    format.leftIndent = c.indent;
    Document document = text.Add("H", format).Add("H", plain).Finish();
    TestView view(document);
    const QImage image = PaintToImage(view, Options(true));
    int lines = 0, shaded = 0;
    for (int y = 1; y < 200; ++y) {
      lines += image.pixelColor(200, y) == Qt::red && image.pixelColor(200, y - 1) != Qt::red;
      shaded += image.pixelColor(200, y) == Qt::yellow;
    }
    EXPECT_EQ(lines, c.lines) << c.name;
    EXPECT_GT(shaded, 30) << c.name;
    EXPECT_EQ(image.pixelColor(200, 10), QColor(20, 20, 20)) << c.name;
    const QRect first = view.CaretRect({Units(2)}).toRect().adjusted(1, 0, 12, 0);
    EXPECT_GT(CountOf(image, Qt::black, first), 5) << "dark text on light shading: " << c.name;
    const double inset = c.borders & ParaBox::kLeft ? 5 : 0;
    EXPECT_EQ(view.CaretRect({Units(2)}).left(), 4 + inset) << c.name;
  }
}

}  // namespace
}  // namespace text::layout
