// Letting events through in the middle of a command, without letting another command through.
#pragma once

#include <QObject>

#include <chrono>
#include <functional>

namespace ui {

// Lives as long as a command runs. Commands may nest; the outermost one counts.
class CommandScope {
 public:
  CommandScope();
  ~CommandScope();
  CommandScope(const CommandScope&) = delete;
  CommandScope& operator=(const CommandScope&) = delete;
};

bool InsideCommand();

// Delivers paint, timer, socket and queued events. Keys, mouse and close boxes stay in the queue until the command
// ends; a modal dialog's own Cancel and Escape work while it is open. Anything may have been closed or opened on
// return: look it up again.
void LetPendingEventsRun();

// For a loop over many things: lets events run when the window has not been served for a while.
class PendingEventsInLoop {
 public:
  void LetRun();

 private:
  std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

// Runs the call at once, or, inside a command, from the event loop after the outermost command has ended. Dropped when
// `context` is gone by then.
void AfterCommand(QObject* context, std::function<void()> call);

}  // namespace ui
