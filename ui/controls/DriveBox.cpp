#include "ui/controls/DriveBox.h"

namespace ui {

DriveBox::DriveBox(QWidget* parent) : QComboBox(parent) {
  const auto follow = [this] { setEnabled(count() > 0); };
  connect(model(), &QAbstractItemModel::rowsInserted, this, follow);
  connect(model(), &QAbstractItemModel::rowsRemoved, this, follow);
  connect(model(), &QAbstractItemModel::modelReset, this, follow);
  follow();
}

}  // namespace ui
