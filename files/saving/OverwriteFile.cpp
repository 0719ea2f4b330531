#include "files/saving/OverwriteFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace files {

namespace {

// Truncating to a greater length raises the file-size signal too.
int Truncate(int file, int64_t size) {
  const FileSizeSignalBlock block;
  while (ftruncate(file, size) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

// Room for what is longer than before, so that a full disk shows before a byte is overwritten.
int Reserve(int file, int64_t from, int64_t to) {
  if (to <= from) return 0;
  const FileSizeSignalBlock block;
  if (fallocate(file, FALLOC_FL_KEEP_SIZE, from, to - from) == 0) return 0;
  return errno == EOPNOTSUPP || errno == ENOSYS || errno == EINTR ? 0 : errno;
}

// Only what was overwritten or cut off is written again: overwritten blocks are there, even on a full disk.
int PutBack(int file, const SaveTarget& target, const Path& previous, int64_t overwritten) {
  const int64_t size = target.status.st_size;
  if (overwritten > 0) {
    const Descriptor copy(open(previous.c_str(), O_RDONLY | O_CLOEXEC));
    if (!copy) return errno;
    if (const int error = CopyRange(copy.get(), file, 0, std::min(overwritten, size)).error) return error;
  }
  if (const int error = Truncate(file, size)) return error;
  // With the old bytes goes the old time, or they would pass for another program's change. Only the owner may do that.
  const timespec times[] = {{0, UTIME_OMIT}, target.status.st_mtim};
  futimens(file, times);
  return SyncFile(file);
}

}  // namespace

Result<FileStamp> OverwriteFile(const SaveTarget& target, RecoveryWriter& entry, int64_t size, const Path& path) {
  if (const int change = ChangeSince(target)) return ChangedError(change, path);
  if (auto status = entry.Finish(); !status) return status.error();
  if (auto status = entry.AddPrevious(target.file.get(), target.status.st_size); !status) return status.error();

  constexpr int kFlags = O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const Descriptor file(openat(target.folder.get(), target.name.c_str(), kFlags));
  struct stat now;
  if (!file || fstat(file.get(), &now) != 0) return SystemError(errno, path);
  if (StampOf(now) != StampOf(target.status)) return ChangedError(ESTALE, path);

  Transfer written;
  written.error = Reserve(file.get(), target.status.st_size, size);
  if (!written.error) written = CopyRange(entry.text(), file.get(), 0, size);
  if (!written.error) {
    // From here on what lay behind the new end may be gone too.
    written.bytes = std::max(size, static_cast<int64_t>(target.status.st_size));
    written.error = Truncate(file.get(), size);
  }
  if (!written.error) written.error = SyncFile(file.get());
  if (!written.error && fstat(file.get(), &now) != 0) written.error = errno;
  if (!written.error) return StampOf(now);

  Error error = SystemError(written.error, path);
  const Path previous = entry.path() / "previous";
  if (PutBack(file.get(), target, previous, written.bytes) != 0) {
    error.text += ". The file could not be restored. The new text is in " + (entry.path() / "text").native() +
                  ", the old content in " + previous.native();
    error.damaged = true;
    entry.Keep();
  }
  return error;
}

}  // namespace files
