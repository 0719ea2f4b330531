// One button of a toolbar. It shows a state and reports clicks; what it shows changes only when it is told so.
#pragma once

#include <QToolButton>

namespace ui {

enum class ButtonState : uint8_t { kReleased, kPressed, kMixed };

class ToolButton : public QToolButton {
  Q_OBJECT

 public:
  // `toggles`: it has a state, which a screen reader tells.
  ToolButton(bool toggles, QWidget* parent);

  bool toggles() const { return toggles_; }
  ButtonState state() const { return state_; }
  void SetState(ButtonState state);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void PaintState(QPainter& painter, const QRect& face) const;
  void PaintFocus(QPainter& painter, const QRect& face) const;

  const bool toggles_;
  ButtonState state_ = ButtonState::kReleased;
};

}  // namespace ui
