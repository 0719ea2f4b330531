// The buttons of Toolbar1 as one table.
#pragma once

#include "commands/Commands.h"
#include "documents/frmText.h"
#include "ui/frame/ToolBar.h"

#include <optional>
#include <span>

namespace commands {

// What a button or an entry of its menu runs: a command of the main window or of the active document.
struct ToolbarCommand {
  void (Commands::*command)() = nullptr;
  void (*document)(documents::frmText&) = nullptr;
  bool (Commands::*usable)() const = nullptr;  // of a menu's entry: it is enabled; nothing = always
};

struct ToolbarRow {
  ui::ToolBarRow button;
  ToolbarCommand face = {};
  std::span<const ToolbarCommand> menu = {};  // as the button's menu
  bool needsDocument = false;                 // enabled by ToolbarToggle
  std::optional<bool> services::SelectionState::*state = nullptr;
  int alignment = -1;                          // pressed while the selection has it
  bool (Commands::*chosen)() const = nullptr;  // pressed while the main window says so
};

std::span<const ToolbarRow> ToolbarTable();

}  // namespace commands
