// The main window's commands.
#pragma once

#include "documents/DocumentTable.h"
#include "documents/Opening.h"
#include "services/Services.h"

namespace commands {

class Commands {
 public:
  Commands(services::Services& services, documents::DocumentTable& table, documents::Opening& opening)
      : services_(services), table_(table), opening_(opening) {}

  // --- File
  void mnuNew_Click();
  void mnuOpenFile_Click();
  void mnuSaveAll_Click();
  void mnuExit_Click();

  // --- Window
  void mnuNextPane_Click();
  void mnuMinRest_Click();
  void mnuWindowCascade_Click();
  void mnuWindowTileHoriz_Click();
  void mnuWindowTileVertical_Click();
  void mnuWindowArrange_Click();
  void mnuWindowSendBack_Click();
  void mnuCloseAll_Click();

  // The last arrangement: 0 cascade, 1 rows, 2 columns; -1 none yet.
  int arrangement() const { return arrangement_; }

 private:
  services::Services& services_;
  documents::DocumentTable& table_;
  documents::Opening& opening_;
  int arrangement_ = -1;
  ui::WindowState minRest_ = ui::WindowState::kNormal;
};

}  // namespace commands
