#include "panes/Panes.h"

#include "ui/PendingEvents.h"

namespace panes {

void Panes::StartUp() {
  services::Settings& settings = services_.settings();
  const auto absolute = [this](const std::string& setting) {
    return services_.MakeAbsolute(services::PathOfSetting(setting));
  };
  if (settings.QuoteFile.empty()) {
    services_.ToggleQuotesOptions(false);
  } else {
    quotes_.LoadQuotesFile(absolute(settings.QuoteFile));
  }
  ui::LetPendingEventsRun();
  const auto apply = [](ui::Form* pane, int& state) {
    if (pane && state >= 0) pane->SetWindowState(static_cast<ui::WindowState>(state));
    state = services::kNoState;
  };
  apply(quotes_.pane(), settings.QuotesState);
  ui::LetPendingEventsRun();
}

void Panes::Unload() {
  if (quotes_.pane()) quotes_.pane()->Unload();
}

}  // namespace panes
