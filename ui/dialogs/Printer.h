// A printer and how it is set up.
#pragma once

#include <QPrinter>

#include <optional>

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
  void ProposeFile(const QString& path) { proposedFile_ = path; }
  const QString& proposedFile() const { return proposedFile_; }
  // The dialog was accepted, and so its file is of the document that this one was proposed for.
  void AcceptFile() { acceptedFor_ = proposedFile_; }
  bool fileIsOfAnother() const { return acceptedFor_ != proposedFile_; }
  // What was chosen in the dialog last.
  bool printsSelection() const { return device_.printRange() == QPrinter::Selection; }

 private:
  QPrinter device_;
  QString proposedFile_;
  std::optional<QString> acceptedFor_;
};

}  // namespace ui
