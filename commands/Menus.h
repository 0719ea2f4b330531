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
  void ShowListPopup(const QPoint& globalPosition);
  void ShowTreePopup(const QPoint& globalPosition);
  void ShowPadPopup(ui::RichTextBox& pad, const QPoint& globalPosition);
  void ShowQuotesPopup(const QPoint& globalPosition);
  void ShowRecentFiles(const std::vector<std::string>& paths);

  ui::MenuBar& bar() { return bar_; }
  void Run(size_t row);

 private:
  size_t RowOf(std::string_view name) const;
  void AskClipboard();
  void ShowCaptions();
  void FillWindowList();
  void ActivateListed(size_t index);
  void RunRow(const Row& row);
  void ShowPopup(std::span<const Row> rows, const QPoint& globalPosition);

  Commands& commands_;
  services::Services& services_;
  documents::DocumentTable& table_;
  std::vector<ui::FormId> listed_;
  ui::MenuBar bar_;
  const size_t edit_, windowList_, recentFiles_;
};

}  // namespace commands
