// The area of the document windows: their order, arrangement and which of them is the current one.
#pragma once

#include "ui/Forms.h"

#include <QMdiArea>
#include <QPointer>

#include <vector>

class QMdiSubWindow;

namespace ui {

class ChildWindow;

class ChildArea : public QMdiArea {
  Q_OBJECT

 public:
  explicit ChildArea(QWidget* parent = nullptr);

  // The form of the window that has, or had last, the focus; kNone without any. Windows never shown do not count.
  FormId current() const;
  QRect OnScreen() const;
  void ActivateNext();
  // To the back of the order; the window next to the front becomes the current one.
  void SendToBack(FormId form);

  // A maximised window is made normal first; minimised ones stand in rows at the bottom, which stay free.
  void Cascade();
  void TileInRows();
  void TileInColumns();
  void ArrangeIcons();

 Q_SIGNALS:
  void CurrentChanged();

 protected:
  void changeEvent(QEvent* event) override;

 private:
  friend class ChildWindow;
  void Add(ChildWindow* window);
  void Remove(ChildWindow* window);
  void MaximizeCurrent();
  void FollowPalette();
  void SetCurrent(ChildWindow* window);
  QRect PlaceForNew();
  std::vector<QMdiSubWindow*> Arrangeable();
  QSize RoomToArrange();
  int PlaceIcons(const QSize& room);
  void Tile(bool rows);

  QPointer<ChildWindow> current_;
  int placed_ = 0;
};

}  // namespace ui
