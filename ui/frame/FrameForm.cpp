#include "ui/frame/FrameForm.h"

#include "ui/frame/StatusBar.h"

#include <QBuffer>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>

namespace ui {

class FrameForm::Window : public QMainWindow {
 public:
  explicit Window(FrameForm& owner) : owner_(owner), area_(new ChildArea(this)) {
    setCentralWidget(area_);
    const QSize screen = QGuiApplication::primaryScreen()->availableSize();
    resize(QSize(1000, 700).boundedTo(screen * 9 / 10));
  }
  ChildArea& area() { return *area_; }
  void OnFirstPaint(std::function<void()> painted) { painted_ = std::move(painted); }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QMainWindow::paintEvent(event);
    // The children are painted and shown right behind this; what is queued comes after them.
    if (painted_) QTimer::singleShot(0, this, std::exchange(painted_, {}));
  }
  void closeEvent(QCloseEvent* event) override { event->setAccepted(owner_.RequestClose()); }

 private:
  FrameForm& owner_;
  ChildArea* area_;
  std::function<void()> painted_;
};

FrameForm::FrameForm(Forms& forms, std::string_view name, std::function<bool()> close)
    : Form(forms, name),
      close_(std::move(close)),
      window_(std::make_unique<Window>(*this)),
      statusBar_(new StatusBar(*window_->statusBar())) {}

FrameForm::~FrameForm() = default;

QWidget* FrameForm::widget() {
  return window_.get();
}

WindowState FrameForm::windowState() const {
  if (window_->isMinimized()) return WindowState::kMinimized;
  return window_->isMaximized() ? WindowState::kMaximized : WindowState::kNormal;
}

void FrameForm::SetWindowState(WindowState state) {
  switch (state) {
    case WindowState::kNormal:
      window_->showNormal();
      break;
    case WindowState::kMinimized:
      window_->showMinimized();
      break;
    case WindowState::kMaximized:
      window_->showMaximized();
      break;
  }
}

void FrameForm::Activate() {
  window_->raise();
  window_->activateWindow();
}

bool FrameForm::Close() {
  return close_();
}

void FrameForm::Show(std::function<void()> painted) {
  window_->OnFirstPaint(std::move(painted));
  window_->show();
}
void FrameForm::Hide() {
  window_->hide();
}
QMenuBar& FrameForm::menuBar() {
  return *window_->menuBar();
}
ChildArea& FrameForm::area() {
  return window_->area();
}
StatusBar& FrameForm::statusBar() {
  return *statusBar_;
}
QByteArray FrameForm::PicturePng() {
  QByteArray png;
  QBuffer buffer(&png);
  buffer.open(QIODevice::WriteOnly);
  if (!window_->grab().save(&buffer, "PNG")) png.clear();
  return png;
}
void FrameForm::ShowTitle(const QString& title) {
  window_->setWindowTitle(title);
}

}  // namespace ui
