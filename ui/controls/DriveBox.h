// The list of drives. It can be used as soon as it holds one.
#pragma once

#include <QComboBox>

namespace ui {

class DriveBox : public QComboBox {
  Q_OBJECT

 public:
  explicit DriveBox(QWidget* parent = nullptr);
};

}  // namespace ui
