#include "text/Document.h"

#include "text/Utf16.h"

#include <algorithm>
#include <cassert>

namespace text {
namespace {

// Those who derive state look every event or so; whoever is further behind starts afresh.
constexpr size_t kLoggedChanges = 4096;

Change Inverse(const Change& change) {
  return {change.position, change.inserted, change.removed, change.formatOnly};
}

// Makes one change of two where the second continues the first (typing on, backspacing, deleting).
bool Extend(Change& change, const Change& next) {
  if (change.formatOnly || next.formatOnly) return false;
  if (next.removed == Units(0) && next.position == change.position + change.inserted) {
    change.inserted += next.inserted;
    return true;
  }
  if (next.inserted != Units(0) || change.inserted != Units(0)) return false;
  if (next.position == change.position || next.position + next.removed == change.position) {
    change.position = next.position;
    change.removed += next.removed;
    return true;
  }
  return false;
}

}  // namespace

Units MapPosition(Units position, const Change& change, Bias bias) {
  if (change.formatOnly || position < change.position) return position;
  const Units end = change.position + change.removed;
  if (position > end || (position == end && change.removed > Units(0) && bias == Bias::kRight))
    return position - change.removed + change.inserted;
  return bias == Bias::kLeft ? change.position : change.position + change.inserted;
}

Document::Document() : Document(Content()) {}

Document::Document(Content content, TextProperties properties) {
  Reset(std::move(content), properties);
}

void Document::Reset(Content content, TextProperties properties) {
  content_ = std::move(content);
  properties_ = properties;
  emptyCharFormat_ = CharFormatId::kDefault;
  typingFormat_.reset();
  steps_.assign(1, Step{nextId_++, content_, {}, {}, {}, EditKind::kCommand, emptyCharFormat_, {}});
  current_ = 0;
  savedId_ = steps_[0].id;
  forcedChanged_ = false;
  sealed_ = true;
  groupOpen_ = false;
  log_.clear();
  ++revision_;
}

// --- Edits

Range Document::Replace(Range range, const Content& fragment, EditKind kind, Selection before) {
  const auto [begin, end] = content_.Whole(range);
  if (begin == end && fragment.size() == Units(0)) return {begin, begin};
  Content next = content_.WithReplaced({begin, end}, fragment);
  // Where a CR and a LF have become neighbours the text is shorter than the sum of its parts: count from the ends.
  const Units newEnd = next.size() - (content_.size() - end);
  const Units newBegin = std::min(begin, newEnd);
  Record(std::move(next), {newBegin, end - newBegin, newEnd - newBegin}, kind, before);
  return {newBegin, newEnd};
}

Range Document::Replace(Range range, std::string_view bytes, CharFormatId format, EditKind kind, Selection before) {
  ContentBuilder builder(content_.store());
  ParaFormatId paragraph = ParaFormatId::kDefault;
  if (FindBreak(bytes) < bytes.size()) {
    paragraph = formats().Intern(ForNewText(formats()[content_.ParaFormatOf(content_.ParagraphAt(range.begin))]));
  }
  builder.Append(bytes, format, paragraph);
  return Replace(range, builder.Finish(), kind, before);
}

void Document::PatchChars(Range range, const CharFormatPatch& patch, Selection before) {
  bool differs = false;
  Content next = content_.WithCharFormats(range, [&](CharFormatId id) {
    const CharFormatId patched = formats().Intern(patch.Apply(formats()[id]));
    differs |= patched != id;
    return patched;
  });
  if (differs) Record(std::move(next), {range.begin, range.size(), range.size(), true}, EditKind::kCommand, before);
}

void Document::PatchParagraphs(Range range, const ParaFormatPatch& patch, Selection before) {
  bool differs = false;
  Content next = content_.WithParaFormats(range, [&](ParaFormatId id) {
    const ParaFormatId patched = formats().Intern(patch.Apply(formats()[id]));
    differs |= patched != id;
    return patched;
  });
  if (!differs) return;
  const Units begin = content_.ParagraphStart(content_.ParagraphAt(range.begin));
  const Units size = content_.ParagraphEnd(content_.ParagraphAt(range.end)) - begin;
  Record(std::move(next), {begin, size, size, true}, EditKind::kCommand, before);
}

void Document::Commit(Content content, Change change, EditKind kind, Selection before) {
  assert(content_.size() - change.removed + change.inserted == content.size());
  Record(std::move(content), change, kind, before);
}

void Document::SetEmptyFormat(CharFormatId chars, ParaFormatId paragraph) {
  assert(content_.size() == Units(0));
  emptyCharFormat_ = steps_[current_].emptyCharFormat = chars;
  content_ = content_.WithLastParaFormat(paragraph);
  steps_[current_].content = content_;
  Log({Units(0), Units(0), Units(0), true});
}

// --- History

bool Document::Merges(const Change& change, EditKind kind) const {
  if (current_ == 0 || current_ + 1 < steps_.size()) return false;
  if (groupDepth_ > 0) return groupOpen_;
  const Step& step = steps_[current_];
  if (sealed_ || kind == EditKind::kCommand || kind != step.kind) return false;
  if (kind == EditKind::kComposing) return true;
  Change last = step.changes.back();
  return Extend(last, change);
}

void Document::Record(Content content, Change change, EditKind kind, Selection before) {
  const Units caret = change.position + (change.formatOnly ? Units(0) : change.inserted);
  const Selection after = change.formatOnly ? before : Selection{caret, caret};
  if (Merges(change, kind)) {
    Step& step = steps_[current_];
    step.id = nextId_++;
    step.content = content;
    step.after = after;
    if (!Extend(step.changes.back(), change)) step.changes.push_back(change);
  } else {
    steps_.resize(current_ + 1);
    steps_.push_back({nextId_++, content, before, after, {change}, kind, emptyCharFormat_, typingFormat_});
    ++current_;
    groupOpen_ = groupDepth_ > 0;
  }
  sealed_ = false;
  if (content.size() == Units(0) && content_.size() > Units(0)) emptyCharFormat_ = content_.CharFormatAt(Units(0));
  steps_[current_].emptyCharFormat = emptyCharFormat_;
  typingFormat_.reset();
  content_ = std::move(content);
  Log(change);
}

std::optional<Selection> Document::Undo() {
  if (!canUndo()) return std::nullopt;
  const Step& step = steps_[current_--];
  content_ = steps_[current_].content;
  emptyCharFormat_ = steps_[current_].emptyCharFormat;
  typingFormat_ = step.typingFormat;
  sealed_ = true;
  std::for_each(step.changes.rbegin(), step.changes.rend(), [this](const Change& change) { Log(Inverse(change)); });
  return step.before;
}

std::optional<Selection> Document::Redo() {
  if (!canRedo()) return std::nullopt;
  const Step& step = steps_[++current_];
  content_ = step.content;
  emptyCharFormat_ = step.emptyCharFormat;
  typingFormat_.reset();
  sealed_ = true;
  for (const Change& change : step.changes) Log(change);
  return step.after;
}

void Document::SetSaved() {
  savedId_ = steps_[current_].id;
  forcedChanged_ = false;
  sealed_ = true;
}

void Document::Log(const Change& change) {
  log_.push_back(change);  // first: it may throw
  ++revision_;
  if (log_.size() > kLoggedChanges) log_.pop_front();
}

std::optional<std::vector<Change>> Document::ChangesSince(Revision revision) const {
  const Revision behind = revision_ - revision;
  if (revision > revision_ || behind > log_.size()) return std::nullopt;
  return std::vector<Change>(log_.end() - static_cast<ptrdiff_t>(behind), log_.end());
}

}  // namespace text
