#include "shell/frmMyMDI.h"

#include "documents/frmText.h"
#include "files/Attributes.h"
#include "services/Messages.h"
#include "ui/Hourglass.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/frame/LeftPane.h"
#include "ui/frame/StatusBar.h"

#include <QByteArray>
#include <QCoreApplication>

#include <cerrno>

namespace shell {

frmMyMDI::frmMyMDI(ui::Dialogs& dialogs, ui::Shell& shell, Place place)
    : dialogs_(dialogs),
      shell_(shell),
      place_(std::move(place)),
      settingsFile_(place_.application.settings, place_.recovery,
                    place_.onlyLooking ? SettingsFile::Access::kReadOnly : SettingsFile::Access::kReadWrite),
      frame_(forms_, "frmMyMDI", [this] { return Close(); }),
      commonDialogs_(dialogs, place_.directory),
      table_(*this),
      opening_(*this, table_),
      confirmation_(*this),
      project_(*this, frame_.leftPane().List1()),
      projectList_(*this, project_, frame_.leftPane().List1()),
      commands_(*this, table_, opening_, project_, projectList_, frame_.toolbar()),
      toolbar_(frame_, commands_, *this, table_),
      listToolbar_(frame_.leftPane(), commands_, *this, table_),
      menus_(frame_, commands_, *this, table_),
      recentFiles_(settingsFile_, [this] { menus_.ShowRecentFiles(recentFiles_.shown()); }) {
  frame_.SetCaption("Quillmark");
  forms_.SetFailureReport([this](const QString& reason) {
    services::ShowError(dialogs_, nullptr, QCoreApplication::translate("Messages", "Error: ") + reason);
  });
  projectList_.SetMenu([this](const QPoint& position) { menus_.ShowListPopup(position); });
  frame_.TakeDrops([this](const std::vector<std::string>& paths) { TakeDropped(paths); });
  QObject::connect(&frame_.area(), &ui::ChildArea::CurrentChanged, &menus_.bar(), [this] {
    menus_.FollowActiveDocument();
    toolbar_.FollowActiveDocument();
    if (!table_.Active()) ShowOvertype(true);
  });
}

frmMyMDI::~frmMyMDI() = default;

void frmMyMDI::TakeDropped(const std::vector<std::string>& paths) {
  const ui::CommandScope scope;
  const ui::Hourglass hourglass;
  for (std::string path : paths) {
    const auto attributes = files::GetAttributes(path);
    if (attributes && attributes.value() & files::kDirectory) {
      services::ShowError(dialogs_, &frame_,
                          QCoreApplication::translate("Drop", "Item: %1\r\n\r\nCannot open a directory as a document.")
                              .arg(ui::DisplayText(path)));
    } else {
      OpenDocument(path);
    }
    ui::LetPendingEventsRun();
  }
}

void frmMyMDI::InitDocProperties(int slot) {
  if (documents::frmText* document = table_.Document(slot)) {
    document->RichTextBox1().SetBackgroundColor(int64_t{std::max(settings_.DocBackColor, -1)});
    document->RichTextBox1().SetDefaultTabStops(tabStops_);
  }
  menus_.FollowActiveDocument();
}

void frmMyMDI::ToolbarToggle(bool enabled) {
  menus_.FollowActiveDocument();
  toolbar_.ToolbarToggle(enabled);
}

void frmMyMDI::ShowSelectionState(const services::SelectionState& state) {
  toolbar_.ShowSelectionState(state);
}

void frmMyMDI::ShowSelectionFont(const QString& text) {
  frame_.statusBar().SetText(ui::Panel::stsFont, text);
}

void frmMyMDI::ShowOvertype(bool overtype) {
  frame_.statusBar().SetOn(ui::Panel::stsInsert, !overtype);
}

void frmMyMDI::ShowDocumentMenu(int slot, const QPoint& globalPosition) {
  if (documents::frmText* document = table_.Document(slot)) menus_.ShowDocumentPopup(*document, globalPosition);
}

std::optional<files::Error> frmMyMDI::KeepTexts() {
  std::optional<files::Error> first;
  for (const ui::FormId id : forms_.InLoadOrder()) {
    documents::frmText* document = table_.Find(id);
    const std::optional<files::Error> error = document ? document->KeepText() : std::nullopt;
    if (error && !first) first = error;
  }
  return first;
}

void frmMyMDI::EndSession() {
  if (const auto error = KeepTexts()) {
    services::ShowError(dialogs_, &frame_, services::ErrorText(place_.recovery.native(), *error));
    return;
  }
  SaveSettings();
  QCoreApplication::exit(0);
}

void frmMyMDI::OfferRecovered() {
  auto entries = files::ListRecovery(place_.recovery);
  if (!entries) {
    services::ShowError(dialogs_, &frame_, services::ErrorText(place_.recovery.native(), entries.error()));
    return;
  }
  for (files::RecoveryEntry& entry : entries.value()) OfferRecovered(entry);
}

void frmMyMDI::OfferRecovered(files::RecoveryEntry& entry) {
  // Another copy of the program may have taken it while the one before was being asked about.
  if (!files::ClaimRecovery(entry)) return;
  const bool cutShort = entry.kind.empty() || !entry.complete;
  const QString text =
      cutShort
          ? QCoreApplication::translate("Recovery",
                                        "Saving [%1] was cut short.\r\nDo you want to open the text that was to be "
                                        "saved?  No leaves it for the next start, in the folder\r\n%2")
          : QCoreApplication::translate("Recovery",
                                        "The text of [%1] was not saved when its window was closed.\r\nDo you "
                                        "want to open it now?  No deletes it, Cancel leaves it for the next start.");
  const ui::Buttons buttons = cutShort ? ui::Buttons::kYesNo : ui::Buttons::kYesNoCancel;
  QString shown = text.arg(ui::DisplayText(entry.originalPath.native()));
  if (cutShort) shown = text.arg(ui::DisplayText(entry.originalPath.native()), ui::DisplayText(entry.folder.native()));
  const ui::Answer answer = dialogs_.ShowMessage(&frame_, {shown, buttons, ui::Icon::kQuestion});
  if (answer == ui::Answer::kYes) table_.OpenRecovered(entry);
  if (answer != ui::Answer::kNo || cutShort) return;
  if (const auto removed = files::RemoveRecovery(entry); !removed)
    services::ShowError(dialogs_, &frame_, services::ErrorText(entry.folder.native(), removed.error()));
}

files::Status frmMyMDI::SavePicture(const files::Path& path) {
  const QByteArray png = frame_.PicturePng();
  if (png.isEmpty()) return files::SystemError(ENOMEM, path);
  const auto saved = files::SaveAtomically(path, place_.recovery, [&png](const files::ByteSink& sink) {
    return sink(std::string_view(png.constData(), static_cast<size_t>(png.size())));
  });
  return saved ? files::Status() : files::Status(saved.error());
}

}  // namespace shell
