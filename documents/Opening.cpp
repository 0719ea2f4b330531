#include "documents/Opening.h"

#include "documents/frmNoExtApp.h"
#include "documents/frmText.h"
#include "files/AnyCase.h"
#include "files/Attributes.h"
#include "services/Messages.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/Shell.h"

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

bool Opening::OpenExternally(const std::string& path) {
  return services_.shell().Open(services_.MakeAbsolute(path).native()) > ui::Shell::kLastFailure;
}

void Opening::OpenShortcut(std::string& path) {
  if (OpenExternally(path)) return;
  path.erase(std::min(FindLnk(path), path.size()));
  if (!OpenExternally(path)) AskForProgram(path);
}

// Again and again until the user has enough: whether a program could do anything with the document only they can see.
void Opening::AskForProgram(const std::string& path) {
  frmNoExtApp form(services_);
  form.Text2().SetText(files::EndsWithAnyCase(path, "rtf") ? QStringLiteral("Wordpad.exe")
                                                           : QStringLiteral("Notepad.exe"));
  for (;;) {
    form.Tag = "A";
    services_.dialogs().ShowModal(form);
    if (form.Tag != "0") return;
    std::string program = form.Program();
    if (program.find('/') != std::string::npos) program = services_.MakeAbsolute(program).native();
    if (!program.empty())
      services_.shell().Run(program, {services_.MakeAbsolute(path).native()}, services_.MakeAbsolute("."));
  }
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
