// Links in texts and in the manual.
#pragma once

#include "services/Services.h"

namespace services {

// Shows where the link leads, in full, since what a link shows may be anything, and opens it if the user says so: http,
// https and mailto only.
void FollowLink(Services& services, ui::Form* owner, const QString& target);

}  // namespace services
