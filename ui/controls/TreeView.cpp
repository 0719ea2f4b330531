#include "ui/controls/TreeView.h"

#include "ui/controls/FocusFrame.h"

namespace ui {

TreeView::TreeView(QWidget* parent) : QTreeView(parent) {
  setHeaderHidden(true);
  setUniformRowHeights(true);
  setTabKeyNavigation(false);
}

void TreeView::SetFontSize(double points) {
  QFont sized = font();
  sized.setPointSizeF(points);
  setFont(sized);
}

void TreeView::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  PaintFocusFrame(*this);
}

// The base class repaints the lines, which may be none.
void TreeView::focusInEvent(QFocusEvent* event) {
  QTreeView::focusInEvent(event);
  viewport()->update();
}

void TreeView::focusOutEvent(QFocusEvent* event) {
  QTreeView::focusOutEvent(event);
  viewport()->update();
}

}  // namespace ui
