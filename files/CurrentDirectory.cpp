#include "files/CurrentDirectory.h"

#include "files/Io.h"

#include <cassert>
#include <cerrno>
#include <cstdlib>
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
  if (!next.has_filename() && next.has_relative_path()) next = next.parent_path();
  path_ = std::move(next);
  return {};
}

Path CurrentDirectory::MakeAbsolute(const Path& path) const {
  if (path.empty()) return path;
  const std::string& bytes = path.native();
  return Tidy(bytes.starts_with('/') ? bytes : path_.native() + "/" + bytes);
}

}  // namespace files
