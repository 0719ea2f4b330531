#include "ui/desktop/Printing.h"

#include "ui/PathText.h"
#include "ui/desktop/Pdf.h"
#include "ui/dialogs/Printer.h"

#include <QPdfWriter>

#include <cerrno>

namespace ui {
namespace {

using text::layout::Printed;

Printed PrintOn(QPagedPaintDevice& device, const PrintJob& job, const std::function<bool(double)>& progress) {
  text::layout::PrintOptions options = job.options;
  options.properties = &job.properties;
  options.progress = [&progress](int, double part) { return progress(part); };
  SetUpPages(text::layout::ReadPageWords(job.properties.headerWords), false, device);
  return text::layout::Print(text::Document(job.content), options, device);
}

}  // namespace

PrintOutcome Print(Printer& printer, const PrintJob& job, const files::Path& recoveryFolder,
                   const std::function<bool(double)>& progress) {
  QPrinter& device = printer.device();
  PrintOutcome outcome;
  if (device.outputFormat() != QPrinter::PdfFormat || device.outputFileName().isEmpty()) {
    outcome.printed = PrintOn(device, job, [&](double part) {
      if (progress(part)) return true;
      device.abort();
      return false;
    });
    return outcome;
  }
  const files::Path path = PathOfChosen(device.outputFileName());
  const auto saved = files::SaveAtomically(path, recoveryFolder, [&](const files::ByteSink& sink) {
    return WritePdf(device.docName().toStdString(), sink,
                    [&](QPdfWriter& writer, const std::function<bool()>& mayGoOn) {
                      writer.setPageLayout(device.pageLayout());
                      outcome.printed = PrintOn(writer, job, [&](double part) { return mayGoOn() && progress(part); });
                      return outcome.printed == Printed::kAll;
                    });
  });
  // A file that took no more stops the pages too; only a producer that gave up by itself gives ECANCELED.
  if (!saved && saved.error().systemError != ECANCELED) {
    outcome.error = saved.error();
    outcome.printed = Printed::kFailed;
  }
  return outcome;
}

}  // namespace ui
