#include "ui/frame/ChildWindow.h"

#include "ui/frame/ChildArea.h"
#include "ui/frame/WindowStates.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragMoveEvent>
#include <QStyle>

namespace ui {

ChildWindow::ChildWindow(ChildForm& form, ChildArea& area, QWidget* content)
    : owner_(form), formId_(form.id()), area_(area) {
  setWidget(content);
  setAcceptDrops(true);
  setWindowIcon(style()->standardIcon(QStyle::SP_FileIcon));
  // Closing is the form's decision; the window is taken out by it.
  setAttribute(Qt::WA_DeleteOnClose, false);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
    if (now && now != this && isAncestorOf(now)) rememberedFocus_ = now;
  });
}

void ChildWindow::PutIn() {
  area_.Add(this);
}

void ChildWindow::TakeOut() {
  const bool fillsArea = area_.current() == formId_ && isMaximized();
  hide();
  area_.Remove(this);
  if (fillsArea) area_.MaximizeCurrent();
  deleteLater();
}

void ChildWindow::ActivateForm() {
  // First: becoming active gives the focus to the content.
  const bool kept = rememberedFocus_ && isAncestorOf(rememberedFocus_) && rememberedFocus_->isVisibleTo(this);
  QWidget* target = kept ? rememberedFocus_.data() : widget();
  area_.setActiveSubWindow(this);
  area_.SetCurrent(this);
  if (!isMinimized()) target->setFocus(Qt::OtherFocusReason);
}

// A minimised window is too narrow for a path, whose end is what tells it from others.
void ChildWindow::ShowTitle(const QString& title) {
  title_ = title;
  setWindowTitle(isMinimized() ? title.section(QLatin1Char('/'), -1) : title);
}

void ChildWindow::changeEvent(QEvent* event) {
  QMdiSubWindow::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange) ShowTitle(title_);
}

void ChildWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  owner_.RequestClose();
}

// What the content does not take is taken by nobody: the frame behind the documents would open it. So the drag ends its
// way here, and is refused in the moves, which follow even an accepted beginning.
void ChildWindow::dragEnterEvent(QDragEnterEvent* event) {
  event->accept();
}
void ChildWindow::dragMoveEvent(QDragMoveEvent* event) {
  event->ignore();
}

ChildForm::ChildForm(Forms& forms, std::string_view name, ChildArea& area, QWidget* content)
    : Form(forms, name), window_(new ChildWindow(*this, area, content)) {
  window_->PutIn();
}

QWidget* ChildForm::content() const {
  return window_->widget();
}

ChildForm::~ChildForm() {
  TakeDown();
}

void ChildForm::TakeDown() {
  Leave();
  if (!window_) return;
  ChildWindow* window = window_;
  window_ = nullptr;
  window->TakeOut();
}

void ChildForm::Show() {
  if (!window_) return;
  window_->show();
  shown_ = true;
  window_->ActivateForm();
}

WindowState ChildForm::windowState() const {
  return window_ && shown_ ? StateOf(*window_) : WindowState::kNormal;
}

void ChildForm::SetWindowState(WindowState state) {
  if (window_ && shown_) ShowAs(*window_, state);
}

void ChildForm::Activate() {
  if (window_ && shown_) window_->ActivateForm();
}

void ChildForm::ShowTitle(const QString& title) {
  if (window_) window_->ShowTitle(title);
}

}  // namespace ui
