// Where the program's own files are.
#pragma once

#include "files/Folders.h"

namespace shell {

struct ApplicationFolder {
  files::Path path;           // the application folder, the user's own copy
  files::Path installedData;  // what it is filled from: itself when portable; empty when nothing is installed
  files::Path settings;       // the settings file
};

// The data lie in the folder "application" beside the program, or where they were installed. With a file "portable" in
// them, and the right to write there, they are the application folder themselves and hold the settings too.
ApplicationFolder FindApplicationFolder(const files::UserFolders& folders, const files::Path& program);

// The running program's file, links resolved; empty when the system does not tell.
files::Path ProgramPath();

// Copies what is not there yet; nothing that is there is touched. False when something could not be copied.
bool FillApplicationFolder(const ApplicationFolder& application, const files::Path& stateFolder);

}  // namespace shell
