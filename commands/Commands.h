// The main window's commands.
#pragma once

#include "documents/DocumentTable.h"
#include "documents/Opening.h"
#include "services/Services.h"

namespace ui {
class ToolBar;
}

namespace commands {

class Commands {
 public:
  Commands(services::Services& services, documents::DocumentTable& table, documents::Opening& opening,
           ui::ToolBar& toolbar)
      : services_(services), table_(table), opening_(opening), Toolbar1_(toolbar) {}

  // --- File
  void mnuNew_Click();
  void mnuOpenFile_Click();
  void mnuSaveAll_Click();
  void mnuExit_Click();

  // --- Options
  void mnuToolbarButtonRaised_Click();
  void mnuToolbarButtonFlat_Click();
  // 1 = flat buttons, 0 = raised ones.
  int toolbarStyle() const { return toolbarStyle_; }
  bool ToolbarIsFlat() const { return toolbarStyle_ == 1; }
  bool ToolbarIsRaised() const { return toolbarStyle_ != 1; }

  // --- Window
  void mnuNextPane_Click();
  void mnuMinRest_Click();
  void mnuWindowCascade_Click();
  void mnuWindowTileHoriz_Click();
  void mnuWindowTileVertical_Click();
  void mnuWindowArrange_Click();
  void mnuWindowSendBack_Click();
  void mnuCloseAll_Click();

  // By a code of the setting SaveArrange: 0 cascade, 1 rows, 2 columns.
  void Arrange(int code);

 private:
  void SetToolbarStyle(int style);
  void RefreshAllDocuments();

  services::Services& services_;
  documents::DocumentTable& table_;
  documents::Opening& opening_;
  ui::ToolBar& Toolbar1_;
  int toolbarStyle_ = 1;
  ui::WindowState minRest_ = ui::WindowState::kNormal;
};

}  // namespace commands
