#include "files/operations/FolderChain.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace files {

namespace {

constexpr int kPathFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
constexpr size_t kPieceOfPath = 3000;  // well below what one call takes
constexpr size_t kKeptOpen = 40;

}  // namespace

Identity IdentityOf(const struct stat& status) {
  return {status.st_dev, status.st_ino};
}

Identity IdentityOf(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 ? IdentityOf(status) : Identity{};
}

Descriptor OpenFolder(const std::string& path, int& error) {
  if (path.empty() || path.find('\0') != std::string::npos) {
    error = path.empty() ? ENOENT : EINVAL;
    return {};
  }
  Descriptor folder(open(path[0] == '/' ? "/" : ".", kPathFlags));
  for (size_t at = path.find_first_not_of('/'); folder && at != std::string::npos;) {
    size_t end = path.size();
    if (end - at > kPieceOfPath) {
      end = path.rfind('/', at + kPieceOfPath);
      if (end <= at) end = std::min(path.find('/', at), path.size());
    }
    folder = Descriptor(openat(folder.get(), path.substr(at, end - at).c_str(), kPathFlags));
    at = path.find_first_not_of('/', end);
  }
  error = folder ? 0 : errno;
  return folder;
}

FolderEntry FindEntry(std::string path) {
  while (path.ends_with('/')) path.pop_back();
  FolderEntry entry;
  const size_t slash = path.rfind('/');
  entry.name = path.substr(slash == std::string::npos ? 0 : slash + 1);
  if (path.empty() || entry.name == "." || entry.name == "..") {
    entry.error = EBUSY;
    return entry;
  }
  entry.folder = OpenFolder(slash == std::string::npos ? "." : path.substr(0, slash + 1), entry.error);
  if (entry.name.find('\0') != std::string::npos) entry.error = EINVAL;
  return entry;
}

Descriptor OpenSubfolder(int folder, const std::string& name) {
  return Descriptor(openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool IsMountPoint(int folder, const Identity& above) {
  struct statx status {};
  if (statx(folder, "", AT_EMPTY_PATH, STATX_TYPE, &status) == 0 &&
      (status.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT))
    return status.stx_attributes & STATX_ATTR_MOUNT_ROOT;
  return IdentityOf(folder).device != above.device;
}

std::vector<Identity> WithAncestors(int folder) {
  std::vector<Identity> identities = {IdentityOf(folder)};
  Descriptor above(openat(folder, "..", kPathFlags));
  while (above && IdentityOf(above.get()) != identities.back()) {
    identities.push_back(IdentityOf(above.get()));
    above = Descriptor(openat(above.get(), "..", kPathFlags));
  }
  return identities;
}

void FolderChain::Push(Descriptor folder, const Identity& identity) {
  links_.push_back({std::move(folder), identity});
  if (links_.size() > kKeptOpen) links_[links_.size() - 1 - kKeptOpen].folder.Close();
}

int FolderChain::Pop() {
  if (links_.size() >= 2 && !links_[links_.size() - 2].folder) {
    Link& above = links_[links_.size() - 2];
    Descriptor found = OpenSubfolder(links_.back().folder.get(), "..");
    if (!found) return errno;
    if (IdentityOf(found.get()) != above.identity) return ESTALE;
    above.folder = std::move(found);
  }
  links_.pop_back();
  return 0;
}

int Listing::Read(int folder) {
  alignas(dirent64) char buffer[32768];
  ssize_t size;
  while ((size = getdents64(folder, buffer, sizeof buffer)) > 0) {
    for (ssize_t at = 0; at < size;) {
      const auto* const entry = reinterpret_cast<const dirent64*>(buffer + at);
      at += entry->d_reclen;
      if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
      bytes_ += static_cast<char>(entry->d_type);
      bytes_.append(entry->d_name, std::strlen(entry->d_name) + 1);
    }
  }
  // A folder that was removed meanwhile is empty.
  return size == 0 || errno == ENOENT ? 0 : errno;
}

std::optional<Listing::Entry> Listing::Next() {
  if (next_ >= bytes_.size()) return std::nullopt;
  const Entry entry{bytes_.data() + next_ + 1, static_cast<unsigned char>(bytes_[next_])};
  next_ += std::strlen(entry.name) + 2;
  return entry;
}

}  // namespace files
