// From a key event to the painted frame, off screen, in the middle of large texts.
// Arguments: megabytes of the texts (default 100 1024), 0 for one of 100 MB in a single line, -1 for one paragraph of
// short formatted lines.
#include "bench/Measure.h"
#include "text/PlainText.h"
#include "ui/editor/RichTextBox.h"

#include <QApplication>
#include <QKeyEvent>

#include <cstdlib>
#include <utility>

namespace {

constexpr int64_t kMega = 1024 * 1024;

std::string Words(int64_t bytes, bool oneLine) {
  std::string text;
  text.reserve(static_cast<size_t>(bytes) + 80);
  for (int64_t line = 0; static_cast<int64_t>(text.size()) < bytes; ++line) {
    text += "The quick brown fox jumps over the lazy dog, number " + std::to_string(line);
    text += oneLine ? ". " : ".\n";
  }
  return text;
}

class PaintWatch : public QObject {
 public:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++paints;
    return false;
  }
  int paints = 0;
};

struct Key {
  const char* name;
  int key;
  Qt::KeyboardModifiers modifiers;
  const char* text;
};

// Seconds from the event to the end of the event loop's turn that painted.
double PressAndPaint(ui::RichTextBox& box, PaintWatch& watch, const Key& key) {
  const int before = watch.paints;
  return bench::Seconds([&] {
    QKeyEvent press(QEvent::KeyPress, key.key, key.modifiers, QString::fromLatin1(key.text));
    QApplication::sendEvent(&box, &press);
    while (watch.paints == before) QApplication::processEvents();
  });
}

// One paragraph of 4000 lines with two looks in each.
std::string FormattedLines() {
  std::string rtf = "{\\rtf1 ";
  for (int i = 0; i < 4000; ++i) rtf += "\\b a\\b0\\line ";
  return rtf + "}";
}

void MeasureKeys(ui::RichTextBox& box, PaintWatch& watch) {
  const Key keys[] = {{"letter", Qt::Key_X, {}, "x"},
                      {"Return", Qt::Key_Return, {}, "\r"},
                      {"Backspace", Qt::Key_Backspace, {}, "\b"},
                      {"Down", Qt::Key_Down, {}, ""},
                      {"PageDown", Qt::Key_PageDown, {}, ""},
                      {"Ctrl+Right", Qt::Key_Right, Qt::ControlModifier, ""},
                      {"undo", Qt::Key_Z, Qt::ControlModifier, ""}};
  for (const Key& key : keys) {
    box.SetSelStart(box.document().content().surfaceSize().value() / 2);
    QApplication::processEvents();
    std::vector<double> times;
    for (int i = 0; i < 500; ++i) {
      // The first presses warm the fonts up; an undo needs something to take back.
      if (key.key == Qt::Key_Z) box.SetSelText(QStringLiteral("y"));
      times.push_back(PressAndPaint(box, watch, key));
    }
    std::printf("  %-10s median %6.2f ms, 99th percentile %6.2f ms\n", key.name, bench::Median(times) * 1e3,
                bench::Percentile(times, 0.99) * 1e3);
  }
}

// `load` puts the text into the box.
template <typename Load>
void Measure(const char* name, const Load& load) {
  ui::RichTextBox box;
  PaintWatch watch;
  box.viewport()->installEventFilter(&watch);
  box.resize(1000, 900);
  const double shown = bench::Seconds([&] {
    load(box);
    box.show();
    while (watch.paints == 0) QApplication::processEvents();
  });
  box.activateWindow();
  box.setFocus();
  std::printf("%s: shown in %.1f ms\n", name, shown * 1e3);
  MeasureKeys(box, watch);
}

void Measure(int64_t size) {
  if (size < 0) {
    return Measure("4000 formatted lines", [](ui::RichTextBox& box) {
      box.LoadRtf(text::rtf::Read(FormattedLines(), box.document().content().store()));
    });
  }
  text::LoadedText loaded = text::ReadPlainText(Words((size == 0 ? 100 : size) * kMega, size == 0));
  const std::string name = size == 0 ? "100 MB in one line" : std::to_string(size) + " MB";
  Measure(name.c_str(), [&](ui::RichTextBox& box) { box.LoadPlain(std::move(loaded)); });
}

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  std::vector<int64_t> sizes;
  for (int i = 1; i < argc; ++i) sizes.push_back(std::atoll(argv[i]));
  if (sizes.empty()) sizes = {-1, 100, 0, 1024};
  for (const int64_t size : sizes) Measure(size);
  std::printf("peak memory %.0f MB\n", bench::PeakMemory() / kMega);
}
