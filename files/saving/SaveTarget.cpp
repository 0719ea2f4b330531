#include "files/saving/SaveTarget.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace files {

namespace {

constexpr int kMostLinks = 40;  // as the kernel

Error Refused(int number, int systemError, const Path& path) {
  Error error = SystemError(systemError, path);
  error.number = number;
  return error;
}

// The path with symbolic links of its last component followed, also to a file that does not exist yet.
Result<Path> FollowLinks(const Path& path) {
  Path target = path;
  for (int links = 0; links <= kMostLinks; ++links) {
    struct stat status;
    if (lstat(target.c_str(), &status) != 0) {
      if (errno != ENOENT) return SystemError(errno, path);
    } else if (S_ISLNK(status.st_mode)) {
      std::error_code error;
      const Path next = std::filesystem::read_symlink(target, error);
      if (error) return SystemError(error.value(), path);
      target = target.parent_path() / next;  // an absolute one replaces all
      continue;
    }
    // The kernel refuses some links in shared folders; following by ourselves must not get around that.
    if (links > 0 && stat(path.c_str(), &status) != 0 && errno != ENOENT) return SystemError(errno, path);
    return target;
  }
  return SystemError(ELOOP, path);
}

std::optional<Error> Refusal(const SaveTarget& target, const Path& path) {
  const struct stat& status = target.status;
  if (S_ISDIR(status.st_mode)) return Refused(75, EISDIR, path);
  if (!S_ISREG(status.st_mode)) return Error{70, 0, path, "Not a regular file"};
  // A rename would silently replace a read-only file, and root may do everything.
  if (!(status.st_mode & S_IWUSR)) return SystemError(EACCES, path);
  if (faccessat(target.folder.get(), target.name.c_str(), W_OK, AT_EACCESS) != 0) return SystemError(errno, path);
  return std::nullopt;
}

// All names, or an errno. A volume without extended attributes has none.
struct Names {
  std::vector<std::string> names;
  int error = 0;
};

Names ListExtended(int file) {
  for (int attempt = 0; attempt < 8; ++attempt) {
    const ssize_t size = flistxattr(file, nullptr, 0);
    std::string list(size > 0 ? static_cast<size_t>(size) : 0, '\0');
    const ssize_t got = size > 0 ? flistxattr(file, list.data(), list.size()) : size;
    if (got < 0 && errno == ERANGE) continue;  // grew meanwhile
    if (got < 0) return {{}, errno == ENOTSUP || errno == ENOSYS ? 0 : errno};
    Names result;
    for (size_t begin = 0; begin < static_cast<size_t>(got);) {
      result.names.emplace_back(list.c_str() + begin);
      begin += result.names.back().size() + 1;
    }
    return result;
  }
  return {{}, ERANGE};
}

struct Value {
  std::string bytes;
  int error = 0;
};

Value ReadExtended(int file, const std::string& name) {
  Value value;
  value.bytes.resize(65536);  // the kernel's greatest
  const ssize_t size = fgetxattr(file, name.c_str(), value.bytes.data(), value.bytes.size());
  value.error = size < 0 ? errno : 0;
  value.bytes.resize(size < 0 ? 0 : static_cast<size_t>(size));
  return value;
}

// Made by the system out of the content; stale the moment the content changes.
bool BelongsToContent(const std::string& name) {
  return name == "security.capability" || name == "security.ima" || name == "security.evm";
}

constexpr char kAcl[] = "system.posix_acl_access";

int CopyExtended(int from, int to, const std::string& name) {
  const Value value = ReadExtended(from, name);
  if (value.error) return value.error;
  // Setting a label may be forbidden where having it is not.
  const Value there = ReadExtended(to, name);
  if (!there.error && there.bytes == value.bytes) return 0;
  return fsetxattr(to, name.c_str(), value.bytes.data(), value.bytes.size(), 0) == 0 ? 0 : errno;
}

}  // namespace

Result<SaveTarget> FindSaveTarget(const Path& path) {
  if (HasNul(path)) return SystemError(EINVAL, path);
  if (path.empty()) return SystemError(ENOENT, path);
  const auto followed = FollowLinks(path);
  if (!followed) return followed.error();
  const Path& full = followed.value();
  if (!full.has_filename()) return Refused(75, EISDIR, path);

  SaveTarget target;
  target.name = full.filename();
  const Path folder = full.has_parent_path() ? full.parent_path() : Path(".");
  target.folder = Descriptor(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!target.folder) return errno == ENOENT ? Refused(76, ENOENT, path) : SystemError(errno, path);
  target.exists = fstatat(target.folder.get(), target.name.c_str(), &target.status, AT_SYMLINK_NOFOLLOW) == 0;
  if (!target.exists) {
    if (errno == ENOENT) return target;
    return SystemError(errno, path);
  }
  if (auto refusal = Refusal(target, path)) return *std::move(refusal);
  constexpr int kFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  target.file = Descriptor(openat(target.folder.get(), target.name.c_str(), kFlags));
  if (!target.file || fstat(target.file.get(), &target.status) != 0) return SystemError(errno, path);
  if (auto refusal = Refusal(target, path)) return *std::move(refusal);
  return target;
}

int ChangeSince(const SaveTarget& target) {
  struct stat now;
  if (fstatat(target.folder.get(), target.name.c_str(), &now, AT_SYMLINK_NOFOLLOW) != 0)
    return errno == ENOENT ? 0 : errno;
  if (!target.exists) return EEXIST;
  return S_ISREG(now.st_mode) && StampOf(now) == StampOf(target.status) ? 0 : ESTALE;
}

Error ChangedError(int change, const Path& path) {
  if (change == ESTALE) return {75, ESTALE, path, "Another program changed the file while it was being saved"};
  return SystemError(change, path);
}

int CopyOwner(const SaveTarget& target, int to) {
  struct stat now;
  if (fstat(to, &now) != 0) return errno;
  if (now.st_uid == target.status.st_uid && now.st_gid == target.status.st_gid) return 0;
  return fchown(to, target.status.st_uid, target.status.st_gid) == 0 ? 0 : errno;
}

int CopyAttributes(const SaveTarget& target, int to) {
  struct stat was;
  const int from = target.file.get();
  if (fstat(from, &was) != 0) return errno;
  if (const int error = CopyOwner(target, to)) return error;
  const Names names = ListExtended(from);
  if (names.error) return names.error;
  bool acl = false;
  for (const std::string& name : names.names) {
    acl = acl || name == kAcl;
    if (name == kAcl || BelongsToContent(name)) continue;
    if (const int error = CopyExtended(from, to, name)) return error;
  }
  // A folder's default ACL may have given the new file one that the old file does not have.
  if (!acl && fremovexattr(to, kAcl) != 0 && errno != ENODATA && errno != ENOTSUP) return errno;
  // Last, since from here on others may look in.
  struct stat now;
  if (fstat(to, &now) != 0) return errno;
  if ((now.st_mode & 07777) != (was.st_mode & 07777) && fchmod(to, was.st_mode & 07777) != 0) return errno;
  return acl ? CopyExtended(from, to, kAcl) : 0;
}

}  // namespace files
