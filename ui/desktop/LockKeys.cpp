#include "ui/desktop/LockKeys.h"

#include <QGuiApplication>
#include <QKeyEvent>

#include <optional>

// Last: its macros would change the names in the toolkit's headers.
#include <X11/XKBlib.h>
#undef Bool
#undef KeyPress
#undef None

namespace ui {
namespace {

// The real modifiers of X and of XKB state messages, where they are the usual ones.
constexpr quint32 kLockMask = 1u << 1, kMod2Mask = 1u << 4;

LockKeys& LastNoted() {
  static LockKeys keys;
  return keys;
}

bool Lit(Display* display, const char* indicator) {
  int on = 0;
  const Atom name = XInternAtom(display, indicator, true);
  return name && XkbGetNamedIndicator(display, name, nullptr, &on, nullptr, nullptr) && on;
}

std::optional<LockKeys> FromDisplay() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (!x11 || !x11->display()) return std::nullopt;
  Display* display = x11->display();
  return LockKeys{Lit(display, "Caps Lock"), Lit(display, "Num Lock"), Lit(display, "Scroll Lock")};
}

}  // namespace

LockKeys CurrentLockKeys() {
  return FromDisplay().value_or(LastNoted());
}

void NoteLockKeys(const QKeyEvent& event) {
  LockKeys& keys = LastNoted();
  keys.caps = event.nativeModifiers() & kLockMask;
  keys.num = event.nativeModifiers() & kMod2Mask;
  // An event shows the state before it; the press of a lock key turns that round.
  if (event.type() != QEvent::KeyPress || event.isAutoRepeat()) return;
  if (event.key() == Qt::Key_CapsLock) keys.caps = !keys.caps;
  if (event.key() == Qt::Key_NumLock) keys.num = !keys.num;
  if (event.key() == Qt::Key_ScrollLock) keys.scroll = !keys.scroll;
}

}  // namespace ui
