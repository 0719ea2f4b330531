// The project: a named, ordered list of paths, kept in a project file and shown in the project list.
#pragma once

#include "files/OpenFile.h"
#include "project/ItemTable.h"
#include "services/Services.h"
#include "ui/controls/ListBox.h"

#include <optional>
#include <string>
#include <vector>

namespace project {

enum class Saved { kYes, kCancelled, kFailed };

class Project {
 public:
  Project(services::Services& services, ui::ListBox& List1) : services_(services), List1_(List1) {}

  std::string ProjectFile;  // full path, as bytes; empty = unnamed
  bool ProjectSaved = true;

  // Line 0 of the list is "_Open new document"; the data of every other line is the index of its entry.
  const ItemTable& ProjectItems() const { return ProjectItems_; }
  const std::string& EntryOf(int line) const;
  // Refuses, with a message, what cannot be an entry.
  void ReplaceEntryOf(int line, std::string entry);
  // Takes entries away; the list is back in the table's order, its first line selected.
  void Remove(const std::vector<bool>& marked);

  void LoadProject();
  void AddToProject(size_t index);
  void AddNewDocOrLink(std::string path);
  int FindPathInList(const std::string& path);
  void SelectListItem(int index, bool focus);
  // False: the user pressed Cancel, or the project could not be saved.
  bool fncconfirm(std::string_view what);

  void mnuNewProject_Click();
  void mnuOpen_Click();
  Saved mnuSaveProject_Click();
  Saved mnuSaveProjectAs_Click();

 private:
  void ReadProjectFile();
  bool MayReplaceFile();
  bool MayBeEntry(const std::string& path);
  void FillList();
  void ShowCaption();

  services::Services& services_;
  ui::ListBox& List1_;
  ItemTable ProjectItems_;
  std::optional<files::FileStamp> stamp_;  // of the file as it was read or written last
  bool couldNotBeRead_ = false;            // though it is there
};

}  // namespace project
