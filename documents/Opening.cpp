#include "documents/Opening.h"

#include "documents/ViewExternally.h"
#include "documents/frmText.h"
#include "files/AnyCase.h"
#include "files/Attributes.h"
#include "services/Messages.h"
#include "ui/PendingEvents.h"

#include <algorithm>
#include <cstring>

namespace documents {
namespace {

// The first ".lnk" in any case; npos when there is none.
size_t FindLnk(const std::string& path) {
  const char* const found = strcasestr(path.c_str(), ".lnk");
  return found ? static_cast<size_t>(found - path.c_str()) : std::string::npos;
}

}  // namespace

void Opening::OpenDocument(std::string& path) {
  const ui::CommandScope scope;
  services_.FindPathInList(path);
  ui::LetPendingEventsRun();
  if (ActivateOpen(path)) return;
  if (files::EndsWithAnyCase(path, "lnk")) return OpenShortcut(path);
  table_.LoadIntoWindow(path);
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

void Opening::OpenShortcut(std::string& path) {
  if (OpenExternally(services_, path)) return;
  path.erase(std::min(FindLnk(path), path.size()));
  if (!OpenExternally(services_, path)) AskForProgram(services_, path);
}

void Opening::mnuOpenFile_Click() {
  const ui::CommandScope scope;
  const files::Path chosen = services::AskForDocument(services_, services_.GetFilterForPath({}));
  if (chosen.empty()) return;
  std::string path = chosen.native();
  OpenDocument(path);
  ui::LetPendingEventsRun();
  services::SyncTree(services_);
}

}  // namespace documents
