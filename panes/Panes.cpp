#include "panes/Panes.h"

#include "ui/PendingEvents.h"

#include <functional>

namespace panes {

void Panes::StartUp() {
  services::Settings& settings = services_.settings();
  const auto absolute = [this](const std::string& setting) {
    return services_.MakeAbsolute(services::PathOfSetting(setting));
  };
  // What fails in one of them keeps neither the others nor what comes behind from being opened.
  const auto open = [this](const std::function<void()>& pane) {
    services_.forms().Guarded(pane);
    ui::LetPendingEventsRun();
  };
  open([&] {
    if (!settings.TextBlocks.empty()) textBlocks_.MyShow(absolute(settings.TextBlocks), ui::Keyboard::kLeave);
  });
  open([&] {
    services_.ToggleQuotesOptions(false);
    if (!settings.QuoteFile.empty()) quotes_.LoadQuotesFile(absolute(settings.QuoteFile), ui::Keyboard::kLeave);
  });
  open([&] {
    services_.ToggleNotesSave(false);
    if (!settings.NotesFile.empty()) notes_.MyShow(absolute(settings.NotesFile), ui::Keyboard::kLeave);
  });
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
