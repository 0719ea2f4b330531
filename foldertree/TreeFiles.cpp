#include "foldertree/TreeFiles.h"

#include "files/AnyCase.h"
#include "files/Attributes.h"
#include "files/Rename.h"
#include "services/Messages.h"
#include "ui/Hourglass.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/Clipboard.h"
#include "ui/desktop/Shell.h"
#include "ui/desktop/operations/FileOperations.h"

#include <algorithm>

namespace foldertree {

using ui::TreeImage;
using ui::TreePlace;

namespace {

constexpr int kYes = 6, kCancel = 2;
constexpr int kUntilRename = 100;  // milliseconds
constexpr size_t kManyNodes = 32767;
constexpr int kLastCounter = 50;

std::string NameOf(const std::string& key) {
  return key.substr(key.rfind('/') + 1);
}

// "New Folder", "New Folder1", ...; the last one is not looked for any more.
std::string FreeName(const std::string& folder) {
  const std::string first = "New Folder";
  std::string name = first;
  for (int counter = 1; counter <= kLastCounter && files::GetAttributes(files::JoinPath(folder, name)); ++counter)
    name = first + std::to_string(counter);
  return name;
}

bool IsGone(const std::string& key) {
  const auto attributes = files::GetAttributes(key);
  return !attributes &&
         (attributes.error().number == files::kFileNotFound || attributes.error().number == files::kPathNotFound);
}

}  // namespace

TreeFiles::TreeFiles(services::Services& services, FolderTree& tree) : services_(services), tree_(tree) {
  Timer1_.setSingleShot(true);
  Timer1_.setInterval(kUntilRename);
  ConnectView();
}

void TreeFiles::ConnectView() {
  const auto on = [this](ui::TreeView* sender, auto signal, auto handler) {
    connect(sender, signal, this,
            [this, handler](const auto&... arguments) { services_.forms().Guarded([&] { handler(arguments...); }); });
  };
  ui::TreeView* const view = &tree_.view();
  const auto openOrToggle = [this](const std::optional<std::string>& key) {
    key && !tree_.IsFolder(*key) ? mnuRCTreeOpen_Click() : tree_.ToggleFolderNode(key);
  };
  on(view, &ui::TreeView::EnterPressed, [this, openOrToggle] { openOrToggle(tree_.SelectedKey()); });
  on(view, &ui::TreeView::DoubleClicked, [this](TreePlace node) {
    const std::string key = tree_.Nodes().Key(node);
    tree_.Select(key);
    if (!tree_.IsFolder(key)) mnuRCTreeOpen_Click();
  });
  on(view, &ui::TreeView::Deleted, [this](bool shift) { DeleteTreeItems(!shift); });
  on(view, &ui::TreeView::LabelEditBegins, [this] { LabelEditBegins(); });
  on(view, &ui::TreeView::LabelEdited, [this](const std::string& name) { LabelEdited(name); });
  on(view, &ui::TreeView::LabelEditCancelled, [this] { RenameOldText.clear(); });
  connect(&Timer1_, &QTimer::timeout, this, [this] { services_.forms().Guarded([this] { Timer1_Tick(); }); });
}

void TreeFiles::Show(const QString& text, ui::Icon icon) {
  services_.dialogs().ShowMessage(services_.forms().at(0), {.text = text, .icon = icon});
}

// Looked up again by every user: a node may have gone meanwhile.
std::vector<std::string> TreeFiles::CheckedOrSelected() {
  std::vector<std::string> keys = tree_.Nodes().CheckedKeys();
  const auto selected = tree_.SelectedKey();
  if (keys.empty() && selected) {
    tree_.Check(*selected);
    keys.push_back(*selected);
  }
  return keys;
}

// --- Opening

void TreeFiles::mnuRCTreeOpen_Click() {
  const ui::CommandScope scope;
  const auto key = tree_.SelectedKey();
  if (!key) return;
  if (tree_.IsFolder(*key)) {
    if (tree_.ImageOf(*key) == TreeImage::kClosed) tree_.ToggleFolderNode(*key);
  } else if (files::EndsWithAnyCase(*key, ".prj")) {
    OpenProjectOrDocument(*key);
  } else {
    std::string path = *key;
    services_.OpenDocument(path);
  }
}

void TreeFiles::OpenProjectOrDocument(const std::string& key) {
  const QString question =
      tr("If you want to open it as a project, press 'Yes'; as a document, press 'No'.  Press 'Cancel' to skip.");
  const ui::Answer answer = services_.dialogs().ShowMessage(
      services_.forms().at(0),
      {services::FileText(NameOf(key), question), ui::Buttons::kYesNoCancel, ui::Icon::kInformation});
  if (answer == ui::Answer::kYes) {
    if (!services_.fncconfirm("Project")) return;
    ui::LetPendingEventsRun();
    services_.LoadProject(key);
  } else if (answer == ui::Answer::kNo) {
    std::string path = key;
    services_.OpenDocument(path);
  }
}

void TreeFiles::mnuTreeOpen_Click() {
  const ui::CommandScope scope;
  if (OpenChecked()) return;
  const auto selected = tree_.SelectedKey();
  const TreeImage image = selected ? tree_.ImageOf(*selected) : TreeImage::kRoot;
  if (image == TreeImage::kLeaf || image == TreeImage::kClosed) {
    tree_.Check(*selected);
    return mnuRCTreeOpen_Click();
  }
  services::ShowError(services_.dialogs(), services_.forms().at(0), tr("Please checkmark the items you want to open"));
  ui::LetPendingEventsRun();
  tree_.view().setFocus();
}

// The files first. What a folder that is opened brings with it are files and unchecked folders, so nothing joins the
// second walk.
bool TreeFiles::OpenChecked() {
  bool opened = false;
  for (const TreeImage image : {TreeImage::kLeaf, TreeImage::kClosed}) {
    for (const std::string& key : tree_.Nodes().CheckedKeys()) {
      const auto place = tree_.Nodes().Find(key);
      if (!place || tree_.Nodes().Image(*place) != image || !tree_.Nodes().Checked(*place)) continue;
      tree_.Select(key);
      mnuRCTreeOpen_Click();
      ui::LetPendingEventsRun();
      opened = true;
    }
  }
  return opened;
}

void TreeFiles::mnuRCTreeOpenExt_Click() {
  if (const auto key = tree_.SelectedKey()) services_.shell().Open(*key);
}

void TreeFiles::mnuTreeOpenExt_Click() {
  const ui::CommandScope scope;
  services_.AskEach();
  std::vector<std::string> keys = tree_.Nodes().CheckedKeys();
  const auto selected = tree_.SelectedKey();
  if (keys.empty() && selected) keys.push_back(*selected);
  for (const std::string& key : keys) {
    tree_.EnsureVisible(key);
    const int answer = services_.fncYesNoAll(
        tr("Item: %1\r\n\r\nShould I open this item in its external application?").arg(ui::ShortDisplayText(key)));
    ui::LetPendingEventsRun();
    if (answer == kCancel) return;
    if (answer != kYes || !tree_.Exists(key)) continue;
    tree_.Check(key);
    tree_.Select(key);
    mnuRCTreeOpenExt_Click();
    ui::LetPendingEventsRun();
  }
}

// --- The project list and the clipboard

void TreeFiles::Add(std::vector<std::string> keys) {
  const ui::CommandScope scope;
  const ui::Hourglass hourglass;
  if (keys.empty()) return;
  tree_.Select(keys.back());
  for (std::string& key : keys)
    if (tree_.IsFolder(key) && !key.ends_with('/')) key += '/';
  services_.AddNewDocsOrLinks(keys);
}

void TreeFiles::mnuRCTreeAdd2List_Click() {
  if (const auto key = tree_.SelectedKey()) Add({*key});
}

void TreeFiles::mnuTreeAdd2List_Click() {
  Add(CheckedOrSelected());
}

void TreeFiles::mnuRCTreeCopyPath_Click() {
  if (const auto key = tree_.SelectedKey()) ui::SetClipboardPath(*key);
}

void TreeFiles::mnuTreeCopyPath_Click() {
  std::string text;
  for (const std::string& key : CheckedOrSelected()) (text += text.empty() ? "" : "\r\n") += key;
  if (!text.empty()) ui::SetClipboardPath(text);
  tree_.view().setFocus();
}

// --- Creating and deleting

void TreeFiles::mnuTreeCreateFolder_Click() {
  const ui::CommandScope scope;
  const auto selected = tree_.SelectedKey();
  if (!selected) return;
  const std::string folder = tree_.FolderOf(*selected), name = FreeName(folder);
  if (const files::Status made = files::MakeOneFolder(files::JoinPath(folder, name)); !made)
    return services::ShowError(services_.dialogs(), services_.forms().at(0),
                               services::ErrorText(files::JoinPath(folder, name), made.error()));
  AddNewFolder(folder, name);
  ui::LetPendingEventsRun();
}

void TreeFiles::AddNewFolder(const std::string& folder, const std::string& name) {
  const std::string key = files::JoinPath(folder, name);
  // A closed folder has no nodes below it: it is read, the new one included.
  if (tree_.ImageOf(folder) == TreeImage::kClosed) tree_.ToggleFolderNode(folder);
  if (!tree_.Exists(key)) tree_.AddFolder(folder, name);
  if (tree_.Nodes().count() > kManyNodes) tree_.ShowTooManyEntries();
  tree_.Select(key);
  if (tree_.Exists(key)) tree_.view().StartLabelEdit();
}

void TreeFiles::DeleteTreeItems(bool normal) {
  const ui::CommandScope scope;
  std::vector<std::string> list = tree_.Nodes().CheckedKeys();
  const auto selected = tree_.SelectedKey();
  if (list.empty() && selected && !tree_.IsRoot(*selected)) {
    tree_.Check(*selected);
    tree_.EnsureVisible(*selected);
    list.push_back(*selected);
  }
  // A whole drive is deleted by nobody.
  std::erase_if(list, [this](const std::string& key) { return tree_.IsRoot(key); });
  if (list.empty()) {
    services::ShowError(services_.dialogs(), services_.forms().at(0),
                        tr("Please checkmark the items you want to delete"));
    return;
  }
  ShellDelete(list, normal);
  ui::LetPendingEventsRun();
  PruneMissingCheckedNodes();
  ui::LetPendingEventsRun();
}

void TreeFiles::mnuRCTreeDelete_Click() {
  const ui::CommandScope scope;
  const auto selected = tree_.SelectedKey();
  if (!selected || tree_.IsRoot(*selected)) return;
  ShellDelete({*selected}, true);
  ui::LetPendingEventsRun();
  if (IsGone(*selected)) tree_.RemoveNodes({*selected});
}

bool TreeFiles::ShellDelete(const std::vector<std::string>& list, bool normal) {
  const bool toTrash = normal && !services_.settings().TreeDelMethod;
  const ui::FileOperations::Result result = services_.fileOperations().Delete(services_.forms().at(0), list, toTrash);
  ui::LetPendingEventsRun();
  if (!result.succeeded() && !result.aborted) Show(QString::number(result.error), ui::Icon::kNone);
  return result.succeeded();
}

// Looking at each may take its time, on a network drive above all.
void TreeFiles::PruneMissingCheckedNodes() {
  const ui::CommandScope scope;
  const std::vector<std::string> keys = tree_.Nodes().CheckedKeys();
  std::vector<std::string> gone;
  if (keys.empty()) return;
  services_.dialogs().RunWork(services_.forms().at(0), tr("Looking at the checked items"),
                              static_cast<int64_t>(keys.size()), [&](ui::WorkPort& port) {
                                for (size_t i = 0; i < keys.size() && port.Report(static_cast<int64_t>(i)); ++i)
                                  if (IsGone(keys[i])) gone.push_back(keys[i]);
                              });
  tree_.RemoveNodes(gone);
}

// --- Renaming

void TreeFiles::mnuTreeRename_Click() {
  const ui::CommandScope scope;
  const auto selected = tree_.SelectedKey();
  if (selected && tree_.IsRoot(*selected)) {
    services::ShowError(services_.dialogs(), services_.forms().at(0),
                        tr("Cannot rename the drive from this application."));
    return;
  }
  if (!selected) return;
  toRename_ = *selected;
  Timer1_.start();
}

void TreeFiles::Timer1_Tick() {
  // Not in the middle of another command.
  ui::AfterCommand(this, [this] {
    tree_.Select(toRename_);
    if (tree_.SelectedKey() == toRename_) tree_.view().StartLabelEdit();
  });
}

void TreeFiles::LabelEditBegins() {
  const auto selected = tree_.SelectedKey();
  if (!selected) return;
  if (RenameOldText.empty() || renamed_ != *selected) RenameOldText = NameOf(*selected);
  renamed_ = *selected;
}

void TreeFiles::LabelEdited(const std::string& name) {
  const ui::CommandScope scope;
  if (RenameOldText.empty()) return;
  if (name.empty()) {
    services::ShowError(services_.dialogs(), services_.forms().at(0),
                        tr("You must enter a value, or hit Escape to cancel."));
    toRename_ = renamed_;
    Timer1_.start();
    return;
  }
  if (name != RenameOldText) RenameTo(name);
  RenameOldText.clear();
}

void TreeFiles::RenameTo(const std::string& name) {
  const std::string folder = renamed_.substr(0, std::max(renamed_.rfind('/'), size_t{1}));
  if (const files::Status renamed = files::Rename(folder, RenameOldText, name); !renamed)
    return services::ShowError(services_.dialogs(), services_.forms().at(0),
                               services::ErrorText(folder, renamed.error()));
  const std::string parent = tree_.ParentOf(renamed_);
  if (!tree_.Exists(renamed_)) return;
  tree_.RefreshFolderNode(parent);
  tree_.Select(files::JoinPath(folder, name));
}

}  // namespace foldertree
