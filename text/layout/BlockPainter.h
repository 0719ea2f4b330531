// Draws one laid-out block: backgrounds, selection, text, and what stands for objects and page breaks.
#pragma once

#include "text/layout/View.h"

class QPainter;

namespace text::layout {

class BlockPainter {
 public:
  // x is where the blocks' left edges are; both live as long as the painter does.
  BlockPainter(QPainter& painter, const QRectF& clip, double x, const PaintOptions& options,
               const FormatTable& formats);

  void Paint(const PlacedBlock& placed);
  // The look is that of the text typed next; in overtype `cell` is the character under the block caret.
  void PaintCaret(const CaretShape& shape, double top, const FormatLook& look, const QRectF& cell);

 private:
  struct Selected {
    int from = 0, to = 0;    // shown offsets
    bool lastBreak = false;  // the one behind the block too
  };
  Selected SelectedIn(const PlacedBlock& placed) const;
  void PaintBackgrounds(const LayoutBlock& block, size_t line, QPointF origin);
  void PaintSelection(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin);
  void PaintText(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin);
  void PaintGlyphs(const LayoutBlock& block, size_t line, int from, int to, QPointF linePosition);
  void PaintMarks(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin);
  void PaintObject(const LayoutBlock& block, size_t line, int offset, QPointF origin, const QColor& color);
  void PaintBullet(const LayoutBlock& block, QPointF origin);
  QColor ColorOf(const FormatLook& look) const;

  QPainter& painter_;
  QRectF clip_;
  double x_;
  const PaintOptions& options_;
  const FormatTable& formats_;
  QColor text_, highlight_, highlightedText_, faint_;
};

}  // namespace text::layout
