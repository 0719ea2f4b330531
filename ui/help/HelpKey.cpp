#include "ui/help/HelpKey.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace ui {

HelpKey::HelpKey(std::span<const HelpContext> table, std::function<void(int topic)> show)
    : table_(table), show_(std::move(show)) {
  QCoreApplication::instance()->installEventFilter(this);
}

int HelpKey::Find(const QObject& object) const {
  for (const HelpContext& context : table_)
    if (object.objectName() == QLatin1String(context.name) || object.inherits(context.name)) return context.topic;
  return 0;
}

// A message belongs to the window that asked, if it has no topic of its own.
int HelpKey::TopicOf(const QWidget& widget) const {
  for (const QWidget* window = widget.window(); window;) {
    if (const int topic = Find(*window)) return topic;
    window = window->parentWidget() ? window->parentWidget()->window() : nullptr;
  }
  return 0;
}

// Once for each press: at the widget that has the keys, not at the windows that it is handed on to.
bool HelpKey::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || !watched->isWidgetType()) return false;
  const auto* key = static_cast<QKeyEvent*>(event);
  if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier || key->isAutoRepeat()) return false;
  if (QApplication::activePopupWidget()) return false;
  show_(TopicOf(*static_cast<QWidget*>(watched)));
  return true;
}

}  // namespace ui
