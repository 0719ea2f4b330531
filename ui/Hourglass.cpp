#include "ui/Hourglass.h"

#include <QGuiApplication>

namespace ui {

Hourglass::Hourglass() {
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}
Hourglass::~Hourglass() {
  QGuiApplication::restoreOverrideCursor();
}

}  // namespace ui
