#include "panes/Panes.h"

#include "ui/PendingEvents.h"

namespace panes {

void Panes::StartUp() {
  services::Settings& settings = services_.settings();
  const auto absolute = [this](const std::string& setting) {
    return services_.MakeAbsolute(services::PathOfSetting(setting));
  };
  if (!settings.TextBlocks.empty()) textBlocks_.MyShow(absolute(settings.TextBlocks), ui::Keyboard::kLeave);
  ui::LetPendingEventsRun();
  if (settings.QuoteFile.empty()) {
    services_.ToggleQuotesOptions(false);
  } else {
    quotes_.LoadQuotesFile(absolute(settings.QuoteFile), ui::Keyboard::kLeave);
  }
  ui::LetPendingEventsRun();
  if (settings.NotesFile.empty()) {
    services_.ToggleNotesSave(false);
  } else {
    notes_.MyShow(absolute(settings.NotesFile), ui::Keyboard::kLeave);
  }
  ui::LetPendingEventsRun();
  const auto apply = [](ui::Form* pane, int& state) {
    if (pane && state >= 0) pane->SetWindowState(static_cast<ui::WindowState>(state));
    state = services::kNoState;
  };
  // The one that was loaded last first.
  apply(notes_.pad(), settings.MyPadState);
  apply(quotes_.pane(), settings.QuotesState);
  apply(textBlocks_.pane(), settings.TextBlocksState);
  ui::LetPendingEventsRun();
}

bool Panes::QueryUnload() {
  return !notes_.pad() || notes_.pad()->QueryUnload();
}

void Panes::ActivateLast() {
  for (ui::Form* pane : std::initializer_list<ui::Form*>{notes_.pad(), quotes_.pane(), textBlocks_.pane()})
    if (pane && pane->windowState() != ui::WindowState::kMinimized) return pane->Activate();
}

void Panes::RecordStates() {
  if (notes_.pad()) notes_.pad()->RecordState();
  if (quotes_.pane()) quotes_.pane()->RecordState();
  if (textBlocks_.pane()) textBlocks_.pane()->RecordState();
}

bool Panes::Unload() {
  if (notes_.pad() && !notes_.pad()->Unload()) return false;
  if (quotes_.pane()) quotes_.pane()->Unload();
  if (textBlocks_.pane()) textBlocks_.pane()->Unload();
  return true;
}

}  // namespace panes
