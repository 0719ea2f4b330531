#include "ui/frame/PopupMenu.h"

#include "ui/controls/Icons.h"

#include <QCoreApplication>
#include <QMenu>

namespace ui {

std::optional<size_t> PickFromPopup(const QPoint& globalPosition, const std::vector<MenuRow>& rows,
                                    const std::vector<bool>& enabled) {
  QMenu menu;
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].kind == MenuRowKind::kSeparator) {
      menu.addSeparator();
      continue;
    }
    const QString caption = QCoreApplication::translate("Menu", rows[i].caption);
    const QLatin1String hint(rows[i].hint);
    QAction* action = menu.addAction(hint.isEmpty() ? caption : caption + QLatin1Char('\t') + hint);
    action->setEnabled(enabled[i]);
    if (*rows[i].icon) action->setIcon(ThemedIcon(rows[i].icon));
    action->setData(static_cast<int>(i));
  }
  const QAction* chosen = menu.exec(globalPosition);
  if (!chosen) return std::nullopt;
  return static_cast<size_t>(chosen->data().toInt());
}

}  // namespace ui
