#include "text/outline/Segments.h"

#include "text/outline/TableRows.h"

#include <QString>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace text::layout {
namespace {

// How much text on each side of a candidate decides its rank.
constexpr int64_t kContext = 8;

bool IsBlank(char16_t unit) {
  return unit == u' ' || unit == u'\t' || unit == u'\u3000';
}

// Ranks candidates by the text around them. The lowest rank in the window is the border: as the window slides over the
// text, because something was typed in front of it, the same place stays the border for a long while.
uint64_t Rank(std::u16string_view text, size_t at) {
  uint64_t hash = 1469598103934665603ull;
  const size_t end = std::min(text.size(), at + kContext);
  for (size_t i = at < kContext ? 0 : at - kContext; i < end; ++i) hash = (hash ^ text[i]) * 1099511628211ull;
  return hash ^ (hash >> 32);
}

class BestPlace {
 public:
  explicit BestPlace(std::u16string_view text) : text_(text) {}
  void Offer(size_t at) {
    const uint64_t rank = Rank(text_, at);
    if (place_ && rank > rank_) return;
    rank_ = rank;
    place_ = at;
  }
  std::optional<size_t> place() const { return place_; }

 private:
  std::u16string_view text_;
  std::optional<size_t> place_;
  uint64_t rank_ = 0;
};

std::optional<size_t> PlaceBehindBlank(std::u16string_view text, size_t first, size_t last) {
  BestPlace best(text);
  for (size_t i = first; i <= last; ++i) {
    if (IsBlank(text[i - 1]) && (i == text.size() || !IsBlank(text[i]))) best.Offer(i);
  }
  return best.place();
}

std::optional<size_t> PlaceBetweenGraphemes(std::u16string_view text, size_t first, size_t last) {
  const QString string(reinterpret_cast<const QChar*>(text.data()), static_cast<qsizetype>(text.size()));
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, string);
  finder.setPosition(static_cast<qsizetype>(first));
  BestPlace best(text);
  qsizetype at = finder.isAtBoundary() ? static_cast<qsizetype>(first) : finder.toNextBoundary();
  for (; at >= 0 && at <= static_cast<qsizetype>(last); at = finder.toNextBoundary())
    best.Offer(static_cast<size_t>(at));
  return best.place();
}

// The border that belongs to paragraph start + index * kSegmentUnits; it lies in the window before that place.
Units Border(const Content& content, Range paragraph, int64_t index) {
  const Units nominal = paragraph.begin + Units(index * kSegmentUnits);
  const Units from = content.Snap(nominal - Units(kSegmentWindow + kContext), Bias::kLeft);
  const Units to = content.Snap(std::min(nominal + Units(kContext), paragraph.end), Bias::kLeft);
  const std::u16string text = content.Utf16({from, to});
  const auto last = static_cast<size_t>((nominal - from).value());
  const size_t first = last - static_cast<size_t>(kSegmentWindow) + 1;
  if (const auto place = PlaceBehindBlank(text, first, last)) return from + Units(static_cast<int64_t>(*place));
  if (const auto place = PlaceBetweenGraphemes(text, first, last)) return from + Units(static_cast<int64_t>(*place));
  return content.Snap(nominal, Bias::kLeft);
}

// How many borders there are; the last segment is not shorter than the window.
int64_t BorderCount(Range paragraph) {
  return std::max<int64_t>(0, (paragraph.size().value() - kSegmentWindow) / kSegmentUnits);
}

Range SegmentAt(const Content& content, Range paragraph, Units position, Bias bias) {
  const int64_t count = BorderCount(paragraph);
  // The border of a place lies before it, so the segment is the one of the place's own index or the next one.
  int64_t index = std::min((position - paragraph.begin).value() / kSegmentUnits, count);
  Units begin = index == 0 ? paragraph.begin : Border(content, paragraph, index);
  if (index > 0 && bias == Bias::kLeft && position == begin) {
    return {--index == 0 ? paragraph.begin : Border(content, paragraph, index), position};
  }
  Units end = index == count ? paragraph.end : Border(content, paragraph, index + 1);
  const bool behind = bias == Bias::kLeft ? position > end : position >= end;
  if (index < count && behind) {
    begin = end;
    ++index;
    end = index == count ? paragraph.end : Border(content, paragraph, index + 1);
  }
  return {begin, end};
}

BlockSpan SpanIn(const Content& content, Breaks number, Units position, Bias bias) {
  if (const auto row = RowOf(content, number)) {
    const Range range{content.ParagraphStart(row->first), content.ParagraphEnd(row->last)};
    return {range, range, row->first, row->last - row->first, true};
  }
  const Range paragraph{content.ParagraphStart(number), content.ParagraphEnd(number)};
  if (BorderCount(paragraph) == 0) return {paragraph, paragraph, number, Breaks(0)};
  return {SegmentAt(content, paragraph, position, bias), paragraph, number, Breaks(0)};
}

}  // namespace

BlockSpan SpanAt(const Content& content, Units position, Bias bias) {
  position = content.Snap(position, Bias::kLeft);
  return SpanIn(content, content.ParagraphAt(position), position, bias);
}

std::optional<BlockSpan> SpanAfter(const Content& content, const BlockSpan& span) {
  if (!span.endsParagraph())
    return BlockSpan{SegmentAt(content, span.paragraph, span.range.end, Bias::kRight), span.paragraph,
                     span.paragraphNumber, Breaks(0)};
  const Breaks last = span.paragraphNumber + span.inner;
  if (last == content.breaks()) return std::nullopt;
  return SpanIn(content, last + Breaks(1), span.range.end + Units(1), Bias::kRight);
}

std::optional<BlockSpan> SpanBefore(const Content& content, const BlockSpan& span) {
  if (!span.startsParagraph())
    return BlockSpan{SegmentAt(content, span.paragraph, span.range.begin, Bias::kLeft), span.paragraph,
                     span.paragraphNumber, Breaks(0)};
  if (span.paragraphNumber == Breaks(0)) return std::nullopt;
  return SpanIn(content, span.paragraphNumber - Breaks(1), span.range.begin - Units(1), Bias::kLeft);
}

std::vector<BlockSpan> SegmentsOf(const Content& content, Range part, Breaks paragraphNumber) {
  if (BorderCount(part) == 0) return {{part, part, paragraphNumber, Breaks(0)}};
  std::vector<BlockSpan> segments;
  for (Units at = part.begin; at < part.end; at = segments.back().range.end) {
    segments.push_back({SegmentAt(content, part, at, Bias::kRight), part, paragraphNumber, Breaks(0)});
  }
  return segments;
}

Units NextStart(const BlockSpan& span, Units size) {
  return span.endsParagraph() ? std::min(span.range.end + Units(1), size) : span.range.end;
}

}  // namespace text::layout
