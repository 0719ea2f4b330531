// The project: a named, ordered list of paths, kept in a project file and shown in the project list.
#pragma once

#include "files/saving/Recovery.h"
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
  // Of an entry that was there before; count() of the list when it is not any more.
  int LineOf(size_t index, const std::string& entry) const;
  // Refuses, with a message, what cannot be an entry.
  void ReplaceEntryOf(int line, std::string entry);
  // Takes entries away; the list is back in the table's order, its first line selected.
  void Remove(const std::vector<bool>& marked);

  void LoadProject();
  void AddToProject(size_t index);
  void AddNewDocOrLink(std::string path);
  // As AddNewDocOrLink for one after the other would leave it.
  void AddNewDocsOrLinks(const std::vector<std::string>& paths);
  int FindPathInList(const std::string& path);
  void SelectListItem(int index, bool focus);
  // False: the user pressed Cancel, or the project could not be saved.
  bool fncconfirm(std::string_view what);

  // --- The recovery folder
  static constexpr const char* kRecoveryKind = "project";
  // Writes a changed project there, asking nothing, at any moment. It counts as kept until it is saved or given up.
  std::optional<files::Error> KeepProject();
  // Takes the place of the project, after the question about that, as a changed one under its old name. False when it
  // did not.
  bool OpenKept(const files::RecoveryEntry& entry);
  // The project goes: what is kept of it stays for the next start unless the user gave it up.
  void LeaveKept();

  void mnuNewProject_Click();
  void mnuOpen_Click();
  Saved mnuSaveProject_Click();
  Saved mnuSaveProjectAs_Click();

 private:
  static constexpr int64_t kMaxProjectBytes = int64_t{256} << 20;

  void ReadProjectFile();
  void TakeEntries(std::string_view bytes);
  void ShowProject();
  std::string FileBytes() const;
  void ForgetKept();
  bool MayReplaceFile();
  int LineOfPath(const std::string& path) const;
  ui::ListLine LineFor(size_t index) const;
  bool MayBeEntry(const std::string& path);
  void FillList();
  void ShowCaption();

  services::Services& services_;
  ui::ListBox& List1_;
  ItemTable ProjectItems_;
  std::optional<files::FileStamp> stamp_;     // of the file as it was read or written last
  std::optional<files::RecoveryEntry> kept_;  // holds this project, claimed
  std::string keptBytes_;                     // what it holds
  bool givenUp_ = false;                      // the user does not want the changes
  bool couldNotBeRead_ = false;               // though it is there
};

}  // namespace project
