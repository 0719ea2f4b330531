#include "ui/controls/TreeView.h"

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

}  // namespace ui
