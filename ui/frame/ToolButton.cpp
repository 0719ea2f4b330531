#include "ui/frame/ToolButton.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QMenu>
#include <QPainterPath>
#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace ui {
namespace {

// The toolkit's own object knows no mixed state and takes only checkable buttons for ones with a state.
class ToolButtonAccessible final : public QAccessibleWidget {
 public:
  explicit ToolButtonAccessible(ToolButton& button)
      : QAccessibleWidget(&button, button.menu() ? QAccessible::ButtonMenu : QAccessible::Button), button_(button) {}

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.checkable = button_.toggles();
    state.checked = button_.state() == ButtonState::kPressed;
    state.checkStateMixed = button_.state() == ButtonState::kMixed;
    state.hasPopup = button_.menu() != nullptr;
    return state;
  }

  QStringList actionNames() const override {
    if (!button_.isEnabled()) return {};
    return {button_.menu() ? showMenuAction() : pressAction()};
  }
  void doAction(const QString& name) override {
    if (!button_.isEnabled()) return;
    if (name == showMenuAction() && button_.menu()) button_.showMenu();
    if (name == pressAction() && !button_.menu()) button_.click();
  }

 private:
  ToolButton& button_;
};

QAccessibleInterface* MakeAccessible(const QString& className, QObject* object) {
  if (className != QLatin1String(ToolButton::staticMetaObject.className())) return nullptr;
  auto* button = qobject_cast<ToolButton*>(object);
  return button ? new ToolButtonAccessible(*button) : nullptr;
}

}  // namespace

ToolButton::ToolButton(bool toggles, QWidget* parent) : QToolButton(parent), toggles_(toggles) {
  static const bool installed = (QAccessible::installFactory(MakeAccessible), true);
  static_cast<void>(installed);
  // A click leaves the focus where it is.
  setFocusPolicy(Qt::TabFocus);
}

void ToolButton::SetState(ButtonState state) {
  if (state == state_) return;
  QAccessible::State changed;
  changed.checked = (state == ButtonState::kPressed) != (state_ == ButtonState::kPressed);
  changed.checkStateMixed = (state == ButtonState::kMixed) != (state_ == ButtonState::kMixed);
  state_ = state;
  update();
  if (!QAccessible::isActive()) return;
  QAccessibleStateChangeEvent event(this, changed);
  QAccessible::updateAccessibility(&event);
}

// Pressed: the whole face in the highlight's tint. Mixed: half of it, with a broken line around.
void ToolButton::PaintState(QPainter& painter, const QRect& face) const {
  if (state_ == ButtonState::kReleased) return;
  const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
  QColor tint = palette().color(group, QPalette::Highlight), line = tint;
  tint.setAlpha(isEnabled() ? 72 : 40);
  line.setAlpha(isEnabled() ? 220 : 90);
  const QRectF box = QRectF(face).adjusted(1.5, 1.5, -1.5, -1.5);
  QPainterPath whole, half;
  whole.addRoundedRect(box, 3, 3);
  half.addPolygon(QPolygonF({box.topLeft(), box.bottomLeft(), box.bottomRight()}));
  const bool mixed = state_ == ButtonState::kMixed;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(mixed ? whole.intersected(half) : whole, tint);
  QPen pen(line, 1);
  if (mixed) pen.setDashPattern({3, 2});
  painter.strokePath(whole, pen);
}

// A flat button shows nothing of the focus by itself.
void ToolButton::PaintFocus(QPainter& painter, const QRect& face) const {
  if (!hasFocus()) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(palette().color(QPalette::Active, QPalette::Highlight), 2));
  painter.drawRoundedRect(QRectF(face).adjusted(2, 2, -2, -2), 3, 3);
}

void ToolButton::paintEvent(QPaintEvent*) {
  QStylePainter painter(this);
  QStyleOptionToolButton option;
  initStyleOption(&option);
  // First the button without its picture, then the state, then the picture.
  QStyleOptionToolButton bare = option;
  bare.icon = {};
  bare.text.clear();
  painter.drawComplexControl(QStyle::CC_ToolButton, bare);
  const QRect face = style()->subControlRect(QStyle::CC_ToolButton, &option, QStyle::SC_ToolButton, this);
  PaintState(painter, face);
  PaintFocus(painter, face);
  painter.setRenderHint(QPainter::Antialiasing, false);
  const QRect place = QStyle::alignedRect(layoutDirection(), Qt::AlignCenter, iconSize(), face);
  icon().paint(&painter, place, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
}

}  // namespace ui
