#include "ui/PendingEvents.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>

#include <utility>
#include <vector>

namespace ui {
namespace {

struct Deferred {
  QPointer<QObject> context;
  std::function<void()> call;
};

// The state of the thread's one event loop, so there is one of it.
struct LoopState {
  int depth = 0;
  std::vector<Deferred> deferred;
};

LoopState& Loop() {
  static LoopState state;
  return state;
}

void RunDeferred() {
  // Delivered inside a later command: that one posts it again at its end.
  if (Loop().depth > 0) return;
  for (Deferred& deferred : std::exchange(Loop().deferred, {}))
    if (deferred.context) deferred.call();
}

}  // namespace

CommandScope::CommandScope() {
  ++Loop().depth;
}

CommandScope::~CommandScope() {
  if (--Loop().depth > 0) return;
  // What was held back has been read from the display already, so nothing else would wake the event loop for it.
  if (QAbstractEventDispatcher* dispatcher = QCoreApplication::eventDispatcher()) dispatcher->wakeUp();
  if (Loop().deferred.empty()) return;
  QMetaObject::invokeMethod(QCoreApplication::instance(), RunDeferred, Qt::QueuedConnection);
}

bool InsideCommand() {
  return Loop().depth > 0;
}

void LetPendingEventsRun() {
  const CommandScope scope;
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void PendingEventsInLoop::LetRun() {
  if (std::chrono::steady_clock::now() - last_ < std::chrono::milliseconds(50)) return;
  LetPendingEventsRun();
  last_ = std::chrono::steady_clock::now();
}

void AfterCommand(QObject* context, std::function<void()> call) {
  if (InsideCommand()) {
    Loop().deferred.push_back({context, std::move(call)});
  } else {
    call();
  }
}

}  // namespace ui
