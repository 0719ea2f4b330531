// Saving that never leaves a half-written file.
#pragma once

#include "files/OpenFile.h"

#include <functional>
#include <memory>
#include <string_view>

namespace files {

// Writes a temporary file in the target's folder; every write, flush and fsync is checked. Commit keeps mode, owner, ACL
// and extended attributes of the file that is replaced, follows a symbolic link to its target, renames, and syncs the
// folder. Where renaming cannot keep what the file has (hard links, a foreign owner, an unwritable folder) Commit writes
// in place instead, after the new content and the old bytes are safe in `stateFolder`; when that fails the old bytes are
// put back, and if even that fails the error's text names the copies. Destroyed without Commit it leaves nothing behind.
class AtomicSave {
 public:
  // `stateFolder` holds the safety copies; it is made (mode 0700) when needed.
  AtomicSave(Path target, Path stateFolder);
  ~AtomicSave();
  AtomicSave(const AtomicSave&) = delete;
  AtomicSave& operator=(const AtomicSave&) = delete;

  Status Open();                        // refuses devices, FIFOs, sockets (70) and folders (75)
  bool Write(std::string_view bytes);   // false after the first failure; the error is kept for Commit
  Status Commit();                      // "saved" may be said only after this succeeds
  FileStamp stamp() const;              // of the saved file, after Commit

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// Opens, calls `write` with a sink that returns false after a failure, commits.
Result<FileStamp> SaveAtomically(const Path& target, const Path& stateFolder,
                                 const std::function<bool(const std::function<bool(std::string_view)>&)>& write);

}  // namespace files
