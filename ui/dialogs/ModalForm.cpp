#include "ui/dialogs/ModalForm.h"

namespace ui {

ModalForm::ModalForm(QWidget* owner) : QDialog(owner) {
  setModal(true);
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

}  // namespace ui
