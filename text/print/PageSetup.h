// The paper of a document and what it leaves to the text.
#pragma once

#include <string_view>

class QPagedPaintDevice;

namespace text::layout {

// As a document's words say, in twips ("\paperw12240\margl1800"); 0 = not said.
struct PageWords {
  int width = 0, height = 0;
  int left = 0, top = 0, right = 0, bottom = 0;
  int headerTop = 0, footerBottom = 0;  // from the paper's edges
  bool landscape = false;
  bool firstDiffers = false;  // the first page has a header and a footer of its own, or none
  bool sidesDiffer = false;   // left pages have others than right ones
};
PageWords ReadPageWords(std::string_view headerWords);

// Sets what the words say and can be: margins leave most of the page to the text. Where they say nothing the margins
// are 25 mm; the size stays the device's own, but for a file.
void SetUpPages(const PageWords& words, bool sizeToo, QPagedPaintDevice& device);

}  // namespace text::layout
