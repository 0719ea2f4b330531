#include "commands/TreeToolbar.h"

#include "ui/PendingEvents.h"

namespace commands {
namespace {

struct TreeButton {
  ui::ToolBarRow button;
  void (Commands::*command)();
};

// clang-format off
constexpr TreeButton kButtons[] = {
  {{"treeOpen", QT_TRANSLATE_NOOP("Toolbar", "Open"), QT_TRANSLATE_NOOP("Toolbar", "Open"), "open"}, &Commands::mnuTreeOpen_Click},
  {{"treeSyncDir", QT_TRANSLATE_NOOP("Toolbar", "Sync w/current directory"), QT_TRANSLATE_NOOP("Toolbar", "Sync w/current directory"), "tree-sync"}, &Commands::mnuTreeSync_Click},
  {{"treeCollapse", QT_TRANSLATE_NOOP("Toolbar", "Collapse all"), QT_TRANSLATE_NOOP("Toolbar", "Collapse all"), "tree-collapse"}, &Commands::mnuTreeCollapseAll_Click},
  {{"treeRefresh", QT_TRANSLATE_NOOP("Toolbar", "Refresh folder"), QT_TRANSLATE_NOOP("Toolbar", "Refresh folder"), "tree-refresh"}, &Commands::mnuTreeRefresh_Click},
  {{"treeClear", QT_TRANSLATE_NOOP("Toolbar", "Clear selections"), QT_TRANSLATE_NOOP("Toolbar", "Clear selections"), "unselect"}, &Commands::mnuTreeClearSelections_Click},
  {{"treeExplore", QT_TRANSLATE_NOOP("Toolbar", "Explore"), QT_TRANSLATE_NOOP("Toolbar", "Explore"), "tree-explore"}, &Commands::mnuTreeExplore_Click},
};
// clang-format on

}  // namespace

TreeToolbar::TreeToolbar(ui::ToolBar& toolbar, Commands& commands, services::Services& services)
    : commands_(commands), services_(services) {
  std::vector<ui::ToolBarRow> rows;
  for (const TreeButton& row : kButtons) rows.push_back(row.button);
  toolbar.SetButtons(rows);
  QObject::connect(&toolbar, &ui::ToolBar::Clicked, &toolbar, [this](size_t row) {
    const ui::CommandScope scope;
    services_.forms().Guarded([&] { (commands_.*kButtons[row].command)(); });
  });
}

}  // namespace commands
