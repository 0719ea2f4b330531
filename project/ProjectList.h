// The project list pane: what the user does with the lines of List1.
#pragma once

#include "project/Project.h"

#include <QObject>
#include <QPoint>

#include <functional>

namespace project {

class ProjectList : public QObject {
  Q_OBJECT

 public:
  ProjectList(services::Services& services, Project& project, ui::ListBox& List1);

  // Shows the pop-up menu mnuRCProjList.
  void SetMenu(std::function<void(const QPoint& globalPosition)> menu) { menu_ = std::move(menu); }

  void mnuOpenFromList_Click();
  void mnuCopyListPath_Click();
  void mnuLinkAdd_Click();
  void mnuRemoveFile_Click() { RemoveFromProject(true); }
  void mnuSelectAll_Click();
  void mnuProjListClearSelected_Click() { project_.SelectListItem(0, true); }
  void mnuListSort_Click();
  void mnuListEditPrj_Click();

  QString ToolTipOf(int line) const;

 private:
  enum class Opened { kAll, kCancelled, kFailed };

  void ConnectList();
  // Calls the handler when the list sends the signal; what it throws goes no further.
  template <class Signal, class Handler>
  void On(Signal signal, Handler handler);
  void SelectFocusLineIfNone();
  Opened OpenSelected(services::PathFilter& filter);
  Opened OpenEntry(std::string entry, services::PathFilter& filter);
  bool CanBeRead(const std::string& entry, const files::Path& path);
  void PickDocument(const services::PathFilter& filter);
  void RemoveFromProject(bool confirm);
  std::vector<std::pair<size_t, std::string>> SelectedItems() const;  // index in the table, entry
  std::vector<std::string> SelectedEntries();
  std::vector<std::string> FilesOfDrag();
  void TakeDropped(std::vector<std::string> paths);

  services::Services& services_;
  Project& project_;
  ui::ListBox& List1_;
  std::function<void(const QPoint&)> menu_;
};

// The order in which the sort shows lines with these texts, as indexes into them: ascending without regard to letter
// case. A shell sort with the bound of the last swap: which of equal texts comes first is part of the result.
std::vector<size_t> SortedOrder(const std::vector<std::string>& texts);

}  // namespace project
