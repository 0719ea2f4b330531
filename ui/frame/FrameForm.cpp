#include "ui/frame/FrameForm.h"

#include "ui/PendingEvents.h"
#include "ui/controls/Icons.h"
#include "ui/editing/exchange/DroppedFiles.h"
#include "ui/frame/LeftPane.h"
#include "ui/frame/PaneForm.h"
#include "ui/frame/StatusBar.h"
#include "ui/frame/ToolBar.h"
#include "ui/frame/WindowStates.h"

#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QCloseEvent>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>

namespace ui {

class FrameForm::Window : public QMainWindow {
 public:
  explicit Window(FrameForm& owner)
      : owner_(owner), Toolbar1_(new ToolBar(this)), pane_(new LeftPane), area_(new ChildArea) {
    setWindowIcon(ApplicationIcon());
    Toolbar1_->setObjectName(QStringLiteral("Toolbar1"));
    Toolbar1_->setAccessibleName(tr("Toolbar"));
    addToolBar(Toolbar1_);
    auto* inside = new QWidget;
    auto* row = new QHBoxLayout(inside);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(pane_);
    row->addWidget(area_, 1);
    setCentralWidget(inside);
    // Keys work also when the last document has gone.
    connect(area_, &ChildArea::CurrentChanged, this, [this] {
      const QWidget* focus = focusWidget();
      if (area_->current() == FormId::kNone && (!focus || area_->isAncestorOf(focus))) pane_->List1().setFocus();
    });
    On(Qt::Key_F6, [this] { MoveFocus(1); });
    On(Qt::SHIFT | Qt::Key_F6, [this] { MoveFocus(-1); });
    On(Qt::Key_F10, [this] { OpenMenuBar(); });
    const QSize screen = QGuiApplication::primaryScreen()->availableSize();
    resize(QSize(1000, 700).boundedTo(screen * 9 / 10));
    setAcceptDrops(true);
  }
  ToolBar& toolbar() { return *Toolbar1_; }
  LeftPane& leftPane() { return *pane_; }
  ChildArea& area() { return *area_; }
  void OnFirstPaint(std::function<void()> painted) { painted_ = std::move(painted); }
  void TakeDrops(std::function<void(const std::vector<std::string>&)> take) { takeDrop_ = std::move(take); }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QMainWindow::paintEvent(event);
    // The children are painted and shown right behind this; what is queued comes after them.
    if (!painted_) return;
    QTimer::singleShot(0, this, [this, then = std::exchange(painted_, {})] { owner_.forms().Guarded(then); });
  }
  // The bars are hidden by nobody.
  QMenu* createPopupMenu() override { return nullptr; }
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Escape) return ActivateDocument();
    QMainWindow::keyPressEvent(event);
  }
  void closeEvent(QCloseEvent* event) override { event->setAccepted(owner_.RequestClose()); }
  void dragEnterEvent(QDragEnterEvent* event) override {
    holdsFiles_ = HoldsFiles(*event->mimeData());  // the source is asked once, not at each move
    Answer(*event);
  }
  void dragMoveEvent(QDragMoveEvent* event) override { Answer(*event); }
  void dropEvent(QDropEvent* event) override {
    const std::vector<std::string> files = FilesOf(*event->mimeData());
    holdsFiles_ = !files.empty();
    Answer(*event);
    if (!event->isAccepted()) return;
    // The drop may have come in the middle of a command.
    QTimer::singleShot(0, this, [this, files] {
      AfterCommand(this, [this, files] { owner_.forms().Guarded([&] { takeDrop_(files); }); });
    });
  }

 private:
  void Answer(QDropEvent& event) const {
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(takeDrop_ && holdsFiles_ && event.possibleActions() & Qt::CopyAction);
  }
  // An action, so that the panes pass it on.
  template <class Handler>
  void On(QKeyCombination key, Handler handler) {
    auto* action = new QAction(this);
    action->setShortcut(key);
    addAction(action);
    connect(action, &QAction::triggered, this, handler);
  }
  void OpenMenuBar() {
    activateWindow();
    menuBar()->setActiveAction(menuBar()->actions().value(0));
  }
  std::vector<QWidget*> Stops();
  void MoveFocus(int step);
  void ActivateDocument() {
    if (Form* document = owner_.forms().Find(area_->current())) document->Activate();
  }

  FrameForm& owner_;
  ToolBar* Toolbar1_;
  LeftPane* pane_;
  ChildArea* area_;
  std::function<void()> painted_;
  std::function<void(const std::vector<std::string>&)> takeDrop_;
  bool holdsFiles_ = false;  // what is dragged over it
};

// From the document to the lists, the toolbar and the panes.
std::vector<QWidget*> FrameForm::Window::Stops() {
  std::vector<QWidget*> stops;
  if (area_->current() != FormId::kNone) stops.push_back(area_);
  stops.insert(stops.end(), {&pane_->List1(), &pane_->TreeView1()});
  for (ToolButton* button : Toolbar1_->findChildren<ToolButton*>()) {
    if (!button->isVisible() || !button->isEnabled()) continue;
    stops.push_back(button);
    break;
  }
  for (QWidget* pane : PanesOf(*this)) stops.push_back(pane);
  return stops;
}

// And round again.
void FrameForm::Window::MoveFocus(int step) {
  const std::vector<QWidget*> stops = Stops();
  const int count = static_cast<int>(stops.size());
  const QWidget* active = QApplication::activeWindow();
  const QWidget* focus = active && active != this ? active : focusWidget();
  int now = step > 0 ? count - 1 : 0;
  for (int i = 0; i < count; ++i) {
    const bool inToolbar = Toolbar1_->isAncestorOf(stops[i]) && focus && Toolbar1_->isAncestorOf(focus);
    if (focus && (stops[i] == focus || stops[i]->isAncestorOf(focus) || inToolbar)) now = i;
  }
  QWidget* next = stops[(now + step + count) % count];
  next->window()->activateWindow();
  if (next == area_) return ActivateDocument();
  next->setFocus(Qt::TabFocusReason);
}

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
  return StateOf(*window_);
}

void FrameForm::SetWindowState(WindowState state) {
  if (!window_->isVisible()) {
    // As it will be shown.
    window_->setWindowState(state == WindowState::kMaximized ? Qt::WindowMaximized : Qt::WindowNoState);
    return;
  }
  ShowAs(*window_, state);
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
ToolBar& FrameForm::toolbar() {
  return window_->toolbar();
}
LeftPane& FrameForm::leftPane() {
  return window_->leftPane();
}
ChildArea& FrameForm::area() {
  return window_->area();
}
StatusBar& FrameForm::statusBar() {
  return *statusBar_;
}
void FrameForm::TakeDrops(std::function<void(const std::vector<std::string>& paths)> take) {
  window_->TakeDrops(std::move(take));
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
