#include "documents/frmNoExtApp.h"

namespace documents {
namespace {

constexpr int kHelpTopic = 10000;

}  // namespace

frmNoExtApp::frmNoExtApp(services::Services& services)
    : ModalForm(services.forms().at(0)->widget()), services_(services) {
  setObjectName(QStringLiteral("frmNoExtApp"));
  setWindowTitle(tr("External application error"));
  auto* message = new ui::Label(
      "Label1",
      tr("An error occurred when attempting to open the application associated with this file extension.  Check your "
         "availiable memory, and make sure there is an application associated with this type of file.  Create an "
         "association in My Computer by clicking 'View', and then 'Folder options'.  Hint: *.rtf files can usually be "
         "opened in Wordpad.exe or Wordview.exe, and most other text files in Notepad.exe."));
  auto* openWith = new ui::Label("Label2", tr("Open with:"));
  Text2_ = new ui::PathBox("Text2");
  Text2_->SetText(QStringLiteral("Notepad.exe"));
  Text2_->setAccessibleName(openWith->text());
  auto* ok = new ui::Button("Command1(0)", tr("&OK"), [this] { Command1_Click(0); });
  auto* cancel = new ui::Button("Command1(1)", tr("&Cancel"), [this] { Command1_Click(1); });
  auto* browse = new ui::Button("Command1(2)", tr("&Browse..."), [this] { Command1_Click(2); });
  auto* help = new ui::Button("Command1(3)", tr("&Help"), [this] { Command1_Click(3); });
  ui::LayOutInRows(*this, {{message}, {openWith, Text2_}, {ok, cancel, browse, help}});
  ok->setDefault(true);
}

void frmNoExtApp::Command1_Click(int index) {
  if (index == 2) return Browse();
  if (index == 3) return services_.ShowHelpContext(kHelpTopic);
  Tag = std::to_string(index);
  done(index == 0 ? 1 : 0);
}

void frmNoExtApp::Browse() {
  const files::Path chosen =
      services_.ShowOpenDialog({.owner = services_.forms().at(0),
                                .defaultExtension = ".exe",
                                .filter = QStringLiteral("Application files (*.exe)|*.exe|All Files|*.*"),
                                .flags = services::kFileMustExist + services::kHideReadOnly,
                                .title = tr("Select an application"),
                                .filterIndex = 0,
                                .initialFile = Program()});
  if (!chosen.empty()) Text2_->SetPath(chosen.native());
}

}  // namespace documents
