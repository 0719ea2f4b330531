// The set-up at the first run of an installation.
#pragma once

#include "files/CurrentDirectory.h"
#include "services/Settings.h"
#include "shell/ApplicationFolder.h"

namespace shell {

// True when this was the first run: the record in the application folder (beside the settings when that folder may not
// be written) is missing, or of another place. Fills the folder, writes the two project files and sets the paths of the
// four data files. What is there already stays, unless it names the place that the folder was moved from.
bool FirstRunSetup(const ApplicationFolder& application, const files::Path& stateFolder,
                   files::CurrentDirectory& directory, services::SettingsStore& store);

// What the user sees first.
files::Path WelcomeProject(const ApplicationFolder& application);

}  // namespace shell
