#include "files/CurrentDirectory.h"

#include "files/Io.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace files {

namespace {

std::string Join(const std::vector<std::string_view>& parts) {
  std::string path;
  for (const std::string_view part : parts) path.append("/").append(part);
  return path.empty() ? "/" : path;
}

bool IsRealFolder(const std::string& path) {
  struct stat status;
  return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsInside(const std::string& path, const std::string& folder) {
  return path == folder || (path.starts_with(folder) && (folder.ends_with('/') || path[folder.size()] == '/'));
}

// `path` is absolute.
Path Tidy(const std::string& path) {
  std::vector<std::string_view> parts;
  for (size_t begin = 0; begin < path.size();) {
    const size_t end = std::min(path.find('/', begin), path.size());
    const std::string_view part = std::string_view(path).substr(begin, end - begin);
    begin = end + 1;
    if (part.empty() || part == ".") continue;
    if (part == ".." && parts.empty()) continue;
    if (part == ".." && parts.back() != ".." && IsRealFolder(Join(parts))) {
      parts.pop_back();
    } else {
      parts.push_back(part);
    }
  }
  std::string result = Join(parts);
  if (path.ends_with('/') && result.size() > 1) result += '/';
  return result;
}

}  // namespace

CurrentDirectory::CurrentDirectory(Path directory) : path_(std::move(directory)) {
  assert(path_.is_absolute());
}

CurrentDirectory CurrentDirectory::OfProcess() {
  struct stat here, there;
  const char* spelled = std::getenv("PWD");
  if (spelled && spelled[0] == '/' && stat(spelled, &there) == 0 && stat(".", &here) == 0 &&
      here.st_dev == there.st_dev && here.st_ino == there.st_ino)
    return CurrentDirectory(Tidy(spelled));
  std::error_code error;
  Path path = std::filesystem::current_path(error);
  return !error && path.is_absolute() ? CurrentDirectory(std::move(path)) : CurrentDirectory();
}

Status CurrentDirectory::Change(const Path& folder) {
  Path next = MakeAbsolute(folder);
  if (HasNul(next)) return SystemError(EINVAL, folder);
  struct stat status;
  if (stat(next.c_str(), &status) != 0) return SystemError(errno, folder);
  if (!S_ISDIR(status.st_mode)) return SystemError(ENOTDIR, folder);
  if (faccessat(AT_FDCWD, next.c_str(), X_OK, AT_EACCESS) != 0) return SystemError(errno, folder);
  if (!next.has_filename() && next.has_relative_path()) next = next.parent_path();
  remembered_[drive()] = path_;
  path_ = std::move(next);
  return {};
}

void CurrentDirectory::SetDrives(const std::vector<Path>& drives) {
  drives_ = {"/"};
  for (const Path& drive : drives)
    if (drive.is_absolute() && std::ranges::find(drives_, drive) == drives_.end()) drives_.push_back(drive);
}

const Path& CurrentDirectory::DriveOf(const Path& path) const {
  const Path* longest = &drives_.front();
  for (const Path& drive : drives_)
    if (drive.native().size() > longest->native().size() && IsInside(path.native(), drive.native())) longest = &drive;
  return *longest;
}

Status CurrentDirectory::ChangeDrive(const Path& drive) {
  if (this->drive() == drive) return {};
  const auto remembered = remembered_.find(drive);
  if (remembered != remembered_.end() && DriveOf(remembered->second) == drive && Change(remembered->second)) return {};
  return Change(drive);
}

std::string JoinPath(std::string folder, std::string_view name) {
  if (!folder.ends_with('/')) folder += '/';
  folder += name;
  return folder;
}

Path CurrentDirectory::MakeAbsolute(const Path& path) const {
  if (path.empty()) return path;
  const std::string& bytes = path.native();
  return Tidy(bytes.starts_with('/') ? bytes : path_.native() + "/" + bytes);
}

}  // namespace files
