// Deleting one item with everything in it; inside this room only.
#pragma once

#include "files/operations/FolderChain.h"
#include "files/operations/OperationJob.h"

namespace files {

// `path` is how it is called when something is asked or told. A folder in which something stays is kept. Nothing that
// is mounted below is entered.
void DeleteItem(OperationJob& job, const std::string& path);

// Removes a name if it is still the folder with that identity. ENOENT counts as removed.
int RemoveFolder(int above, const std::string& name, const Identity& identity);

}  // namespace files
