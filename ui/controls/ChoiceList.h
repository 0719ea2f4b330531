// A list of texts, at most one of which is selected.
#pragma once

#include "ui/controls/ListBox.h"

namespace ui {

class ChoiceList : public ListBox {
  Q_OBJECT

 public:
  explicit ChoiceList(QWidget* parent = nullptr);

  void SetLines(std::vector<ListLine> lines);         // instead of all there are; no line has the focus
  static QString DisplayText(std::string_view line);  // of any length; a tab is a blank
  int Choice() const;                                 // the selected line, -1 = none
  void Choose(int index);
  void ScrollToTop(int index);  // as far as the list reaches

 Q_SIGNALS:
  void Picked();         // a line was selected, or pressed once more; not by the right button
  void CopyRequested();  // by its keys

 protected:
  bool viewportEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

 private:
  bool byRightButton_ = false;
};

}  // namespace ui
