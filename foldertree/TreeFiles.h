// What is done with the files and folders of the tree: with those that have a check mark, or else with the selected
// one, which gets one then.
#pragma once

#include "foldertree/FolderTree.h"

#include <QTimer>

namespace foldertree {

class TreeFiles : public QObject {
  Q_OBJECT

 public:
  TreeFiles(services::Services& services, FolderTree& tree);

  std::string RenameOldText;  // empty when no name is being changed

  void mnuTreeOpen_Click();
  void mnuRCTreeOpen_Click();
  void mnuTreeOpenExt_Click();
  void mnuRCTreeOpenExt_Click();
  void mnuTreeAdd2List_Click();
  void mnuRCTreeAdd2List_Click();
  void mnuTreeCopyPath_Click();
  void mnuRCTreeCopyPath_Click();
  void mnuTreeCreateFolder_Click();
  void mnuTreeDelete_Click() { DeleteTreeItems(true); }
  void mnuRCTreeDelete_Click();
  void mnuTreeRename_Click();

  // `normal`: into the trash, unless the setting says otherwise.
  void DeleteTreeItems(bool normal);
  bool ShellDelete(const std::vector<std::string>& list, bool normal);
  // The keys of the checked nodes; without one the selected node gets a check mark first.
  std::vector<std::string> CheckedOrSelected();
  // Takes the checked nodes out of the tree that are no longer on the disk.
  void PruneMissingCheckedNodes();

 private:
  void ConnectView();
  bool OpenChecked();
  void OpenProjectOrDocument(const std::string& key);
  void Add(std::vector<std::string> keys);
  void AddNewFolder(const std::string& folder, const std::string& name);
  void Timer1_Tick();
  void LabelEditBegins();
  void LabelEdited(const std::string& name);
  void RenameTo(const std::string& name);
  void Show(const QString& text, ui::Icon icon);

  services::Services& services_;
  FolderTree& tree_;
  QTimer Timer1_;
  std::string toRename_;  // the key of the node whose name is about to be changed
  std::string renamed_;   // of the one whose name is being changed
};

}  // namespace foldertree
