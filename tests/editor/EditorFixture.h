// An editor without a window, and texts that show where the selection is: "|" is the caret, "[" the anchor when it is
// elsewhere ("one [two|" and "one |two[" select the same word).
#pragma once

#include "ui/editing/EditorController.h"
#include "ui/editing/EditorMouse.h"

#include <QKeyEvent>
#include <QMimeData>

#include <memory>
#include <string>
#include <string_view>

namespace ui::test {

struct RecordingHost : EditorHost {
  void ViewChanged() override {}
  void TextChanged() override { ++textChanges; }
  void SelectionChanged() override { ++selectionChanges; }
  void OvertypeChanged(bool) override { ++overtypeChanges; }
  void ZoomBy(double factor) override { zoom *= factor; }
  void Refused() override { ++refusals; }
  void ResetComposition() override { ++resets; }
  void FollowLink(const std::string& target) override { followed += target + ","; }
  void OpenObject(text::Units place) override { opened += std::to_string(place.value()) + ","; }
  void StartDrag() override { ++drags; }
  const QMimeData* ClipboardData(QClipboard::Mode mode) override { return data[mode].get(); }
  void SetClipboardData(QClipboard::Mode mode, std::unique_ptr<QMimeData> newData) override {
    data[mode] = std::move(newData);
  }
  bool HasPrimarySelection() override { return true; }

  int textChanges = 0, selectionChanges = 0, overtypeChanges = 0, refusals = 0, resets = 0, drags = 0;
  double zoom = 1;
  std::string followed;  // links
  std::string opened;    // objects
  std::unique_ptr<QMimeData> data[3];
};

struct Marked {
  std::string bytes;
  size_t anchor = 0, caret = 0;  // in bytes
};
Marked ParseMarked(std::string marked);

class Editor {
 public:
  explicit Editor(const std::string& marked, text::LineEnd lineEnd = text::LineEnd::kLf, QSizeF viewport = {4000, 600});

  // Keys by name with blanks between them ("Ctrl+Shift+Left End"); text in quotes is typed ("'ab c' Return").
  Editor& Press(const std::string& keys);
  std::string Shown() const;
  text::Units At(size_t byte) const;
  // The stretches of the text that have the flag, each with "," behind it.
  std::string Flagged(text::CharFlag flag) const;

  text::Document document;
  text::layout::ViewLayout layout{document};
  RecordingHost host;
  EditorController controller{document, layout, host};
  EditorMouse mouse{controller};
  quint64 clock = 1000;  // of the key events, milliseconds

 private:
  void PressKey(const QString& name);
  void Send(int key, Qt::KeyboardModifiers modifiers, const QString& text);
};

// Keys, and what the text with its caret is before and after them.
struct KeyCase {
  std::string before, keys, after;
  friend std::ostream& operator<<(std::ostream& out, const KeyCase& c) { return out << c.before << " " << c.keys; }
};

}  // namespace ui::test
