// File attributes as the program counts them.
#pragma once

#include "files/Result.h"

namespace files {

enum Attribute : int {
  kReadOnly = 1,    // no write bit for the owner, judged by mode also for root
  kHidden = 2,      // the name begins with a dot
  kSystem = 4,      // a device, FIFO or socket
  kVolumeLabel = 8, // never given
  kDirectory = 16,  // links followed; a dangling link is a file
};

// The sum of the attributes. Error 53 when the file does not exist.
Result<int> GetAttributes(const Path& path);
// Adds (off) u+w, or removes every write bit (on).
Status SetReadOnly(const Path& path, bool readOnly);

// True when both name the same file, or are equal without regard to letter case; two paths that differ by case alone and
// exist as different files (device and inode) are never the same.
bool SamePath(const Path& a, const Path& b);

}  // namespace files
