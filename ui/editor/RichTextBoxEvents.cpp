// Events of the widget handed to the controller, the mouse and the layout.
#include "text/ObjectAt.h"
#include "text/pictures/Pictures.h"
#include "ui/editor/RichTextBoxImpl.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QTextDocument>
#include <QTimer>
#include <QToolTip>

#include <algorithm>

namespace ui {

namespace {

// Automatic text stays readable on a background that the palette does not know of.
QPalette ReadableOn(QPalette palette, const QColor& background) {
  if (!background.isValid()) return palette;
  constexpr double kEnough = 0.35;
  const auto lightness = [](const QColor& color) {
    return 0.3 * color.redF() + 0.59 * color.greenF() + 0.11 * color.blueF();
  };
  const double ground = lightness(background);
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    palette.setColor(group, QPalette::Base, background);
    if (std::abs(lightness(palette.color(group, QPalette::Text)) - ground) >= kEnough) continue;
    palette.setColor(group, QPalette::Text, ground > 0.5 ? Qt::black : Qt::white);
    palette.setColor(group, QPalette::Link, ground > 0.5 ? QColor(Qt::darkBlue) : QColor(0x8AB4F8));
  }
  return palette;
}

}  // namespace

// No exception may cross Qt's event loop. Edits are values: after a failed one the text is what it was.
bool RichTextBox::viewportEvent(QEvent* event) {
  bool handled = true;
  impl_->Guard([&] { handled = DispatchViewportEvent(*event); });
  return handled;
}

bool RichTextBox::event(QEvent* event) {
  bool handled = true;
  impl_->Guard([&] { handled = DispatchEvent(*event); });
  return handled;
}

bool RichTextBox::DispatchViewportEvent(QEvent& event) {
  if (event.type() == QEvent::ContextMenu) {
    const auto& menu = static_cast<QContextMenuEvent&>(event);
    if (menu.reason() == QContextMenuEvent::Mouse) impl_->mouse.PrepareContextMenu(menu.pos());
    Q_EMIT ContextMenuRequested(menu.globalPos());
    return true;
  }
  if (event.type() == QEvent::ToolTip) return impl_->ShowToolTip(static_cast<QHelpEvent&>(event));
  if (event.type() == QEvent::DragLeave) {
    impl_->mouse.DragLeave();
    return true;
  }
  return QAbstractScrollArea::viewportEvent(&event);
}

bool RichTextBox::DispatchEvent(QEvent& event) {
  if (event.type() == QEvent::ShortcutOverride && EditorController::IsOwnKey(static_cast<QKeyEvent&>(event))) {
    event.accept();
    return true;
  }
  if (event.type() == QEvent::KeyPress || event.type() == QEvent::KeyRelease) {
    const auto& key = static_cast<QKeyEvent&>(event);
    if (key.key() == Qt::Key_Control) {
      const bool held = event.type() == QEvent::KeyPress;
      impl_->UpdateCursor(viewport()->mapFromGlobal(QCursor::pos()), held ? Qt::ControlModifier : Qt::NoModifier);
    }
  }
  if (event.type() == QEvent::ContextMenu) {
    const QRect caret = impl_->layout.CaretRect(impl_->controller.caret()).toRect();
    Q_EMIT ContextMenuRequested(viewport()->mapToGlobal(caret.bottomLeft()));
    return true;
  }
  return QAbstractScrollArea::event(&event);
}

// --- Painting

text::layout::PaintOptions RichTextBox::CurrentPaintOptions() const {
  text::layout::PaintOptions options;
  QPalette shown = palette();
  shown.setCurrentColorGroup(!isEnabled()       ? QPalette::Disabled
                             : isActiveWindow() ? QPalette::Active
                                                : QPalette::Inactive);
  options.palette = ReadableOn(shown, impl_->background);
  options.background = impl_->background;
  options.selection = impl_->controller.selection();
  options.selectionActive = hasFocus();
  options.showCaret = impl_->caretShown && !impl_->mouse.dropPlace();
  options.overtype = impl_->controller.overtype();
  options.caretFormat = impl_->controller.InsertFormat();
  options.caretAffinity = impl_->controller.caret().affinity;
  return options;
}

void RichTextBox::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  const auto options = CurrentPaintOptions();
  impl_->layout.Paint(painter, event->rect(), options);
  if (const auto& place = impl_->mouse.dropPlace()) {
    QRectF rect = impl_->layout.CaretRect(*place);
    rect.setWidth(2);
    painter.fillRect(rect, options.palette.text());
  }
}

void RichTextBox::resizeEvent(QResizeEvent*) {
  impl_->layout.SetViewport(viewport()->size());
  impl_->UpdateScrollBar();
  viewport()->update();
}

void RichTextBox::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  impl_->UpdateLinkColor();
  viewport()->update();
}

void RichTextBox::timerEvent(QTimerEvent* event) {
  if (event->timerId() == impl_->blinkTimer.timerId()) {
    impl_->caretShown = !impl_->caretShown;
    impl_->RepaintCaret();
  } else if (event->timerId() == impl_->autoScrollTimer.timerId()) {
    impl_->mouse.AutoScroll();
    impl_->UpdateAutoScroll();
  } else {
    QAbstractScrollArea::timerEvent(event);
  }
}

// --- Links

void RichTextBox::Impl::UpdateLinkColor() {
  layout.SetLinkColor(ReadableOn(box.palette(), background).color(QPalette::Link));
}

void RichTextBox::Impl::UpdateCursor(QPointF point, Qt::KeyboardModifiers modifiers) {
  const bool follows = modifiers == Qt::ControlModifier && box.viewport()->rect().contains(point.toPoint()) &&
                       !mouse.LinkUnder(point).empty();
  box.viewport()->setCursor(follows ? Qt::PointingHandCursor : Qt::IBeamCursor);
}

// As plain text, whatever it looks like.
bool RichTextBox::Impl::ShowToolTip(const QHelpEvent& event) {
  const auto under = layout.CharacterAt(event.pos());
  if (const auto* object = under ? text::EmbeddedAt(document.content(), *under) : nullptr) {
    const QString text = RichTextBox::tr("Double-click to open: %1").arg(text::pictures::NameOf(*object));
    QToolTip::showText(event.globalPos(), Qt::convertFromPlainText(text), box.viewport());
    return true;
  }
  const std::string target = mouse.LinkUnder(event.pos());
  if (target.empty()) {
    QToolTip::hideText();
    return true;
  }
  constexpr qsizetype kMost = 500;
  const QString shown = QString::fromStdString(target).left(kMost);
  QToolTip::showText(event.globalPos(), Qt::convertFromPlainText(RichTextBox::tr("Ctrl+click: %1").arg(shown)),
                     box.viewport());
  return true;
}

// --- Keyboard and input methods

void RichTextBox::keyPressEvent(QKeyEvent* event) {
  event->setAccepted(impl_->controller.HandleKey(*event));
}

// Tab is text here.
bool RichTextBox::focusNextPrevChild(bool next) {
  return impl_->controller.readOnly() && QAbstractScrollArea::focusNextPrevChild(next);
}

void RichTextBox::inputMethodEvent(QInputMethodEvent* event) {
  impl_->controller.HandleInputMethod(*event);
  event->accept();
}

QVariant RichTextBox::inputMethodQuery(Qt::InputMethodQuery query) const {
  const EditorController& controller = impl_->controller;
  const auto rectOf = [this](text::layout::CaretPlace place) {
    return impl_->layout.CaretRect(place).translated(viewport()->pos());
  };
  switch (query) {
    case Qt::ImCursorRectangle:
      return rectOf(controller.caret());
    case Qt::ImAnchorRectangle:
      return rectOf({controller.selection().anchor});
    case Qt::ImFont:
      return text::layout::FontOf(impl_->document.formats(), controller.InsertFormat(), impl_->defaultFont,
                                  impl_->layout.zoom());
    default:
      return controller.QueryInputMethod(query);
  }
}

void RichTextBox::focusInEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusInEvent(event);
  impl_->RestartBlinking();
  update();
  viewport()->update();
}

void RichTextBox::focusOutEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusOutEvent(event);
  impl_->controller.FinishComposition();
  impl_->document.SealStep();
  impl_->RestartBlinking();
  update();
  viewport()->update();
}

// --- Mouse

void RichTextBox::mousePressEvent(QMouseEvent* event) {
  // The input method commits it, or else we do.
  if (impl_->controller.composing()) QGuiApplication::inputMethod()->commit();
  impl_->controller.FinishComposition();
  impl_->mouse.Press(*event);
}

void RichTextBox::mouseDoubleClickEvent(QMouseEvent* event) {
  impl_->mouse.DoubleClick(*event);
}

void RichTextBox::mouseMoveEvent(QMouseEvent* event) {
  const QPointer<RichTextBox> alive(this);
  impl_->mouse.Move(*event);
  if (!alive) return;
  impl_->UpdateAutoScroll();
  if (event->buttons() == Qt::NoButton) impl_->UpdateCursor(event->position(), event->modifiers());
}

void RichTextBox::mouseReleaseEvent(QMouseEvent* event) {
  impl_->mouse.Release(*event);
  impl_->UpdateAutoScroll();
}

void RichTextBox::wheelEvent(QWheelEvent* event) {
  impl_->mouse.Wheel(*event, impl_->LineHeight());
  event->accept();
}

// --- Drops: always a copy, so that a foreign source keeps what it has

void RichTextBox::dragEnterEvent(QDragEnterEvent* event) {
  // The source is asked for its data once, not at each move.
  impl_->takesDrop = impl_->mouse.CanDrop(*event->mimeData(), event->possibleActions(), impl_->dragging);
  dragMoveEvent(event);
}

void RichTextBox::dragMoveEvent(QDragMoveEvent* event) {
  if (!impl_->takesDrop) return event->ignore();
  impl_->mouse.DragOver(event->position());
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void RichTextBox::dropEvent(QDropEvent* event) {
  if (!impl_->mouse.CanDrop(*event->mimeData(), event->possibleActions(), impl_->dragging)) return event->ignore();
  event->setDropAction(Qt::CopyAction);
  event->accept();
  std::vector<std::string> files = impl_->mouse.Drop(*event->mimeData(), event->position());
  if (files.empty()) return;
  QTimer::singleShot(0, this, [this, paths = std::move(files)] { Q_EMIT FilesDropped(paths); });
}

}  // namespace ui
