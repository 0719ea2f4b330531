// Formats of the selection and of the text typed next.
#include "ui/editing/EditorController.h"
#include "ui/editing/EditorOperation.h"

#include <algorithm>

namespace ui {

using text::Content;
using text::Range;
using text::Units;

text::ParaFormat WithBullet(text::ParaFormat format, int bulletIndent) {
  const int start = format.leftIndent + format.firstIndent;
  format.bullet = true;
  format.list = text::ListId::kNone;
  format.listLevel = 0;
  format.firstIndent = -bulletIndent;
  format.leftIndent = start + bulletIndent;
  return format;
}

text::ParaFormat WithoutBullet(text::ParaFormat format) {
  format.bullet = false;
  format.list = text::ListId::kNone;
  format.listLevel = 0;
  format.leftIndent += format.firstIndent;
  format.firstIndent = 0;
  return format;
}

std::string EditorController::LinkAt(Units position) const {
  const Content& content = document_.content();
  if (position >= content.size()) return {};
  return content.formats()[content.formats()[content.CharFormatAt(position)].link];
}

// The one behind the caret, else the one before it.
bool EditorController::FollowLink() {
  if (const auto object = SelectedObject()) {
    host_.OpenObject(*object);
    return true;
  }
  std::string target = LinkAt(selection_.caret);
  if (target.empty() && selection_.caret > Units(0)) target = LinkAt(selection_.caret - Units(1));
  if (!target.empty()) host_.FollowLink(target);
  return !target.empty();
}

text::CharFormat EditorController::InsertFormat() const {
  return FormatFor(range());
}

text::CharSummary EditorController::CharState() const {
  if (!range().empty()) return document_.content().Summarize(range());
  text::CharFormat format = InsertFormat();
  if (!MayChange(range())) format.flags |= text::kProtected;
  return SummaryOf(format);
}

// A selection that reaches just behind a paragraph's break does not mean the paragraph after it.
Range EditorController::ParagraphsOfSelection() const {
  Range paragraphs = range();
  const Content& content = document_.content();
  const bool atStart = content.ParagraphStart(content.ParagraphAt(paragraphs.end)) == paragraphs.end;
  if (!paragraphs.empty() && atStart) paragraphs.end -= Units(1);
  return paragraphs;
}

bool EditorController::MayFormatParagraphs() const {
  const Content& content = document_.content();
  const Range touched = ParagraphsOfSelection();
  const Units begin = content.ParagraphStart(content.ParagraphAt(touched.begin));
  const Units end = content.ParagraphEnd(content.ParagraphAt(touched.end));
  return (content.Summarize({begin, std::min(end + Units(1), content.size())}).someSet & text::kProtected) == 0;
}

text::ParaSummary EditorController::ParagraphState() const {
  return document_.content().SummarizeParagraphs(ParagraphsOfSelection());
}

bool EditorController::PatchChars(const text::CharFormatPatch& patch) {
  const bool onlyProtection = !patch.font && !patch.halfPoints && !patch.color && !patch.background && !patch.offset &&
                              ((patch.setFlags | patch.clearFlags) & ~text::kProtected) == 0;
  if (!range().empty() && !onlyProtection && !MayChange(range())) return false;
  const Operation operation(*this);
  if (range().empty()) {
    document_.SealStep();
    remembered_ = patch.Apply(InsertFormat());
    return true;
  }
  document_.SealStep();
  document_.PatchChars(range(), patch, selection_);
  seenRevision_ = document_.revision();
  document_.SealStep();
  return true;
}

bool EditorController::PatchParagraphs(const text::ParaFormatPatch& patch) {
  if (!MayFormatParagraphs()) return false;
  const Operation operation(*this);
  document_.SealStep();
  document_.PatchParagraphs(ParagraphsOfSelection(), patch, selection_);
  seenRevision_ = document_.revision();
  document_.SealStep();
  return true;
}

bool EditorController::MapParagraphs(const std::function<text::ParaFormat(text::ParaFormat)>& map) {
  if (!MayFormatParagraphs()) return false;
  const Operation operation(*this);
  const Range paragraphs = ParagraphsOfSelection();
  const Content& content = document_.content();
  text::FormatTable& formats = document_.formats();
  bool differs = false;
  Content mapped = content.WithParaFormats(paragraphs, [&](text::ParaFormatId id) {
    const text::ParaFormatId to = formats.Intern(map(formats[id]));
    differs |= to != id;
    return to;
  });
  if (!differs) return true;
  const Units begin = content.ParagraphStart(content.ParagraphAt(paragraphs.begin));
  const Units size = content.ParagraphEnd(content.ParagraphAt(paragraphs.end)) - begin;
  document_.SealStep();
  document_.Commit(std::move(mapped), {begin, size, size, true}, text::EditKind::kCommand, selection_);
  seenRevision_ = document_.revision();
  document_.SealStep();
  return true;
}

}  // namespace ui
