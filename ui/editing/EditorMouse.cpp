#include "ui/editing/EditorMouse.h"

#include "text/Movement.h"
#include "text/ObjectAt.h"
#include "ui/editing/exchange/DropParts.h"
#include "ui/editing/exchange/DroppedFiles.h"
#include "ui/editing/exchange/EditorClipboard.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QStyleHints>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace ui {

using text::Bias;
using text::Range;
using text::Units;
using text::layout::CaretPlace;

namespace {

constexpr Qt::KeyboardModifiers kDragModifiers = Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier;

}  // namespace

// --- What is under the pointer

// HitTest gives the nearest caret place; the character it stands before or behind is the one under the pointer.
Units EditorMouse::CharacterUnder(QPointF point) {
  auto& layout = controller_.layout();
  const Units place = layout.HitTest(point).position;
  const Units previous = text::PreviousGrapheme(controller_.document().content(), place);
  for (const QRectF& rect : layout.RangeRects({previous, place})) {
    if (rect.contains(point)) return previous;
  }
  return place;
}

bool EditorMouse::IsOnSelection(QPointF point) {
  const auto rects = controller_.layout().RangeRects(controller_.range());
  return std::any_of(rects.begin(), rects.end(), [point](const QRectF& rect) { return rect.contains(point); });
}

Range EditorMouse::UnitAround(QPointF point) {
  const text::Content& content = controller_.document().content();
  switch (unit_) {
    case Unit::kCharacter:
      break;
    case Unit::kWord:
      return text::WordAt(content, CharacterUnder(point));
    case Unit::kParagraph:
      return text::ParagraphRange(content, controller_.layout().HitTest(point).position);
  }
  const Units place = controller_.layout().HitTest(point).position;
  return {place, place};
}

// --- Selecting

void EditorMouse::SelectUnit(Unit unit, QPointF point) {
  unit_ = unit;
  state_ = State::kSelecting;
  last_ = point;
  origin_ = UnitAround(point);
  const Bias affinity = unit == Unit::kCharacter ? controller_.layout().HitTest(point).affinity : Bias::kRight;
  controller_.Select({origin_.begin, origin_.end}, affinity);
}

// The unit where it began stays selected on whichever side the pointer is.
void EditorMouse::ExtendTo(QPointF point) {
  const Range unit = UnitAround(point);
  const CaretPlace hit = controller_.layout().HitTest(point);
  const Bias affinity = unit_ == Unit::kCharacter ? hit.affinity : Bias::kRight;
  if (unit.begin < origin_.begin) {
    controller_.Select({origin_.end, unit.begin}, affinity);
  } else {
    controller_.Select({origin_.begin, std::max(unit.end, origin_.end)}, affinity);
  }
}

void EditorMouse::Click(QPointF point, Qt::KeyboardModifiers modifiers) {
  if (modifiers.testFlag(Qt::ShiftModifier)) {
    unit_ = Unit::kCharacter;
    state_ = State::kSelecting;
    last_ = point;
    origin_ = {controller_.selection().anchor, controller_.selection().anchor};
    ExtendTo(point);
  } else if (const auto object = ObjectUnder(point)) {
    SelectUnit(Unit::kCharacter, point);
    controller_.Select({*object, *object + Units(1)});
  } else {
    SelectUnit(Unit::kCharacter, point);
  }
}

std::optional<Units> EditorMouse::ObjectUnder(QPointF point) {
  const auto character = controller_.layout().CharacterAt(point);
  if (!character) return std::nullopt;
  return text::ObjectAt(controller_.document().content(), *character) ? character : std::nullopt;
}

bool EditorMouse::IsThirdClick(const QMouseEvent& event) const {
  const auto interval = static_cast<unsigned long long>(QGuiApplication::styleHints()->mouseDoubleClickInterval());
  const QPointF moved = event.position() - doubleClicked_;
  return afterDoubleClick_ && event.timestamp() <= doubleClickTime_ + interval &&
         moved.manhattanLength() < QGuiApplication::styleHints()->startDragDistance();
}

void EditorMouse::Press(const QMouseEvent& event) {
  pressed_ = event.position();
  pressedModifiers_ = event.modifiers();
  pressedButton_ = event.button();
  state_ = State::kIdle;
  if (event.button() != Qt::LeftButton && event.button() != Qt::MiddleButton) return;
  const bool modified = (event.modifiers() & kDragModifiers) != Qt::NoModifier;
  if (modified && !controller_.range().empty() && IsOnSelection(event.position())) {
    state_ = State::kArmed;
  } else if (event.button() == Qt::LeftButton && !modified && IsThirdClick(event)) {
    SelectUnit(Unit::kParagraph, event.position());
  } else if (event.button() == Qt::LeftButton) {
    Click(event.position(), event.modifiers());
  }
  afterDoubleClick_ = false;
}

void EditorMouse::DoubleClick(const QMouseEvent& event) {
  if (event.button() != Qt::LeftButton) return Press(event);
  afterDoubleClick_ = true;
  doubleClicked_ = event.position();
  doubleClickTime_ = event.timestamp();
  pressedButton_ = event.button();
  const auto object = ObjectUnder(event.position());
  if (object && controller_.IsEmbeddedObject(*object)) {
    state_ = State::kIdle;
    controller_.Select({*object, *object + Units(1)});
    return controller_.host().OpenObject(*object);
  }
  SelectUnit(Unit::kWord, event.position());
}

void EditorMouse::Move(const QMouseEvent& event) {
  if (state_ == State::kSelecting && event.buttons().testFlag(Qt::LeftButton)) {
    last_ = event.position();
    ExtendTo(event.position());
  } else if (state_ == State::kArmed) {
    const QPointF moved = event.position() - pressed_;
    if (moved.manhattanLength() < QGuiApplication::styleHints()->startDragDistance()) return;
    state_ = State::kIdle;
    controller_.host().StartDrag();
  }
}

void EditorMouse::Release(const QMouseEvent& event) {
  const State state = std::exchange(state_, State::kIdle);
  if (event.button() != pressedButton_) return;
  pressedButton_ = Qt::NoButton;
  if (event.button() == Qt::MiddleButton) return PastePrimary(event.position());
  if (event.button() != Qt::LeftButton) return;
  if (state == State::kArmed) {
    Click(pressed_, pressedModifiers_);
    state_ = State::kIdle;
  }
  if (state != State::kIdle && pressedModifiers_ == Qt::ControlModifier && FollowsLink(event.position())) return;
  if (state != State::kIdle) controller_.PublishPrimarySelection();
}

// A click is a press and a release on one link.
bool EditorMouse::FollowsLink(QPointF released) {
  const std::string target = LinkUnder(pressed_);
  if (target.empty() || target != LinkUnder(released)) return false;
  controller_.host().FollowLink(target);
  return true;
}

std::string EditorMouse::LinkUnder(QPointF point) {
  const auto character = controller_.layout().CharacterAt(point);
  return character ? controller_.LinkAt(*character) : std::string();
}

void EditorMouse::PastePrimary(QPointF point) {
  if (!controller_.host().HasPrimarySelection()) return;
  const QMimeData* data = controller_.host().ClipboardData(QClipboard::Selection);
  if (!data || controller_.readOnly()) return;
  const CaretPlace hit = controller_.layout().HitTest(point);
  controller_.Select({hit.position, hit.position}, hit.affinity);
  controller_.Insert(*data, false);
}

void EditorMouse::PrepareContextMenu(QPointF point) {
  if (IsOnSelection(point)) return;
  if (const auto object = ObjectUnder(point)) return controller_.Select({*object, *object + Units(1)});
  const CaretPlace hit = controller_.layout().HitTest(point);
  controller_.Select({hit.position, hit.position}, hit.affinity);
}

// --- Scrolling

bool EditorMouse::wantsAutoScroll() const {
  const double height = controller_.layout().viewport().height();
  return state_ == State::kSelecting && (last_.y() < 0 || last_.y() > height);
}

// The further outside, the faster.
void EditorMouse::AutoScroll() {
  if (!wantsAutoScroll()) return;
  auto& layout = controller_.layout();
  const double height = layout.viewport().height();
  const double beyond = last_.y() < 0 ? last_.y() : last_.y() - height;
  layout.ScrollBy(std::clamp(beyond / 2, -height, height));
  ExtendTo({last_.x(), std::clamp(last_.y(), 0.0, std::max(0.0, height - 1))});
}

void EditorMouse::Wheel(const QWheelEvent& event, double lineHeight) {
  constexpr double kNotch = 120;
  const double notches = event.angleDelta().y() / kNotch;
  if (event.modifiers().testFlag(Qt::ControlModifier)) {
    if (notches != 0) controller_.host().ZoomBy(std::pow(kZoomStep, notches));
    return;
  }
  // Pixels that come without phases are a guess of some X drivers.
  const bool exact = !event.pixelDelta().isNull() && event.phase() != Qt::NoScrollPhase;
  const double lines = notches * QGuiApplication::styleHints()->wheelScrollLines();
  controller_.layout().ScrollBy(exact ? -event.pixelDelta().y() : -lines * lineHeight);
  controller_.host().ViewChanged();
}

// --- Drops

bool EditorMouse::CanDrop(const QMimeData& data, Qt::DropActions offered, bool own) const {
  if (own || controller_.readOnly() || !offered.testFlag(Qt::CopyAction)) return false;
  if (!controller_.plainOnly()) return HasAnyText(data) || HoldsFiles(data);
  // Text alone holds no files, and their names are not what is meant.
  return HasRichText(data) || (HasText(data) && !HoldsFiles(data));
}

void EditorMouse::DragOver(QPointF point) {
  constexpr double kBand = 16;  // at the upper and lower edge the text scrolls
  auto& layout = controller_.layout();
  if (point.y() < kBand) layout.ScrollBy(-kBand);
  if (point.y() > layout.viewport().height() - kBand) layout.ScrollBy(kBand);
  dropPlace_ = layout.HitTest(point);
  controller_.host().ViewChanged();
}

void EditorMouse::DragLeave() {
  dropPlace_.reset();
  controller_.host().ViewChanged();
}

std::vector<std::string> EditorMouse::Drop(const QMimeData& data, QPointF point) {
  dropPlace_.reset();
  const CaretPlace hit = controller_.layout().HitTest(point);
  controller_.Select({hit.position, hit.position}, hit.affinity);
  const DropParts parts = PartsOfDrop(data);
  if (parts.text) controller_.Insert(data, false);
  if (parts.picture && !controller_.plainOnly()) controller_.InsertPicture(data);
  return controller_.plainOnly() ? std::vector<std::string>() : parts.files;
}

}  // namespace ui
