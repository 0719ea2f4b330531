// The main window: owns one object of each feature and is what they ask for services.
#pragma once

#include "autocomplete/AutoComplete.h"
#include "commands/Commands.h"
#include "commands/ListToolbar.h"
#include "commands/Menus.h"
#include "commands/Toolbar.h"
#include "commands/TreeToolbar.h"
#include "documents/DocumentTable.h"
#include "documents/Opening.h"
#include "files/LockFile.h"
#include "foldertree/TreeDrag.h"
#include "panes/Panes.h"
#include "project/ProjectList.h"
#include "search/Find.h"
#include "search/frmYesNoAll.h"
#include "shell/DesktopServices.h"
#include "shell/ExternalPrograms.h"
#include "shell/RecentFiles.h"
#include "shell/help/Help.h"
#include "shell/settings/SettingsFile.h"
#include "shell/settings/frmOptions.h"
#include "ui/frame/FrameForm.h"

#include <QTimer>

#include <functional>
#include <memory>
#include <utility>

namespace shell {

class frmMyMDI final : public DesktopServices {
 public:
  frmMyMDI(ui::Dialogs& dialogs, ui::Shell& shell, Place place);
  ~frmMyMDI() override;

  // Loads what shapes the window and shows it. The rest is done from the event loop once it has been painted: data are
  // loaded, `paths` opened in their order, and then `then` runs.
  void Start(std::vector<files::Path> paths, std::function<void()> then = {});
  // What ends the event loop, or keeps it from beginning.
  void SetQuit(std::function<void()> quit) { quit_ = std::move(quit); }
  // Asks what to do with the texts of the recovery folder.
  void OfferRecovered();
  // Every changed text, and the project, into the recovery folder, asking nothing; at any moment. The first error, if
  // any.
  std::optional<files::Error> KeepTexts();
  // The end that somebody outside asked for: texts are kept instead of asked about. If one cannot be kept the program
  // says so and stays.
  void EndSession();
  // The whole window as a PNG file.
  files::Status SavePicture(const files::Path& path);

  ui::FrameForm& frame() { return frame_; }
  documents::DocumentTable& documents() { return table_; }
  documents::Opening& opening() { return opening_; }
  commands::Commands& commands() { return commands_; }
  commands::Menus& menus() { return menus_; }
  search::Find& find() { return find_; }
  project::Project& project() { return project_; }
  project::ProjectList& projectList() { return projectList_; }
  foldertree::FolderTree& folderTree() { return tree_; }
  foldertree::TreeFiles& treeFiles() { return treeFiles_; }
  Help& help() { return help_; }
  ExternalPrograms& programs() { return programs_; }
  autocomplete::AutoComplete& autoComplete() { return autoComplete_; }
  panes::Panes& panes() { return panes_; }
  // Another copy was there first: it has the panes and their files.
  bool otherInstanceRuns() const { return otherInstanceRuns_; }

  // --- Services
  ui::Forms& forms() override { return forms_; }
  ui::ChildArea& documentArea() override { return frame_.area(); }
  services::Settings& settings() override { return settings_; }
  SettingsFile& settingsStore() override { return settingsFile_; }
  const services::DefaultFont& defaultFont() const override { return settings_.Font; }
  void ChangeDirectory(const files::Path& folder) override { tree_.ChangeDirectory(folder); }
  void TreeSyncWithCurDir() override { tree_.TreeSyncWithCurDir(); }
  void mnuTreeSync_Click() override { tree_.mnuTreeSync_Click(); }
  void OpenDocument(std::string& path) override { opening_.OpenDocument(path); }
  bool AnyDocumentOpen() const override { return table_.AnyDocumentOpen(); }
  int DocumentSlots() const override { return table_.UpperBound(); }
  ui::RichTextBox* EditorOf(int slot) const override;
  int ActiveSlot() const override;
  void SetFocusFromFindAll(int slot) override;
  bool TakeFocusFromFindAll() override { return std::exchange(find_.engine().FocusFromFindAll, false); }
  void AddNewDocOrLink(const std::string& path) override { project_.AddNewDocOrLink(path); }
  void AddNewDocsOrLinks(const std::vector<std::string>& paths) override { project_.AddNewDocsOrLinks(paths); }
  void LoadProject(const std::string& path) override;
  int FindPathInList(const std::string& path) override { return project_.FindPathInList(path); }
  bool fncconfirm(std::string_view what) override { return project_.fncconfirm(what); }
  const std::vector<std::string>& recentFiles() const override { return recentFiles_.shown(); }
  void AddToRecentFiles(const std::string& path) override { recentFiles_.AddToRecentFiles(path); }
  void LoadRecentFiles() override { recentFiles_.LoadRecentFiles(); }
  void AskEach() override { confirmation_.AskEach(); }
  void AnswerAllYes() override { confirmation_.AnswerAllYes(); }
  void mnuPrefItem_Click() override;
  int fncYesNoAll(const QString& prompt) override { return confirmation_.fncYesNoAll(prompt); }
  bool AutoCompleteOn() const override { return autoComplete_.AutoCompleteOn(); }
  void ShowAutoComplete() override;
  std::unique_ptr<services::Completion> MakeCompletion(ui::RichTextBox& editor) override;
  void ToggleQuotesOptions(bool enabled) override;
  void ToggleNotesSave(bool enabled) override;
  void ShowPadMenu(ui::RichTextBox& pad, const QPoint& globalPosition) override {
    menus_.ShowPadPopup(pad, globalPosition);
  }
  void ShowQuotesMenu(const QPoint& globalPosition) override { menus_.ShowQuotesPopup(globalPosition); }
  void ShowHelpContext(int topic) override { help_.ShowHelpContext(topic); }
  void ShowHelpPopup(const QPoint& globalPosition, int text) override { help_.ShowHelpPopup(globalPosition, text); }
  void RefreshAllDocuments() override { commands_.RefreshAllDocuments(); }
  void InitDocProperties(int slot) override;
  void ToolbarToggle(bool enabled) override;
  void ShowSelectionState(const services::SelectionState& state) override;
  void ShowSelectionFont(const QString& text) override;
  void ShowOvertype(bool overtype) override;
  void ShowDocumentMenu(int slot, const QPoint& globalPosition) override;

 private:
  // --- The start, in two stages
  void MDIForm_Load();
  void MDIForm_Activate(const std::vector<files::Path>& paths);
  void OpenFirst(const std::vector<files::Path>& paths);
  void OpenWelcomeProject();
  void TakeDropped(const std::vector<std::string>& paths);
  void CreateTabStops();
  void BuildDocumentFilter();
  void TakeOptions();
  void Timer3_Tick();
  enum class Found { kAtTheStart, kAtTheEnd };
  void ReportSettingsProblem(Found when);

  // --- The end
  bool Close();
  std::optional<std::vector<ui::FormId>> MDIForm_QueryUnload();
  void MDIForm_Unload();
  void SaveSettings();
  void OfferRecovered(files::RecoveryEntry& entry);
  void Quit() {
    if (quit_) quit_();
  }

  SettingsFile settingsFile_;
  services::Settings settings_;
  std::vector<int> tabStops_;  // twips
  files::LockFile lock_;
  bool otherInstanceRuns_ = false;
  bool FirstRun_ = false;
  bool FirstActivation_ = false;
  std::function<void()> quit_;
  QTimer Timer3_;
  ui::Forms forms_;
  ui::FrameForm frame_;
  autocomplete::AutoComplete autoComplete_;
  documents::DocumentTable table_;
  documents::Opening opening_;
  search::Confirmation confirmation_;
  search::Find find_;
  project::Project project_;
  project::ProjectList projectList_;
  foldertree::FolderTree tree_;
  foldertree::TreeFiles treeFiles_;
  foldertree::TreeDrag treeDrag_;
  panes::Panes panes_;
  Help help_;
  ExternalPrograms programs_;
  commands::Commands commands_;
  commands::Toolbar toolbar_;
  commands::ListToolbar listToolbar_;
  commands::TreeToolbar treeToolbar_;
  commands::Menus menus_;
  RecentFiles recentFiles_;
  std::unique_ptr<frmOptions> options_;
};

}  // namespace shell
