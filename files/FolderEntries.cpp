#include "files/FolderEntries.h"

#include "files/Io.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>

namespace files {

namespace {

constexpr size_t kEntriesBetweenQuestions = 1000;

int AttributesOfType(unsigned char type) {
  if (type == DT_DIR) return kDirectory;
  return type == DT_CHR || type == DT_BLK || type == DT_FIFO || type == DT_SOCK ? kSystem : 0;
}

// Nothing when the entry has vanished. What the folder itself says of most entries spares a look at each.
std::optional<int> AttributesOf(int folder, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) return AttributesOfType(entry.d_type);
  struct stat status;
  if (fstatat(folder, entry.d_name, &status, 0) == 0) return AttributesOfType(IFTODT(status.st_mode));
  if (fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0) return AttributesOfType(IFTODT(status.st_mode));
  if (errno == ENOENT) return std::nullopt;
  return 0;  // a link in a folder that may be listed but not entered
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
