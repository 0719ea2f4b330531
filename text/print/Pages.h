// Divides laid-out text into pages.
#pragma once

#include "text/layout/Blocks.h"
#include "text/layout/View.h"

#include <functional>
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
  // What is kept free at a page's foot if its text goes from one place to another; never less for a longer text.
  void SetFoot(std::function<double(Range text)> foot) { foot_ = std::move(foot); }
  // The following page, or nothing behind the last.
  std::optional<std::vector<PageSlice>> Next() { return Next(height_, true); }
  // The same for a page of another height, which has at least one line only if it must.
  std::optional<std::vector<PageSlice>> Next(double height, bool atLeastALine);
  bool done() const { return !span_; }
  Units position() const { return span_ ? pageBegin_ : blocks_.content().size(); }

 private:
  struct Cut {
    double y = 0;        // of the block
    bool ends = false;   // the page ends here, for a page break
    bool whole = false;  // nothing of the block is left
  };
  struct Place {
    double room = 0;    // below what stands on the page
    bool must = false;  // nothing stands there, and something has to
  };
  double FootFor(Units end) const { return foot_ ? foot_({begin_, end}) : 0; }
  Cut CutOf(const LayoutRow& row, Place place) const;
  Cut CutParagraph(const LayoutRow& row, Place place) const;
  double CutRow(const LayoutRow& row, double room) const;
  Units PlaceAt(const BlockSpan& span, double cut);

  Blocks& blocks_;
  double height_;
  std::optional<BlockSpan> span_;  // the block that the next page begins with
  double from_ = 0;                // what of its height was on pages before
  Units begin_;                    // of the page
  Units pageBegin_;                // of the next one
  double pageHeight_ = 0;
  std::function<double(Range)> foot_;
};

}  // namespace text::layout
