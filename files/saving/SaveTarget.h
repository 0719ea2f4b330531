// What a save is about to replace; inside this room only.
#pragma once

#include "files/Io.h"

namespace files {

// A name in an open folder, symbolic links of the name followed to the end, and the file that had it when we looked.
struct SaveTarget {
  Descriptor folder;  // O_PATH
  std::string name;   // one component
  bool exists = false;
  Descriptor file;  // for reading, when it exists
  struct stat status {};
};

// Refuses what must not be replaced or may not be written; the errors are those of AtomicSave::Open.
Result<SaveTarget> FindSaveTarget(const Path& path);

// What another program did to the name since then: 0 nothing, EEXIST a file was made, ESTALE the file was changed.
// A file that was only removed counts as nothing.
int ChangeSince(const SaveTarget& target);
// The error for that: 58, or 75 with a text of our own.
Error ChangedError(int change, const Path& path);

// Gives the file `to` owner, mode, ACL and extended attributes of the target's file. An errno when something cannot be
// kept; `to` is then not fit to replace it.
int CopyOwner(const SaveTarget& target, int to);
int CopyAttributes(const SaveTarget& target, int to);

}  // namespace files
