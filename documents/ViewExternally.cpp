#include "documents/ViewExternally.h"

#include "documents/frmNoExtApp.h"
#include "documents/frmText.h"
#include "files/AnyCase.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/Shell.h"

namespace documents {

bool OpenExternally(services::Services& services, const std::string& path) {
  return services.shell().Open(services.MakeAbsolute(path).native()) > ui::Shell::kLastFailure;
}

void AskForProgram(services::Services& services, const std::string& path) {
  frmNoExtApp form(services);
  form.Text2().SetText(files::EndsWithAnyCase(path, "rtf") ? QStringLiteral("Wordpad.exe")
                                                           : QStringLiteral("Notepad.exe"));
  for (;;) {
    form.Tag = "A";
    services.dialogs().ShowModal(form);
    if (form.Tag != "0") return;
    std::string program = form.Program();
    if (program.find('/') != std::string::npos) program = services.MakeAbsolute(program).native();
    if (!program.empty())
      services.shell().Run(program, {services.MakeAbsolute(path).native()}, services.MakeAbsolute("."));
  }
}

void frmText::mnuViewFile_Click() {
  const ui::CommandScope scope;
  if (table_.DocInfo(slot_).Changed) {
    const ui::Answer answer = services_.dialogs().ShowMessage(
        this, {tr("This document has been changed.  Do you want to save it before continuing?"),
               ui::Buttons::kYesNoCancel, ui::Icon::kNone});
    if (answer == ui::Answer::kCancel) return;
    // What is on the disk is shown, whatever became of the saving.
    if (answer == ui::Answer::kYes) static_cast<void>(mnuSaveFile_Click());
  }
  const std::string path = caption();
  if (!OpenExternally(services_, path)) AskForProgram(services_, path);
}

}  // namespace documents
