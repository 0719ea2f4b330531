// The per-user folders, and making folders.
#pragma once

#include "files/Result.h"

#include <functional>

namespace files {

// The program's own folders, by the XDG base directory rules. None of them need exist.
struct UserFolders {
  Path config;   // settings
  Path data;     // the application folder
  Path state;    // what should survive a restart but nobody would copy to another machine
  Path runtime;  // the lock; gone after logging out, or inside `state` where the session has no such folder
  Path recovery() const { return state / "recovery"; }
};

// The value of an environment variable, or nothing.
using Environment = std::function<std::optional<std::string>(const char* name)>;
std::optional<std::string> ProcessEnvironment(const char* name);

// Variables that are empty or not absolute count as not set. Without HOME the account's home folder is taken. Error 76
// when there is no home folder at all.
Result<UserFolders> FindUserFolders(const Environment& environment = ProcessEnvironment);

// Makes the folder and all missing ones above it, each with mode 0700, and makes their names durable. A folder that is
// there is left as it is; anything else in the way is 76.
Status MakeFolder(const Path& path);

}  // namespace files
