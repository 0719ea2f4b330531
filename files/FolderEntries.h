// What is in a folder.
#pragma once

#include "files/Attributes.h"

#include <functional>
#include <string>
#include <vector>

namespace files {

struct FolderEntries {
  std::vector<std::string> names;  // bytes, in the order in which the system gives them
  std::vector<int> attributes;     // of each: whether it is a folder
};

// All but ".", "..", hidden and system entries, links counting as what they lead to. What vanishes meanwhile is left
// out. `goOn` is asked every thousand entries or so; when it
// says no, the error is ECANCELED's.
Result<FolderEntries> ReadFolder(const Path& folder, const std::function<bool()>& goOn);

}  // namespace files
