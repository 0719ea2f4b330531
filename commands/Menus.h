// Brings the menu bar to life: runs the rows, fills checks, enabling and the list of the open documents.
#pragma once

#include "commands/MenuTable.h"
#include "ui/frame/MenuBar.h"

#include <memory>

class QPoint;

namespace commands {

class Menus {
 public:
  Menus(ui::FrameForm& frame, Commands& commands, services::Services& services, documents::DocumentTable& table);

  // After another document, or none, has become the active one.
  void FollowActiveDocument();
  // Checks and enabling as of now. The bar does this itself before a menu opens.
  void Fill();
  void ShowDocumentPopup(documents::frmText& document, const QPoint& globalPosition);

  ui::MenuBar& bar() { return bar_; }
  void Run(size_t row);

 private:
  void FillWindowList();
  void ActivateListed(size_t index);
  void RunRow(const Row& row);

  Commands& commands_;
  services::Services& services_;
  documents::DocumentTable& table_;
  std::vector<ui::FormId> listed_;
  size_t listRow_ = 0;
  ui::MenuBar bar_;
};

}  // namespace commands
