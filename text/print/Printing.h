// A document on pages: of a printer, or of a PDF file.
#pragma once

#include "text/Document.h"

#include <QFont>

#include <functional>
#include <string_view>

class QPagedPaintDevice;

namespace text::layout {

struct PrintOptions {
  Range range;        // what is printed; whole lists are counted nevertheless
  QFont defaultFont;  // for formats with the default font
  int defaultTab = 720;
  std::vector<int> defaultStops;
  // Called before each page with its number, from 1, and how much of the range lies before it. False ends the printing.
  std::function<bool(int page, double part)> progress;
};

enum class Printed { kAll, kCancelled, kFailed };  // kFailed: the device took no page

// The page's size and margins in twips, as a document's words say ("\paperw12240\margl1800"); 0 = not said.
struct PageWords {
  int width = 0, height = 0;
  int left = 0, top = 0, right = 0, bottom = 0;
  bool landscape = false;
};
PageWords ReadPageWords(std::string_view headerWords);
// Sets what the words say and can be: margins leave most of the page to the text. Where they say nothing the margins
// are 25 mm; the size stays the device's own, but for a file.
void SetUpPages(const PageWords& words, bool sizeToo, QPagedPaintDevice& device);

// Black on white whatever the screen looks like. No line is cut; a paragraph of several lines never leaves a single one
// on a page; a form feed begins a page; pictures are made to fit; a table's row is divided only if it is higher than a
// page. Holds some pages' layout at a time, however long the text is.
Printed Print(const Document& document, const PrintOptions& options, QPagedPaintDevice& device);

}  // namespace text::layout
