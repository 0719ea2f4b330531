// Tables' rows: where cells stand, and how carets go through them.
#include "LayoutTesting.h"
#include "text/outline/TableRows.h"

namespace text::layout {
namespace {

// "before" / two rows of three cells / "after". Offsets:
//   before 0-6, one 7-10, two 11-14 + lines 15-20, three 21-26, a 27-28, (empty) 29, c 30-31, after 32-37
Document Table() {
  const TableRow row = MakeRow({1500, 3000, 4500});
  return RichText()
      .Add("before")
      .AddRow({"one", "two|lines", "three"}, row)
      .AddRow({"a", "", "c"}, row)
      .Add("after")
      .Finish();
}

struct Placed {
  int64_t position;
  double x;  // pixels from the text area's left edge
};

TEST(Tables, CellsStandSideBySide) {
  Document document = Table();
  TestView view(document, 400, 400);
  for (const Placed& place : {Placed{7, 6}, {11, 106}, {15, 106}, {21, 206}, {27, 6}, {29, 106}, {30, 206}, {32, 0}}) {
    EXPECT_NEAR(view.CaretRect({Units(place.position)}).left() - 4, place.x, 1.01) << place.position;
  }
  EXPECT_EQ(view.TopOf(Units(7)), view.TopOf(Units(11)));
  EXPECT_EQ(view.TopOf(Units(7)), view.TopOf(Units(21)));
  EXPECT_GT(view.TopOf(Units(15)), view.TopOf(Units(11)));
  EXPECT_GT(view.TopOf(Units(27)), view.TopOf(Units(15))) << "the next row is below the highest cell";
  EXPECT_EQ(view.TopOf(Units(27)), view.TopOf(Units(30)));
}

TEST(Tables, PointsFindTheirCell) {
  Document document = Table();
  TestView view(document, 400, 400);
  for (const int64_t at : {7, 10, 11, 14, 15, 20, 21, 26, 27, 29, 30, 31, 33}) {
    EXPECT_EQ(view.HitTest(view.CaretRect({Units(at)}).center()).position, Units(at));
  }
  const double lower = view.CaretRect({Units(15)}).center().y();
  EXPECT_EQ(view.HitTest({4 + 90, lower}).position, Units(10)) << "below the only line of the first cell";
  EXPECT_EQ(view.HitTest({399, lower}).position, Units(26)) << "right of the table";
}

struct Step {
  const char* name;
  int64_t from;
  int lines;
  int64_t to;
};

TEST(Tables, LinesGoWithinTheCellThenToTheNextRow) {
  Document document = Table();
  TestView view(document, 400, 400);
  for (const Step& step : {Step{"within", 11, 1, 15},
                           {"out of a high cell", 15, 1, 29},
                           {"out of a low cell", 7, 1, 27},
                           {"into the row above", 29, -1, 15},
                           {"up beside it", 30, -1, 21},
                           {"out below", 30, 1, 37},
                           {"in from above", 0, 1, 7},
                           {"in from below", 32, -1, 27}}) {
    const double x = view.CaretRect({Units(step.from)}).left();
    EXPECT_EQ(view.MoveByLines({Units(step.from)}, step.lines, x).position, Units(step.to)) << step.name;
  }
  CaretPlace place{Units(0)};
  for (int64_t next = 1; next <= 37; ++next) {
    place = view.MoveVisually(place, true);
    EXPECT_EQ(place.position, Units(next));
  }
  for (int64_t next = 36; next >= 0; --next) {
    place = view.MoveVisually(place, false);
    EXPECT_EQ(place.position, Units(next));
  }
}

struct Width {
  const char* name;
  TableRow row;
  std::vector<double> lefts;  // of three cells
};

TEST(Tables, EdgesStayInTheTextArea) {
  TableRow joined = MakeRow({1500, 3000, 4200}), undefined;
  joined.cells[1].joinsLeft = true;
  undefined.gap = 15;
  const Width widths[] = {
      {"as defined", MakeRow({600, 3000, 4200}), {6, 46, 206}},
      {"without definition", undefined, {2, 99, 196}},
      {"scaled down", MakeRow({2910, 5820, 8730}), {6, 103, 200}},
      {"shifted in", MakeRow({1200, 2700, 3900}, -300), {6, 106, 206}},
      {"fewer definitions", MakeRow({1500}), {6, 103, 200}},
      {"not ascending", MakeRow({3000, 1500, 4200}), {6, 201, 207}},
      {"joined", joined, {6, 6, 206}},
  };
  for (const Width& width : widths) {
    Document document = RichText().AddRow({"a", "b", "c"}, width.row).Finish();
    TestView view(document, 300, 200);
    for (size_t i = 0; i < 3; ++i) {
      const double left = view.CaretRect({Units(static_cast<int64_t>(2 * i))}).left() - 4;
      EXPECT_NEAR(left, width.lefts[i], 3.5) << width.name << " " << i;
      EXPECT_LE(left, 292);
    }
  }
}

TEST(Tables, ATableWithinACellIsPartOfIt) {
  RichText text;
  ParaFormat outer, inner;
  outer.row = text.formats().Intern(MakeRow({3000, 4500}));
  TableRow nested = MakeRow({1000, 2000});
  nested.level = 2;
  inner.row = text.formats().Intern(nested);
  const auto mark = [](ParaFormat format, RowMark ends) {
    format.rowMark = ends;
    return format;
  };
  text.Add("p", outer).Add("m", mark(inner, RowMark::kCellEnd)).Add("n", mark(inner, RowMark::kRowEnd));
  text.Add("q", mark(outer, RowMark::kCellEnd)).Add("r", mark(outer, RowMark::kRowEnd)).Add("after");
  Document document = text.Finish();
  TestView view(document, 400, 400);
  const auto top = [&](int64_t at) { return view.TopOf(Units(at)); };
  EXPECT_EQ(top(2), top(4));
  EXPECT_GT(top(2), top(0));
  EXPECT_GT(top(6), top(4));
  EXPECT_EQ(top(8), top(0));
  EXPECT_GT(view.CaretRect({Units(4)}).left(), view.CaretRect({Units(2)}).left() + 40);
  EXPECT_EQ(view.MoveByLines({Units(4)}, 1, view.CaretRect({Units(4)}).left()).position, Units(7));
  const auto cell = CellOf(document.content(), Units(4));
  ASSERT_TRUE(cell);
  EXPECT_EQ(cell->cells, (std::vector<Range>{{Units(0), Units(7)}, {Units(8), Units(9)}}));
}

TEST(Tables, AbsurdOnesAreShownAndScroll) {
  std::vector<std::string> cells(1024, "cell with some words");
  std::string high = "line";
  for (int i = 0; i < 900; ++i) high += "|line";
  std::string tooMany = "x";
  for (int i = 0; i < 5000; ++i) tooMany += "|x";
  for (const auto& row : {cells, {high, "b"}, {tooMany, "b"}, {std::string(300000, 'w'), "b"}}) {
    Document document = RichText().AddRow(row, MakeRow({2000, 4000})).Add("end").Finish();
    TestView view(document);
    const Units end = document.content().size();
    view.SetScrollValue(view.scrollMaximum());
    EXPECT_EQ(view.VisibleRange().end, end);
    EXPECT_TRUE(view.EnsureVisible({Units(3)}));
    EXPECT_GE(view.CaretRect({Units(3)}).top(), 0);
    EXPECT_LT(view.ScrollBy(1e6), 1e6);
    Insert(document, Units(1), "typed");
    EXPECT_EQ(view.VisibleRange().end, end + Units(5));
  }
}

// As if it had been laid out anew, whatever was edited.
TEST(Tables, EditsOfCellsAndMarksAreTakenIn) {
  for (const uint32_t seed : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u}) {
    RichText text;
    for (int i = 0; i < 12; ++i) {
      text.AddRow({"a" + std::to_string(i), "some longer words in a cell", "c|d"}, MakeRow({1500, 3000, 4500}));
      if (i % 3 == 2) text.Add("between");
    }
    Document document = text.Finish();
    TestView view(document, 300, 250);
    uint32_t state = seed;
    const auto next = [&state](uint32_t below) { return (state = state * 1664525u + 1013904223u) / 65536 % below; };
    for (int edit = 0; edit < 40; ++edit) {
      const auto size = static_cast<uint32_t>(document.content().size().value());
      const Units at(next(size));
      if (next(3) == 0) {
        Insert(document, at, next(2) ? "new " : "x\n");
      } else if (next(2) == 0) {
        Remove(document, {at, std::min(at + Units(1 + next(8)), Units(size))});
      } else {
        view.ScrollBy(static_cast<double>(next(200)) - 100);
      }
      view.Update();
      const Range shown = view.VisibleRange();
      TestView fresh(document, 300, 250);
      fresh.ScrollBy(0);
      fresh.EnsureVisible({shown.begin});
      for (Units place = shown.begin; place <= shown.end; ++place) {
        const QPointF relative = view.CaretRect({place}).topLeft() - view.CaretRect({shown.begin}).topLeft();
        const QPointF anew = fresh.CaretRect({place}).topLeft() - fresh.CaretRect({shown.begin}).topLeft();
        if (std::abs(anew.y()) > 240 || fresh.CaretRect({place}).top() > 240) break;
        ASSERT_EQ(relative, anew) << "seed " << seed << " edit " << edit << " at " << place.value();
      }
    }
  }
}

TEST(Tables, BordersAndShadingArePainted) {
  TableRow row = MakeRow({1500, 3000});
  for (TableCell& cell : row.cells) cell.borders = 15;
  row.cells[1].shading = Color{0x00FFFF};  // yellow
  Document document = RichText().AddRow({"", ""}, row).Add("").Finish();
  TestView view(document, 300, 100);
  const QImage image = PaintToImage(view);
  const int middle = static_cast<int>(view.CaretRect({Units(0)}).center().y());
  EXPECT_EQ(image.pixelColor(4 + 150, middle), QColor(Qt::yellow));
  EXPECT_EQ(image.pixelColor(4 + 50, middle), QColor(Qt::white));
  for (const int x : {4, 104, 204}) EXPECT_LT(image.pixelColor(x, middle).lightness(), 80) << x;
  EXPECT_LT(image.pixelColor(54, 4).lightness(), 80);
}

TEST(Tables, NoLineCrossesAJoinedCell) {
  TableRow upper = MakeRow({1500, 3000}), lower = upper;
  for (TableRow* row : {&upper, &lower}) {
    for (TableCell& cell : row->cells) cell.borders = 15;
  }
  lower.cells[0].joinsAbove = true;
  const auto linesAt = [&](int x) {
    Document document = RichText().AddRow({"", ""}, upper).AddRow({"", ""}, lower).Add("").Finish();
    TestView view(document, 300, 100);
    const QImage image = PaintToImage(view);
    int lines = 0;
    for (int y = 1; y < 100; ++y) {
      lines += image.pixelColor(x, y).lightness() < 80 && image.pixelColor(x, y - 1).lightness() >= 80;
    }
    return lines;
  };
  EXPECT_EQ(linesAt(4 + 50), 2);
  EXPECT_EQ(linesAt(4 + 150), 3);
}

}  // namespace
}  // namespace text::layout
