#include "files/Result.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace files {

namespace {

bool FolderOfIsMissing(const Path& path) {
  Path name = path;
  if (!name.has_filename()) name = name.parent_path();  // "folder/"
  const Path folder = name.has_parent_path() ? name.parent_path() : Path(".");
  struct stat status;
  return stat(folder.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

}  // namespace

int ErrorNumber(int systemError) {
  switch (systemError) {
    case ENOENT:
      return 53;
    case ENOTDIR:
      return 76;
    case EROFS:
      return 75;
    case EISDIR:
    case EACCES:
    case EPERM:
      return 70;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return 61;
    case EIO:
      return 57;
    case EEXIST:
      return 58;
    case ENAMETOOLONG:
      return 52;
    default:
      return 5;
  }
}

Error SystemError(int systemError, Path path) {
  Error error{ErrorNumber(systemError), systemError, std::move(path), {}};
  if (systemError == ENOENT && FolderOfIsMissing(error.path)) error.number = 76;
  char buffer[256];
  error.text = strerror_r(systemError, buffer, sizeof buffer);
  return error;
}

}  // namespace files
