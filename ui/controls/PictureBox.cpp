#include "ui/controls/PictureBox.h"

#include "ui/controls/Icons.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

namespace ui {

PictureBox::PictureBox(const char* icon, QWidget* parent) : QAbstractButton(parent) {
  setIcon(ThemedIcon(icon));
  connect(this, &QAbstractButton::clicked, this, [this] { Q_EMIT Pressed(true); });
}

QSize PictureBox::sizeHint() const {
  const int side = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this) + 8;
  return {side, side};
}

void PictureBox::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QRect inside = rect().adjusted(4, 4, -4, -4);
  icon().paint(&painter, inside, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
  if (!hasFocus()) return;
  QStyleOptionFocusRect option;
  option.initFrom(this);
  option.rect = rect().adjusted(1, 1, -1, -1);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void PictureBox::mousePressEvent(QMouseEvent* event) {
  Q_EMIT Pressed(event->button() == Qt::LeftButton);
}

void PictureBox::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Keyboard) Q_EMIT Pressed(false);
}

}  // namespace ui
