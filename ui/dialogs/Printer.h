// A printer and how it is set up.
#pragma once

#include <QPrinter>

namespace ui {

class Printer {
 public:
  // The desktop's usual one. Looks for printers, which may take its time.
  Printer() : device_(QPrinter::HighResolution) {}
  QPrinter& device() { return device_; }
  // What jobs are called in the queue, and files that are printed into at first.
  void SetTitle(const QString& title) { device_.setDocName(title); }
  // What was chosen in the dialog last.
  bool printsSelection() const { return device_.printRange() == QPrinter::Selection; }

 private:
  QPrinter device_;
};

}  // namespace ui
