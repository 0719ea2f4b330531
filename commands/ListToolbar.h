// Brings Toolbar2, the project list's toolbar, and Picture1 to life.
#pragma once

#include "commands/Commands.h"
#include "ui/frame/LeftPane.h"

namespace commands {

class ListToolbar {
 public:
  ListToolbar(ui::LeftPane& pane, Commands& commands, services::Services& services, documents::DocumentTable& table);

  // The picture of "listAdd": 14 goes with 15 for "listRemove", any other with 13.
  int PlusImage() const { return plusImage_; }
  void SetPlusImage(int image);

 private:
  void Run(size_t row);
  void AddCurrent();
  void GrowFont();

  ui::LeftPane& pane_;
  Commands& commands_;
  services::Services& services_;
  documents::DocumentTable& table_;
  int plusImage_ = 14;
};

}  // namespace commands
