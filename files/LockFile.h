// Tells whether another copy of the program runs for this user.
#pragma once

#include "files/Io.h"

namespace files {

// The kernel holds the lock for the open descriptor, so it is gone with the process however that ends; the file itself
// stays and means nothing. It is never removed, since removing would let two copies lock two files of one name.
class LockFile {
 public:
  // True: ours now, until Release or destruction. False: another process, or another object here, holds it.
  // The folder is made (mode 0700) when needed.
  Result<bool> Acquire(const Path& path);
  bool held() const { return static_cast<bool>(descriptor_); }
  void Release() { descriptor_.Close(); }

 private:
  Descriptor descriptor_;
};

}  // namespace files
