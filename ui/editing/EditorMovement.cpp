#include "text/Movement.h"
#include "ui/editing/EditorController.h"
#include "ui/editing/EditorOperation.h"

#include <algorithm>

namespace ui {

using text::Bias;
using text::Content;
using text::Units;
using text::layout::CaretPlace;

void EditorController::Move(EditorMove move, bool extend) {
  const Operation operation(*this);
  DropComposition();
  const bool vertical = move == EditorMove::kLineUp || move == EditorMove::kLineDown || move == EditorMove::kPageUp ||
                        move == EditorMove::kPageDown;
  if (vertical) GoalX();
  const auto goal = goalX_;
  const bool collapse = !extend && !range().empty() && (move == EditorMove::kLeft || move == EditorMove::kRight);
  const CaretPlace target = collapse ? CollapseTarget(move == EditorMove::kRight) : Target(move);
  Select({extend ? selection_.anchor : target.position, target.position}, target.affinity);
  if (vertical) goalX_ = goal;
}

CaretPlace EditorController::Target(EditorMove move) {
  const Content& content = document_.content();
  switch (move) {
    case EditorMove::kLeft:
      return layout_.MoveVisually(caret(), false);
    case EditorMove::kRight:
      return layout_.MoveVisually(caret(), true);
    case EditorMove::kWordLeft:
      return {WordTarget(false)};
    case EditorMove::kWordRight:
      return {WordTarget(true)};
    case EditorMove::kLineUp:
      return layout_.MoveByLines(caret(), -1, GoalX());
    case EditorMove::kLineDown:
      return layout_.MoveByLines(caret(), 1, GoalX());
    case EditorMove::kPageUp:
      return PageTarget(false);
    case EditorMove::kPageDown:
      return PageTarget(true);
    case EditorMove::kLineStart:
      return {layout_.LineAt(caret()).begin, Bias::kRight};
    case EditorMove::kLineEnd:
      return {layout_.LineAt(caret()).end, Bias::kLeft};
    case EditorMove::kParagraphUp:
      return {ParagraphTarget(false)};
    case EditorMove::kParagraphDown:
      return {ParagraphTarget(true)};
    case EditorMove::kDocumentStart:
      return {Units(0)};
    case EditorMove::kDocumentEnd:
      return {content.size()};
  }
  return caret();
}

bool EditorController::CaretParagraphIsRightToLeft() const {
  return layout_.IsRightToLeft(document_.content().ParagraphAt(selection_.caret));
}

// The end of the selection that is seen on that side.
CaretPlace EditorController::CollapseTarget(bool right) {
  const text::Range line = layout_.LineAt({range().begin});
  if (range().end <= line.end) {
    const CaretPlace begin{range().begin}, end{range().end, range().end == line.end ? Bias::kLeft : Bias::kRight};
    const bool beginIsLeft = layout_.CaretRect(begin).x() <= layout_.CaretRect(end).x();
    return right == beginIsLeft ? end : begin;
  }
  return {right != CaretParagraphIsRightToLeft() ? range().end : range().begin};
}

Units EditorController::WordTarget(bool right) const {
  const Content& content = document_.content();
  return right != CaretParagraphIsRightToLeft() ? text::NextWord(content, selection_.caret)
                                                : text::PreviousWord(content, selection_.caret);
}

Units EditorController::ParagraphTarget(bool down) const {
  const Content& content = document_.content();
  const text::Breaks paragraph = content.ParagraphAt(selection_.caret);
  if (down) return text::ParagraphRange(content, selection_.caret).end;
  const Units start = content.ParagraphStart(paragraph);
  if (selection_.caret > start || paragraph == text::Breaks(0)) return start;
  return content.ParagraphStart(paragraph - text::Breaks(1));
}

double EditorController::GoalX() {
  if (!goalX_) {
    layout_.EnsureVisible(caret());
    goalX_ = layout_.CaretRect(caret()).center().x();
  }
  return *goalX_;
}

// The view moves by a page less one line and the caret keeps its height in it; where the view cannot move that far the
// caret goes the rest of the way.
CaretPlace EditorController::PageTarget(bool down) {
  layout_.EnsureVisible(caret());
  const QRectF rect = layout_.CaretRect(caret());
  const double page = std::max(rect.height(), layout_.viewport().height() - rect.height());
  const double wanted = down ? page : -page;
  const double moved = layout_.ScrollBy(wanted);
  return layout_.HitTest({GoalX(), rect.center().y() + wanted - moved});
}

}  // namespace ui
