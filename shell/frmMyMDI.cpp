#include "shell/frmMyMDI.h"

#include "autocomplete/Completion.h"
#include "documents/frmText.h"
#include "files/Attributes.h"
#include "services/Messages.h"
#include "ui/Hourglass.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/operations/DesktopFileOperations.h"
#include "ui/frame/LeftPane.h"
#include "ui/frame/StatusBar.h"

#include <QByteArray>
#include <QCoreApplication>

#include <cerrno>

namespace shell {
namespace {

// In the order in which they are created in a new store.
constexpr std::string_view kSavedOptions[] = {
    "SaveWindowState", "Tabs",     "rtbBackColor", "TreeSync",  "TreeDelMethod", "AutoLoadProject",       "Font",
    "Extensions",      "AutoCopy", "QuoteFile",    "NotesFile", "TextBlocks",    "AutoCompleteAtStartup", "AutoTagFile",
    "EmailApp",        "NewsApp",  "SNewsApp",     "FTPApp"};

}  // namespace

frmMyMDI::frmMyMDI(ui::Dialogs& dialogs, ui::Shell& shell, Place place)
    : DesktopServices(dialogs, shell, std::make_unique<ui::DesktopFileOperations>(dialogs), std::move(place)),
      settingsFile_(place_.application.settings, place_.recovery,
                    place_.onlyLooking ? SettingsFile::Access::kReadOnly : SettingsFile::Access::kReadWrite),
      frame_(forms_, "frmMyMDI", [this] { return Close(); }),
      autoComplete_(*this),
      table_(*this),
      opening_(*this, table_),
      confirmation_(*this),
      find_(*this),
      project_(*this, frame_.leftPane().List1()),
      projectList_(*this, project_, frame_.leftPane().List1()),
      tree_(*this, commonDialogs_.currentDirectory(), frame_.leftPane().Drive1(), frame_.leftPane().TreeView1()),
      treeFiles_(*this, tree_),
      treeDrag_(*this, tree_, treeFiles_),
      panes_(*this),
      help_(*this, place_.application),
      programs_(*this, help_, place_.application.path),
      commands_(*this, table_, opening_, project_, projectList_, tree_, treeFiles_, find_, autoComplete_, panes_,
                programs_, frame_.toolbar()),
      toolbar_(frame_, commands_, *this, table_),
      listToolbar_(frame_.leftPane(), commands_, *this, table_),
      treeToolbar_(frame_.leftPane().Toolbar3(), commands_, *this),
      menus_(frame_, commands_, *this, table_),
      recentFiles_(settingsFile_, [this] { menus_.ShowRecentFiles(recentFiles_.shown()); }) {
  frame_.SetCaption("Quillmark");
  forms_.SetFailureReport([this](const QString& reason) {
    services::ShowError(dialogs_, &frame_, QCoreApplication::translate("Messages", "Error: ") + reason);
  });
  projectList_.SetMenu([this](const QPoint& position) { menus_.ShowListPopup(position); });
  tree_.SetMenu([this](const QPoint& position) { menus_.ShowTreePopup(position); });
  frame_.TakeDrops([this](const std::vector<std::string>& paths) { TakeDropped(paths); });
  QObject::connect(&frame_.area(), &ui::ChildArea::CurrentChanged, &menus_.bar(), [this] {
    forms_.Guarded([this] {
      menus_.FollowActiveDocument();
      toolbar_.FollowActiveDocument();
      if (!table_.Active()) ShowOvertype(true);
    });
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

void frmMyMDI::LoadProject(const std::string& path) {
  project_.ProjectFile = path;
  project_.LoadProject();
}

ui::RichTextBox* frmMyMDI::EditorOf(int slot) const {
  const bool inTable = slot >= 1 && slot <= table_.UpperBound();
  documents::frmText* document = inTable ? table_.Document(slot) : nullptr;
  return document ? &document->RichTextBox1() : nullptr;
}

int frmMyMDI::ActiveSlot() const {
  const documents::frmText* document = table_.Active();
  return document ? document->slot() : 0;
}

void frmMyMDI::SetFocusFromFindAll(int slot) {
  if (documents::frmText* document = table_.Document(slot)) document->Activate();
}

void frmMyMDI::InitDocProperties(int slot) {
  if (documents::frmText* document = table_.Document(slot)) {
    document->RichTextBox1().SetBackgroundColor(int64_t{std::max(settings_.DocBackColor, -1)});
    document->RichTextBox1().SetDefaultTabStops(tabStops_);
    document->completion().Fill();
  }
  // There is one menu bar, and it is the active document's.
  if (slot == ActiveSlot()) menus_.FollowActiveDocument();
}

void frmMyMDI::ShowAutoComplete() {
  toolbar_.ShowChosen();
  menus_.Fill();
}

void frmMyMDI::ToggleQuotesOptions(bool enabled) {
  commands_.SetQuotesOptions(enabled);
  menus_.Fill();
  toolbar_.ShowUsable();
  RefreshAllDocuments();
}

void frmMyMDI::ToggleNotesSave(bool enabled) {
  commands_.SetNotesSave(enabled);
  menus_.Fill();
  RefreshAllDocuments();
}

std::unique_ptr<services::Completion> frmMyMDI::MakeCompletion(ui::RichTextBox& editor) {
  return std::make_unique<autocomplete::Completion>(*this, autoComplete_, editor);
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

void frmMyMDI::mnuPrefItem_Click() {
  const ui::CommandScope scope;
  if (!options_) options_ = std::make_unique<frmOptions>(*this);
  options_->Fill(settings_);
  options_->Tag = "A";
  dialogs_.ShowModal(*options_);
  if (options_->Tag == "0") TakeOptions();
}

void frmMyMDI::TakeOptions() {
  options_->ReadBack(settings_);
  CreateTabStops();
  RefreshAllDocuments();
  BuildDocumentFilter();
  services::SaveFromMemory(settingsFile_, settings_, kSavedOptions);
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
