#include "files/LockFile.h"

#include "files/Folders.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

namespace files {

Result<bool> LockFile::Acquire(const Path& path) {
  if (held()) return true;
  if (auto made = MakeFolder(path.parent_path()); !made) return made.error();
  Descriptor descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
  if (!descriptor) return SystemError(errno, path);
  while (flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK) return false;
    if (errno != EINTR) return SystemError(errno, path);
  }
  descriptor_ = std::move(descriptor);
  return true;
}

}  // namespace files
