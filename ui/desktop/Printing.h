// A document on a printer or in the PDF file that the user asked for instead.
#pragma once

#include "files/saving/AtomicSave.h"
#include "ui/editor/PrintJob.h"

#include <functional>
#include <optional>

namespace ui {

class Printer;

struct PrintOutcome {
  text::layout::Printed printed = text::layout::Printed::kFailed;
  std::optional<files::Error> error;  // of the file
};

// As the printer is set up; on the device's paper with the document's margins. A file is written as documents are
// saved: whole or not at all. `progress` hears from 0 to 1 what part is done; false cancels, after which paper may hold
// the pages so far. Slow for long texts; may run on any one thread.
PrintOutcome Print(Printer& printer, const PrintJob& job, const files::Path& recoveryFolder,
                   const std::function<bool(double part)>& progress);

}  // namespace ui
