#include "text/Movement.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace text {
namespace {

constexpr int64_t kReaches[] = {64, 1024, 16384};

// A stretch of one paragraph around a position.
struct Window {
  std::u16string text;
  Units begin;
  bool fromStart = false;  // begins where the paragraph begins
  bool toEnd = false;

  int32_t size() const { return static_cast<int32_t>(text.size()); }
  int32_t IndexOf(Units position) const { return static_cast<int32_t>((position - begin).value()); }
  Units PositionOf(int32_t index) const { return begin + Units(index); }
};

struct Paragraph {
  Units start;
  Units end;  // before the break
};

Paragraph ParagraphOf(const Content& content, Units position) {
  const Breaks number = content.ParagraphAt(position);
  return {content.ParagraphStart(number), content.ParagraphEnd(number)};
}

Window WindowAround(const Content& content, const Paragraph& paragraph, Units position, int64_t reach) {
  const Units begin = std::max(paragraph.start, content.Snap(position - Units(reach), Bias::kLeft));
  const Units end = std::min(paragraph.end, content.Snap(position + Units(reach), Bias::kRight));
  return {content.Utf16({begin, end}), begin, begin == paragraph.start, end == paragraph.end};
}

// Break iterators are expensive to make and not thread-safe.
icu::BreakIterator* Iterator(bool words) {
  thread_local std::unique_ptr<icu::BreakIterator> iterators[2];
  auto& iterator = iterators[words];
  if (!iterator) {
    UErrorCode status = U_ZERO_ERROR;
    const auto& locale = icu::Locale::getRoot();
    iterator.reset(words ? icu::BreakIterator::createWordInstance(locale, status)
                         : icu::BreakIterator::createCharacterInstance(locale, status));
    if (U_FAILURE(status)) iterator.reset();
  }
  return iterator.get();
}

// An iterator set to the window's text, as long as the window lives.
class BoundIterator {
 public:
  BoundIterator(const Window& window, bool words) : iterator_(Iterator(words)) {
    UErrorCode status = U_ZERO_ERROR;
    utext_openUChars(&text_, window.text.data(), window.size(), &status);
    if (iterator_) iterator_->setText(&text_, status);
    if (U_FAILURE(status)) iterator_ = nullptr;
  }
  ~BoundIterator() {
    UErrorCode status = U_ZERO_ERROR;
    UText empty = UTEXT_INITIALIZER;
    utext_openUChars(&empty, nullptr, 0, &status);
    if (iterator_) iterator_->setText(&empty, status);
    utext_close(&empty);
    utext_close(&text_);
  }
  BoundIterator(const BoundIterator&) = delete;
  BoundIterator& operator=(const BoundIterator&) = delete;
  explicit operator bool() const { return iterator_ != nullptr; }
  icu::BreakIterator* operator->() const { return iterator_; }

 private:
  UText text_ = UTEXT_INITIALIZER;
  icu::BreakIterator* iterator_;
};

enum class Kind : uint8_t { kSpace, kWord, kPunctuation };
struct Segment {
  int32_t begin, end;
  Kind kind;
};

Kind KindOf(const Window& window, int32_t index, int32_t status) {
  UChar32 c = 0;
  const char16_t* const units = window.text.data();
  U16_GET(units, 0, index, window.size(), c);
  if (u_isUWhiteSpace(c)) return Kind::kSpace;
  return status >= UBRK_WORD_NONE_LIMIT ? Kind::kWord : Kind::kPunctuation;
}

// The window's words, runs of blanks and runs of punctuation, in order.
std::vector<Segment> SegmentsOf(const Window& window) {
  std::vector<Segment> segments;
  BoundIterator iterator(window, true);
  if (!iterator) return {{0, window.size(), Kind::kWord}};
  int32_t begin = iterator->first();
  for (int32_t end = iterator->next(); end != icu::BreakIterator::DONE; begin = end, end = iterator->next()) {
    const Kind kind = KindOf(window, begin, iterator->getRuleStatus());
    if (!segments.empty() && segments.back().kind == kind && kind != Kind::kWord) {
      segments.back().end = end;
    } else {
      segments.push_back({begin, end, kind});
    }
  }
  return segments;
}

// The segment that holds the character at the index.
size_t SegmentAt(const std::vector<Segment>& segments, int32_t index) {
  const auto after = [](int32_t i, const Segment& segment) { return i < segment.end; };
  const auto found = std::upper_bound(segments.begin(), segments.end(), index, after);
  return std::min(static_cast<size_t>(found - segments.begin()), segments.size() - 1);
}

bool IsEmojiSequence(const std::u16string& grapheme) {
  const auto length = static_cast<int32_t>(grapheme.size());
  const char16_t* const units = grapheme.data();
  for (int32_t i = 0; i < length;) {
    UChar32 c = 0;
    U16_NEXT(units, i, length, c);
    constexpr UChar32 kKeycap = 0x20E3;
    if (c == kKeycap || u_hasBinaryProperty(c, UCHAR_REGIONAL_INDICATOR)) return true;
    // ASCII digits and "#" are emoji characters by property only.
    if (c > 0xFF && u_hasBinaryProperty(c, UCHAR_EXTENDED_PICTOGRAPHIC)) return true;
  }
  return false;
}

}  // namespace

Units NextGrapheme(const Content& content, Units position) {
  if (position >= content.size()) return content.size();
  const Paragraph paragraph = ParagraphOf(content, position);
  if (position >= paragraph.end) return position + Units(1);
  Units furthest = position;
  for (const int64_t reach : kReaches) {
    const Window window = WindowAround(content, paragraph, position, reach);
    furthest = window.PositionOf(window.size());
    BoundIterator iterator(window, false);
    if (!iterator) return content.Snap(position + Units(1), Bias::kRight);
    const int32_t next = iterator->following(window.IndexOf(position));
    if (next != icu::BreakIterator::DONE && (next < window.size() || window.toEnd)) return window.PositionOf(next);
  }
  return furthest;
}

Units PreviousGrapheme(const Content& content, Units position) {
  if (position <= Units(0)) return Units(0);
  position = std::min(position, content.size());
  const Paragraph paragraph = ParagraphOf(content, position);
  if (position <= paragraph.start) return position - Units(1);
  Units furthest = position;
  for (const int64_t reach : kReaches) {
    const Window window = WindowAround(content, paragraph, position, reach);
    furthest = window.begin;
    BoundIterator iterator(window, false);
    if (!iterator) return content.Snap(position - Units(1), Bias::kLeft);
    const int32_t previous = iterator->preceding(window.IndexOf(position));
    if (previous != icu::BreakIterator::DONE && (previous > 0 || window.fromStart)) return window.PositionOf(previous);
  }
  return furthest;
}

Units BackspaceStart(const Content& content, Units position) {
  const Units grapheme = PreviousGrapheme(content, position);
  if (position - grapheme <= Units(1)) return grapheme;
  constexpr Units kLongestEmoji(64);
  if (position - grapheme <= kLongestEmoji && IsEmojiSequence(content.Utf16({grapheme, position}))) return grapheme;
  return content.Snap(position - Units(1), Bias::kLeft);
}

Units NextWord(const Content& content, Units position) {
  if (position >= content.size()) return content.size();
  const Paragraph paragraph = ParagraphOf(content, position);
  if (position >= paragraph.end) return position + Units(1);
  Units furthest = position;
  for (const int64_t reach : kReaches) {
    const Window window = WindowAround(content, paragraph, position, reach);
    const auto segments = SegmentsOf(window);
    size_t at = SegmentAt(segments, window.IndexOf(position));
    if (segments[at].kind != Kind::kSpace && at + 1 < segments.size() && segments[at + 1].kind == Kind::kSpace) ++at;
    furthest = window.PositionOf(segments[at].end);
    if (segments[at].end < window.size() || window.toEnd) break;
  }
  return furthest;
}

Units PreviousWord(const Content& content, Units position) {
  if (position <= Units(0)) return Units(0);
  position = std::min(position, content.size());
  const Paragraph paragraph = ParagraphOf(content, position);
  if (position <= paragraph.start) return position - Units(1);
  Units furthest = position;
  for (const int64_t reach : kReaches) {
    const Window window = WindowAround(content, paragraph, position, reach);
    const auto segments = SegmentsOf(window);
    size_t at = SegmentAt(segments, window.IndexOf(position) - 1);
    if (segments[at].kind == Kind::kSpace && at > 0) --at;
    furthest = window.PositionOf(segments[at].begin);
    if (segments[at].begin > 0 || window.fromStart) break;
  }
  return furthest;
}

Range WordAt(const Content& content, Units position) {
  position = std::clamp(position, Units(0), content.size());
  const Paragraph paragraph = ParagraphOf(content, position);
  if (paragraph.start == paragraph.end) return {position, position};
  Range word{position, position};
  for (const int64_t reach : kReaches) {
    const Window window = WindowAround(content, paragraph, position, reach);
    const auto segments = SegmentsOf(window);
    const Segment& segment = segments[SegmentAt(segments, window.IndexOf(position))];
    word = {window.PositionOf(segment.begin), window.PositionOf(segment.end)};
    const bool whole = (segment.begin > 0 || window.fromStart) && (segment.end < window.size() || window.toEnd);
    if (whole) break;
  }
  return word;
}

Range ParagraphRange(const Content& content, Units position) {
  const Paragraph paragraph = ParagraphOf(content, std::clamp(position, Units(0), content.size()));
  return {paragraph.start, std::min(paragraph.end + Units(1), content.size())};
}

}  // namespace text
