// What a feature may ask of the rest of the program. The main window is the only real implementation.
#pragma once

#include "files/Result.h"
#include "services/Completion.h"
#include "services/Settings.h"
#include "ui/Dialogs.h"
#include "ui/Forms.h"

#include <QPoint>
#include <QString>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ui {
class ChildArea;
class FileOperations;
class Printer;
class RichTextBox;
class Shell;
}  // namespace ui

namespace services {

// What the file dialogs begin with for a path.
struct PathFilter {
  std::string extension;  // with its dot
  int index = 1;          // into the document filter, from 1
};

// Sums of these are the dialogs' flags.
enum FileDialogFlag : int {
  kOverwritePrompt = 2,
  kHideReadOnly = 4,  // there is no such box on this desktop
  kNoChangeDir = 8,
  kFileMustExist = 4096,
  kCreatePrompt = 8192,
  kNoDereferenceLinks = 1048576,  // a chosen link is given back itself
};

enum PrinterDialogFlag : int {
  kOfferSelection = 1,  // and choose it at first
  kNoPageNumbers = 8,
};

struct FileDialog {
  ui::Form* owner = nullptr;
  std::string defaultExtension = {};
  QString filter = {};  // "description|pattern|..."
  int flags = 0;
  files::Path initialDirectory = {};
  QString title = {};
  int filterIndex = 1;
  files::Path initialFile = {};
};

// What the selection is like; a property without a single value is empty.
struct SelectionState {
  std::optional<bool> bold, italic, underline, strikeThru, bullet, protectedText;
  std::optional<int> alignment;  // 0 left, 1 right, 2 centre
};

class Services {
 public:
  virtual ~Services() = default;

  virtual ui::Dialogs& dialogs() = 0;
  virtual ui::Forms& forms() = 0;
  virtual ui::ChildArea& documentArea() = 0;
  virtual Settings& settings() = 0;
  virtual SettingsStore& settingsStore() = 0;
  virtual const DefaultFont& defaultFont() const = 0;
  virtual const files::Path& recoveryFolder() const = 0;
  virtual ui::Shell& shell() = 0;
  virtual ui::FileOperations& fileOperations() = 0;

  // The chosen path, empty when cancelled.
  virtual files::Path ShowOpenDialog(const FileDialog& dialog) = 0;
  virtual files::Path ShowSaveDialog(const FileDialog& dialog) = 0;
  virtual int64_t ShowColorDialog(ui::Form* owner, int64_t initial) = 0;  // 0x00BBGGRR, -1 when cancelled
  virtual ui::CustomColors& customColors() = 0;                           // the user's own, for such dialogs
  virtual bool ShowPrinterDialog(ui::Form* owner, int flags) = 0;         // true when cancelled
  virtual ui::Printer& currentPrinter() = 0;
  virtual const QString& documentFilter() const = 0;
  virtual PathFilter GetFilterForPath(const std::string& path) const = 0;

  // --- The current directory, a value of the program
  virtual files::Path MakeAbsolute(const files::Path& path) const = 0;

  // --- The folder tree
  virtual void ChangeDirectory(const files::Path& folder) = 0;  // says so when it cannot be entered
  virtual void TreeSyncWithCurDir() = 0;
  virtual void mnuTreeSync_Click() = 0;  // and gives the tree the focus

  // --- Documents
  virtual void OpenDocument(std::string& path) = 0;
  virtual bool AnyDocumentOpen() const = 0;
  virtual int DocumentSlots() const = 0;                  // slots are 1 to this
  virtual ui::RichTextBox* EditorOf(int slot) const = 0;  // null when the slot is free
  virtual int ActiveSlot() const = 0;                     // 0 without a document
  // The find engine makes the document of that slot the active one; its window takes the flag when it gets the focus.
  virtual void SetFocusFromFindAll(int slot) = 0;
  virtual bool TakeFocusFromFindAll() = 0;

  // --- The project
  // Appends the path unless the project has it; its line is selected then.
  virtual void AddNewDocOrLink(const std::string& path) = 0;
  // The same for each of them, in one go.
  virtual void AddNewDocsOrLinks(const std::vector<std::string>& paths) = 0;
  virtual void LoadProject(const std::string& path) = 0;  // unasked
  // The line of the entry, now selected; a number not below the list's count when there is none.
  virtual int FindPathInList(const std::string& path) = 0;
  // Offers to save a changed project. False: the user pressed Cancel.
  virtual bool fncconfirm(std::string_view what) = 0;
  // The project files of the File menu, newest first when they were entered.
  virtual const std::vector<std::string>& recentFiles() const = 0;
  virtual void AddToRecentFiles(const std::string& path) = 0;
  virtual void LoadRecentFiles() = 0;

  // --- Questions for each item of a batch
  virtual void AskEach() = 0;
  virtual void AnswerAllYes() = 0;
  virtual int fncYesNoAll(const QString& prompt) = 0;  // 6 = Yes, 7 = No, 2 = Cancel

  // --- Auto-complete
  virtual bool AutoCompleteOn() const = 0;
  virtual void ShowAutoComplete() = 0;  // in the button and the check mark
  virtual std::unique_ptr<Completion> MakeCompletion(ui::RichTextBox& editor) = 0;

  virtual void mnuPrefItem_Click() = 0;

  // --- Panes
  virtual void ToggleQuotesOptions(bool enabled) = 0;  // the commands that need quotes
  virtual void ToggleNotesSave(bool enabled) = 0;      // a notes pad is loaded
  virtual void ShowQuotesMenu(const QPoint& globalPosition) = 0;
  virtual void ShowPadMenu(ui::RichTextBox& pad, const QPoint& globalPosition) = 0;

  // --- The user manual: a numbered topic in the help window, a numbered text at a point of the screen
  virtual void ShowHelpContext(int topic) = 0;
  virtual void ShowHelpPopup(const QPoint& globalPosition, int text) = 0;

  // InitDocProperties for each of them.
  virtual void RefreshAllDocuments() = 0;
  // Brings menus and status bar in line with the document in that slot.
  virtual void InitDocProperties(int slot) = 0;
  // Document commands can be used from now on, or no longer.
  virtual void ToolbarToggle(bool enabled) = 0;
  virtual void ShowSelectionState(const SelectionState& state) = 0;  // the toolbar's buttons
  virtual void ShowSelectionFont(const QString& text) = 0;           // the panel stsFont
  virtual void ShowOvertype(bool overtype) = 0;                      // the panel stsInsert
  virtual void ShowDocumentMenu(int slot, const QPoint& globalPosition) = 0;
};

// Where the setting says that the tree follows the current directory.
void SyncTree(Services& services);

}  // namespace services
