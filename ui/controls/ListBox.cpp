#include "ui/controls/ListBox.h"

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

}  // namespace ui
