// Cuts the text into layout blocks: a paragraph, one segment of a paragraph that is too long to be shaped at once, or
// all paragraphs of a table's row. Where a segment begins depends on nothing but the text, so it is found from any
// position without what lies before.
#pragma once

#include "text/Content.h"

#include <optional>
#include <vector>

namespace text::layout {

// A paragraph longer than kSegmentUnits + kSegmentWindow is cut once per kSegmentUnits, in the kSegmentWindow units
// before each multiple. No block is longer than kMaxBlockUnits.
constexpr int64_t kSegmentUnits = 8192;
constexpr int64_t kSegmentWindow = 1024;
constexpr int64_t kMaxBlockUnits = kSegmentUnits + 2 * kSegmentWindow;

struct BlockSpan {
  Range range;             // without the paragraph's break
  Range paragraph;         // likewise
  Breaks paragraphNumber;  // the first one's
  Breaks inner;            // breaks within the range: none but in a table's row
  bool tableRow = false;
  bool startsParagraph() const { return range.begin == paragraph.begin; }
  bool endsParagraph() const { return range.end == paragraph.end; }
  bool operator==(const BlockSpan&) const = default;
};

// The block of a position. On the border of two segments kLeft gives the one that ends there. O(log n + window).
BlockSpan SpanAt(const Content& content, Units position, Bias bias);
std::optional<BlockSpan> SpanAfter(const Content& content, const BlockSpan& span);
std::optional<BlockSpan> SpanBefore(const Content& content, const BlockSpan& span);
// The segments of a stretch that is laid out as a paragraph by itself, a part of a table's cell.
std::vector<BlockSpan> SegmentsOf(const Content& content, Range part, Breaks paragraphNumber);
// Where the block behind it begins, or the end of the text.
Units NextStart(const BlockSpan& span, Units size);

}  // namespace text::layout
