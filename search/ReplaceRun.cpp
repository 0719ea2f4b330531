#include "search/ReplaceRun.h"

#include "ui/editor/RichTextBox.h"

#include <algorithm>

namespace search {

using text::Range;
using text::SurfaceUnits;
using text::Units;

namespace {

// After so many matches that had to be dealt with one by one, all are: a text full of them would be built anew for
// each.
constexpr int kMostPasses = 32;

std::u16string_view ViewOf(const QString& text) {
  return {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<size_t>(text.size())};
}

}  // namespace

ReplaceRun::ReplaceRun(const QString& needle, int options, const QString& replacement, text::LineEnd lineEnd)
    : searcher_(ViewOf(needle), {(options & ui::kFindMatchCase) != 0, (options & ui::kFindWholeWord) != 0}),
      replacement_(text::BytesOfUtf16(ViewOf(replacement), lineEnd)),
      length_(static_cast<int64_t>(text::Utf16OfBytes(replacement_, text::BreakAs::kCrLf).size())) {}

// The text while it is worked on. What lies before begin_ and in the last tail_ units is as it was.
class ReplaceRun::State {
 public:
  State(const ReplaceRun& run, const Loop& loop) : run_(run), old_(loop.content), loop_(loop) {}

  Units SearchStart() const {
    const SurfaceUnits start(NextStart(loop_.selStart, loop_.lastFound, loop_.newSearch));
    return loop_.content.FromSurface(std::min(start, loop_.content.surfaceSize()), text::Bias::kRight);
  }
  const text::Content& content() const { return loop_.content; }

  // One match as the editor replaces it. False where it refuses.
  bool ReplaceOne(Range match) {
    loop_.selStart = Surface(match.begin);
    result_.selection = match;
    if (!ui::RichTextBox::MayReplace(loop_.content, match)) return false;
    text::Document document(loop_.content);
    const text::CharFormatId format =
        document.formats().Intern(ForNewText(document.formats()[loop_.content.CharFormatAt(match.begin)]));
    const Range inserted = document.Replace(match, run_.replacement_, format, text::EditKind::kCommand, {});
    Cover(match, match, std::min(match.begin, inserted.begin));
    loop_.content = document.content();
    loop_.selStart = Surface(inserted.end);
    result_.selection = {inserted.end, inserted.end};
    return true;
  }
  void FoundAndReplaceOne(Range match) {
    Found(Surface(match.begin));
    if (ReplaceOne(match)) ++result_.count;
  }
  void Take(const text::Searcher::Replaced& replaced) {
    const text::Change& change = replaced.change;
    if (replaced.count == 0) return;
    Cover(replaced.first, {change.position, change.position + change.removed}, change.position);
    loop_.content = replaced.content;
    result_.count += replaced.count;
    const Units caret = change.position + change.inserted;
    loop_.selStart = Surface(caret);
    result_.selection = {caret, caret};
    Found(loop_.selStart - run_.length_.value());
  }

  LoopResult Finish() {
    result_.content = loop_.content;
    if (changed_) {
      const Units begin = std::min(begin_, loop_.content.size() - tail_);
      result_.change = {begin, old_.size() - tail_ - begin, loop_.content.size() - tail_ - begin};
    }
    return std::move(result_);
  }

 private:
  int64_t Surface(Units position) const { return loop_.content.ToSurface(position).value(); }
  void Found(int64_t position) {
    result_.lastFound = loop_.lastFound = position;
    loop_.newSearch = false;
  }
  // `replaced` of the text as it is now is about to become something else from `begin` on.
  void Cover(Range first, Range replaced, Units begin) {
    const Units tail = loop_.content.size() - replaced.end;
    if (!changed_) result_.first = first;
    begin_ = changed_ ? std::min(begin_, begin) : begin;
    tail_ = changed_ ? std::min(tail_, tail) : tail;
    changed_ = true;
  }

  const ReplaceRun& run_;
  const text::Content old_;
  Loop loop_;
  LoopResult result_;
  bool changed_ = false;
  Units begin_, tail_;
};

std::optional<LoopResult> ReplaceRun::Run(const Loop& loop, const text::SearchProgress& progress) const {
  State state(*this, loop);
  if (loop.replaceFirst) state.ReplaceOne(*loop.replaceFirst);
  // Inserted text is not searched: behind it the next step begins one unit further, or two where there is none.
  const text::ReplaceRules rules{SurfaceUnits(length_ == SurfaceUnits(0) ? 2 : 1), true};
  int64_t before = 0;
  bool cancelled = false;
  const text::SearchProgress told = [&](int64_t bytes) { return !(cancelled = !progress(before + bytes)); };
  for (int pass = 0;; ++pass) {
    const Units start = state.SearchStart();
    const text::Content content = state.content();
    before = content.SumsBefore(start).bytes.value();
    std::optional<Range> match;
    if (pass < kMostPasses) {
      const auto replaced = searcher_.ReplaceAll(content, {start, content.size()}, replacement_, rules, told);
      if (!replaced) return std::nullopt;
      state.Take(*replaced);
      match = replaced->stopped;
      const Units growth = replaced->content.size() - content.size();
      if (match) match = Range{match->begin + growth, match->end + growth};
    } else {
      match = searcher_.FindNext(content, start, content.size(), told);
      if (cancelled) return std::nullopt;
    }
    if (!match) return state.Finish();
    state.FoundAndReplaceOne(*match);
  }
}

}  // namespace search
