// The layout without the control: first screens, keys, scrolling, painting. Offscreen, into an image.
#include "bench/support/Measure.h"
#include "text/layout/ViewLayout.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <benchmark/benchmark.h>

using namespace text;
using namespace text::layout;

namespace {

constexpr size_t kLargeBytes = 100'000'000;
const QSizeF kViewport(800, 1000);  // about sixty lines

const Content& ManyLines() {
  static const Content content = [] {
    ContentBuilder builder(Content().store());
    size_t bytes = 0;
    for (int line = 0; bytes < kLargeBytes; ++line) {
      std::string text = "line " + std::to_string(line) + " with the words of an ordinary line of text in it";
      text.resize(40 + static_cast<size_t>(line) * 7 % 40, 'x');
      text += "\n";
      builder.Append(text);
      bytes += text.size();
    }
    return builder.Finish();
  }();
  return content;
}

const Content& OneLine() {
  static const Content content = [] {
    ContentBuilder builder(Content().store());
    for (size_t bytes = 0, word = 0; bytes < kLargeBytes; ++word) {
      const std::string text = "word" + std::to_string(word % 1000) + " ";
      builder.Append(text);
      bytes += text.size();
    }
    return builder.Finish();
  }();
  return content;
}

// Just below the length that is laid out in segments, every word in another format than its neighbours.
const Content& ManyRuns() {
  static const Content content = [] {
    const Content empty;
    ContentBuilder builder(empty.store());
    FormatTable& formats = empty.formats();
    CharFormat bold;
    bold.flags = kBold;
    const CharFormatId ids[] = {CharFormatId::kDefault, formats.Intern(bold)};
    for (int word = 0; word < 1800; ++word) builder.Append("word ", ids[word % 2]);
    return builder.Finish();
  }();
  return content;
}

// Numbered paragraphs of one list: what is typed above them may change all numbers.
template <int kParagraphs>
const Content& List() {
  static const Content content = [] {
    const Content empty;
    ContentBuilder builder(empty.store());
    FormatTable& formats = empty.formats();
    ParaFormat format;
    format.list = formats.Intern(text::List{1, {{NumberStyle::kDecimal, 1, std::string("\0.", 2)}}});
    format.leftIndent = 720;
    format.firstIndent = -360;
    const ParaFormatId id = formats.Intern(format);
    for (int i = 0; i < kParagraphs; ++i) builder.Append("an item of the list\n", CharFormatId::kDefault, id);
    return builder.Finish(id);
  }();
  return content;
}

// Rows of four cells.
template <int kRows>
const Content& Table() {
  static const Content content = [] {
    const Content empty;
    ContentBuilder builder(empty.store());
    FormatTable& formats = empty.formats();
    TableRow row;
    for (const int right : {2000, 4000, 6000, 9000}) row.cells.push_back({right, 15, {}});
    ParaFormat format;
    format.row = formats.Intern(row);
    for (int i = 0; i < kRows; ++i) {
      for (int cell = 0; cell < 4; ++cell) {
        format.rowMark = cell < 3 ? RowMark::kCellEnd : RowMark::kRowEnd;
        builder.Append(cell == 2 ? "a text that takes more than one line\n" : "cell\n", CharFormatId::kDefault,
                       formats.Intern(format));
      }
    }
    return builder.Finish();
  }();
  return content;
}

QImage& Frame() {
  static QImage image(kViewport.toSize(), QImage::Format_RGB32);
  return image;
}

void PaintFrame(ViewLayout& view, Selection selection = {}) {
  PaintOptions options;
  options.palette = QGuiApplication::palette();
  options.selection = selection;
  options.showCaret = true;
  QPainter painter(&Frame());
  view.Paint(painter, QRectF(QPointF(), kViewport), options);
}

void FirstScreen(benchmark::State& state, const Content& (*content)()) {
  const Document document(content());
  for (auto run : state) {
    ViewLayout view(document);
    view.SetViewport(kViewport);
    benchmark::DoNotOptimize(view.scrollMaximum());
    PaintFrame(view);
  }
}

void LayoutOfAScreen(benchmark::State& state, const Content& (*content)()) {
  const Document document(content());
  ViewLayout view(document);
  view.SetViewport(kViewport);
  double zoom = 1;
  for (auto run : state) {
    view.SetZoom(zoom = zoom == 1 ? 1.0001 : 1);  // drops every block
    benchmark::DoNotOptimize(view.VisibleRange());
  }
}

void PaintOfAScreen(benchmark::State& state, bool selected) {
  const Document document(ManyLines());
  ViewLayout view(document);
  view.SetViewport(kViewport);
  PaintFrame(view);
  for (auto run : state) PaintFrame(view, selected ? Selection{Units(0), document.content().size()} : Selection{});
}

// A key in the middle of the text, from the insertion to the painted frame, with the scroll bar brought up to date.
void Key(benchmark::State& state, const Content& (*content)(), const char* typed) {
  Document document(content());
  ViewLayout view(document);
  view.SetViewport(kViewport);
  Units caret(document.content().size().value() / 2);
  view.EnsureVisible({caret}, 300);
  std::vector<double> seconds;
  for (auto run : state) {
    seconds.push_back(bench::Seconds([&] {
      caret = document.Replace({caret, caret}, typed, CharFormatId::kDefault, EditKind::kTyping, {caret, caret}).end;
      view.EnsureVisible({caret});
      benchmark::DoNotOptimize(view.scrollMaximum() + view.scrollValue());
      PaintFrame(view, {caret, caret});
    }));
  }
  state.counters["p50_ms"] = bench::Median(seconds) * 1e3;
  state.counters["p99_ms"] = bench::Percentile(seconds, 0.99) * 1e3;
}

void ScrollByLines(benchmark::State& state, const Content& (*content)()) {
  const Document document(content());
  ViewLayout view(document);
  view.SetViewport(kViewport);
  view.SetScrollValue(view.scrollMaximum() / 2);
  for (auto run : state) {
    view.ScrollBy(3 * 19);
    benchmark::DoNotOptimize(view.scrollValue());
    PaintFrame(view);
  }
}

void DragTheBar(benchmark::State& state, const Content& (*content)()) {
  const Document document(content());
  ViewLayout view(document);
  view.SetViewport(kViewport);
  int64_t step = 0;
  for (auto run : state) {
    view.SetScrollValue(static_cast<int>(int64_t{view.scrollMaximum()} * (step++ * 37 % 101) / 101));
    PaintFrame(view);
  }
}

BENCHMARK_CAPTURE(FirstScreen, manyLines, ManyLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FirstScreen, oneLine, OneLine)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LayoutOfAScreen, manyLines, ManyLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PaintOfAScreen, plain, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PaintOfAScreen, selected, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Key, manyLines, ManyLines, "k")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Key, oneLine, OneLine, "k")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Key, manyRuns, ManyRuns, "k")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Key, list1000, List<1000>, "k")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Key, list100000, List<100000>, "k")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Key, list1000Enter, List<1000>, "\n")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Key, list100000Enter, List<100000>, "\n")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Key, table20000, Table<20000>, "k")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ScrollByLines, table100, Table<100>)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ScrollByLines, table20000, Table<20000>)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DragTheBar, list100000, List<100000>)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DragTheBar, table20000, Table<20000>)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ScrollByLines, manyLines, ManyLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ScrollByLines, oneLine, OneLine)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DragTheBar, manyLines, ManyLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DragTheBar, oneLine, OneLine)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
