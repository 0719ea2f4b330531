#include "ui/Hourglass.h"

#include <QGuiApplication>

namespace ui {

Hourglass::Hourglass() {
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}
Hourglass::~Hourglass() {
  QGuiApplication::restoreOverrideCursor();
}

NoHourglass::NoHourglass() {
  for (; QGuiApplication::overrideCursor(); ++taken_) QGuiApplication::restoreOverrideCursor();
}
NoHourglass::~NoHourglass() {
  for (; taken_ > 0; --taken_) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

}  // namespace ui
