// Saving that never leaves a half-written file.
#pragma once

#include "files/OpenFile.h"

#include <functional>
#include <memory>
#include <string_view>

namespace files {

// Takes the next bytes; false after the first failure.
using ByteSink = std::function<bool(std::string_view)>;
// Produces all bytes into the sink. False: the sink failed, or the producer gave up (was cancelled).
using ByteProducer = std::function<bool(const ByteSink&)>;

// Writes a temporary file (mode 0600 until it is complete) in the target's folder; every write, flush and fsync is
// checked. Commit gives it mode, owner, ACL and extended attributes of the file that is replaced, follows symbolic
// links to the final target (a dangling one: that target is created), renames, and syncs the folder. A new file gets
// the mode that any new file gets there.
//
// Where renaming cannot keep what the file has (hard links, a foreign owner, an unwritable folder, a file that is a
// mount point) Commit writes in place instead, after the new content and the old bytes are safe in `stateFolder`, as an
// entry that ListRecovery shows if the program dies meanwhile. When writing fails the old bytes are put back, and if
// even that fails the error's text names the copies. It costs three times the writing and needs room for both in the
// state folder.
//
// Destroyed without Commit, or after a failed Commit, it leaves nothing behind but such named copies.
class AtomicSave {
 public:
  // `stateFolder` holds the safety copies; it is made (mode 0700) when needed.
  AtomicSave(Path target, Path stateFolder);
  ~AtomicSave();
  AtomicSave(const AtomicSave&) = delete;
  AtomicSave& operator=(const AtomicSave&) = delete;

  // Refuses devices, FIFOs, sockets (70, "Not a regular file"), folders (75), files without the owner's write bit or
  // that the process may not write (70; 75 on a read-only file system), a missing folder (76). Called once, first.
  Status Open();
  // Small writes are gathered, big ones passed through. False after the first failure; the error is kept for Commit.
  bool Write(std::string_view bytes);
  // "Saved" may be said only after this succeeds. A file that another program changed or made since Open is left alone
  // (75 or 58). Called once.
  Status Commit();
  FileStamp stamp() const;  // of the saved file, after Commit

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// Opens, calls `write`, commits. When `write` gives up without a failed sink nothing is saved and the error's
// systemError is ECANCELED.
Result<FileStamp> SaveAtomically(const Path& target, const Path& stateFolder, const ByteProducer& write);

}  // namespace files
