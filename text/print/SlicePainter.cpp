#include "text/print/SlicePainter.h"

#include "text/layout/BlockPainter.h"

#include <QPainter>

#include <algorithm>

namespace text::layout {
namespace {

// Only the lines of this page are drawn: what is merely clipped would still be text of the file.
void PaintPart(BlockPainter& painter, const PlacedBlock& block, size_t index, const PageSlice& slice) {
  const RowPart& part = block.row->parts()[index];
  const auto& lines = part.block->lines();
  const auto isHere = [&](const BlockLine& line) {
    const double middle = part.y + line.top + line.height / 2;
    return middle >= slice.from && middle < slice.to;
  };
  const auto first = std::find_if(lines.begin(), lines.end(), isHere);
  const auto end = std::find_if_not(first, lines.end(), isHere);
  if (first == end) return;
  painter.PaintLines(block.Part(index), static_cast<size_t>(first - lines.begin()),
                     static_cast<size_t>(end - lines.begin()) - 1);
}

}  // namespace

SlicePainter::SlicePainter(QPainter& painter, double width) : painter_(painter), width_(width) {
  options_.printing = true;
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    options_.palette.setColor(group, QPalette::Text, Qt::black);
    options_.palette.setColor(group, QPalette::Base, Qt::white);
  }
}

void SlicePainter::Paint(const std::vector<PageSlice>& slices, double top, const FormatTable& formats,
                         pictures::PictureCache& pictures) {
  painter_.save();
  painter_.translate(0, top);
  const QRectF all(0, -kMaxPixels, width_, 1e6);
  BlockPainter painter(painter_, all, 0, options_, formats, pictures);
  for (const PageSlice& slice : slices) {
    const PlacedBlock& block = slice.block;
    painter.PaintShading(block, block.top + slice.from, block.top + slice.to);
    for (size_t i = 0; i < block.row->parts().size(); ++i) PaintPart(painter, block, i, slice);
    painter.PaintBorders(block, block.top + slice.from, block.top + slice.to);
  }
  painter_.restore();
}

double HeightOf(const std::vector<PageSlice>& slices) {
  return slices.empty() ? 0 : slices.back().block.top + slices.back().to;
}

}  // namespace text::layout
