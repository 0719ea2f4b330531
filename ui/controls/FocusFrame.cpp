#include "ui/controls/FocusFrame.h"

#include <QAbstractItemView>
#include <QPainter>

namespace ui {

void PaintFocusFrame(QAbstractItemView& view) {
  if (!view.hasFocus()) return;
  QPainter painter(view.viewport());
  painter.setPen(QPen(view.palette().color(QPalette::Highlight), 1));
  painter.drawRect(QRectF(view.viewport()->rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

}  // namespace ui
