#include "documents/Opening.h"

#include "documents/frmText.h"
#include "files/Attributes.h"
#include "ui/PendingEvents.h"

#include <QCoreApplication>

namespace documents {

void Opening::OpenDocument(std::string& path) {
  const ui::CommandScope scope;
  if (!ActivateOpen(path)) table_.LoadIntoWindow(path);
}

bool Opening::ActivateOpen(const std::string& path) {
  const ui::Forms& forms = services_.forms();
  for (size_t i = 0; i < forms.count(); ++i) {
    frmText* window = table_.Find(forms.at(i)->id());
    if (!window || !files::SamePath(window->caption(), path)) continue;
    window->Activate();
    if (window->windowState() == ui::WindowState::kMinimized) {
      window->SetWindowState(ui::WindowState::kNormal);
      window->Activate();
    }
    return true;
  }
  return false;
}

void Opening::mnuOpenFile_Click() {
  const ui::CommandScope scope;
  const services::PathFilter filter = services_.GetFilterForPath({});
  const files::Path chosen =
      services_.ShowOpenDialog({.owner = services_.forms().at(0),
                                .defaultExtension = filter.extension,
                                .filter = services_.documentFilter(),
                                .flags = services::kCreatePrompt | services::kHideReadOnly,
                                .title = QCoreApplication::translate("Documents", "Select a document to open"),
                                .filterIndex = filter.index});
  if (chosen.empty()) return;
  std::string path = chosen.native();
  OpenDocument(path);
  ui::LetPendingEventsRun();
}

}  // namespace documents
