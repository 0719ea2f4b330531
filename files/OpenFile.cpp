#include "files/OpenFile.h"

#include "files/Io.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <new>
#include <unistd.h>

namespace files {

namespace {

std::optional<Error> Refusal(const struct stat& status, const Path& path) {
  if (S_ISDIR(status.st_mode)) return SystemError(EISDIR, path);
  if (!S_ISREG(status.st_mode)) return Error{70, 0, path, "Not a regular file"};
  return std::nullopt;
}

}  // namespace

InputFile::InputFile(InputFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), stamp_(other.stamp_) {}

InputFile& InputFile::operator=(InputFile&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  std::swap(stamp_, other.stamp_);
  return *this;
}

InputFile::~InputFile() {
  if (descriptor_ >= 0) close(descriptor_);
}

Result<InputFile> OpenForReading(const Path& path) {
  if (HasNul(path)) return SystemError(EINVAL, path);
  // Looked at before it is opened, since merely opening a device can do something, and again afterwards, since the name
  // may have changed hands.
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return SystemError(errno, path);
  if (auto refusal = Refusal(status, path)) return *std::move(refusal);
  Descriptor descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!descriptor || fstat(descriptor.get(), &status) != 0) return SystemError(errno, path);
  if (auto refusal = Refusal(status, path)) return *std::move(refusal);
  return InputFile(descriptor.Release(), StampOf(status));
}

Status ReadInto(InputFile& file, std::string& bytes, int64_t limit) try {
  bytes.clear();
  if (file.size() > limit) return SystemError(EFBIG, {});
  // One byte more than it has, so that the end is met without growing.
  bytes.resize(static_cast<size_t>(file.size()) + 1);
  for (size_t used = 0;;) {
    const ssize_t count = pread(file.descriptor(), bytes.data() + used, bytes.size() - used, static_cast<off_t>(used));
    if (count < 0 && errno == EINTR) continue;
    const int error = count < 0 ? errno : 0;
    used += static_cast<size_t>(std::max<ssize_t>(count, 0));
    const bool tooLong = static_cast<int64_t>(used) > limit;
    if (count <= 0 || tooLong) bytes.resize(used);
    if (error || tooLong) return SystemError(error ? error : EFBIG, {});
    if (count == 0) return {};
    if (used == bytes.size()) bytes.resize(used + std::max<size_t>(used, 65536));
  }
} catch (const std::bad_alloc&) {
  return SystemError(ENOMEM, {});
} catch (const std::length_error&) {
  return SystemError(ENOMEM, {});
}

Result<std::string> ReadAll(InputFile& file, int64_t limit) {
  std::string bytes;
  const Status read = ReadInto(file, bytes, limit);
  if (!read) return read.error();
  return bytes;
}

std::optional<FileStamp> StampOf(const Path& path) {
  struct stat status;
  if (HasNul(path) || stat(path.c_str(), &status) != 0) return std::nullopt;
  return StampOf(status);
}

}  // namespace files
