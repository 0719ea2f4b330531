// The program's current directory: a value of the program, since a process that changes its own pins the volume.
#pragma once

#include "files/Result.h"

namespace files {

class CurrentDirectory {
 public:
  CurrentDirectory() = default;
  // `directory` is absolute.
  explicit CurrentDirectory(Path directory);
  // Where the program was started, as the shell spells it (links not resolved) when that is true; else "/".
  static CurrentDirectory OfProcess();

  const Path& path() const { return path_; }
  // Changes to a folder that exists, kept as it was entered. Relative ones start from here.
  Status Change(const Path& folder);
  // Joined to this directory when relative, without "." and doubled separators. ".." takes the folder before it away
  // unless that is a link (it would lead elsewhere) or missing. A separator at the end stays: it marks a folder. The
  // empty path stays empty.
  Path MakeAbsolute(const Path& path) const;

 private:
  Path path_ = "/";
};

}  // namespace files
