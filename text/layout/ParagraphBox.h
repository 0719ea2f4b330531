// Lines around paragraphs and what is behind them, as a block draws them.
#pragma once

#include "text/Content.h"

#include <QMarginsF>
#include <QRectF>

namespace text::layout {

// Whether a paragraph stands in one box with its neighbours.
enum BoxJoin : uint8_t { kJoinsAbove = 1, kJoinsBelow = 2 };
uint8_t BoxJoinsOf(const Content& content, Breaks paragraph);

// In pixels of a zoom: how far the text keeps away from the box's edges, and how thick a line is.
struct BoxMeasures {
  BoxMeasures() = default;
  BoxMeasures(const ParaBox& box, uint8_t joins, double zoom);
  QMarginsF inset;
  double line = 0;
};

// Counted from the block's top left corner; empty without a box.
struct BlockBox {
  QRectF rect;
  uint8_t sides = 0;  // ParaBox::Side: which lines are drawn
  double line = 0;
  Color color, shading;
};

}  // namespace text::layout
