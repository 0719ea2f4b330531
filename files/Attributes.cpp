#include "files/Attributes.h"

#include "files/Io.h"

#include <cerrno>

namespace files {

namespace {

bool IsHiddenName(const Path& path) {
  const Path name = path.has_filename() ? path.filename() : path.parent_path().filename();
  const std::string& bytes = name.native();
  return bytes.starts_with('.') && bytes != "." && bytes != "..";
}

}  // namespace

Result<int> GetAttributes(const Path& path) {
  if (HasNul(path)) return SystemError(EINVAL, path);
  struct stat status;
  if (stat(path.c_str(), &status) != 0) {
    const int error = errno;
    if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return SystemError(error, path);
    if (error != ENOENT && error != ENOTDIR && error != ELOOP) return SystemError(error, path);
  }
  int attributes = IsHiddenName(path) ? kHidden : 0;
  if (!(status.st_mode & S_IWUSR)) attributes |= kReadOnly;
  if (S_ISDIR(status.st_mode)) attributes |= kDirectory;
  if (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode) || S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode))
    attributes |= kSystem;
  return attributes;
}

Status SetReadOnly(const Path& path, bool readOnly) {
  if (HasNul(path)) return SystemError(EINVAL, path);
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return SystemError(errno, path);
  const mode_t before = status.st_mode & 07777;
  const mode_t after = readOnly ? before & ~mode_t{0222} : before | S_IWUSR;
  if (after != before && chmod(path.c_str(), after) != 0) return SystemError(errno, path);
  return {};
}

}  // namespace files
