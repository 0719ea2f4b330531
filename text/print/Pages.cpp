#include "text/print/Pages.h"

#include <algorithm>

namespace text::layout {
namespace {

// Heights are sums of whole and broken numbers.
constexpr double kAlmost = 0.01;
constexpr double kLeastOfARow = 24;  // that stands on a page where the row is divided

bool BreaksPage(const LayoutBlock& block, const BlockLine& line) {
  const std::vector<int>& breaks = block.text().pageBreaks;
  return !line.wraps() && std::binary_search(breaks.begin(), breaks.end(), line.end);
}

}  // namespace

Pages::Pages(Blocks& blocks, double height)
    : blocks_(blocks), height_(height), span_(SpanAt(blocks.content(), Units(0), Bias::kRight)) {}

// Lines from the cut on, so that neither one alone stays behind nor one alone goes over; a segment of a long paragraph
// counts as a paragraph of many lines.
Pages::Cut Pages::CutParagraph(const LayoutRow& row, Place place) const {
  const LayoutBlock& block = *row.parts().front().block;
  const std::vector<BlockLine>& lines = block.lines();
  const auto fits = [&](const BlockLine& line) {
    const double bottom = line.top + line.height - from_;
    return bottom <= place.room + kAlmost &&
           bottom + FootFor(span_->range.begin + Units(block.FromShown(line.next))) <= place.room + kAlmost;
  };
  size_t first = 0;
  while (first + 1 < lines.size() && lines[first].top + kAlmost < from_) ++first;
  size_t next = first;  // the first one on another page
  for (; next < lines.size() && fits(lines[next]); ++next) {
    if (!BreaksPage(block, lines[next])) continue;
    const bool last = next + 1 == lines.size();
    return {last ? row.height() : lines[next + 1].top, true, last};
  }
  if (next == lines.size()) return {row.height(), false, true};
  const bool begins = block.text().startsParagraph && first == 0, ends = block.text().endsParagraph;
  const size_t most = next;
  if (ends && lines.size() - next == 1 && next > first) --next;  // the last line takes one along
  if (begins && next - first == 1 && lines.size() > 1) next = first;
  if (next == first && place.must) next = std::max(most, first + 1);
  if (next == first) return {from_, false, false};
  if (next == lines.size()) return {row.height(), false, true};
  return {lines[next].top, false, false};
}

// The lowest height within the room at which no line of any cell is cut.
double Pages::CutRow(const LayoutRow& row, double room) const {
  double cut = from_ + room;
  for (bool moved = true; moved;) {
    moved = false;
    for (const RowPart& part : row.parts()) {
      const auto& lines = part.block->lines();
      const BlockLine& line = lines[part.block->LineAtY(cut - part.y - kAlmost)];
      const double top = part.y + line.top, bottom = top + line.height;
      if (top + kAlmost >= cut || bottom <= cut + kAlmost || top <= from_ + kAlmost) continue;
      cut = top;
      moved = true;
    }
  }
  return cut;
}

Pages::Cut Pages::CutOf(const LayoutRow& row, Place place) const {
  if (row.frames().empty()) return CutParagraph(row, place);
  const double room = place.room - FootFor(span_->range.end), left = row.height() - from_;
  if (left <= room + kAlmost) return {row.height(), false, true};
  if (!place.must && row.height() <= pageHeight_) return {from_, false, false};
  if (room < kLeastOfARow && !place.must) return {from_, false, false};
  const double least = std::min(left, std::max(room, std::min(kLeastOfARow, place.room)));
  const double cut = CutRow(row, least);
  return {cut > from_ ? cut : from_ + least, false, false};
}

std::optional<std::vector<PageSlice>> Pages::Next(double height, bool atLeastALine) {
  if (!span_) return std::nullopt;
  begin_ = pageBegin_;
  pageHeight_ = height;
  std::vector<PageSlice> slices;
  for (double y = 0; span_;) {
    PlacedBlock block{*span_, blocks_.Get(*span_), y - from_};
    const Cut cut = CutOf(*block.row, {height - y, atLeastALine && slices.empty()});
    if (cut.y > from_ || cut.whole) {
      y += cut.y - from_;
      slices.push_back({std::move(block), from_, cut.y});
    }
    if (!cut.whole) {
      from_ = cut.y;
      pageBegin_ = PlaceAt(*span_, from_);
      return slices;
    }
    pageBegin_ = NextStart(*span_, blocks_.content().size());
    span_ = SpanAfter(blocks_.content(), *span_);
    from_ = 0;
    if (cut.ends) return slices;
  }
  return slices;
}

// Where the text goes on behind a cut; in a table's row at its end, as its cells' lines are cut side by side.
Units Pages::PlaceAt(const BlockSpan& span, double cut) {
  if (cut <= 0) return span.range.begin;
  const auto row = blocks_.Get(span);
  if (!row->frames().empty()) return span.range.end;
  const LayoutBlock& block = *row->parts().front().block;
  const BlockLine& line = block.lines()[block.LineAtY(cut + kAlmost)];
  return span.range.begin + Units(block.FromShown(line.begin));
}

}  // namespace text::layout
