// From a key event in a control to the painted frame.
#pragma once

#include "bench/support/Measure.h"
#include "ui/editor/RichTextBox.h"

#include <QApplication>
#include <QKeyEvent>

namespace bench {

constexpr int64_t kMega = 1024 * 1024;

inline std::string Words(int64_t bytes, bool oneLine) {
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
inline double PressAndPaint(ui::RichTextBox& box, PaintWatch& watch, const Key& key) {
  const int before = watch.paints;
  return Seconds([&] {
    QKeyEvent press(QEvent::KeyPress, key.key, key.modifiers, QString::fromLatin1(key.text));
    QApplication::sendEvent(&box, &press);
    while (watch.paints == before) QApplication::processEvents();
  });
}

inline void MeasureKeys(ui::RichTextBox& box, PaintWatch& watch) {
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
    std::printf("  %-10s median %6.2f ms, 99th percentile %6.2f ms\n", key.name, Median(times) * 1e3,
                Percentile(times, 0.99) * 1e3);
  }
}

}  // namespace bench
