// Divides laid-out text into pages.
#pragma once

#include "text/layout/Blocks.h"
#include "text/layout/View.h"

#include <optional>
#include <vector>

namespace text::layout {

// A stretch of a block's height on a page: from where it is cut off to where it goes on elsewhere.
struct PageSlice {
  PlacedBlock block;        // its top counts from the page's, and may lie above it
  double from = 0, to = 0;  // of the block's height
};

class Pages {
 public:
  // The whole of the blocks' document, in the width that they are set to.
  Pages(Blocks& blocks, double height);
  // The following page, or nothing behind the last.
  std::optional<std::vector<PageSlice>> Next();
  Units position() const { return span_ ? span_->range.begin : blocks_.content().size(); }

 private:
  struct Cut {
    double y = 0;        // of the block
    bool ends = false;   // the page ends here, for a page break
    bool whole = false;  // nothing of the block is left
  };
  Cut CutOf(const LayoutRow& row, double from, double room, bool pageIsEmpty) const;
  Cut CutParagraph(const LayoutRow& row, double from, double room, bool pageIsEmpty) const;
  double CutRow(const LayoutRow& row, double from, double room) const;

  Blocks& blocks_;
  double height_;
  std::optional<BlockSpan> span_;  // the block that the next page begins with
  double from_ = 0;                // what of its height was on pages before
};

}  // namespace text::layout
