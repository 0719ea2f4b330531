#include "ui/dialogs/ModelessForm.h"

#include "ui/dialogs/OwnersKeys.h"

#include <QCloseEvent>
#include <QDialog>
#include <QKeyEvent>
#include <QScreen>

#include <algorithm>

namespace ui {
namespace {

constexpr int kDistance = 8;  // from what it makes room for

int64_t Covered(const QRect& a, const QRect& b) {
  const QRect both = a & b;
  return both.isEmpty() ? 0 : int64_t{both.width()} * both.height();
}

}  // namespace

class ModelessForm::Window : public QDialog {
 public:
  Window(ModelessForm& form, QWidget* owner) : QDialog(owner), form_(form) {
    setWindowIcon(owner->windowIcon());
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  }

 protected:
  void reject() override { form_.RequestClose(); }
  // What nothing here wants is a key of the main window.
  void keyPressEvent(QKeyEvent* event) override {
    if (!TriggerKeyOfOwner(*this, *event)) QDialog::keyPressEvent(event);
  }
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    form_.RequestClose();
  }
  void changeEvent(QEvent* event) override {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && isVisible())
      form_.forms().Guarded([this] { form_.Form_Activate(); });
  }

 private:
  ModelessForm& form_;
};

ModelessForm::ModelessForm(Forms& forms, std::string_view name, Form& owner)
    : Form(forms, name), window_(std::make_unique<Window>(*this, owner.widget())) {
  window_->setObjectName(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
}

ModelessForm::~ModelessForm() = default;

QWidget* ModelessForm::widget() {
  return window_.get();
}
bool ModelessForm::isShown() const {
  return window_->isVisible();
}

void ModelessForm::Activate() {
  window_->show();
  window_->raise();
  window_->activateWindow();
}
void ModelessForm::Hide() {
  window_->hide();
}

void ModelessForm::ShowTitle(const QString& title) {
  window_->setWindowTitle(title);
}

void ModelessForm::KeepClearOf(const QRect& rectangle) {
  if (!window_->isVisible() || rectangle.isEmpty()) return;
  const QRect frame = window_->frameGeometry();
  const QPoint place = PlaceClearOf(frame, rectangle, window_->screen()->availableGeometry());
  if (place != frame.topLeft()) window_->move(place);
}

QPoint PlaceClearOf(const QRect& frame, const QRect& rectangle, const QRect& screen) {
  if (!frame.intersects(rectangle)) return frame.topLeft();
  // Into the screen, where it fits there at all.
  const auto inside = [&](int x, int y) {
    return QPoint(std::max(screen.left(), std::min(x, screen.right() + 1 - frame.width())),
                  std::max(screen.top(), std::min(y, screen.bottom() + 1 - frame.height())));
  };
  const QPoint beside[] = {inside(frame.left(), rectangle.bottom() + 1 + kDistance),
                           inside(frame.left(), rectangle.top() - kDistance - frame.height()),
                           inside(rectangle.right() + 1 + kDistance, frame.top()),
                           inside(rectangle.left() - kDistance - frame.width(), frame.top()),
                           inside(screen.left(), screen.top()),
                           inside(screen.right(), screen.top()),
                           inside(screen.left(), screen.bottom()),
                           inside(screen.right(), screen.bottom())};
  const auto better = [&](const QPoint& a, const QPoint& b) {
    const int64_t coveredA = Covered({a, frame.size()}, rectangle), coveredB = Covered({b, frame.size()}, rectangle);
    if (coveredA != coveredB) return coveredA < coveredB;
    return (a - frame.topLeft()).manhattanLength() < (b - frame.topLeft()).manhattanLength();
  };
  return *std::ranges::min_element(beside, better);
}

}  // namespace ui
