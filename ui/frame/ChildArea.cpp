#include "ui/frame/ChildArea.h"

#include "ui/frame/ChildWindow.h"

#include <QEvent>
#include <QStyle>

#include <algorithm>

namespace ui {
namespace {

constexpr int kGroundDarker = 125;  // per cent

// How far each cascaded window stands from the one before.
int CascadeStep(const QMdiSubWindow& window) {
  const int titleBar = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
  return std::max(20, titleBar + 2);
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
  auto* next = qobject_cast<ChildWindow*>(activeSubWindow());
  if (!next) {
    const QList<QMdiSubWindow*> order = subWindowList(QMdiArea::ActivationHistoryOrder);
    const auto shown = std::find_if(order.rbegin(), order.rend(), [](QMdiSubWindow* w) { return w->isVisible(); });
    if (shown != order.rend()) next = qobject_cast<ChildWindow*>(*shown);
    if (next) setActiveSubWindow(next);
  }
  SetCurrent(next);
}

void ChildArea::SetCurrent(ChildWindow* window) {
  if (current_ == window && window) return;
  current_ = window;
  Q_EMIT CurrentChanged();
}

// Three quarters of the area, each a step further than the one before.
QRect ChildArea::PlaceForNew() {
  const QSize area = viewport()->size();
  const QSize size(std::max(240, area.width() * 3 / 4), std::max(160, area.height() * 3 / 4));
  const int step = subWindowList().isEmpty() ? 24 : CascadeStep(*subWindowList().constFirst());
  if (subWindowList().size() <= 1) placed_ = 0;
  QPoint corner(placed_ * step, placed_ * step);
  if (corner.y() + size.height() > area.height()) {
    placed_ = 0;
    corner = QPoint(0, 0);
  }
  ++placed_;
  return QRect(corner, size);
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

void ChildArea::Cascade() {
  const QPointer<ChildWindow> front = current_;
  int i = 0;
  for (QMdiSubWindow* window : Arrangeable()) {
    const QSize area = viewport()->size();
    const QSize size(std::max(240, area.width() * 3 / 4), std::max(160, area.height() * 3 / 4));
    const int step = CascadeStep(*window);
    const int rounds = std::max(1, (area.height() - size.height()) / step + 1);
    window->setGeometry(QRect(QPoint(i % rounds * step, i % rounds * step), size));
    window->raise();
    ++i;
  }
  if (front) front->raise();
}

void ChildArea::Tile(bool rows) {
  const std::vector<QMdiSubWindow*> windows = Arrangeable();
  if (windows.empty()) return;
  const QSize area = viewport()->size();
  const int count = static_cast<int>(windows.size());
  for (int i = 0; i < count; ++i) {
    // From edge to edge, so that rounding leaves no gap.
    const int whole = rows ? area.height() : area.width();
    const int begin = whole * i / count, end = whole * (i + 1) / count;
    windows[i]->setGeometry(rows ? QRect(0, begin, area.width(), end - begin)
                                 : QRect(begin, 0, end - begin, area.height()));
  }
}

void ChildArea::TileInRows() {
  Tile(true);
}
void ChildArea::TileInColumns() {
  Tile(false);
}

void ChildArea::ArrangeIcons() {
  QPoint next(0, viewport()->height());
  for (QMdiSubWindow* window : subWindowList(QMdiArea::CreationOrder)) {
    if (!window->isVisible() || !window->isMinimized()) continue;
    if (next.x() > 0 && next.x() + window->width() > viewport()->width()) next = QPoint(0, next.y() - window->height());
    window->move(next.x(), next.y() - window->height());
    next.rx() += window->width();
  }
}

}  // namespace ui
