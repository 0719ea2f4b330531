#include "files/Io.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

namespace files {

namespace {

constexpr size_t kBufferSize = size_t{1} << 20;
// Asking the disk to begin early lets it work while the text is still being produced; the fsync at the end is short
// then.
constexpr int64_t kFlushStep = int64_t{16} << 20;

bool CannotSync(int error) {
  return error == EINVAL || error == ENOTSUP || error == ENOSYS;
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this != &other) {
    Close();
    number_ = other.Release();
  }
  return *this;
}

int Descriptor::Release() {
  return std::exchange(number_, -1);
}

int Descriptor::Close() {
  if (number_ < 0) return 0;
  // Interrupted or not, the descriptor is gone afterwards; closing it again could close somebody else's.
  const bool failed = close(Release()) != 0;
  return failed && errno != EINTR ? errno : 0;
}

FileSizeSignalBlock::FileSizeSignalBlock() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGXFSZ);
  blocked_ = pthread_sigmask(SIG_BLOCK, &signals, &before_) == 0 && sigismember(&before_, SIGXFSZ) == 0;
}

FileSizeSignalBlock::~FileSizeSignalBlock() {
  if (!blocked_) return;
  const int error = errno;
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGXFSZ);
  const timespec now{};
  while (sigtimedwait(&signals, nullptr, &now) < 0 && errno == EINTR) {
  }
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  errno = error;
}

bool HasNul(const Path& path) {
  return path.native().find('\0') != std::string::npos;
}

Transfer WriteFully(int descriptor, std::string_view bytes, int64_t offset) {
  const FileSizeSignalBlock block;
  Transfer done;
  while (!bytes.empty()) {
    const ssize_t count = pwrite(descriptor, bytes.data(), bytes.size(), offset + done.bytes);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      done.error = count < 0 ? errno : EIO;
      break;
    }
    done.bytes += count;
    bytes.remove_prefix(static_cast<size_t>(count));
  }
  return done;
}

Transfer CopyRange(int from, int to, int64_t begin, int64_t end) {
  const auto buffer = std::make_unique<char[]>(kBufferSize);
  Transfer done;
  while (begin + done.bytes < end) {
    const int64_t place = begin + done.bytes;
    const auto wanted = static_cast<size_t>(std::min<int64_t>(kBufferSize, end - place));
    const ssize_t count = pread(from, buffer.get(), wanted, place);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      done.error = count < 0 ? errno : EIO;
      return done;
    }
    const Transfer part = WriteFully(to, {buffer.get(), static_cast<size_t>(count)}, place);
    done.bytes += part.bytes;
    done.error = part.error;
    if (done.error) return done;
  }
  return done;
}

int SyncFile(int descriptor) {
  while (fsync(descriptor) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

int SyncFolder(int folder, int fileInIt) {
  const Descriptor readable(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (readable) {
    const int error = SyncFile(readable.get());
    return CannotSync(error) ? 0 : error;
  }
  // Names may be made in a folder that may not be read, and only a readable one can be synced by itself.
  if (errno != EACCES || fileInIt < 0) return errno;
  return syncfs(fileInIt) == 0 ? 0 : errno;
}

int SyncFolder(const Path& folder) {
  const Descriptor descriptor(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  return descriptor ? SyncFolder(descriptor.get(), -1) : errno;
}

std::string RandomName() {
  uint64_t number = 0;
  if (getentropy(&number, sizeof number) != 0) {
    // O_EXCL keeps a guessable name harmless.
    number = static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) * 0x9E3779B97F4A7C15u +
             static_cast<uint64_t>(getpid());
  }
  std::string name;
  for (int i = 0; i < 16; ++i, number >>= 4) name += "0123456789abcdef"[number & 15];
  return name;
}

UniqueFile CreateUnique(int folder, std::string_view prefix, mode_t mode) {
  UniqueFile file;
  for (int attempt = 0; attempt < 100; ++attempt) {
    file.name = std::string(prefix) + RandomName();
    file.descriptor =
        Descriptor(openat(folder, file.name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    file.error = file.descriptor ? 0 : errno;
    if (file.error != EEXIST && file.error != EINTR) break;
  }
  return file;
}

FileStamp StampOf(const struct stat& status) {
  return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

bool BufferedWriter::Write(std::string_view bytes) {
  if (error_) return false;
  if (bytes.size() <= kBufferSize - used_) {
    if (!buffer_) buffer_ = std::make_unique<char[]>(kBufferSize);
    if (!bytes.empty()) std::memcpy(buffer_.get() + used_, bytes.data(), bytes.size());
    used_ += bytes.size();
    return used_ < kBufferSize || Flush();
  }
  if (!Flush()) return false;
  return bytes.size() >= kBufferSize ? Put(bytes) : Write(bytes);
}

bool BufferedWriter::Flush() {
  if (error_) return false;
  return Put({buffer_.get(), std::exchange(used_, 0)});
}

bool BufferedWriter::Put(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::string_view part = bytes.substr(0, static_cast<size_t>(kFlushStep));
    const Transfer done = WriteFully(descriptor_, part, written_);
    written_ += done.bytes;
    error_ = done.error;
    if (error_) return false;
    bytes.remove_prefix(part.size());
    if (written_ - flushing_ >= kFlushStep) {
      sync_file_range(descriptor_, flushing_, written_ - flushing_, SYNC_FILE_RANGE_WRITE);
      flushing_ = written_;
    }
  }
  return true;
}

}  // namespace files
