// A window that is answered before anything else goes on.
#pragma once

#include <QDialog>

namespace ui {

class ModalForm : public QDialog {
  Q_OBJECT

 public:
  explicit ModalForm(QWidget* owner = nullptr);
};

}  // namespace ui
