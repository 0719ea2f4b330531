// The menus as one table, and the pop-up menu of a document.
#pragma once

#include "commands/Commands.h"
#include "documents/frmText.h"
#include "ui/frame/MenuBar.h"

#include <span>

namespace commands {

struct Row {
  ui::MenuRow menu;
  void (Commands::*command)() = nullptr;            // runs in the main window,
  void (*document)(documents::frmText&) = nullptr;  // or in the active document
  bool documents::FormatChecks::*check = nullptr;   // its check mark: the document's,
  bool (Commands::*chosen)() const = nullptr;       // or the main window's
  bool (*enabled)(documents::frmText&) = nullptr;   // nothing = always
  bool (Commands::*usable)() const = nullptr;       // the same, by the main window
  void (*pad)(ui::RichTextBox&) = nullptr;          // runs in a text that is no document
  bool (*padEnabled)(ui::RichTextBox&) = nullptr;   // nothing = always
  bool asksClipboard = false;                       // so it is enabled as of the opening of its menu
  QString (*caption)() = nullptr;                   // a caption of that moment, instead of the row's own
};

std::span<const Row> MenuTable();
std::span<const Row> DocumentPopupTable();
std::span<const Row> ListPopupTable();  // mnuRCProjList
std::span<const Row> TreePopupTable();  // mnuRCTree
std::span<const Row> PadPopupTable();
std::span<const Row> QuotesPopupTable();  // mnuRCQuotes

}  // namespace commands
