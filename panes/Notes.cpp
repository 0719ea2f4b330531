#include "panes/Notes.h"

#include "ui/PendingEvents.h"

#include <QCoreApplication>
#include <QScopeGuard>

namespace panes {

void Notes::MyShow(const files::Path& path, ui::Keyboard keyboard) {
  const ui::CommandScope scope;
  const bool made = !pad_;
  if (made) pad_ = std::make_unique<frmMyPad>(services_, *this);
  // The loading was cancelled, or failed.
  const auto unseen = qScopeGuard([&] {
    if (made && pad_ && !pad_->isShown()) pad_.reset();
  });
  pad_->MyShow(path, keyboard);
}

void Notes::mnuNotesOpen_Click() {
  const ui::CommandScope scope;
  const files::Path chosen = services_.ShowOpenDialog(
      {.owner = services_.forms().at(0),
       .defaultExtension = ".txt",
       .filter = QStringLiteral("Text files (*.txt)|*.txt|All Files|*.*"),
       .flags = services::kCreatePrompt + services::kHideReadOnly,
       .title = QCoreApplication::translate("Notes", "Select a personal notes file"),
       .initialFile = pad_ ? pad_->path() : services::PathOfSetting(services_.settings().NotesFile)});
  if (!chosen.empty()) MyShow(chosen);
}

void Notes::mnuNotesSave_Click() {
  if (pad_) pad_->SaveText1();
}

void Notes::Release() {
  closed_.Take(std::move(pad_));
  services_.ToggleNotesSave(false);
}

}  // namespace panes
