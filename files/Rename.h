// Giving an entry of a folder another name.
#pragma once

#include "files/Result.h"

#include <string>

namespace files {

// Both are names in the folder. Nothing that is there is replaced (error 58); what is no single name is refused.
Status Rename(const Path& folder, const std::string& from, const std::string& to);
// A new folder. Error 58 when there is something of that name.
Status MakeOneFolder(const Path& path);

}  // namespace files
