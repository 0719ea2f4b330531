// A scroll bar with a read-out, floating at the right of an editor, that raises and lowers characters.
#pragma once

#include <QLabel>
#include <QPointer>
#include <QScrollBar>

namespace ui {

class OffsetTool : public QObject {
  Q_OBJECT

 public:
  // Both controls become the editor's.
  explicit OffsetTool(QWidget& editor);

  bool isVisible() const { return !VScroll1_->isHidden(); }
  // Shown, it has the keyboard; Escape, and letting go of the thumb, give it back to the editor.
  void SetVisible(bool visible);
  // From `most` at the top to -most at the bottom. Neither is told.
  void SetRange(int most);
  void SetValue(int value);
  int value() const { return VScroll1_->value(); }

 Q_SIGNALS:
  void Changed(int pixels);    // by the user; up is positive
  void Dragging(bool begins);  // the values in between belong together

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Place();
  void PlaceReadOut();

  QWidget& editor_;
  QScrollBar* VScroll1_;
  QLabel* Text1_;
};

}  // namespace ui
