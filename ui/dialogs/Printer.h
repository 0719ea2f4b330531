// A printer and how it is set up.
#pragma once

#include <QPrinter>

#include <utility>

namespace ui {

class Printer {
 public:
  // The desktop's usual one. Looks for printers, which may take its time.
  Printer() : device_(QPrinter::HighResolution) {}
  QPrinter& device() { return device_; }
  const QPrinter& device() const { return device_; }
  // What jobs are called in the queue.
  void SetTitle(const QString& title) { device_.setDocName(title); }
  // What the dialog proposes for printing into a file; empty: as the toolkit does.
  void ProposeFile(const QString& path) {
    if (path != proposedFile_) fileIsOfAnother_ = true;
    proposedFile_ = path;
  }
  const QString& proposedFile() const { return proposedFile_; }
  // Whether the file that was printed into last was another document's; once.
  bool TakeFileIsOfAnother() { return std::exchange(fileIsOfAnother_, false); }
  // What was chosen in the dialog last.
  bool printsSelection() const { return device_.printRange() == QPrinter::Selection; }

 private:
  QPrinter device_;
  QString proposedFile_;
  bool fileIsOfAnother_ = false;
};

}  // namespace ui
