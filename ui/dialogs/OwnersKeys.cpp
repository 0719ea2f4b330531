#include "ui/dialogs/OwnersKeys.h"

#include <QAction>
#include <QKeyEvent>
#include <QWidget>

namespace ui {

bool TriggerKeyOfOwner(const QWidget& window, QKeyEvent& event) {
  for (QAction* action : window.parentWidget()->findChildren<QAction*>()) {
    if (!action->shortcuts().contains(QKeySequence(event.keyCombination()))) continue;
    if (!action->isEnabled() || !action->isVisible()) continue;
    event.accept();
    action->trigger();
    return true;
  }
  return false;
}

}  // namespace ui
