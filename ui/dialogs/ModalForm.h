// A window that is answered before anything else goes on.
#pragma once

#include <QDialog>

namespace ui {

class ModalForm : public QDialog {
  Q_OBJECT

 public:
  explicit ModalForm(QWidget* owner = nullptr);
};

// A question that buttons answer: as in message boxes, their letters press them without Alt.
class QuestionForm : public ModalForm {
  Q_OBJECT

 public:
  using ModalForm::ModalForm;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace ui
