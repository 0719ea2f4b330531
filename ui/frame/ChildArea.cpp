#include "ui/frame/ChildArea.h"

#include "ui/frame/ChildWindow.h"

#include <QEvent>
#include <QStyle>

#include <algorithm>

namespace ui {
namespace {

constexpr int kGroundDarker = 125;  // per cent

constexpr QSize kLeastCascaded(240, 160), kLeastTile(160, 100);

// How far each cascaded window stands from the one before.
int CascadeStep(const QMdiSubWindow& window) {
  const int titleBar = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
  return std::max(20, titleBar + 2);
}

// Three quarters of the room, each a step further than the one before; those that begin at the top again stand beside
// the ones before, as far as the room goes.
QRect CascadePlace(int index, const QSize& room, int step) {
  const QSize size = (room * 3 / 4).expandedTo(kLeastCascaded);
  const QSize free = (room - size).expandedTo({0, 0});
  const int rows = free.height() / step + 1, columns = free.width() / step + 1;
  const int row = index % rows, column = (row + index / rows) % columns;
  return {QPoint(column * step, row * step), size};
}

// One behind the other from edge to edge; where that leaves each too little, in as many lines as it takes.
std::vector<QRect> TilePlaces(int count, const QSize& room, bool rows) {
  const QSize whole = rows ? room : room.transposed(), least = rows ? kLeastTile : kLeastTile.transposed();
  const int fit = std::max(whole.height() / least.height(), 1);
  const int lines = (count + fit - 1) / fit, most = lines ? (count + lines - 1) / lines : 0;
  const int width = std::max(whole.width(), lines * least.width()), height = std::max(whole.height(), least.height());
  std::vector<QRect> places;
  for (int i = 0; i < count; ++i) {
    const int line = i / most, inLine = std::min(most, count - line * most), at = i % most;
    // By its edges, so that rounding leaves no gap.
    const QPoint begin(width * line / lines, height * at / inLine);
    const QPoint end(width * (line + 1) / lines, height * (at + 1) / inLine);
    const QRect place(begin, QSize(end.x() - begin.x(), end.y() - begin.y()));
    places.push_back(rows ? place : QRect(QPoint(place.y(), place.x()), place.size().transposed()));
  }
  return places;
}

}  // namespace

ChildArea::ChildArea(QWidget* parent) : QMdiArea(parent) {
  setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  FollowPalette();
  setActivationOrder(QMdiArea::ActivationHistoryOrder);
  // The toolkit says "none" whenever another window of the program is active; the context stays the document.
  connect(this, &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* window) {
    if (window) SetCurrent(qobject_cast<ChildWindow*>(window));
  });
}

// The toolkit's own ground, the palette's Dark, is lighter than the windows of many dark desktops.
void ChildArea::FollowPalette() {
  setBackground(palette().color(QPalette::Active, QPalette::Window).darker(kGroundDarker));
}

void ChildArea::changeEvent(QEvent* event) {
  QMdiArea::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) FollowPalette();
}

QRect ChildArea::OnScreen() const {
  return {mapToGlobal(QPoint()), size()};
}

FormId ChildArea::current() const {
  return current_ ? current_->form() : FormId::kNone;
}

void ChildArea::Add(ChildWindow* window) {
  addSubWindow(window);
  window->setGeometry(PlaceForNew());
}

void ChildArea::Remove(ChildWindow* window) {
  const bool wasCurrent = current_ == window;
  if (wasCurrent) current_ = nullptr;
  removeSubWindow(window);
  if (!wasCurrent) return;
  QMdiSubWindow* next = activeSubWindow();
  // Icons come last.
  for (const bool icon : {false, true}) {
    if (next && (icon || !next->isMinimized())) break;
    const QList<QMdiSubWindow*> order = subWindowList(QMdiArea::ActivationHistoryOrder);
    const auto shown = std::find_if(order.rbegin(), order.rend(),
                                    [&](QMdiSubWindow* w) { return w->isVisible() && w->isMinimized() == icon; });
    if (shown == order.rend()) continue;
    next = *shown;
    setActiveSubWindow(next);
  }
  SetCurrent(qobject_cast<ChildWindow*>(next));
}

// As the toolkit does when another window becomes active, but not when that is because one has gone.
void ChildArea::MaximizeCurrent() {
  if (current_ && current_->isVisible() && !current_->isMaximized() && !current_->isMinimized())
    current_->showMaximized();
}

void ChildArea::SetCurrent(ChildWindow* window) {
  if (current_ == window && window) return;
  current_ = window;
  Q_EMIT CurrentChanged();
}

QRect ChildArea::PlaceForNew() {
  const int step = subWindowList().isEmpty() ? 24 : CascadeStep(*subWindowList().constFirst());
  if (subWindowList().size() <= 1) placed_ = 0;
  return CascadePlace(placed_++, viewport()->size(), step);
}

void ChildArea::ActivateNext() {
  // By the order of their making, so that going on and on visits them all.
  const QList<QMdiSubWindow*> windows = subWindowList(QMdiArea::CreationOrder);
  if (windows.isEmpty()) return;
  const qsizetype now = windows.indexOf(current_.data());
  for (qsizetype i = 1; i <= windows.size(); ++i) {
    QMdiSubWindow* next = windows[(now + i) % windows.size()];
    if (!next->isVisible()) continue;
    static_cast<ChildWindow*>(next)->ActivateForm();
    return;
  }
}

void ChildArea::SendToBack(FormId form) {
  const QList<QMdiSubWindow*> stack = subWindowList(QMdiArea::StackingOrder);
  ChildWindow* next = nullptr;
  ChildWindow* sent = nullptr;
  for (QMdiSubWindow* window : stack) {
    auto* child = qobject_cast<ChildWindow*>(window);
    if (child && child->form() == form) {
      sent = child;
    } else if (child && child->isVisible()) {
      next = child;  // the last one is in front
    }
  }
  // First the other one: the toolkit raises the active window once more while it loses its place.
  if (next && current() == form) next->ActivateForm();
  if (sent) sent->lower();
}

std::vector<QMdiSubWindow*> ChildArea::Arrangeable() {
  std::vector<QMdiSubWindow*> windows;
  for (QMdiSubWindow* window : subWindowList(QMdiArea::CreationOrder)) {
    if (!window->isVisible() || window->isMinimized()) continue;
    // The toolkit arranges wrongly while a child is maximised.
    if (window->isMaximized()) window->showNormal();
    windows.push_back(window);
  }
  return windows;
}

// Without scroll bars, since nothing will stand outside, and without the rows of the minimised windows.
QSize ChildArea::RoomToArrange() {
  const QSize whole = maximumViewportSize();
  const int icons = PlaceIcons(whole);
  return icons <= whole.height() / 2 ? QSize(whole.width(), whole.height() - icons) : whole;
}

void ChildArea::Cascade() {
  const QPointer<ChildWindow> front = current_;
  const std::vector<QMdiSubWindow*> windows = Arrangeable();
  const QSize room = RoomToArrange();
  for (size_t i = 0; i < windows.size(); ++i) {
    windows[i]->setGeometry(CascadePlace(static_cast<int>(i), room, CascadeStep(*windows[i])));
    windows[i]->raise();
  }
  if (front) front->raise();
}

void ChildArea::Tile(bool rows) {
  const std::vector<QMdiSubWindow*> windows = Arrangeable();
  const std::vector<QRect> places = TilePlaces(static_cast<int>(windows.size()), RoomToArrange(), rows);
  for (size_t i = 0; i < windows.size(); ++i) windows[i]->setGeometry(places[i]);
}

void ChildArea::TileInRows() {
  Tile(true);
}
void ChildArea::TileInColumns() {
  Tile(false);
}

void ChildArea::ArrangeIcons() {
  PlaceIcons(viewport()->size());
}

// In rows from the lower left corner upwards. Gives back their height.
int ChildArea::PlaceIcons(const QSize& room) {
  QPoint next(0, room.height());
  int top = room.height();
  for (QMdiSubWindow* window : subWindowList(QMdiArea::CreationOrder)) {
    if (!window->isVisible() || !window->isMinimized()) continue;
    if (next.x() > 0 && next.x() + window->width() > room.width()) next = QPoint(0, next.y() - window->height());
    window->move(next.x(), next.y() - window->height());
    next.rx() += window->width();
    top = std::min(top, window->y());
  }
  return room.height() - top;
}

}  // namespace ui
