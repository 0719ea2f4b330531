// The states of a form's window as the toolkit has them.
#pragma once

#include "ui/Forms.h"

#include <QWidget>

namespace ui {

inline WindowState StateOf(const QWidget& window) {
  if (window.isMinimized()) return WindowState::kMinimized;
  return window.isMaximized() ? WindowState::kMaximized : WindowState::kNormal;
}

inline void ShowAs(QWidget& window, WindowState state) {
  switch (state) {
    case WindowState::kNormal:
      return window.showNormal();
    case WindowState::kMinimized:
      return window.showMinimized();
    case WindowState::kMaximized:
      return window.showMaximized();
  }
}

}  // namespace ui
