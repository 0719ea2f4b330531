// File attributes as the program counts them.
#pragma once

#include "files/Result.h"

#include <string>
#include <string_view>

namespace files {

enum Attribute : int {
  kReadOnly = 1,     // no write bit for the owner, judged by mode also for root
  kHidden = 2,       // the name begins with a dot
  kSystem = 4,       // a device, FIFO or socket
  kVolumeLabel = 8,  // never given
  kDirectory = 16,   // links followed; a dangling link is a file
};

// The sum of the attributes. Error 53 when the file does not exist, 76 when its folder does not.
Result<int> GetAttributes(const Path& path);
// Adds (off) u+w, or removes every write bit (on).
Status SetReadOnly(const Path& path, bool readOnly);

// The path with letter case taken away, for tables that look up candidates: SamePath(a, b) implies equal keys. Bytes
// that are not UTF-8 stay as they are.
std::string PathKey(const Path& path);
std::string NameKey(std::string_view name);  // the same for the bytes of a name

// The program's one comparison of paths: equal without regard to letter case. Two paths that differ by case alone and
// exist as different files (device and inode) are never the same. Nothing is normalised and links are not resolved, so
// two names of one file are two paths. Looks at the disk only when the keys are equal and the bytes are not.
bool SamePath(const Path& a, const Path& b);

}  // namespace files
