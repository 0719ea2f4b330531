#include "files/operations/CopyItem.h"

#include "files/saving/Leftovers.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace files {

namespace {

constexpr int64_t kBuffer = int64_t{256} << 10;
constexpr int64_t kPiece = int64_t{4} << 20;  // between two looks whether to go on
constexpr mode_t kPermissions = 07777, kSetIds = S_ISUID | S_ISGID;

// A name in a folder that goes with the object unless it was given away.
class TemporaryName {
 public:
  TemporaryName(int folder, std::string name) : folder_(folder), name_(std::move(name)) {}
  ~TemporaryName() {
    if (!name_.empty()) unlinkat(folder_, name_.c_str(), 0);
  }
  TemporaryName(const TemporaryName&) = delete;
  TemporaryName& operator=(const TemporaryName&) = delete;
  const std::string& name() const { return name_; }
  void Release() { name_.clear(); }

 private:
  int folder_;
  std::string name_;
};

bool IsCopied(const char* attribute) {
  return std::strncmp(attribute, "user.", 5) == 0 || std::strcmp(attribute, "system.posix_acl_access") == 0 ||
         std::strcmp(attribute, "system.posix_acl_default") == 0;
}

void CopyExtendedAttributes(int from, int to) {
  const ssize_t size = flistxattr(from, nullptr, 0);
  if (size <= 0) return;
  std::string names(static_cast<size_t>(size), '\0'), value;
  const ssize_t got = flistxattr(from, names.data(), names.size());
  for (ssize_t at = 0; at < got; at += static_cast<ssize_t>(std::strlen(names.data() + at)) + 1) {
    const char* const name = names.data() + at;
    const ssize_t length = IsCopied(name) ? fgetxattr(from, name, nullptr, 0) : -1;
    if (length < 0) continue;
    value.resize(static_cast<size_t>(length));
    if (fgetxattr(from, name, value.data(), value.size()) == length) fsetxattr(to, name, value.data(), value.size(), 0);
  }
}

bool SameState(const struct stat& a, const struct stat& b) {
  return IdentityOf(a) == IdentityOf(b) && a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
         a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

int RenameToFree(int fromFolder, const std::string& from, int folder, const std::string& name) {
  if (renameat2(fromFolder, from.c_str(), folder, name.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // A volume that cannot do that in one step, or a folder into itself.
  struct stat status {};
  if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  return renameat(fromFolder, from.c_str(), folder, name.c_str()) == 0 ? 0 : errno;
}

}  // namespace

int MoveInto(int fromFolder, const std::string& from, int folder, const Placement& place) {
  if (place.how == Placement::How::kNew) return RenameToFree(fromFolder, from, folder, place.name);
  struct stat status {};
  if (fstatat(folder, place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && !SameState(status, place.seen))
    return EEXIST;
  return renameat(fromFolder, from.c_str(), folder, place.name.c_str()) == 0 ? 0 : errno;
}

ItemCopier::ItemCopier(OperationJob& job, bool keepsOwner)
    : job_(job), keepsOwner_(keepsOwner), buffer_(std::make_unique<char[]>(kBuffer)) {}

int ItemCopier::CopyFile(int fromFolder, const std::string& from, struct stat& source, int folder,
                         const Placement& place) {
  // Something else may have taken the name meanwhile, and opening a FIFO would wait.
  const Descriptor input(openat(fromFolder, from.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!input) return errno;
  struct stat opened {};
  if (fstat(input.get(), &opened) != 0) return errno;
  if (!S_ISREG(opened.st_mode)) return kSpecialFile;
  source = opened;
  UniqueFile output = CreateUnique(folder, kTemporaryPrefix, 0600);
  if (output.error) return output.error;
  TemporaryName temporary(folder, output.name);
  const int64_t before = job_.progress.bytes;
  int error = CopyContent(input.get(), output.descriptor.get(), source);
  if (!error) {
    GiveAttributes(input.get(), output.descriptor.get(), source);
    error = output.descriptor.Close();
  }
  if (!error) error = MoveInto(folder, temporary.name(), folder, place);
  if (error)
    job_.progress.bytes = before;
  else
    temporary.Release();
  return error;
}

int ItemCopier::CopyLink(int fromFolder, const std::string& from, const struct stat& source, int folder,
                         const Placement& place) {
  std::string target(static_cast<size_t>(std::max<off_t>(source.st_size, 255)) + 1, '\0');
  ssize_t size;
  while ((size = readlinkat(fromFolder, from.c_str(), target.data(), target.size())) ==
         static_cast<ssize_t>(target.size()))
    target.resize(target.size() * 2);
  if (size < 0) return errno;
  target.resize(static_cast<size_t>(size));
  TemporaryName temporary(folder, kTemporaryPrefix + RandomName());
  if (symlinkat(target.c_str(), folder, temporary.name().c_str()) != 0) {
    const int error = errno;
    temporary.Release();  // whatever has that name is not ours
    return error;
  }
  const timespec times[2] = {source.st_atim, source.st_mtim};
  const char* const name = temporary.name().c_str();
  if (keepsOwner_ && fchownat(folder, name, source.st_uid, source.st_gid, AT_SYMLINK_NOFOLLOW) != 0) errno = 0;
  utimensat(folder, name, times, AT_SYMLINK_NOFOLLOW);
  const int error = MoveInto(folder, temporary.name(), folder, place);
  if (!error) temporary.Release();
  return error;
}

void ItemCopier::GiveAttributes(int from, int to, const struct stat& source) {
  // The mode comes after what needs the right to write, and after the owner, whose change takes bits away.
  CopyExtendedAttributes(from, to);
  mode_t mode = source.st_mode & kPermissions;
  if (keepsOwner_ && fchown(to, source.st_uid, source.st_gid) != 0) errno = 0;
  struct stat status {};
  if ((mode & kSetIds) && S_ISREG(source.st_mode) &&
      (fstat(to, &status) != 0 || status.st_uid != source.st_uid || status.st_gid != source.st_gid))
    mode &= ~kSetIds;
  fchmod(to, mode);
  const timespec times[2] = {source.st_atim, source.st_mtim};
  futimens(to, times);
}

int ItemCopier::CopyContent(int from, int to, const struct stat& source) {
  const int64_t size = source.st_size;
  // Some systems' files tell no size.
  if (size <= kBuffer) return CopyByHand(from, to, 0, size ? size : INT64_MAX);
  const bool holes = source.st_blocks * 512 < size;
  for (int64_t at = 0; at < size;) {
    int64_t end = size;
    if (holes) {
      const off_t data = lseek(from, at, SEEK_DATA);
      if (data < 0 && errno == ENXIO) break;  // nothing but a hole
      if (data >= 0) {
        job_.BytesDone(std::min<int64_t>(data, size) - at);
        at = data;
        const off_t hole = lseek(from, at, SEEK_HOLE);
        if (hole > at) end = std::min<int64_t>(hole, size);
      }
    }
    if (at < end)
      if (const int error = CopyStretch(from, to, at, end)) return error;
    at = std::max(at, end);
  }
  return holes && ftruncate(to, size) != 0 ? errno : 0;
}

int ItemCopier::CopyStretch(int from, int to, int64_t begin, int64_t end) {
  for (int64_t at = begin; at < end;) {
    if (!job_.Continue()) return ECANCELED;
    off64_t in = at, out = at;
    const auto wanted = static_cast<size_t>(std::min(end - at, kPiece));
    const ssize_t copied = copy_file_range(from, &in, to, &out, wanted, 0);
    if (copied < 0 && errno == EINTR) continue;
    if (copied < 0 && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG || errno == EIO)) return errno;
    // Between these two volumes it may not work, and some report the end where there is more.
    if (copied <= 0) return CopyByHand(from, to, at, end);
    at += copied;
    job_.BytesDone(copied);
  }
  return 0;
}

int ItemCopier::CopyByHand(int from, int to, int64_t begin, int64_t end) {
  for (int64_t at = begin; at < end;) {
    if (!job_.Continue()) return ECANCELED;
    const ssize_t count = pread(from, buffer_.get(), static_cast<size_t>(std::min(end - at, kBuffer)), at);
    if (count < 0 && (errno == EINTR)) continue;
    if (count < 0) return errno;
    if (count == 0) break;  // it has become shorter
    const Transfer written = WriteFully(to, {buffer_.get(), static_cast<size_t>(count)}, at);
    if (written.error) return written.error;
    at += count;
    job_.BytesDone(count);
  }
  return 0;
}

}  // namespace files
