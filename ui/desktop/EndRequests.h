// Somebody outside the program wants it to end: a signal, the session, a display that has gone.
#pragma once

#include <functional>
#include <memory>

namespace ui {

// Lives behind the application object, on its thread; one at a time. Both calls come from the event loop, nested ones
// included, so in the middle of a command or of an open dialog.
class EndRequests {
 public:
  // `keep` saves what must not be lost: the program may be ended right afterwards, or go on when the user cancels the
  // logging out. `end` keeps it too and leaves the event loop. When the display goes `keep` is the last call before the
  // process ends.
  EndRequests(std::function<void()> keep, std::function<void()> end);
  ~EndRequests();
  EndRequests(const EndRequests&) = delete;
  EndRequests& operator=(const EndRequests&) = delete;

 private:
  class Receiver;
  std::unique_ptr<Receiver> receiver_;
};

}  // namespace ui
