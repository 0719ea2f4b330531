// The drive that the tree shows, the way to the current directory, and what the user does with single nodes.
#include "files/Attributes.h"
#include "foldertree/FolderTree.h"
#include "services/Messages.h"
#include "ui/Hourglass.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/Shell.h"

#include <algorithm>
#include <cerrno>

namespace foldertree {

using ui::TreeImage;
using ui::TreePlace;

template <class Signal, class Handler>
void FolderTree::On(Signal signal, Handler handler) {
  connect(&TreeView1_, signal, this,
          [this, handler](const auto&... arguments) { services_.forms().Guarded([&] { handler(arguments...); }); });
}

void FolderTree::ConnectView() {
  On(&ui::TreeView::ToggleWanted, [this](TreePlace node) { ToggleFolderNode(nodes_.Key(node)); });
  // A click on a folder opens or closes it, one on a file checks it.
  On(&ui::TreeView::NodeClicked, [this](TreePlace node) {
    if (nodes_.Image(node) != TreeImage::kLeaf) return ToggleFolderNode(nodes_.Key(node));
    nodes_.SetChecked(node, !nodes_.Checked(node));
    TreeView1_.ShowChanged(node);
  });
  On(&ui::TreeView::RefreshPressed, [this] { mnuTreeRefresh_Click(); });
  On(&ui::TreeView::MenuRequested, [this](const QPoint& position) {
    if (menu_) menu_(position);
  });
  connect(&Drive1_, &ui::DriveBox::Chosen, this, [this] { services_.forms().Guarded([this] { Drive1_Change(); }); });
  Drive1_.SetRefresh([this] { services_.forms().Guarded([this] { ReadDrives(); }); });
}

void FolderTree::ReadDrives() {
  directory_.SetDrives(services_.shell().Volumes());
  std::vector<std::string> drives;
  for (const files::Path& drive : directory_.drives()) drives.push_back(drive.native());
  // The list names what the tree shows, also when it has gone.
  if (!nodes_.empty() && std::ranges::find(drives, TreeRoot) == drives.end()) drives.push_back(TreeRoot);
  const bool first = Drive1_.count() == 0;
  Drive1_.SetDrives(std::move(drives));
  if (first) Drive1_.Choose(directory_.drive().native());
}

void FolderTree::ChooseDrive(const std::string& drive) {
  Drive1_.Choose(drive);
  Drive1_Change();
}

void FolderTree::Drive1_Change() {
  const ui::CommandScope scope;
  if (const files::Status loaded = LoadDrive(); !loaded) FallBackToRoot(loaded.error());
}

void FolderTree::FallBackToRoot(const files::Error& error) {
  if (error.systemError == ECANCELED) return;
  services::ShowError(services_.dialogs(), services_.forms().at(0), QString::fromStdString(error.text));
  const bool again = Drive1_.drive() != "/" || TreeRoot != "/";
  TreeRoot = "/";
  if (again) ChooseDrive("/");
}

files::Status FolderTree::LoadDrive() {
  if (files::Status changed = directory_.ChangeDrive(Drive1_.drive()); !changed) return changed;
  const std::string before = CurDir();
  TreeRoot = directory_.drive().native();
  const ui::Hourglass hourglass;
  ClearNodes();
  ui::LetPendingEventsRun();
  ClearFolderLists();
  AddFolderNodes(TreeRoot);
  if (files::Status listed = ToggleNode(TreeRoot); !listed) {
    if (listed.error().systemError == ECANCELED) ChangeDirectory(before);
    return listed;
  }
  const bool back = ChangeDirectory(before);
  EnsureVisible(CurDir());
  if (services_.settings().TreeSync) {
    TreeSyncWithCurDir();
    ui::LetPendingEventsRun();
  }
  if (back) ChangeDirectory(before);
  return {};
}

// --- The way to the current directory

void FolderTree::TreeSyncWithCurDir() {
  const ui::CommandScope scope;
  ReadDrives();
  const std::string cur = CurDir(), drive = directory_.drive().native();
  if (nodes_.empty() || !files::SamePath(TreeRoot, drive)) return ChooseDrive(drive);
  ui::LetPendingEventsRun();
  const ui::Hourglass hourglass;
  std::string from;
  if (StartWalk(cur, from)) WalkDown(from, cur);
  ui::LetPendingEventsRun();
  ChangeDirectory(cur);
}

// False when the folder is open already, which is refreshed then; else `from` is where to begin: the folder itself or
// the deepest one above it that is in the tree.
bool FolderTree::StartWalk(const std::string& cur, std::string& from) {
  if (Exists(cur) && ImageOf(cur) == TreeImage::kOpen) {
    RefreshFolderNode(cur);
    return false;
  }
  from = Nearest(cur);
  return true;
}

void FolderTree::WalkDown(const std::string& from, const std::string& cur) {
  for (size_t end = from.size(); end <= cur.size(); end = std::min(cur.find('/', end + 1), cur.size())) {
    const std::string folder = cur.substr(0, end);
    if (Exists(folder)) {
      Select(folder);
      ImageOf(folder) == TreeImage::kOpen ? RefreshFolderNode(folder) : ToggleFolderNode(folder);
      ui::LetPendingEventsRun();
    }
    if (end == cur.size()) break;
  }
}

void FolderTree::mnuTreeSync_Click() {
  const ui::CommandScope scope;
  TreeSyncWithCurDir();
  ui::LetPendingEventsRun();
  // The first time may just have loaded the drive.
  const std::string cur = CurDir();
  const TreeImage image = ImageOf(cur);
  if (!Exists(cur) || (image != TreeImage::kOpen && image != TreeImage::kRoot)) {
    TreeSyncWithCurDir();
    ui::LetPendingEventsRun();
  }
  TreeView1_.setFocus();
}

}  // namespace foldertree
