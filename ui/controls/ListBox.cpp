#include "ui/controls/ListBox.h"

#include "ui/controls/FocusFrame.h"

namespace ui {

ListBox::ListBox(QWidget* parent) : QListView(parent) {
  setUniformItemSizes(true);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setTabKeyNavigation(false);
}

void ListBox::SetFontSize(double points) {
  QFont sized = font();
  sized.setPointSizeF(points);
  setFont(sized);
}

void ListBox::paintEvent(QPaintEvent* event) {
  QListView::paintEvent(event);
  PaintFocusFrame(*this);
}

// The base class repaints the lines, which may be none.
void ListBox::focusInEvent(QFocusEvent* event) {
  QListView::focusInEvent(event);
  viewport()->update();
}

void ListBox::focusOutEvent(QFocusEvent* event) {
  QListView::focusOutEvent(event);
  viewport()->update();
}

}  // namespace ui
