#include "ui/editing/EditorController.h"

#include "ui/editing/EditorOperation.h"

#include <algorithm>

namespace ui {

using text::Bias;
using text::Range;
using text::Selection;
using text::Units;

// --- The selection

void EditorController::PlaceCaret(Selection selection, Bias affinity) {
  const auto clamp = [this](Units position) { return document_.content().Snap(position, Bias::kLeft); };
  selection_ = {clamp(selection.anchor), clamp(selection.caret)};
  affinity_ = affinity;
  goalX_.reset();
  seenRevision_ = document_.revision();
  reveal_ = true;
}

void EditorController::Select(Selection selection, Bias affinity) {
  const Operation operation(*this);
  DropComposition();
  document_.SealStep();
  remembered_.reset();
  PlaceCaret(selection, affinity);
}

void EditorController::RevealCaret(int contextLines) {
  const double line = layout_.CaretRect(caret()).height();
  layout_.EnsureVisible(caret(), std::max(kTextMargin, contextLines * line));
  host_.ViewChanged();
}

void EditorController::Sync() {
  const Operation operation(*this);
}

void EditorController::Reset() {
  selection_ = {};
  seenRevision_ = document_.revision();
  remembered_.reset();
  DropComposition();
  layout_.SetScrollValue(0);
  PlaceCaret({}, Bias::kRight);
  told_ = Now();
  host_.ViewChanged();
  host_.TextChanged();
  host_.SelectionChanged();
}

void EditorController::MapThroughForeignEdits() {
  if (seenRevision_ == document_.revision()) return;
  if (const auto changes = document_.ChangesSince(seenRevision_)) {
    for (const text::Change& change : *changes) {
      selection_.anchor = MapPosition(selection_.anchor, change, Bias::kRight);
      selection_.caret = MapPosition(selection_.caret, change, Bias::kRight);
    }
  }
  const bool reveal = reveal_;
  PlaceCaret(selection_, affinity_);
  reveal_ = reveal;
}

void EditorController::Settle() {
  const Told before = told_;
  told_ = Now();
  if (reveal_) layout_.EnsureVisible(caret(), kTextMargin);
  reveal_ = false;
  host_.ViewChanged();
  const bool selectionChanged = !(before == told_);
  if (before.revision != told_.revision) host_.TextChanged();
  if (selectionChanged) host_.SelectionChanged();
}

// --- Edits

bool EditorController::Replace(Range range, std::string_view bytes, text::EditKind kind) {
  if (!MayChange(range) || !KeepsTables(range)) return false;
  const Operation operation(*this);
  DropComposition();
  const text::CharFormatId format = document_.formats().Intern(FormatFor(range));
  document_.SetTypingFormat(remembered_ ? std::optional(document_.formats().Intern(*remembered_)) : std::nullopt);
  const bool leavesRowMark = LeavesRowMark(range);
  std::optional<text::EditGroup> step;
  if (leavesRowMark) step.emplace(document_);
  const Range inserted = document_.Replace(range, bytes, format, kind, selection_);
  if (leavesRowMark) DropLastRowMark();
  PlaceCaret({inserted.end, inserted.end}, Bias::kRight);
  return true;
}

bool EditorController::Replace(Range range, const text::Content& fragment, bool wholeParagraphs) {
  if (!MayChange(range) || !KeepsTables(range)) return false;
  const Operation operation(*this);
  DropComposition();
  remembered_.reset();
  const text::Content fitted = FittedToTables(range, fragment);
  const bool takes = (wholeParagraphs || fitted.breaks() > text::Breaks(0)) && TakesLastFormat(range, fitted);
  std::optional<text::EditGroup> step;
  if (takes) step.emplace(document_);
  const Range inserted = document_.Replace(range, fitted, text::EditKind::kCommand, selection_);
  PlaceCaret({inserted.end, inserted.end}, Bias::kRight);
  if (takes) FormatParagraphAt(inserted.end, fitted.lastParaFormat());
  return true;
}

// But for the cell that it is in.
void EditorController::FormatParagraphAt(text::Units position, text::ParaFormatId to) {
  const text::Content& content = document_.content();
  text::FormatTable& formats = document_.formats();
  const text::Breaks paragraph = content.ParagraphAt(position);
  const Units begin = content.ParagraphStart(paragraph), size = content.ParagraphEnd(paragraph) - begin;
  text::Content formatted = content.WithParaFormats({position, position}, [&](text::ParaFormatId from) {
    text::ParaFormat format = formats[to];
    format.row = formats[from].row;
    format.rowMark = formats[from].rowMark;
    return formats.Intern(format);
  });
  document_.Commit(std::move(formatted), {begin, size, size, true}, text::EditKind::kCommand, selection_);
  seenRevision_ = document_.revision();
}

void EditorController::Swap(bool redo) {
  const Operation operation(*this);
  if (readOnly_) return host_.Refused();
  DropComposition();
  const auto shown = redo ? document_.Redo() : document_.Undo();
  if (!shown) return;
  remembered_.reset();
  if (const auto typing = document_.typingFormat()) remembered_ = document_.formats()[*typing];
  PlaceCaret(*shown, Bias::kRight);
}

void EditorController::SetOvertype(bool on) {
  if (overtype_ == on) return;
  overtype_ = on;
  host_.OvertypeChanged(on);
  host_.ViewChanged();
}

}  // namespace ui
