#include "files/saving/Leftovers.h"

#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace files {
namespace {

constexpr int kMostNames = 10000;
constexpr time_t kOld = 24 * 3600;
constexpr size_t kPrefixLength = sizeof kTemporaryPrefix - 1, kRandomLength = 16;

bool IsTemporaryName(std::string_view name) {
  return name.size() == kPrefixLength + kRandomLength && name.starts_with(kTemporaryPrefix) &&
         name.find_first_not_of("0123456789abcdef", kPrefixLength) == std::string_view::npos;
}

bool IsOldAndOurs(int folder, const char* name) {
  struct stat status;
  return fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode) &&
         status.st_uid == geteuid() && status.st_nlink == 1 && time(nullptr) - status.st_mtime > kOld;
}

}  // namespace

void ClearLeftovers(int folder) {
  const int readable = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (readable < 0) return;
  DIR* listing = fdopendir(readable);
  if (!listing) {
    close(readable);
    return;
  }
  std::vector<std::string> found;
  for (int i = 0; i < kMostNames; ++i) {
    const dirent* item = readdir(listing);
    if (!item) break;
    if (IsTemporaryName(item->d_name) && IsOldAndOurs(folder, item->d_name)) found.emplace_back(item->d_name);
  }
  for (const std::string& name : found) unlinkat(folder, name.c_str(), 0);
  closedir(listing);
}

}  // namespace files
