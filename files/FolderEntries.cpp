#include "files/FolderEntries.h"

#include "files/Io.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>

namespace files {

namespace {

constexpr size_t kEntriesBetweenQuestions = 1000;

int AttributesOfMode(mode_t mode) {
  int attributes = mode & S_IWUSR ? 0 : kReadOnly;
  if (S_ISDIR(mode)) attributes |= kDirectory;
  if (S_ISCHR(mode) || S_ISBLK(mode) || S_ISFIFO(mode) || S_ISSOCK(mode)) attributes |= kSystem;
  return attributes;
}

// Nothing when the entry has vanished.
std::optional<int> AttributesOf(int folder, const dirent& entry) {
  struct stat status;
  if (fstatat(folder, entry.d_name, &status, 0) == 0) return AttributesOfMode(status.st_mode);
  if (fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
    return S_ISLNK(status.st_mode) ? 0 : AttributesOfMode(status.st_mode);
  if (errno == ENOENT) return std::nullopt;
  // A folder that may be listed but not entered.
  return AttributesOfMode(DTTOIF(entry.d_type) | S_IWUSR);
}

}  // namespace

Result<FolderEntries> ReadFolder(const Path& folder, const std::function<bool()>& goOn) {
  if (HasNul(folder)) return SystemError(EINVAL, folder);
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(folder.c_str()), closedir);
  if (!directory) return SystemError(errno, folder);
  const int descriptor = dirfd(directory.get());
  FolderEntries entries;
  for (size_t seen = 0;; ++seen) {
    if (seen % kEntriesBetweenQuestions == 0 && !goOn()) return SystemError(ECANCELED, folder);
    errno = 0;
    const dirent* entry = readdir(directory.get());
    if (!entry && errno != 0) return SystemError(errno, folder);
    if (!entry) return entries;
    if (entry->d_name[0] == '.') continue;  // hidden, or the folder itself and the one above it
    const auto attributes = AttributesOf(descriptor, *entry);
    if (!attributes || *attributes & kSystem) continue;
    entries.names.emplace_back(entry->d_name);
    entries.attributes.push_back(*attributes);
  }
}

}  // namespace files
