// Paints stretches of laid-out text onto a page: black on white whatever the screen looks like.
#pragma once

#include "text/layout/ViewLayout.h"
#include "text/pictures/Pictures.h"
#include "text/print/Pages.h"

#include <functional>
#include <vector>

class QPainter;

namespace text::layout {

class SlicePainter {
 public:
  // The painter draws in pixels of 96 an inch; `width` is the text area's.
  SlicePainter(QPainter& painter, double width);
  // What is written for a note; "*" without.
  void SetNoteMarks(std::function<QString(ObjectId)> mark) { options_.noteMark = std::move(mark); }
  // The slices' tops count from `top`.
  void Paint(const std::vector<PageSlice>& slices, double top, const FormatTable& formats,
             pictures::PictureCache& pictures);

 private:
  QPainter& painter_;
  double width_;
  PaintOptions options_;
};

double HeightOf(const std::vector<PageSlice>& slices);

}  // namespace text::layout
