// What the reader tells a watcher.
#include "text/rtf/RtfReader.h"

namespace text::rtf {

bool RtfReader::Watch(RtfWatcher& watcher, const Progress& progress) {
  watcher_ = &watcher;
  output_.Mute();
  return !Run(true, progress).cancelled;
}

const Tables& RtfReader::ReadTables() {
  output_.Mute();
  Run(true, {});
  return tables();
}

InForce RtfReader::inForce() {
  InForce now;
  now.chars = formats_[CurrentChars()];
  now.script = inForce_.PlainChars(state(), now.plainChars);
  now.paragraph = formats_[CurrentParagraph()];
  now.ofStyle = inForce_.OfStyle(state());
  now.besideStyle = state().style.charsOff;
  now.tableLevel = state().level();
  now.fallbackCount = state().fallbackCount;
  now.multiByte = state().codePage->multiByte();
  now.codePage = state().codePage->number();
  return now;
}

Span RtfReader::SpanOf(std::string_view part) const {
  const auto begin = static_cast<size_t>(part.data() - bytes_.data());
  return {begin, begin + part.size()};
}

// The fallback of a high surrogate lies within the pair.
void RtfReader::TellSkipped(int32_t units, Span span) {
  skipUnits_ -= units;
  if (!watcher_) return;
  if (highSurrogate_ != 0) {
    surrogateSpan_.end = span.end;
  } else if (fallbackCounts_) {
    watcher_->OnFallback(span, skipUnits_ == 0);
  }
}

void RtfReader::TellText(std::string_view utf8) {
  fallbackCounts_ = true;
  watcher_->OnText(span_, utf8, spanKind_);
}

void RtfReader::TellBreak(bool joins) {
  fallbackCounts_ = true;
  watcher_->OnBreak(span_, joins);
}

void RtfReader::TellObject(const EmbeddedObject& object) {
  const std::string_view group = object.rtf.bytes;
  if (!group.empty()) {
    span_ = SpanOf(group);
    spanKind_ = RtfWatcher::Text::kGroup;
  } else {
    span_.end = tokenizer_.position();
    spanKind_ = RtfWatcher::Text::kWhole;
  }
  watcher_->OnText(span_, "\uFFFC", spanKind_);
}

void RtfReader::TellParagraphWord(bool reset) {
  if (watcher_ && inBody()) watcher_->OnParagraphWord(span_, reset);
}

Span RtfReader::ThisGroup() const {
  return {groupBegin_, std::min(tokenizer_.position() + 1, bytes_.size())};
}

// Before the innermost group ends.
void RtfReader::TellClosing() {
  const GroupState& group = state();
  const bool atBrace = tokenizer_.begin() < bytes_.size() && tokenizer_.position() == tokenizer_.begin() + 1;
  if (stack_.size() == 1) {
    FlushSurrogate();
    return watcher_->OnEnd(atBrace ? tokenizer_.begin() : bytes_.size());
  }
  if (!atBrace) return;
  if (group.opened == Opened::kFonts) watcher_->OnTableEnd(RtfWatcher::Table::kFonts, tokenizer_.begin());
  if (group.mode == stack_[stack_.size() - 2].mode) return;
  if (group.mode == Mode::kColors) watcher_->OnTableEnd(RtfWatcher::Table::kColors, tokenizer_.begin());
  if (group.mode == Mode::kLists) watcher_->OnTableEnd(RtfWatcher::Table::kLists, tokenizer_.begin());
  if (group.mode == Mode::kOverrides) watcher_->OnTableEnd(RtfWatcher::Table::kOverrides, tokenizer_.begin());
}

}  // namespace text::rtf
