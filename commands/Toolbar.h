// Brings Toolbar1 to life: runs its buttons, enables them, shows the state of the selection.
#pragma once

#include "commands/ToolbarTable.h"
#include "ui/frame/FrameForm.h"

namespace commands {

class Toolbar {
 public:
  Toolbar(ui::FrameForm& frame, Commands& commands, services::Services& services, documents::DocumentTable& table);

  // Enables or disables what needs a document.
  void ToolbarToggle(bool enabled);
  // Of the active document. A mixed alignment leaves the buttons as they were.
  void ShowSelectionState(const services::SelectionState& state);
  // Of the buttons that show a state of the main window.
  void ShowChosen();
  // Of the entries of the buttons' menus.
  void ShowUsable();
  // After another document, or none, has become the active one.
  void FollowActiveDocument();

 private:
  void Connect(ui::FrameForm& frame);
  void Run(const ToolbarCommand& command);
  void RightPressed(ui::FrameForm& frame);

  Commands& commands_;
  services::Services& services_;
  documents::DocumentTable& table_;
  ui::ToolBar& Toolbar1_;
  int64_t toggles_ = 0;
};

}  // namespace commands
