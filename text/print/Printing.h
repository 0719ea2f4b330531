// A document on pages: of a printer, or of a PDF file.
#pragma once

#include "text/Document.h"
#include "text/print/PageSetup.h"
#include "text/rtf/Rtf.h"

#include <QFont>

#include <functional>
#include <vector>

class QPagedPaintDevice;

namespace text::layout {

struct PrintOptions {
  Range range;        // what is printed; whole lists are counted nevertheless
  QFont defaultFont;  // for formats with the default font
  int defaultTab = 720;
  std::vector<int> defaultStops;
  // Where headers, footers and what notes refer to come from; none without.
  const rtf::DocumentProperties* properties = nullptr;
  // Called before each page with its number, from 1, and how much of the range lies before it. False ends the printing.
  std::function<bool(int page, double part)> progress;
};

enum class Printed { kAll, kCancelled, kFailed };  // kFailed: the device took no page

// Black on white whatever the screen looks like. No line is cut; a paragraph of several lines never leaves a single one
// on a page; a form feed begins a page; pictures are made to fit; a table's row is divided only if it is higher than a
// page. Headers and footers stand in the margins, which grow for high ones, notes at the foot. Holds some pages' layout
// at a time, however long the text is.
Printed Print(const Document& document, const PrintOptions& options, QPagedPaintDevice& device);

}  // namespace text::layout
