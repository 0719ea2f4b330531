// What is in a folder.
#pragma once

#include "files/Attributes.h"

#include <functional>
#include <string>
#include <vector>

namespace files {

struct FolderEntries {
  std::vector<std::string> names;  // bytes, in the order in which the system gives them
  std::vector<int> attributes;     // of each
};

// All but ".", "..", hidden and system entries, at one look at each. What may not be looked at is taken for what the
// folder itself says of it; what vanishes meanwhile is left out. `goOn` is asked every thousand entries or so; when it
// says no, the error is ECANCELED's.
Result<FolderEntries> ReadFolder(const Path& folder, const std::function<bool()>& goOn);

}  // namespace files
