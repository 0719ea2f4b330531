// The program's current directory: a value of the program, since a process that changes its own pins the volume.
#pragma once

#include "files/Result.h"

#include <map>
#include <vector>

namespace files {

class CurrentDirectory {
 public:
  CurrentDirectory() = default;
  // `directory` is absolute.
  explicit CurrentDirectory(Path directory);
  // Where the program was started, as the shell spells it (links not resolved) when that is true; else "/".
  static CurrentDirectory OfProcess();

  const Path& path() const { return path_; }
  // Changes to a folder, kept as it was entered. Relative ones start from here. The folder must be one that may be
  // entered. Its drive is the current one then; the one that is left remembers where it was.
  Status Change(const Path& folder);
  // Joined to this directory when relative, without "." and doubled separators. ".." takes the folder before it away
  // unless that is a link (it would lead elsewhere) or missing. A separator at the end stays: it marks a folder. The
  // empty path stays empty.
  Path MakeAbsolute(const Path& path) const;

  // --- Drives: the volumes that are listed, by the folders they are mounted at; "/" is always one of them.
  const std::vector<Path>& drives() const { return drives_; }
  void SetDrives(const std::vector<Path>& drives);
  // The longest one that contains the absolute path.
  const Path& DriveOf(const Path& path) const;
  const Path& drive() const { return DriveOf(path_); }
  // Changes to the folder that was the current one when that drive was left, its root at first or when that folder has
  // gone.
  // Nothing changes when the drive is the current one already.
  Status ChangeDrive(const Path& drive);

 private:
  Path path_ = "/";
  std::vector<Path> drives_ = {"/"};
  std::map<Path, Path> remembered_;  // by drive
};

// An entry of the folder, which may be "/".
std::string JoinPath(std::string folder, std::string_view name);

}  // namespace files
