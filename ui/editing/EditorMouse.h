// The mouse of an editor: selecting by characters, words and paragraphs, drags out of it and drops into it.
#pragma once

#include "ui/editing/EditorController.h"

#include <QPointF>

#include <optional>
#include <string>
#include <vector>

class QMimeData;
class QMouseEvent;
class QWheelEvent;

namespace ui {

class EditorMouse {
 public:
  explicit EditorMouse(EditorController& controller) : controller_(controller) {}

  void Press(const QMouseEvent& event);
  void DoubleClick(const QMouseEvent& event);
  void Move(const QMouseEvent& event);
  void Release(const QMouseEvent& event);
  // A right press outside the selection moves the caret there, or selects the object, so that the menu means what was
  // clicked.
  void PrepareContextMenu(QPointF point);

  // The target of the link under a point, empty without one.
  std::string LinkUnder(QPointF point);

  // While true the pointer is held outside the viewport and AutoScroll is to be called every kAutoScrollInterval.
  bool wantsAutoScroll() const;
  void AutoScroll();
  static constexpr int kAutoScrollInterval = 30;  // milliseconds

  // With Control the zoom changes; else the text moves by pixels or fractions of lines, as the device tells.
  void Wheel(const QWheelEvent& event, double lineHeight);

  // --- Drops. `own`: the drag began in this very editor.
  bool CanDrop(const QMimeData& data, Qt::DropActions offered, bool own) const;
  void DragOver(QPointF point);
  void DragLeave();
  // What is text or a picture goes in; files are given back, to be embedded at the caret, which is there now.
  std::vector<std::string> Drop(const QMimeData& data, QPointF point);
  const std::optional<text::layout::CaretPlace>& dropPlace() const { return dropPlace_; }

 private:
  // kArmed: a drag of the selection starts when the pointer has gone far enough.
  enum class State : uint8_t { kIdle, kSelecting, kArmed };
  enum class Unit : uint8_t { kCharacter, kWord, kParagraph };

  text::Units CharacterUnder(QPointF point);
  bool IsOnSelection(QPointF point);
  text::Range UnitAround(QPointF point);
  void SelectUnit(Unit unit, QPointF point);
  void ExtendTo(QPointF point);
  void Click(QPointF point, Qt::KeyboardModifiers modifiers);
  bool FollowsLink(QPointF released);
  std::optional<text::Units> ObjectUnder(QPointF point);
  void PastePrimary(QPointF point);
  bool IsThirdClick(const QMouseEvent& event) const;

  EditorController& controller_;
  State state_ = State::kIdle;
  Unit unit_ = Unit::kCharacter;
  text::Range origin_;  // the unit where selecting began
  QPointF pressed_;
  Qt::KeyboardModifiers pressedModifiers_;
  Qt::MouseButton pressedButton_ = Qt::NoButton;
  QPointF last_;  // of the pointer while selecting
  QPointF doubleClicked_;
  unsigned long long doubleClickTime_ = 0;
  bool afterDoubleClick_ = false;
  std::optional<text::layout::CaretPlace> dropPlace_;
};

}  // namespace ui
