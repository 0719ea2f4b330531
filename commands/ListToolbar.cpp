#include "commands/ListToolbar.h"

#include "documents/frmText.h"
#include "services/Messages.h"
#include "ui/PendingEvents.h"
#include "ui/controls/PictureBox.h"

namespace commands {
namespace {

constexpr double kLargestFont = 13, kSmallestFont = 8;  // points

struct ListButton {
  ui::ToolBarRow button;
  void (Commands::*command)() = nullptr;  // nothing: adds the current document
};

// clang-format off
constexpr ListButton kButtons[] = {
  {{"listOpen", QT_TRANSLATE_NOOP("Toolbar", "Open"), QT_TRANSLATE_NOOP("Toolbar", "Open"), "open"}, &Commands::mnuOpenFromList_Click},
  {{"listNew", QT_TRANSLATE_NOOP("Toolbar", "New"), QT_TRANSLATE_NOOP("Toolbar", "New"), "new"}, &Commands::mnuNew_Click},
  {{"listClear", QT_TRANSLATE_NOOP("Toolbar", "Clear selections"), QT_TRANSLATE_NOOP("Toolbar", "Clear selections"), "unselect"}, &Commands::mnuProjListClearSelected_Click},
  {{"listSort", QT_TRANSLATE_NOOP("Toolbar", "Sort"), QT_TRANSLATE_NOOP("Toolbar", "Sort"), "sort"}, &Commands::mnuListSort_Click},
  {{"listAdd", QT_TRANSLATE_NOOP("Toolbar", "Add current"), QT_TRANSLATE_NOOP("Toolbar", "Add current"), "plus"}, nullptr},
  {{"listRemove", QT_TRANSLATE_NOOP("Toolbar", "Remove"), QT_TRANSLATE_NOOP("Toolbar", "Remove"), "minus"}, &Commands::mnuRemoveFile_Click},
};
// clang-format on

}  // namespace

ListToolbar::ListToolbar(ui::LeftPane& pane, Commands& commands, services::Services& services,
                         documents::DocumentTable& table)
    : pane_(pane), commands_(commands), services_(services), table_(table) {
  std::vector<ui::ToolBarRow> rows;
  for (const ListButton& row : kButtons) rows.push_back(row.button);
  pane_.Toolbar2().SetButtons(rows);
  QObject::connect(&pane_.Toolbar2(), &ui::ToolBar::Clicked, &pane_.Toolbar2(), [this](size_t row) { Run(row); });
  QObject::connect(&pane_.Picture1(), &ui::PictureBox::Pressed, &pane_.Picture1(), [this](bool left) {
    services_.forms().Guarded([&] { left ? GrowFont() : SetPlusImage(plusImage_ == 14 ? 12 : 14); });
  });
}

void ListToolbar::Run(size_t row) {
  const ui::CommandScope scope;
  services_.forms().Guarded([&] {
    if (!kButtons[row].command) return AddCurrent();
    (commands_.*kButtons[row].command)();
  });
}

void ListToolbar::AddCurrent() {
  if (documents::frmText* document = table_.Active()) return document->mnuAddFile_Click();
  services::ShowNoDocument(services_);
}

void ListToolbar::SetPlusImage(int image) {
  plusImage_ = image;
  const bool plus = image == 14;
  ui::ToolBar& bar = pane_.Toolbar2();
  bar.SetIcon(*bar.Find("listAdd"), plus ? "plus" : "list-add");
  bar.SetIcon(*bar.Find("listRemove"), plus ? "minus" : "list-remove");
}

// A point at a time until the size that is shown has changed; beyond the largest it begins anew.
void ListToolbar::GrowFont() {
  const double shown = pane_.List1().fontSize();
  pane_.SetListFontSize(shown < kLargestFont ? shown + 1 : kSmallestFont);
  pane_.List1().setFocus();
}

}  // namespace commands
