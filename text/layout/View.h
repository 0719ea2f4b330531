// The blocks that the viewport shows and where they stand in it.
//
// The scroll position is an anchor: one line of the text and its height in the viewport. What happens above it, edits
// and corrected estimates alike, therefore cannot move what is shown.
#pragma once

#include "text/layout/Blocks.h"

#include <QSizeF>

#include <deque>

namespace text::layout {

// One part of a block: text that is laid out by itself. Its left edge counts from the text area's.
struct PlacedPart {
  const LayoutBlock* block = nullptr;
  Range range;  // of its text
  double x = 0, top = 0;
  size_t index = 0;  // among the row's parts
  Color behind;      // its text: shading of the paragraph or the cell
  int ShownOffset(Units position) const {
    const Units inside = std::clamp(position, range.begin, range.end);
    return block->ToShown(static_cast<int>((inside - range.begin).value()));
  }
  Units PositionOf(int shown) const { return range.begin + Units(block->FromShown(shown)); }
};

struct PlacedBlock {
  BlockSpan span;
  std::shared_ptr<const LayoutRow> row;
  double top = 0;  // in the viewport
  double bottom() const { return top + row->height(); }
  bool Holds(CaretPlace place) const;
  PlacedPart Part(size_t index) const;
  PlacedPart PartOf(CaretPlace place) const;
  // The topmost line below a height, the one of a place, and what a line begins with.
  RowLine LineOf(CaretPlace place) const;
  Units BeginOf(RowLine line) const;
};

class View {
 public:
  explicit View(Blocks& blocks) : blocks_(blocks) {}

  void SetSize(QSizeF size, double margin);
  double width() const { return size_.width(); }
  double height() const { return size_.height(); }
  double margin() const { return margin_; }

  // Something changed; the anchor's line stays where it is.
  void Invalidate() { arranged_ = false; }
  void Map(const Change& change) { anchor_.position = MapPosition(anchor_.position, change, Bias::kLeft); }
  void Clamp() { anchor_.position = std::min(anchor_.position, blocks_.content().size()); }

  // From the first that is at least partly visible to the last; never empty.
  const std::deque<PlacedBlock>& Visible();
  const PlacedBlock* FindVisible(CaretPlace place);
  // The block at a height that may lie outside the viewport, the nearest one beyond some screens.
  PlacedBlock BlockAt(double y);

  // Positive = towards the end. Returns what it moved; the ends stop it.
  double ScrollBy(double pixels);
  void PlaceBlock(const BlockSpan& span, double top);
  void PlaceLine(CaretPlace place, double top);
  void ToTop();
  void ToBottom();
  // The blocks of the last screen, as Visible() would give them at the very end.
  std::deque<PlacedBlock> LastScreen();

 private:
  struct Anchor {
    Units position;
    double y = 0;       // of the top of its line
    bool atTop = true;  // the text's first line stands at its highest place, and stays there
  };
  PlacedBlock Place(const BlockSpan& span, double top) { return {span, blocks_.Get(span), top}; }
  void Arrange();
  void FillUp();
  void FillDown();
  void Shift(double by);
  void KeepAnchor();

  Blocks& blocks_;
  QSizeF size_{0, 0};
  double margin_ = 4;
  Anchor anchor_;
  std::deque<PlacedBlock> placed_;
  bool arranged_ = false;
  double corrected_ = 0;  // how far the last arrangement had to move the text down
};

}  // namespace text::layout
