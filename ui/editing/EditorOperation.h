// The bracket around what changes an editor, for the controller's own source files.
#pragma once

#include "ui/editing/EditorController.h"

#include <exception>

namespace ui {

// Everything between construction and destruction is told to the host once, at the end of the outermost one.
class EditorController::Operation {
 public:
  explicit Operation(EditorController& controller) : controller_(controller) {
    if (controller_.depth_ == 0) controller_.MapThroughForeignEdits();  // first: it may throw
    ++controller_.depth_;
  }
  // After an exception nothing is told now; the next operation tells it along.
  ~Operation() noexcept(false) {
    if (--controller_.depth_ == 0 && std::uncaught_exceptions() == exceptions_) controller_.Settle();
  }
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

 private:
  EditorController& controller_;
  int exceptions_ = std::uncaught_exceptions();
};

}  // namespace ui
