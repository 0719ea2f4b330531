#include "ui/frame/PaneForm.h"

#include "ui/PendingEvents.h"
#include "ui/dialogs/OwnersKeys.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QKeyEvent>
#include <QKeySequence>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace ui {
namespace {

constexpr int kAtRest = 60;  // milliseconds without another size
// A busy window manager tells the size of its frame late, or places the window itself after we did.
constexpr int kLooks = 3, kBetweenLooks = 200;

}  // namespace

class PaneForm::Window : public QDialog {
 public:
  Window(PaneForm& form, QWidget* owner, QWidget* content)
      : QDialog(owner, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint),
        form_(form) {
    setWindowIcon(owner->windowIcon());
    auto* fill = new QVBoxLayout(this);
    fill->setContentsMargins(0, 0, 0, 0);
    fill->addWidget(content);
    setFocusProxy(content);
    content->installEventFilter(this);
  }
  bool painted() const { return painted_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const bool own = event->type() == QEvent::KeyPress && form_.TakeKey(*static_cast<QKeyEvent*>(event));
    return own || QDialog::eventFilter(watched, event);
  }
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Escape) return BackToDocument(*event);
    if (!TriggerKeyOfOwner(*this, *event)) QDialog::keyPressEvent(event);
  }
  void reject() override { form_.RequestClose(); }
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    form_.RequestClose();
  }
  // Whoever works in it does not see it as minimised.
  void changeEvent(QEvent* event) override {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) form_.minimized_ = false;
  }
  void resizeEvent(QResizeEvent* event) override {
    QDialog::resizeEvent(event);
    // Nor does whoever pulls at its frame; the desktop may size it unasked.
    if (painted_ && isActiveWindow() && event->spontaneous() && event->size() != event->oldSize())
      form_.minimized_ = false;
    form_.resized_.start();
  }
  // Only now the desktop's frame is known.
  void paintEvent(QPaintEvent* event) override {
    QDialog::paintEvent(event);
    if (!std::exchange(painted_, true)) form_.resized_.start();
  }

 private:
  // As from anywhere in the main window.
  void BackToDocument(QKeyEvent& escape) {
    parentWidget()->activateWindow();
    QCoreApplication::sendEvent(parentWidget(), &escape);
  }

  PaneForm& form_;
  bool painted_ = false;
};

PaneForm::PaneForm(Forms& forms, std::string_view name, Form& owner, QWidget* content)
    : Form(forms, name), window_(std::make_unique<Window>(*this, owner.widget(), content)), content_(content) {
  window_->setObjectName(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
  resized_.setSingleShot(true);
  resized_.setInterval(kAtRest);
  lookAgain_.setSingleShot(true);
  lookAgain_.setInterval(kBetweenLooks);
  connect(&lookAgain_, &QTimer::timeout, this, &PaneForm::Place);
  connect(&resized_, &QTimer::timeout, this, [this] {
    if (!window_->painted() || !isShown() || windowState() != WindowState::kNormal) return;
    this->forms().Guarded([this] { Form_Resize(); });
  });
}

PaneForm::~PaneForm() = default;

QWidget* PaneForm::widget() {
  return window_.get();
}
QWidget* PaneForm::content() const {
  return content_;
}
bool PaneForm::isShown() const {
  return window_->isVisible();
}

WindowState PaneForm::windowState() const {
  if (minimized_) return WindowState::kMinimized;
  return isMaximized() ? WindowState::kMaximized : WindowState::kNormal;
}

void PaneForm::SetWindowState(WindowState state) {
  minimized_ = state == WindowState::kMinimized;
  if (!minimized_) window_->setWindowState(state == WindowState::kMaximized ? Qt::WindowMaximized : Qt::WindowNoState);
}

// What is shown takes the keyboard late, and from whoever has it by then, unless it is told not to.
void PaneForm::Show(Keyboard keyboard) {
  minimized_ = false;
  window_->setAttribute(Qt::WA_ShowWithoutActivating, keyboard == Keyboard::kLeave);
  window_->show();
  if (keyboard == Keyboard::kLeave) return;
  window_->raise();
  window_->activateWindow();
}

void PaneForm::ShowTitle(const QString& title) {
  title_ = title;
  ShowChanged(changed_);
}
void PaneForm::ShowChanged(bool changed) {
  changed_ = changed;
  window_->setWindowTitle(changed ? title_ + QStringLiteral(" *") : title_);
}

void PaneForm::OwnKey(const char* key, std::function<void()> call) {
  keys_.push_back({QKeySequence(QLatin1String(key))[0].toCombined(), std::move(call)});
}

bool PaneForm::TakeKey(const QKeyEvent& key) {
  const auto own = std::ranges::find(keys_, key.keyCombination().toCombined(), &Key::code);
  if (own == keys_.end()) return false;
  const CommandScope scope;
  const std::function<void()> call = own->call;
  forms().Guarded(call);
  return true;
}

QSize PaneForm::Size() const {
  return window_->size();
}

bool PaneForm::isMaximized() const {
  return window_->isMaximized();
}

void PaneForm::SetSize(const QSize& pixels) {
  window_->resize(pixels.boundedTo(window_->screen()->availableSize()));
}

void PaneForm::MoveToEdges(Qt::Edges edges, const QRect& area) {
  edges_ = edges;
  area_ = area;
  looks_ = kLooks;
  Place();
}

void PaneForm::Place() {
  if (!isShown() || windowState() != WindowState::kNormal) return;
  const QRect frame = window_->frameGeometry();
  const QPoint place =
      PlaceAtEdges(frame.size(), edges_, area_, window_->parentWidget()->screen()->availableGeometry());
  if (place != frame.topLeft()) window_->move(place);
  if (looks_-- > 0) lookAgain_.start();
}

void PaneForm::Beep() {
  QApplication::beep();
}

void PaneForm::TakeDown() {
  Leave();
  resized_.stop();
  lookAgain_.stop();
  window_->hide();
}

ClosedPanes::~ClosedPanes() {
  closed_.clear();
  // Those that were handed to the event loop a moment ago still refer to the forms of the main window.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void ClosedPanes::Take(std::unique_ptr<PaneForm> pane) {
  PaneForm* const context = pane.get();
  closed_.push_back(std::move(pane));
  AfterCommand(context, [this] {
    for (std::unique_ptr<PaneForm>& gone : closed_) gone.release()->deleteLater();
    closed_.clear();
  });
}

std::vector<QWidget*> PanesOf(const QWidget& owner) {
  std::vector<QWidget*> panes;
  for (QObject* child : owner.children()) {
    auto* widget = qobject_cast<QWidget*>(child);
    if (widget && widget->isVisible() && IsInPane(*widget)) panes.push_back(widget);
  }
  return panes;
}

bool IsInPane(const QWidget& widget) {
  return dynamic_cast<const PaneForm::Window*>(widget.window()) != nullptr;
}

QPoint PlaceAtEdges(const QSize& frame, Qt::Edges edges, const QRect& area, const QRect& screen) {
  const int x = edges & Qt::RightEdge ? area.right() + 1 - frame.width() : area.left();
  const int y = edges & Qt::BottomEdge ? area.bottom() + 1 - frame.height() : area.top();
  return {std::max(screen.left(), std::min(x, screen.right() + 1 - frame.width())),
          std::max(screen.top(), std::min(y, screen.bottom() + 1 - frame.height()))};
}

}  // namespace ui
