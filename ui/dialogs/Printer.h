// A printer and how it is set up.
#pragma once

#include <QPrinter>

namespace ui {

class Printer {
 public:
  // The desktop's usual one. Looks for printers, which may take its time.
  Printer() : device_(QPrinter::HighResolution) {}
  QPrinter& device() { return device_; }
  // What was chosen in the dialog last.
  bool printsSelection() const { return device_.printRange() == QPrinter::Selection; }

 private:
  QPrinter device_;
};

}  // namespace ui
