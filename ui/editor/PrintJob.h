// What is printed: a value that outlives its editor and may go to another thread.
#pragma once

#include "text/Content.h"
#include "text/print/Printing.h"
#include "text/rtf/Rtf.h"

namespace ui {

struct PrintJob {
  text::Content content;
  text::rtf::DocumentProperties properties;
  text::layout::PrintOptions options;  // without properties and progress, which the printing sets
};

}  // namespace ui
