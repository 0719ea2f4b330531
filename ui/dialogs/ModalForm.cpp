#include "ui/dialogs/ModalForm.h"

#include <QAbstractButton>
#include <QKeyEvent>

namespace ui {

ModalForm::ModalForm(QWidget* owner) : QDialog(owner) {
  setModal(true);
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

// A key that is held down answers one question, not all that follow.
void QuestionForm::keyPressEvent(QKeyEvent* event) {
  const bool plain = !(event->modifiers() & ~Qt::ShiftModifier) && !event->isAutoRepeat();
  const QKeySequence mnemonic(Qt::ALT | static_cast<Qt::Key>(event->key()));
  if (plain) {
    for (QAbstractButton* button : findChildren<QAbstractButton*>())
      if (button->isVisibleTo(this) && button->shortcut() == mnemonic) return button->click();
  }
  ModalForm::keyPressEvent(event);
}

}  // namespace ui
