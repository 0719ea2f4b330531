// Starting without a display.
#pragma once

namespace ui {

// While it lives, the toolkit's failure to reach a display ends the program with one line and status 1 instead of its
// own abort. For the construction of the application object.
class StartGuard {
 public:
  StartGuard();
  ~StartGuard();
  StartGuard(const StartGuard&) = delete;
  StartGuard& operator=(const StartGuard&) = delete;
};

}  // namespace ui
