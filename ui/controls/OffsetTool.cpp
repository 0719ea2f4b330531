#include "ui/controls/OffsetTool.h"

#include <QKeyEvent>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QWheelEvent>

#include <algorithm>
#include <optional>

namespace ui {
namespace {

constexpr int kLongest = 240;
constexpr int kPage = 4;

// The largest value is at the top. The toolkit turns round only what it draws, and goes down in value at the top arrow.
class OffsetBar final : public QScrollBar {
 public:
  explicit OffsetBar(QWidget* parent) : QScrollBar(Qt::Vertical, parent) {
    setInvertedAppearance(true);
    connect(this, &QScrollBar::actionTriggered, this, [this](int action) {
      if (const auto place = PlaceOf(action)) setSliderPosition(*place);
    });
  }
  // Where the thumb is can only be asked of the scroll bar itself.
  QRect ThumbRect() const {
    QStyleOptionSlider option;
    initStyleOption(&option);
    return style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
  }

 protected:
  // The one way of moving it that comes without an action.
  void wheelEvent(QWheelEvent* event) override {
    setInvertedControls(false);
    QScrollBar::wheelEvent(event);
    setInvertedControls(true);
  }

 private:
  // Taking away is towards the top here, for arrows, keys, the groove and the menu alike.
  std::optional<int> PlaceOf(int action) const {
    switch (action) {
      case SliderSingleStepSub:
        return value() + singleStep();
      case SliderSingleStepAdd:
        return value() - singleStep();
      case SliderPageStepSub:
        return value() + pageStep();
      case SliderPageStepAdd:
        return value() - pageStep();
      case SliderToMinimum:
        return maximum();
      case SliderToMaximum:
        return minimum();
      default:
        return std::nullopt;
    }
  }
};

}  // namespace

OffsetTool::OffsetTool(QWidget& editor)
    : QObject(&editor), editor_(editor), VScroll1_(new OffsetBar(&editor)), Text1_(new QLabel(&editor)) {
  VScroll1_->setObjectName(QStringLiteral("VScroll1"));
  VScroll1_->setAccessibleName(tr("Superscript and subscript"));
  VScroll1_->setFocusPolicy(Qt::TabFocus);
  VScroll1_->setPageStep(kPage);
  VScroll1_->setCursor(Qt::ArrowCursor);
  VScroll1_->installEventFilter(this);
  Text1_->setObjectName(QStringLiteral("Text1"));
  Text1_->setFrameStyle(static_cast<int>(QFrame::Box) | static_cast<int>(QFrame::Plain));
  Text1_->setAutoFillBackground(true);
  Text1_->setBackgroundRole(QPalette::ToolTipBase);
  Text1_->setForegroundRole(QPalette::ToolTipText);
  Text1_->setMargin(2);
  VScroll1_->hide();
  Text1_->hide();
  editor.installEventFilter(this);
  connect(VScroll1_, &QScrollBar::valueChanged, this, [this](int value) {
    PlaceReadOut();
    Q_EMIT Changed(value);
  });
  connect(VScroll1_, &QScrollBar::sliderPressed, this, [this] { Q_EMIT Dragging(true); });
  connect(VScroll1_, &QScrollBar::sliderReleased, this, [this] {
    Q_EMIT Dragging(false);
    editor_.setFocus();
  });
}

void OffsetTool::SetVisible(bool visible) {
  Place();
  if (!visible) VScroll1_->setSliderDown(false);
  VScroll1_->setVisible(visible);
  Text1_->setVisible(visible);
  if (visible) {
    VScroll1_->raise();
    Text1_->raise();
    VScroll1_->setFocus();
  } else {
    editor_.setFocus();
  }
}

void OffsetTool::SetRange(int most) {
  const QSignalBlocker silent(VScroll1_);
  VScroll1_->setRange(-most, most);
  PlaceReadOut();
}

void OffsetTool::SetValue(int value) {
  const QSignalBlocker silent(VScroll1_);
  VScroll1_->setValue(value);
  PlaceReadOut();
}

void OffsetTool::Place() {
  const int width = VScroll1_->sizeHint().width();
  const int height = std::min(kLongest, editor_.height() * 3 / 4);
  VScroll1_->setGeometry(editor_.width() - 2 * width, (editor_.height() - height) / 2, width, height);
  PlaceReadOut();
}

void OffsetTool::PlaceReadOut() {
  Text1_->setNum(VScroll1_->value());
  Text1_->adjustSize();
  const QRect thumb = static_cast<const OffsetBar*>(VScroll1_)->ThumbRect().translated(VScroll1_->pos());
  constexpr int kGap = 4;
  Text1_->move(VScroll1_->x() - Text1_->width() - kGap, thumb.center().y() - Text1_->height() / 2);
}

bool OffsetTool::eventFilter(QObject* watched, QEvent* event) {
  if (watched == &editor_ && event->type() == QEvent::Resize) Place();
  if (watched == VScroll1_ && event->type() == QEvent::KeyPress &&
      static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape) {
    editor_.setFocus();
    return true;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace ui
