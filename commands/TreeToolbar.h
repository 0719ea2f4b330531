// Brings Toolbar3, the folder tree's toolbar, to life.
#pragma once

#include "commands/Commands.h"
#include "ui/frame/ToolBar.h"

namespace commands {

class TreeToolbar {
 public:
  TreeToolbar(ui::ToolBar& toolbar, Commands& commands, services::Services& services);

 private:
  Commands& commands_;
  services::Services& services_;
};

}  // namespace commands
