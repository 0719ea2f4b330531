// What stands at one height of the text: a paragraph, or a segment of one, alone; or all cells of a table's row.
//
// Coordinates are logical pixels from the row's top left corner, the left edge being the text area's. Offsets are units
// from the row's begin; a break belongs to the part before it.
#pragma once

#include "text/layout/LayoutBlock.h"

#include <memory>
#include <vector>

namespace text::layout {

struct RowPart {
  std::shared_ptr<const LayoutBlock> block;
  int begin = 0, end = 0;
  double x = 0, y = 0;
  double left = 0, right = 0;  // of the cell it stands in
  Color behind;                // the cell's shading
  double bottom() const { return y + block->height(); }
};

// A cell's frame, for the painter.
struct CellFrame {
  QRectF rect;
  uint8_t borders = 0;  // TableCell::Side
  uint8_t guides = 0;   // sides without a border that are shown faintly while editing
  Color shading;
};

struct RowLine {
  size_t part = 0, line = 0;
  bool operator==(const RowLine&) const = default;
};

class LayoutRow {
 public:
  explicit LayoutRow(std::shared_ptr<const LayoutBlock> alone);
  // At least one part, in the order of the text.
  LayoutRow(std::vector<RowPart> parts, std::vector<CellFrame> frames, double height)
      : parts_(std::move(parts)), frames_(std::move(frames)), height_(height) {}

  double height() const { return height_; }
  const std::vector<RowPart>& parts() const { return parts_; }
  const std::vector<CellFrame>& frames() const { return frames_; }

  // On the border of two segments kLeft gives the one that ends there.
  size_t PartOf(int offset, Bias bias) const;
  // The part nearest to a point: of the nearest cell first.
  size_t PartAt(QPointF point) const;
  // The next part of the same cell, or of a table in it or around it, above or below.
  std::optional<size_t> Beside(size_t part, double x, bool below) const;
  // The topmost line that reaches below a height.
  RowLine LineBelow(double y) const;
  double TopOf(RowLine line) const { return parts_[line.part].y + LineAt(line).top; }
  const BlockLine& LineAt(RowLine line) const { return parts_[line.part].block->lines()[line.line]; }

 private:
  std::vector<RowPart> parts_;
  std::vector<CellFrame> frames_;
  double height_ = 0;
};

}  // namespace text::layout
