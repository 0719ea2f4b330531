#include "text/print/Pages.h"

#include <algorithm>

namespace text::layout {
namespace {

// Heights are sums of whole and broken numbers.
constexpr double kAlmost = 0.01;

bool BreaksPage(const LayoutBlock& block, const BlockLine& line) {
  const std::vector<int>& breaks = block.text().pageBreaks;
  return !line.wraps() && std::binary_search(breaks.begin(), breaks.end(), line.end);
}

}  // namespace

Pages::Pages(Blocks& blocks, double height)
    : blocks_(blocks), height_(height), span_(SpanAt(blocks.content(), Units(0), Bias::kRight)) {}

// Lines from the cut on, so that neither one alone stays behind nor one alone goes over; a segment of a long paragraph
// counts as a paragraph of many lines.
Pages::Cut Pages::CutParagraph(const LayoutRow& row, double from, double room, bool pageIsEmpty) const {
  const LayoutBlock& block = *row.parts().front().block;
  const std::vector<BlockLine>& lines = block.lines();
  size_t first = 0;
  while (first + 1 < lines.size() && lines[first].top + kAlmost < from) ++first;
  size_t next = first;  // the first one on another page
  for (; next < lines.size() && lines[next].top + lines[next].height - from <= room + kAlmost; ++next) {
    if (!BreaksPage(block, lines[next])) continue;
    const bool last = next + 1 == lines.size();
    return {last ? row.height() : lines[next + 1].top, true, last};
  }
  if (next == lines.size()) return {row.height(), false, true};
  const bool begins = block.text().startsParagraph && first == 0, ends = block.text().endsParagraph;
  const size_t most = next;
  if (ends && lines.size() - next == 1 && next > first) --next;  // the last line takes one along
  if (begins && next - first == 1 && lines.size() > 1) next = first;
  if (next == first && pageIsEmpty) next = std::max(most, first + 1);
  if (next == first) return {from, false, false};
  if (next == lines.size()) return {row.height(), false, true};
  return {lines[next].top, false, false};
}

// The lowest height within the room at which no line of any cell is cut.
double Pages::CutRow(const LayoutRow& row, double from, double room) const {
  double cut = from + room;
  for (bool moved = true; moved;) {
    moved = false;
    for (const RowPart& part : row.parts()) {
      const auto& lines = part.block->lines();
      const BlockLine& line = lines[part.block->LineAtY(cut - part.y - kAlmost)];
      const double top = part.y + line.top, bottom = top + line.height;
      if (top + kAlmost >= cut || bottom <= cut + kAlmost || top <= from + kAlmost) continue;
      cut = top;
      moved = true;
    }
  }
  return cut;
}

Pages::Cut Pages::CutOf(const LayoutRow& row, double from, double room, bool pageIsEmpty) const {
  const bool paragraph = row.frames().empty();
  if (paragraph) return CutParagraph(row, from, room, pageIsEmpty);
  if (row.height() - from <= room + kAlmost) return {row.height(), false, true};
  if (!pageIsEmpty && row.height() <= height_) return {from, false, false};
  const double cut = CutRow(row, from, room);
  return {cut > from ? cut : from + room, false, false};
}

std::optional<std::vector<PageSlice>> Pages::Next() {
  if (!span_) return std::nullopt;
  std::vector<PageSlice> slices;
  for (double y = 0; span_;) {
    PlacedBlock block{*span_, blocks_.Get(*span_), y - from_};
    const Cut cut = CutOf(*block.row, from_, height_ - y, slices.empty());
    if (cut.y > from_ || cut.whole) {
      y += cut.y - from_;
      slices.push_back({std::move(block), from_, cut.y});
    }
    if (!cut.whole) {
      from_ = cut.y;
      return slices;
    }
    span_ = SpanAfter(blocks_.content(), *span_);
    from_ = 0;
    if (cut.ends) return slices;
  }
  return slices;
}

}  // namespace text::layout
