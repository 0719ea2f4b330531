// Where the program's files lie.
#pragma once

#include "files/CurrentDirectory.h"
#include "files/Folders.h"
#include "shell/ApplicationFolder.h"

namespace shell {

// What the program finds where it is started.
struct Place {
  ApplicationFolder application;
  files::Path recovery;  // the folder of texts that were not saved
  files::Path lock;      // held while a copy of the program has a window
  files::CurrentDirectory directory;
  bool onlyLooking = false;     // for a picture: nothing is written
  bool offersRecovered = true;  // at the start, before anything is opened
};

// One line for each place of these folders.
Place FindPlace(const files::UserFolders& folders, files::CurrentDirectory directory);

}  // namespace shell
