// The document on paper.
#include "documents/frmText.h"
#include "services/Messages.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/Printing.h"
#include "ui/dialogs/Printer.h"

#include <QCoreApplication>

namespace documents {

void frmText::mnuPrint_Click() {
  const ui::CommandScope scope;
  const bool selected = RichTextBox1_->SelLength() > 0;
  const int flags = services::kNoPageNumbers + (selected ? services::kOfferSelection : 0);
  ui::Printer& printer = services_.currentPrinter();
  const files::Path path(caption());
  printer.SetTitle(ui::DisplayText(path.filename().native()));
  // One that has no file yet: where it would be saved.
  printer.ProposeFile(ui::DisplayText(services_.MakeAbsolute(path).replace_extension(".pdf").native()));
  if (services_.ShowPrinterDialog(this, flags)) return;

  constexpr int64_t kParts = 1000;
  const ui::PrintJob job = RichTextBox1_->MakePrintJob(selected && printer.printsSelection());
  ui::PrintOutcome outcome;
  services_.dialogs().RunWork(this, tr("Printing the document..."), kParts, [&](ui::WorkPort& port) {
    const auto tell = [&port](double part) { return port.Report(static_cast<int64_t>(part * kParts)); };
    outcome = ui::Print(printer, job, services_.recoveryFolder(), tell);
  });
  if (outcome.error) {
    services::ShowError(services_.dialogs(), this, services::ErrorText(outcome.error->path.native(), *outcome.error));
  } else if (outcome.printed == text::layout::Printed::kFailed) {
    services::ShowError(services_.dialogs(), this,
                        tr("Error: The document could not be printed.  Make sure that the printer can be reached."));
  }
}

}  // namespace documents
