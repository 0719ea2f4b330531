#include "ui/desktop/KeyOrder.h"

#include "ui/PendingEvents.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QKeyEvent>
#include <QTimer>

#include <algorithm>

namespace ui {
namespace {

// The toolkit waits 100 ms for the screen reader. A key that the reader keeps for itself never comes.
constexpr int kLongestWait = 150;

bool MayBeShortcut(const QKeyEvent& event) {
  return event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier) || event.text().isEmpty();
}

}  // namespace

KeyOrder::KeyOrder() {
  QCoreApplication::instance()->installEventFilter(this);
}

bool KeyOrder::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::ShortcutOverride: {
      const auto& key = static_cast<const QKeyEvent&>(*event);
      if (!watched->isWindowType() || !event->spontaneous()) break;
      if (!underWay_.empty() && MayBeShortcut(key)) WaitForKeys();
      underWay_.push_back(key.key());
      break;
    }
    case QEvent::KeyPress:
      // Widgets get what the screen reader has let pass.
      if (!watched->isWidgetType()) break;
      if (const auto found = std::ranges::find(underWay_, static_cast<const QKeyEvent*>(event)->key());
          found != underWay_.end())
        underWay_.erase(underWay_.begin(), found + 1);
      if (underWay_.empty() && waiting_) waiting_->quit();
      break;
    case QEvent::Shortcut:
      if (!underWay_.empty() && !waiting_) underWay_.pop_back();
      break;
    default:
      break;
  }
  return false;
}

void KeyOrder::WaitForKeys() {
  if (waiting_) return;
  const CommandScope scope;
  QEventLoop loop;
  waiting_ = &loop;
  QTimer::singleShot(kLongestWait, &loop, &QEventLoop::quit);
  loop.exec(QEventLoop::ExcludeUserInputEvents);
  waiting_ = nullptr;
  underWay_.clear();
}

}  // namespace ui
