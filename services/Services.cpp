#include "services/Services.h"

#include "ui/PendingEvents.h"

namespace services {

void SyncTree(Services& services) {
  if (!services.settings().TreeSync) return;
  services.TreeSyncWithCurDir();
  ui::LetPendingEventsRun();
}

}  // namespace services
