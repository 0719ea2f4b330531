// Whether other programs have to do with a folder, as far as the system tells an ordinary user.
#pragma once

#include "files/Result.h"

#include <string>
#include <string_view>

namespace files {

enum class FolderUse {
  kNone,
  kPerhaps,  // a program that was started with it, or is called like `program`, still runs
  kOpen,     // a file in it is open
  kWritten,  // and may be written
};

// By other processes of this user. The folder's name must be one that is found nowhere else. A program that has read a
// file and closed it is known only by its arguments and its name. Costs some milliseconds.
FolderUse UseOfFolder(const Path& folder, std::string_view program = {});

// What runs has been started since the system was; another text after its next start. Empty when it is not told.
std::string BootId();

}  // namespace files
