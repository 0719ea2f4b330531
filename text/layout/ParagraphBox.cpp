#include "text/layout/ParagraphBox.h"

#include "text/layout/FormatFonts.h"

#include <algorithm>
#include <cmath>

namespace text::layout {
namespace {

const ParaFormat& FormatOf(const Content& content, Breaks paragraph) {
  return content.formats()[content.ParaFormatOf(paragraph)];
}

bool Joined(const ParaFormat& above, const ParaFormat& below) {
  const auto edge = [](const ParaFormat& format) { return format.leftIndent + std::min(0, format.firstIndent); };
  return above.box == below.box && edge(above) == edge(below) && above.rightIndent == below.rightIndent &&
         above.row == below.row && above.rowMark == RowMark::kNone && above.rightToLeft == below.rightToLeft;
}

}  // namespace

uint8_t BoxJoinsOf(const Content& content, Breaks paragraph) {
  const ParaFormat& format = FormatOf(content, paragraph);
  if (format.box.empty()) return 0;
  uint8_t joins = 0;
  if (paragraph > Breaks(0) && Joined(FormatOf(content, paragraph - Breaks(1)), format)) joins |= kJoinsAbove;
  if (paragraph < content.breaks() && Joined(format, FormatOf(content, paragraph + Breaks(1)))) joins |= kJoinsBelow;
  return joins;
}

BoxMeasures::BoxMeasures(const ParaBox& box, uint8_t joins, double zoom) {
  if (box.borders == 0) return;
  line = std::clamp(std::round(box.width / kTwipsPerPixel * zoom), 1.0, kMaxPixels / 10);
  const double away = line + std::round(std::min(kMaxPixels / 10, box.space / kTwipsPerPixel * zoom));
  const bool between = box.borders & ParaBox::kBetween;
  if (box.borders & ParaBox::kLeft) inset.setLeft(away);
  if (box.borders & ParaBox::kRight) inset.setRight(away);
  if (joins & kJoinsAbove) {
    inset.setTop(between ? away - line : 0);
  } else if (box.borders & ParaBox::kTop) {
    inset.setTop(away);
  }
  if ((joins & kJoinsBelow) ? between : (box.borders & ParaBox::kBottom) != 0) inset.setBottom(away);
}

}  // namespace text::layout
