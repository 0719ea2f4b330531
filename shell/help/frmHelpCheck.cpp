#include "shell/help/frmHelpCheck.h"

#include "services/Messages.h"
#include "ui/desktop/Shell.h"

#include <QEvent>

namespace shell {

frmHelpCheck::frmHelpCheck(services::Services& services, files::Path folder)
    : ModalForm(services.forms().at(0)->widget()), services_(services), folder_(std::move(folder)) {
  setObjectName(QStringLiteral("frmHelpCheck"));
  setWindowTitle(tr("Program Notice"));
  auto* notice = new ui::Label(
      "Label1",
      tr("Warning: the necessary support components for the Microsoft Windows help engine do not appear to be "
         "installed on your system.  If you click 'Install', I will run the help engine install file 'hhupd.exe', "
         "provided it is in Quillmark's main folder.  If you click 'Cancel', you will be returned to the main "
         "screen.\r\n\r\n"
         "After installing the help engine, you may have to close Quillmark and reboot your system, to keep this error "
         "message from reappearing.\r\n\r\n"
         "You can also install the help engine by double-clicking 'hhupd.exe' in the application directory, from "
         "Windows Explorer.  If 'hhupd.exe' does not appear in your application directory, it can be downloaded from "
         "Microsoft."));
  setAccessibleDescription(notice->text());
  auto* install = new ui::Button("Command1(0)", tr("Install Help Engine"), [this] { Command1_Click(0); });
  cancel_ = new ui::Button("Command1(1)", tr("Cancel"), [this] { Command1_Click(1); });
  ui::LayOutInRows(*this, {{notice}, {install, cancel_}});
}

bool frmHelpCheck::event(QEvent* event) {
  if (event->type() == QEvent::Show) {
    Tag.clear();
    cancel_->setFocus();
  }
  return ModalForm::event(event);
}

void frmHelpCheck::Command1_Click(int index) {
  if (index == 0) {
    const files::Path installer = folder_ / "hhupd.exe";
    if (services_.shell().Run(installer.native(), {}, services_.MakeAbsolute(".")) <= ui::Shell::kLastFailure)
      services::ShowError(services_.dialogs(), services_.forms().at(0),
                          tr("Error: Microsoft Help Viewer was *not* upgraded."));
  }
  Tag = std::to_string(index);
  done(index == 0 ? Accepted : Rejected);
}

}  // namespace shell
