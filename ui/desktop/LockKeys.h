// The lock keys of the keyboard.
#pragma once

class QKeyEvent;

namespace ui {

struct LockKeys {
  bool caps = false, num = false, scroll = false;
};

// What the display tells; where it tells nothing, as of the last key event that was noted.
LockKeys CurrentLockKeys();
void NoteLockKeys(const QKeyEvent& event);

}  // namespace ui
