// Draws laid-out text: backgrounds, selection, text, cells' borders, objects and what stands for page breaks.
#pragma once

#include "text/layout/View.h"
#include "text/pictures/Pictures.h"

class QPainter;

namespace text::layout {

class BlockPainter {
 public:
  // x is where the blocks' left edges are; both live as long as the painter does.
  BlockPainter(QPainter& painter, const QRectF& clip, double x, const PaintOptions& options, const FormatTable& formats,
               pictures::PictureCache& pictures);

  void Paint(const PlacedBlock& placed);
  // Some lines of a part alone, and the frames of a row cut to a stretch of its height (in the viewport).
  void PaintLines(const PlacedPart& part, size_t first, size_t last);
  void PaintShading(const PlacedBlock& placed, double from, double to);
  void PaintBorders(const PlacedBlock& placed, double from, double to);
  // The look is that of the text typed next; in overtype `cell` is the character under the block caret.
  void PaintCaret(const CaretShape& shape, const PlacedPart& part, const FormatLook& look, const QRectF& cell);

 private:
  struct Selected {
    int from = 0, to = 0;    // shown offsets
    bool lastBreak = false;  // the one behind the part too
  };
  Selected SelectedIn(const PlacedPart& part) const;
  void PaintBackgrounds(const LayoutBlock& block, size_t line, QPointF origin);
  void PaintSelection(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin);
  void PaintText(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin);
  void PaintGlyphs(const LayoutBlock& block, size_t line, int from, int to, QPointF linePosition,
                   bool ownColors = false);
  void PaintLeaders(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin);
  void PaintMarks(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin);
  void PaintObject(const LayoutBlock& block, size_t line, int offset, QPointF origin, bool selected);
  bool PaintPicture(const FormatLook& look, const QRectF& box);
  void PaintNamedFrame(const FormatLook& look, const QRectF& box, const QColor& color);
  void PaintStandIn(const QRectF& box, const QColor& color);
  void PaintLabel(const LayoutBlock& block, QPointF origin);
  void PaintBoxBorders(const PlacedPart& part, double from, double to);
  QColor ColorOf(const FormatLook& look) const;
  QColor InkOn(Color behind) const;
  bool IsTooDark(const FormatLook& look) const;
  bool HasTooDark(const LayoutBlock& block, size_t line) const;

  QPainter& painter_;
  QRectF clip_;
  double x_;
  const PaintOptions& options_;
  const FormatTable& formats_;
  pictures::PictureCache& pictures_;
  bool darkPaper_ = false;
  Color behind_;  // the part that is painted
  QColor paper_, text_, ink_, highlight_, highlightedText_, faint_;
};

}  // namespace text::layout
