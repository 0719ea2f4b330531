// How the main window starts and ends.
#include "documents/frmText.h"
#include "documents/objects/ObjectCopies.h"
#include "services/Messages.h"
#include "shell/FirstRun.h"
#include "shell/frmMyMDI.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/frame/LeftPane.h"

#include <QCoreApplication>

namespace shell {
namespace {

using services::SettingsBatch;
using ui::WindowState;

constexpr std::string_view kToolbarLayoutValue = "Quillmark Toolbar1";
constexpr std::string_view kSavedAtTheEnd[] = {"SaveArrange",     "QuotesState", "TextState",
                                               "TextBlocksState", "MyPadState",  "ToolBarStyle",
                                               "ListFontSize",    "PlusImage",   "MyPadSize"};

}  // namespace

Place FindPlace(const files::UserFolders& folders, files::CurrentDirectory directory) {
  return {.application = FindApplicationFolder(folders, ProgramPath()),
          .recovery = folders.recovery(),
          .lock = folders.runtime / "lock",
          .directory = std::move(directory)};
}

void frmMyMDI::Start(std::vector<files::Path> paths, std::function<void()> then) {
  MDIForm_Load();
  frame_.Show([this, paths = std::move(paths), then = std::move(then)] {
    forms_.Guarded([&] { MDIForm_Activate(paths); });
    if (then) then();
  });
}

void frmMyMDI::MDIForm_Load() {
  const ui::CommandScope scope;
  if (!place_.onlyLooking) {
    FirstRun_ = FirstRunSetup(place_.application, place_.recovery, commonDialogs_.currentDirectory(), settingsFile_);
    // Without a lock file there is no telling, and the pane files are better opened than never seen.
    const auto first = lock_.Acquire(place_.lock);
    otherInstanceRuns_ = first && !first.value();
  }
  programs_.PrepareAbout(QUILLMARK_VERSION);
  services::ReadSettings(settingsFile_, SettingsBatch::kFormLoad, settings_);
  BuildDocumentFilter();
  CreateTabStops();
  LoadRecentFiles();
  project_.ProjectSaved = true;
  if (settings_.WindowSize == static_cast<int>(WindowState::kMaximized)) frame_.SetWindowState(WindowState::kMaximized);
  table_.LastDocWindowState = settings_.TextState;
  frame_.leftPane().SetListFontSize(settings_.ListFontSize);
  ui::LetPendingEventsRun();
  QObject::connect(&Timer3_, &QTimer::timeout, &Timer3_, [this] { forms_.Guarded([this] { Timer3_Tick(); }); });
  Timer3_.start(1);
  help_.ListenForKey([this] {
    const ui::CommandScope command;
    commands_.mnuUserManual_Click();
  });
}

void frmMyMDI::CreateTabStops() {
  tabStops_ = services::CreateTabStops(settings_.Tabs);
}

void frmMyMDI::BuildDocumentFilter() {
  commonDialogs_.BuildDocumentFilter(QString::fromStdString(settings_.Extensions));
  settings_.Extensions = commonDialogs_.Extensions().toStdString();
}

void frmMyMDI::Timer3_Tick() {
  Timer3_.stop();
  if (const auto layout = settingsFile_.FindRootValue(kToolbarLayoutValue)) frame_.toolbar().Restore(*layout);
  QObject::connect(&frame_.toolbar(), &ui::ToolBar::LayoutChanged, &Timer3_, [this] {
    forms_.Guarded([this] { settingsFile_.SaveRootValue(kToolbarLayoutValue, frame_.toolbar().Layout()); });
  });
}

void frmMyMDI::MDIForm_Activate(const std::vector<files::Path>& paths) {
  if (std::exchange(FirstActivation_, true)) return;
  const ui::CommandScope scope;
  if (settings_.ToolBarStyle != 0) {
    commands_.mnuToolbarButtonFlat_Click();
  } else {
    commands_.mnuToolbarButtonRaised_Click();
  }
  ui::ToolBar& toolbar = frame_.toolbar();
  if (const auto left = toolbar.Find("Align left")) toolbar.SetState(*left, ui::ButtonState::kPressed);
  services::ReadSettings(settingsFile_, SettingsBatch::kFirstActivation, settings_);
  listToolbar_.SetPlusImage(settings_.PlusImage);
  // For a picture nobody is there to hear that there is no word file.
  if (place_.onlyLooking && settings_.AutoTagFile.empty()) settings_.AutoCompleteAtStartup = false;
  autoComplete_.StartUp();
  if (settings_.SaveWindowState && settings_.SaveArrange >= 0) commands_.Arrange(settings_.SaveArrange);
  tree_.ReadDrives();
  // Another copy has them; a picture does not show them.
  const bool withPanes = !otherInstanceRuns_ && !place_.onlyLooking;
  if (withPanes) panes_.StartUp();
  OpenFirst(paths);
  if (withPanes && !AnyDocumentOpen()) panes_.ActivateLast();
  ui::LetPendingEventsRun();
  services::SyncTree(*this);
  ReportSettingsProblem(Found::kAtTheStart);
}

void frmMyMDI::OpenFirst(const std::vector<files::Path>& paths) {
  const std::vector<std::string>& recent = recentFiles_.shown();
  const bool reload = settings_.AutoLoadProject && settings_.MostRecent > 0 &&
                      static_cast<size_t>(settings_.MostRecent) <= recent.size();
  if (paths.empty() && reload) {
    project_.ProjectFile = recent[static_cast<size_t>(settings_.MostRecent) - 1];
    project_.LoadProject();
  } else if (paths.empty() && FirstRun_) {
    OpenWelcomeProject();
  } else {
    project_.mnuNewProject_Click();
  }
  if (place_.offersRecovered) OfferRecovered();
  for (const files::Path& path : paths) {
    ui::LetPendingEventsRun();
    std::string opened = path.native();
    OpenDocument(opened);
  }
}

// All of its entries but the folders and the page on the web. Where it could not be written there are none.
void frmMyMDI::OpenWelcomeProject() {
  project_.ProjectFile = WelcomeProject(place_.application).native();
  project_.LoadProject();
  projectList_.mnuSelectAll_Click();
  ui::LetPendingEventsRun();
  ui::ListBox& List1 = frame_.leftPane().List1();
  constexpr int kNotOpened = 3;
  for (int line = 1; line <= kNotOpened && line < List1.count(); ++line) List1.Select(line, false);
  if (List1.count() > kNotOpened + 1) projectList_.mnuOpenFromList_Click();
}

void frmMyMDI::ReportSettingsProblem(Found when) {
  const auto problem = settingsFile_.TakeProblem();
  if (!problem) return;
  const char* const what =
      when == Found::kAtTheStart
          ? QT_TRANSLATE_NOOP("Settings", "The settings could not be read and are the usual ones now.")
          : QT_TRANSLATE_NOOP("Settings", "The file was damaged while the program ran, and has been written anew.");
  QString text =
      QCoreApplication::translate("Settings", what) + QStringLiteral("\r\n") + QString::fromStdString(problem->reason);
  if (!problem->keptAs.empty()) {
    text += QStringLiteral("\r\n") + QCoreApplication::translate("Settings", "The file is kept as") +
            QStringLiteral("\r\n") + ui::DisplayText(problem->keptAs.native());
  }
  services::ShowError(dialogs_, &frame_, services::FileText(problem->path.native(), text));
}

// Every document, and the notes, are asked about before the first one goes: after a Cancel all of them are still there.
// Gives back the forms that may go; nothing after a Cancel.
std::optional<std::vector<ui::FormId>> frmMyMDI::MDIForm_QueryUnload() {
  if (!fncconfirm("Project")) return std::nullopt;
  help_.CloseWindows();
  std::vector<ui::FormId> asked = forms_.Backwards();
  for (const ui::FormId id : asked) {
    documents::frmText* document = table_.Find(id);
    if (document && !document->QueryUnload()) return std::nullopt;
  }
  if (!panes_.QueryUnload()) return std::nullopt;
  return asked;
}

bool frmMyMDI::Close() {
  const ui::CommandScope scope;
  const auto asked = MDIForm_QueryUnload();
  if (!asked) return false;
  for (const ui::FormId id : *asked) {
    documents::frmText* document = table_.Find(id);
    if (document && !document->Unload()) return false;
  }
  // What has been opened meanwhile was not asked about.
  if (table_.AnyDocumentOpen() || !panes_.Unload()) return false;
  table_.copies().TellAtEnd();
  MDIForm_Unload();
  return true;
}

void frmMyMDI::MDIForm_Unload() {
  project_.LeaveKept();
  SaveSettings();
  ReportSettingsProblem(Found::kAtTheEnd);
  for (const ui::FormId id : forms_.Backwards()) {
    ui::Form* form = forms_.Find(id);
    if (form && form != &frame_) form->Close();
  }
  frame_.Hide();
  Quit();
}

void frmMyMDI::SaveSettings() {
  LoadRecentFiles();
  const auto position = project_.ProjectFile.empty() ? std::nullopt : recentFiles_.PositionOf(project_.ProjectFile);
  if (position) settings_.MostRecent = *position;
  settings_.PlusImage = listToolbar_.PlusImage();
  settings_.TextState = table_.LastDocWindowState;
  if (FirstActivation_) {
    settings_.ToolBarStyle = commands_.toolbarStyle();
  } else {
    // Closed before it was ever painted.
    services::ReadSettings(settingsFile_, SettingsBatch::kFirstActivation, settings_);
  }
  settings_.ListFontSize = frame_.leftPane().List1().fontSize();
  std::vector<std::string_view> keys;
  if (position) keys.emplace_back("Most Recent");
  if (const WindowState state = frame_.windowState(); state != WindowState::kMinimized) {
    settings_.WindowSize = static_cast<int>(state);
    keys.emplace_back("WindowSize");
  }
  for (const std::string_view key : kSavedAtTheEnd) {
    // The panes belong to the copy that was there first.
    const bool ofPane = key == "QuotesState" || key == "TextBlocksState" || key == "MyPadState" || key == "MyPadSize";
    if (!ofPane || !otherInstanceRuns_) keys.push_back(key);
  }
  services::SaveFromMemory(settingsFile_, settings_, keys);
}

}  // namespace shell
