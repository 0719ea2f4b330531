// Documents in the programs of the desktop.
#pragma once

#include "services/Services.h"

#include <string>

namespace documents {

// False when no program could be started for the path.
bool OpenExternally(services::Services& services, const std::string& path);
// Asks for a program and starts it with the path, again and again until the user has enough: whether a program could do
// anything with the document only they can see.
void AskForProgram(services::Services& services, const std::string& path);

}  // namespace documents
