#include "search/Find.h"

#include "services/Messages.h"
#include "ui/PendingEvents.h"

namespace search {

// Messages stand above the dialog while it is open.
Find::Find(services::Services& services)
    : services_(services), engine_(services, [this]() -> ui::Form* {
        if (dialog_ && dialog_->isShown()) return dialog_.get();
        return services_.forms().at(0);
      }) {}

void Find::Open(std::string tag) {
  const ui::CommandScope scope;
  if (services_.ActiveSlot() == 0) return services::ShowNoDocument(services_);
  if (!dialog_) dialog_ = std::make_unique<frmFind>(services_, engine_);
  dialog_->Open(std::move(tag));
}

void Find::mnuFindNext_Click() {
  if (engine_.SearchText.isEmpty()) return mnuFind_Click();
  if (services_.ActiveSlot() == 0) return services::ShowNoDocument(services_);
  if (engine_.FindNext() >= 0 && dialog_) dialog_->UncoverSelection();
}

}  // namespace search
