#include "panes/TextBlocks.h"

#include "ui/PendingEvents.h"

#include <QCoreApplication>
#include <QScopeGuard>

namespace panes {

void TextBlocks::MyShow(const files::Path& path, ui::Keyboard keyboard) {
  const ui::CommandScope scope;
  const bool made = !pane_;
  if (made) pane_ = std::make_unique<frmTextBlocks>(services_, *this);
  // The loading was cancelled, or failed.
  const auto unseen = qScopeGuard([&] {
    if (made && pane_ && !pane_->isShown()) pane_.reset();
  });
  pane_->MyShow(path, keyboard);
}

void TextBlocks::mnuTextBlocksOpen_Click() {
  const ui::CommandScope scope;
  const files::Path chosen = services_.ShowOpenDialog(
      {.owner = services_.forms().at(0),
       .defaultExtension = ".txt",
       .filter = QStringLiteral("Text files (*.txt)|*.txt|All Files|*.*"),
       .flags = services::kFileMustExist + services::kHideReadOnly,
       .title = QCoreApplication::translate("TextBlocks", "Select a text blocks file"),
       .initialFile = pane_ ? pane_->path() : services::PathOfSetting(services_.settings().TextBlocks)});
  if (!chosen.empty()) MyShow(chosen);
}

void TextBlocks::Release() {
  closed_.Take(std::move(pane_));
}

}  // namespace panes
