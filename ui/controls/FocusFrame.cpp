#include "ui/controls/FocusFrame.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QScrollBar>

namespace ui {

void PaintFocusFrame(QAbstractItemView& view) {
  if (!view.hasFocus()) return;
  QPainter painter(view.viewport());
  painter.setPen(QPen(view.palette().color(QPalette::Highlight), 1));
  painter.drawRect(QRectF(view.viewport()->rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

void KeepFocusFrameInPlace(QAbstractItemView& view) {
  for (const QScrollBar* bar : {view.horizontalScrollBar(), view.verticalScrollBar()}) {
    QObject::connect(bar, &QScrollBar::valueChanged, &view, [&view] {
      if (view.hasFocus()) view.viewport()->update();
    });
  }
}

}  // namespace ui
