#include "commands/Toolbar.h"

#include "services/Messages.h"
#include "ui/PendingEvents.h"
#include "ui/frame/LeftPane.h"
#include "ui/frame/StatusBar.h"

namespace commands {
namespace {

ui::ButtonState StateOf(std::optional<bool> value) {
  if (!value) return ui::ButtonState::kMixed;
  return *value ? ui::ButtonState::kPressed : ui::ButtonState::kReleased;
}

}  // namespace

Toolbar::Toolbar(ui::FrameForm& frame, Commands& commands, services::Services& services,
                 documents::DocumentTable& table)
    : commands_(commands), services_(services), table_(table), Toolbar1_(frame.toolbar()) {
  std::vector<ui::ToolBarRow> buttons;
  for (const ToolbarRow& row : ToolbarTable()) buttons.push_back(row.button);
  Toolbar1_.SetButtons(buttons);
  Toolbar1_.SetStyle(commands_.toolbarStyle());
  for (size_t i = 0; i < buttons.size(); ++i)
    if (ToolbarTable()[i].needsDocument) Toolbar1_.SetEnabled(i, false);
  const size_t save = *Toolbar1_.Find("Save");
  Toolbar1_.SetMenuEnabled(save, *Toolbar1_.FindMenu(save, "Document"), false);
  ShowUsable();
  Connect(frame);
  FollowActiveDocument();
}

void Toolbar::Connect(ui::FrameForm& frame) {
  QObject::connect(&Toolbar1_, &ui::ToolBar::Clicked, &Toolbar1_,
                   [this](size_t row) { Run(ToolbarTable()[row].face); });
  QObject::connect(&Toolbar1_, &ui::ToolBar::MenuClicked, &Toolbar1_,
                   [this](size_t row, size_t item) { Run(ToolbarTable()[row].menu[item]); });
  QObject::connect(&Toolbar1_, &ui::ToolBar::RightPressed, &Toolbar1_, [this, &frame] { RightPressed(frame); });
  QObject::connect(&Toolbar1_, &ui::ToolBar::Hovered, &Toolbar1_, [&frame](const QString& description) {
    if (description.isEmpty()) {
      frame.statusBar().ShowDate();
    } else {
      frame.statusBar().ShowDescription(description);
    }
  });
}

void Toolbar::Run(const ToolbarCommand& command) {
  const ui::CommandScope scope;
  services_.forms().Guarded([&] {
    if (command.command) return (commands_.*command.command)();
    if (!command.document) return;
    if (documents::frmText* document = table_.Active()) return command.document(*document);
    services::ShowNoDocument(services_);
  });
}

void Toolbar::RightPressed(ui::FrameForm& frame) {
  services_.forms().Guarded([&] {
    if (Toolbar1_.style() == 1) {
      commands_.mnuToolbarButtonRaised_Click();
    } else {
      commands_.mnuToolbarButtonFlat_Click();
    }
    frame.leftPane().Toolbar2().SetStyle(Toolbar1_.style());
    frame.leftPane().Toolbar3().SetStyle(Toolbar1_.style());
  });
}

void Toolbar::ToolbarToggle(bool enabled) {
  const ui::CommandScope scope;
  const int64_t mine = ++toggles_;
  for (size_t i = 0; i < ToolbarTable().size(); ++i) {
    if (ToolbarTable()[i].needsDocument) Toolbar1_.SetEnabled(i, enabled);
    if (i == Toolbar1_.Find("Save")) Toolbar1_.SetMenuEnabled(i, *Toolbar1_.FindMenu(i, "Document"), enabled);
    ui::LetPendingEventsRun();
    // What ran meanwhile knew better.
    if (toggles_ != mine) return;
  }
}

void Toolbar::ShowSelectionState(const services::SelectionState& state) {
  const std::span<const ToolbarRow> rows = ToolbarTable();
  const bool oneAlignment = state.alignment && *state.alignment >= 0 && *state.alignment <= 2;
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].state) Toolbar1_.SetState(i, StateOf(state.*rows[i].state));
    if (rows[i].alignment >= 0 && oneAlignment) Toolbar1_.SetState(i, StateOf(rows[i].alignment == *state.alignment));
  }
}

void Toolbar::ShowChosen() {
  const std::span<const ToolbarRow> rows = ToolbarTable();
  for (size_t i = 0; i < rows.size(); ++i)
    if (rows[i].chosen) Toolbar1_.SetState(i, StateOf((commands_.*rows[i].chosen)()));
}

void Toolbar::ShowUsable() {
  const std::span<const ToolbarRow> rows = ToolbarTable();
  for (size_t i = 0; i < rows.size(); ++i)
    for (size_t k = 0; k < rows[i].menu.size(); ++k)
      if (const auto usable = rows[i].menu[k].usable) Toolbar1_.SetMenuEnabled(i, k, (commands_.*usable)());
}

void Toolbar::FollowActiveDocument() {
  if (documents::frmText* document = table_.Active()) {
    document->ShowState();
  } else {
    ShowSelectionState({false, false, false, false, false, false, 0});
  }
}

}  // namespace commands
