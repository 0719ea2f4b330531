#include "files/Rename.h"

#include "files/Io.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace files {

namespace {

bool IsSingleName(const std::string& name) {
  constexpr std::string_view kNone("/\0", 2);
  return !name.empty() && name != "." && name != ".." && name.find_first_of(kNone) == std::string::npos;
}

// Of one entry under two spellings, as on a volume where letter case does not count.
bool IsSameEntry(int folder, const std::string& a, const std::string& b) {
  struct stat first, second;
  return fstatat(folder, a.c_str(), &first, AT_SYMLINK_NOFOLLOW) == 0 &&
         fstatat(folder, b.c_str(), &second, AT_SYMLINK_NOFOLLOW) == 0 && first.st_dev == second.st_dev &&
         first.st_ino == second.st_ino && (S_ISDIR(first.st_mode) || first.st_nlink == 1);
}

int RenameIn(int folder, const std::string& from, const std::string& to) {
  const auto plain = [&] { return renameat(folder, from.c_str(), folder, to.c_str()) == 0 ? 0 : errno; };
  if (renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  const int error = errno;
  if (error == EEXIST && IsSameEntry(folder, from, to)) return plain();
  if (error != EINVAL && error != ENOSYS) return error;
  // A file system that does not know how; a folder into itself is not possible with names of one folder.
  struct stat status;
  if (fstatat(folder, to.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  return errno == ENOENT ? plain() : errno;
}

}  // namespace

Status Rename(const Path& folder, const std::string& from, const std::string& to) {
  if (HasNul(folder) || !IsSingleName(from) || !IsSingleName(to)) return SystemError(EINVAL, folder);
  const Descriptor opened(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!opened) return SystemError(errno, folder);
  const int error = RenameIn(opened.get(), from, to);
  return error == 0 ? Status() : Status(SystemError(error, folder));
}

Status MakeOneFolder(const Path& path) {
  if (HasNul(path)) return SystemError(EINVAL, path);
  return mkdir(path.c_str(), 0777) == 0 ? Status() : Status(SystemError(errno, path));
}

}  // namespace files
