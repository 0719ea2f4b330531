// Cuts the text into layout blocks: a paragraph, or one segment of a paragraph that is too long to be shaped at once.
// Where a segment begins depends on nothing but the text, so it is found from any position without what lies before.
#pragma once

#include "text/Content.h"

#include <optional>

namespace text::layout {

// A paragraph longer than kSegmentUnits + kSegmentWindow is cut once per kSegmentUnits, in the kSegmentWindow units
// before each multiple. No block is longer than kMaxBlockUnits.
constexpr int64_t kSegmentUnits = 8192;
constexpr int64_t kSegmentWindow = 1024;
constexpr int64_t kMaxBlockUnits = kSegmentUnits + 2 * kSegmentWindow;

struct BlockSpan {
  Range range;      // without the paragraph's break
  Range paragraph;  // likewise
  Breaks paragraphNumber;
  bool startsParagraph() const { return range.begin == paragraph.begin; }
  bool endsParagraph() const { return range.end == paragraph.end; }
  bool operator==(const BlockSpan&) const = default;
};

// The block of a position. On the border of two segments kLeft gives the one that ends there. O(log n + window).
BlockSpan SpanAt(const Content& content, Units position, Bias bias);
std::optional<BlockSpan> SpanAfter(const Content& content, const BlockSpan& span);
std::optional<BlockSpan> SpanBefore(const Content& content, const BlockSpan& span);
// Where the block behind it begins, or the end of the text.
Units NextStart(const BlockSpan& span, Units size);

}  // namespace text::layout
