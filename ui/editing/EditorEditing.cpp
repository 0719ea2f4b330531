// The user's edits: typing, paragraph breaks, deleting.
#include "text/Movement.h"
#include "ui/editing/EditorController.h"
#include "ui/editing/EditorOperation.h"

#include <algorithm>

namespace ui {

using text::Bias;
using text::Content;
using text::EditKind;
using text::Range;
using text::Units;

namespace {

std::u16string_view ViewOf(const QString& text) {
  return {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<size_t>(text.size())};
}

bool IsProtectedAt(const Content& content, Units position) {
  return (content.formats()[content.CharFormatAt(position)].flags & text::kProtected) != 0;
}

bool HasLabel(const text::ParaFormat& format) {
  return format.bullet || format.list != text::ListId::kNone;
}

int64_t GraphemesIn(std::u16string_view units) {
  text::ContentBuilder builder(Content().store());
  builder.Append(text::BytesOfUtf16(units));
  const Content content = builder.Finish();
  int64_t count = 0;
  for (Units at(0); at < content.size(); at = text::NextGrapheme(content, at)) ++count;
  return count;
}

}  // namespace

// --- What may be edited, and in which format

// An insertion is in the way only of what is protected on both of its sides.
bool EditorController::MayChange(Range range) const {
  const Content& content = document_.content();
  if (!range.empty()) return (content.Summarize(range).someSet & text::kProtected) == 0;
  if (range.begin == Units(0) || range.begin == content.size()) return true;
  return !(IsProtectedAt(content, range.begin - Units(1)) && IsProtectedAt(content, range.begin));
}

bool EditorController::UserMayChange(Range range) {
  if (!readOnly_ && MayChange(range) && KeepsTables(range)) return true;
  host_.Refused();
  return false;
}

// Between two characters of one link.
bool EditorController::IsWithinLink(Units position) const {
  const Content& content = document_.content();
  if (position == Units(0) || position == content.size()) return false;
  const auto linkAt = [&](Units at) { return content.formats()[content.CharFormatAt(at)].link; };
  return linkAt(position) == linkAt(position - Units(1));
}

text::CharFormat EditorController::FormatFor(Range range) const {
  if (remembered_) return *remembered_;
  const Content& content = document_.content();
  text::CharFormatId id = document_.emptyCharFormat();
  if (content.size() > Units(0)) {
    const Units paragraphStart = content.ParagraphStart(content.ParagraphAt(range.begin));
    const bool fromBefore = range.empty() && range.begin > paragraphStart;
    id = content.CharFormatAt(fromBefore ? range.begin - Units(1) : range.begin);
  }
  text::CharFormat format = ForNewText(document_.formats()[id]);
  if (format.link == text::LinkId::kNone || !range.empty() || IsWithinLink(range.begin)) return format;
  // Beside a link it is ordinary text, without the looks that links are given.
  format.link = text::LinkId::kNone;
  format.flags &= static_cast<uint16_t>(~text::kUnderline);
  format.color = {};
  return format;
}

// What follows in a new paragraph looks like what was typed before it.
void EditorController::KeepFormatForNextText() {
  if (!remembered_) remembered_ = FormatFor(range());
}

void EditorController::DropComposition() {
  if (!composing_) return;
  composing_ = false;
  layout_.SetPreedit(std::nullopt);
  host_.ResetComposition();
}

// --- Typing

// Where directions meet the caret shows where typing goes on; at a wrap it stays on the lower line.
void EditorController::StayBesideWhatIsBefore() {
  const Units caret = selection_.caret;
  const bool beginsLine = layout_.LineAt({caret, Bias::kRight}).begin == caret;
  affinity_ = beginsLine ? Bias::kRight : Bias::kLeft;
}

// As many characters as are typed, but never the paragraph's end; a mark joins the character before and replaces none.
Range EditorController::OvertypeRange(const QString& text) const {
  const Content& content = document_.content();
  const Units paragraphEnd = content.ParagraphEnd(content.ParagraphAt(selection_.caret));
  Range over{selection_.caret, selection_.caret};
  const bool joins = !text.isEmpty() && text.at(0).isMark();
  for (int64_t left = GraphemesIn(ViewOf(text)) - (joins ? 1 : 0); left > 0 && over.end < paragraphEnd; --left) {
    over.end = text::NextGrapheme(content, over.end);
  }
  return over;
}

void EditorController::Type(const QString& text) {
  const Operation operation(*this);
  const bool selected = !range().empty();
  const Range target = overtype_ && !selected ? OvertypeRange(text) : range();
  if (!UserMayChange(target)) return;
  if (selected) document_.SealStep();
  // Typing over is a chain of replacements; as composing they are one step too.
  const EditKind kind = overtype_ ? EditKind::kComposing : EditKind::kTyping;
  Replace(target, text::BytesOfUtf16(ViewOf(text), document_.properties().lineEnd), kind);
  StayBesideWhatIsBefore();
}

bool EditorController::TypeOver(const QString& text) {
  const Operation operation(*this);
  if (!UserMayChange(range())) return false;
  if (range().empty() && text.isEmpty()) return true;
  document_.SealStep();
  Replace(range(), text::BytesOfUtf16(ViewOf(text), document_.properties().lineEnd));
  document_.SealStep();
  StayBesideWhatIsBefore();
  return true;
}

// A step of its own, so undo goes back line by line.
void EditorController::BreakParagraph() {
  const Operation operation(*this);
  if (!UserMayChange(range()) || LeaveList()) return;
  document_.SealStep();
  KeepFormatForNextText();
  Replace(range(), text::BytesOfUtf16(u"\n", document_.properties().lineEnd), EditKind::kTyping);
  document_.SealStep();
}

// --- Deleting

// In an empty paragraph of a list Enter ends the list.
bool EditorController::LeaveList() {
  const Content& content = document_.content();
  const text::Breaks paragraph = content.ParagraphAt(selection_.caret);
  const bool isEmpty = content.ParagraphStart(paragraph) == content.ParagraphEnd(paragraph);
  if (!range().empty() || !isEmpty || !HasLabel(document_.formats()[content.ParaFormatOf(paragraph)])) return false;
  return MapParagraphs([](text::ParaFormat format) { return WithoutBullet(format); });
}

void EditorController::Erase(bool forward, bool word) {
  const Operation operation(*this);
  const Content& content = document_.content();
  const Units caret = selection_.caret;
  Range erased = range();
  EditKind kind = EditKind::kCommand;
  if (erased.empty() && word) {
    erased = forward ? Range{caret, text::NextWord(content, caret)} : Range{text::PreviousWord(content, caret), caret};
  } else if (erased.empty()) {
    kind = forward ? EditKind::kDeleting : EditKind::kBackspacing;
    erased =
        forward ? Range{caret, text::NextGrapheme(content, caret)} : Range{text::BackspaceStart(content, caret), caret};
  }
  if (!forward && range().empty() && BackspaceRemovesBullet()) return;
  if (!range().empty() && EmptyCells(erased)) return;
  if (erased.empty() || !UserMayChange(erased)) return;
  if (kind == EditKind::kCommand) document_.SealStep();
  if (EmptiesParagraph(erased)) KeepFormatForNextText();
  Replace(erased, {}, kind);
  StayBesideWhatIsBefore();
}

bool EditorController::EmptiesParagraph(Range erased) const {
  const Content& content = document_.content();
  return content.ParagraphStart(content.ParagraphAt(erased.begin)) == erased.begin &&
         content.ParagraphEnd(content.ParagraphAt(erased.end)) == erased.end;
}

bool EditorController::TakesLastFormat(Range range, const Content& fragment) const {
  const Content& content = document_.content();
  const Units behind = std::min(range.end + Units(1), content.size());
  // One paragraph without a label goes into an item.
  const auto hasLabel = [&](text::ParaFormatId id) { return HasLabel(document_.formats()[id]); };
  if (fragment.breaks() == text::Breaks(0) && !hasLabel(fragment.lastParaFormat()) &&
      hasLabel(content.ParaFormatOf(content.ParagraphAt(range.begin))))
    return false;
  return fragment.ParagraphStart(fragment.breaks()) < fragment.size() && EmptiesParagraph(range) &&
         (content.Summarize({range.end, behind}).someSet & text::kProtected) == 0;
}

bool EditorController::BackspaceRemovesBullet() {
  const Content& content = document_.content();
  const text::Breaks paragraph = content.ParagraphAt(selection_.caret);
  if (selection_.caret != content.ParagraphStart(paragraph)) return false;
  if (!HasLabel(document_.formats()[content.ParaFormatOf(paragraph)])) return false;
  if (readOnly_ || !MapParagraphs([](text::ParaFormat format) { return WithoutBullet(format); })) host_.Refused();
  return true;
}

}  // namespace ui
