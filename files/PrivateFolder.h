// Folders for files that other programs work on for a while: mode 0700, each owned by one running process.
#pragma once

#include "files/OpenFile.h"

#include <memory>
#include <string_view>
#include <vector>

namespace files {

class Descriptor;

class PrivateFolder {
 public:
  // A new one in `parent`, which is made (mode 0700) when needed.
  static Result<PrivateFolder> Make(const Path& parent);
  // Those in `parent` whose process has gone, from now on this one's.
  static std::vector<PrivateFolder> Abandoned(const Path& parent);

  const Path& path() const { return path_; }
  // A new file in it, mode 0600 or 0400. After a failure nothing is left of it.
  Result<FileStamp> Write(const Path& name, std::string_view bytes, bool readOnly = false) const;
  // Instead of a file of that name, if there is one, which keeps its name until the new one is written.
  Result<FileStamp> Replace(const Path& name, std::string_view bytes, bool readOnly = false) const;
  // Over the bytes of a file that is there; programs that have it open see them. After a failure any of them may stand.
  Result<FileStamp> Overwrite(const Path& name, std::string_view bytes) const;
  // A file that is there; its stamp stays.
  void SetReadOnly(const Path& name, bool readOnly) const;
  // Removes these files and the folder, but nothing at all when it holds anything else: that is given back. There is no
  // way to remove what nobody knows of.
  std::vector<Path> RemoveWith(const std::vector<Path>& names) const;
  void Forget(const Path& name) const;  // a file in it, if it is there

 private:
  PrivateFolder(Path path, std::shared_ptr<const Descriptor> claim);
  Path path_;
  std::shared_ptr<const Descriptor> claim_;  // holds a lock
};

}  // namespace files
