// The folder tree: one drive's folders and files, read when they are opened, beside the program's current directory.
#pragma once

#include "files/CurrentDirectory.h"
#include "foldertree/NodeTable.h"
#include "services/Services.h"
#include "ui/controls/DriveBox.h"
#include "ui/controls/TreeView.h"

#include <QObject>
#include <QPoint>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace foldertree {

// Nodes are named by their keys, which are their paths: a node may have gone whenever events were let through.
class FolderTree : public QObject {
  Q_OBJECT

 public:
  FolderTree(services::Services& services, files::CurrentDirectory& directory, ui::DriveBox& Drive1,
             ui::TreeView& TreeView1);
  ~FolderTree() override;

  std::string TreeRoot;  // the drive that is shown
  // What ListFolder read last.
  std::vector<std::string> FolderEntryNames;
  std::vector<int> FolderEntryAttributes;

  // Shows the pop-up menu mnuRCTree.
  void SetMenu(std::function<void(const QPoint& globalPosition)> menu) { menu_ = std::move(menu); }

  // Rebuilds and opens the tree down to the current directory.
  void TreeSyncWithCurDir();
  // Says so when the folder cannot be entered. False then.
  bool ChangeDirectory(const files::Path& path);
  void ClearFolderLists();
  // Of the folder with that key, or of the root without one. A folder's error has been told.
  files::Status ListFolder(const std::string& path);
  // The root itself when there is none yet.
  void AddFolderNodes(const std::string& parentKey);
  void ToggleFolderNode(const std::optional<std::string>& key);
  void RefreshFolderNode(const std::string& key);
  void ReadDrives();  // into Drive1

  void Drive1_Change();
  void mnuTreeSync_Click();
  void mnuTreeDirChg_Click();
  void mnuTreeCollapseAll_Click();
  void mnuTreeClearSelections_Click();
  void mnuTreeRefresh_Click();
  void mnuTreeExplore_Click();

  // --- For the operations on files
  NodeTable& Nodes() { return nodes_; }
  const NodeTable& Nodes() const { return nodes_; }
  ui::TreeView& view() { return TreeView1_; }
  std::optional<std::string> SelectedKey() const;
  bool Exists(const std::string& key) const { return nodes_.Find(key).has_value(); }
  ui::TreeImage ImageOf(const std::string& key) const;  // of one that exists
  bool IsFolder(const std::string& key) const { return ImageOf(key) != ui::TreeImage::kLeaf; }
  std::string ParentOf(const std::string& key) const;  // its own key for the root
  std::string FolderOf(const std::string& key) const;  // its own for a folder
  void Select(const std::string& key);
  void Check(const std::string& key);
  void EnsureVisible(const std::string& key);
  void RemoveNodes(const std::vector<std::string>& keys);  // and all below them
  void AddFolder(const std::string& parentKey, const std::string& name);
  bool IsRoot(const std::string& key) const { return nodes_.Find(key) == NodeTable::kRoot; }
  void ShowTooManyEntries();

 private:
  template <class Signal, class Handler>
  void On(Signal signal, Handler handler);
  void ConnectView();
  // The node itself or the deepest one above it that is there.
  std::string Nearest(std::string key) const;
  void SelectNearest(const std::string& key) { Select(Nearest(key)); }
  using Rows = std::map<ui::TreeList, std::vector<int>>;
  void RemoveOneByOne(const Rows& rows);
  void RemoveTogether(const Rows& rows);
  void ClearNodes();
  // The error is the root's; another folder's has been told.
  files::Status ToggleNode(const std::string& key);
  files::Status RefreshNode(const std::string& key);
  void CloseNode(const std::string& key);
  files::Status LoadDrive();
  void Report(const std::string& key, const files::Status& status);
  void FallBackToRoot(const files::Error& error);
  void ChooseDrive(const std::string& drive);
  bool StartWalk(const std::string& cur, std::string& from);
  void WalkDown(const std::string& from, const std::string& cur);
  std::string CurDir() const { return directory_.path().native(); }

  services::Services& services_;
  files::CurrentDirectory& directory_;
  ui::DriveBox& Drive1_;
  ui::TreeView& TreeView1_;
  NodeTable nodes_;
  std::function<void(const QPoint&)> menu_;
};

}  // namespace foldertree
