// Asks for one line of text.
#pragma once

#include "ui/dialogs/ModalForm.h"

namespace ui {

class TextBox;

class InputForm final : public ModalForm {
  Q_OBJECT

 public:
  InputForm(const QString& prompt, const QString& initial, QWidget* owner);
  QString text() const;

 private:
  TextBox* Text1_;
};

}  // namespace ui
