#include "ui/help/HelpPopup.h"

#include "ui/controls/DialogControls.h"
#include "ui/help/HelpView.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QTextDocument>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace ui {
namespace {

constexpr int kWidth = 420, kBorder = 2;

class Popup final : public QFrame {
 public:
  explicit Popup(QWidget* owner, const QString& text) : QFrame(owner, Qt::Popup), view_(new HelpView) {
    setObjectName(QStringLiteral("HelpPopup"));
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameShape(QFrame::StyledPanel);
    setAccessibleName(QCoreApplication::translate("Help", "Help"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->addWidget(view_);
    view_->setAccessibleName(accessibleName());
    view_->setFrameShape(QFrame::NoFrame);
    view_->ShowText(text);
    view_->setFocus();
  }
  // As high as its text, but never higher than most of the screen.
  QSize SizeWithin(const QRect& screen) {
    ensurePolished();
    view_->ensurePolished();
    view_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int width = std::min(kWidth, screen.width()), frames = 2 * frameWidth() + kBorder;
    view_->document()->setTextWidth(width - frames);
    const int height = static_cast<int>(std::ceil(view_->document()->size().height())) + frames;
    const int most = screen.height() * 3 / 4;
    if (height > most) view_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    return {width, std::min(height, most)};
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
      return static_cast<void>(close());
    QFrame::keyPressEvent(event);
  }

 private:
  HelpView* view_;
};

}  // namespace

void ShowHelpPopup(QWidget* owner, const QPoint& globalPosition, const QString& text) {
  auto* popup = new Popup(owner, text);
  const QScreen* const at = QGuiApplication::screenAt(globalPosition);
  const QRect screen = (at ? at : QGuiApplication::primaryScreen())->availableGeometry();
  const QSize size = popup->SizeWithin(screen);
  const QPoint last = screen.bottomRight() - QPoint(size.width(), size.height());
  popup->setGeometry(QRect(QPoint(std::clamp(globalPosition.x(), screen.left(), std::max(last.x(), screen.left())),
                                  std::clamp(globalPosition.y(), screen.top(), std::max(last.y(), screen.top()))),
                           size));
  popup->show();
}

}  // namespace ui
