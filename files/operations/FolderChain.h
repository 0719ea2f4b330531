// Open folders on the way through a tree; inside this room only. Errors are errno values.
#pragma once

#include "files/Io.h"

#include <optional>
#include <string>
#include <vector>

namespace files {

struct Identity {
  dev_t device = 0;
  ino_t inode = 0;
  bool operator==(const Identity&) const = default;
};
Identity IdentityOf(const struct stat& status);
Identity IdentityOf(int descriptor);

// Opens the folder at a path of any length, links followed (O_PATH).
Descriptor OpenFolder(const std::string& path, int& error);

// A name in an open folder, itself not followed.
struct FolderEntry {
  Descriptor folder;  // O_PATH
  std::string name;
  int error = 0;  // EBUSY for the root of the file system, which has no name
};
FolderEntry FindEntry(std::string path);

// Opens a folder in a folder for reading; anything else, a link above all, is ENOTDIR or ELOOP.
Descriptor OpenSubfolder(int folder, const std::string& name);
// True for the root of something mounted.
bool IsMountPoint(int folder, const Identity& above);
// The folder and all above it.
std::vector<Identity> WithAncestors(int folder);

// Folders from a first one downwards. Only the last few are kept open, the others are found again from below and must
// be the same.
class FolderChain {
 public:
  // `first` stays open and is the caller's.
  explicit FolderChain(int first) : first_(first), firstIdentity_(IdentityOf(first)) {}
  int folder() const { return links_.empty() ? first_ : links_.back().folder.get(); }
  const Identity& identity() const { return links_.empty() ? firstIdentity_ : links_.back().identity; }
  void Push(Descriptor folder, const Identity& identity);
  // ESTALE when the folder above is not where it was.
  int Pop();

 private:
  struct Link {
    Descriptor folder;
    Identity identity;
  };
  int first_;
  Identity firstIdentity_;
  std::vector<Link> links_;
};

// The names in a folder as they were when it was read, without "." and "..".
class Listing {
 public:
  struct Entry {
    const char* name;
    unsigned char type;  // DT_DIR, ..., or DT_UNKNOWN
  };
  int Read(int folder);
  std::optional<Entry> Next();  // valid until the listing goes

 private:
  std::string bytes_;  // for each: its type, its name, NUL
  size_t next_ = 0;
};

}  // namespace files
