// The scroll bar's numbers. For a short document they are pixels; for others a monotone estimate made of how many
// breaks and units lie before a place, which costs O(log n) and is exact at both ends.
#pragma once

#include "text/layout/View.h"

#include <vector>

namespace text::layout {

class ScrollModel {
 public:
  static constexpr int kMaxValue = 1 << 30;
  // Up to this size every block is laid out and heights are exact.
  static constexpr int64_t kExactBreaks = 255;
  static constexpr int64_t kExactUnits = 32 * 1024;

  ScrollModel(Blocks& blocks, View& view) : blocks_(blocks), view_(view) {}

  int Maximum();
  int Page();
  int Value();
  void SetValue(int value);
  // Moves by about so many pixels without laying out what lies between.
  void JumpBy(double pixels);

  // The estimated height of the text before a place; grows with the position.
  double HeightBefore(Units position);

 private:
  void Refresh();
  void MeasureAll();
  double HeightBehind(const BlockSpan& span);
  double HeightAtTop(const std::deque<PlacedBlock>& blocks);
  BlockSpan SpanAtHeight(double height);
  void PlaceAtHeight(double height);

  Blocks& blocks_;
  View& view_;
  uint64_t generation_ = 0;
  double viewHeight_ = -1, margin_ = -1;
  double lineHeight_ = 0, charsPerLine_ = 0;
  double total_ = 0;              // of the whole text
  double bottom_ = 0;             // of what lies above the viewport's top at the very end
  std::vector<BlockSpan> spans_;  // of a short document, with the height before each; else empty
  std::vector<double> heights_;
};

}  // namespace text::layout
