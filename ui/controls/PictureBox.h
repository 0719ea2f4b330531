// A picture that can be pressed.
#pragma once

#include <QAbstractButton>

namespace ui {

class PictureBox : public QAbstractButton {
  Q_OBJECT

 public:
  // `icon` names a picture of data/icons/.
  PictureBox(const char* icon, QWidget* parent);
  QSize sizeHint() const override;

 Q_SIGNALS:
  void Pressed(bool left);  // or by any other button; the space bar counts as the left one, the menu key as another

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent*) override {}
  void contextMenuEvent(QContextMenuEvent* event) override;
};

}  // namespace ui
