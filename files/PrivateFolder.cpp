#include "files/PrivateFolder.h"

#include "files/Folders.h"
#include "files/Io.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace files {
namespace {

// Null when another process has it, or it is no folder.
std::shared_ptr<const Descriptor> Claim(const Path& folder) {
  Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!opened || flock(opened.get(), LOCK_EX | LOCK_NB) != 0) return nullptr;
  // Between its making and the lock somebody may have taken it for an abandoned one.
  struct stat held, named;
  const bool still = fstat(opened.get(), &held) == 0 && lstat(folder.c_str(), &named) == 0 &&
                     held.st_dev == named.st_dev && held.st_ino == named.st_ino;
  return still ? std::make_shared<const Descriptor>(std::move(opened)) : nullptr;
}

Result<FileStamp> WriteAll(Descriptor& file, std::string_view bytes, const Path& path) {
  int error = 0;
  {
    const FileSizeSignalBlock block;
    error = WriteFully(file.get(), bytes, 0).error;
  }
  if (error == 0 && ftruncate(file.get(), static_cast<off_t>(bytes.size())) != 0) error = errno;
  struct stat status {};
  if (error == 0 && fstat(file.get(), &status) != 0) error = errno;
  const int closing = file.Close();
  if (error == 0) error = closing;
  return error == 0 ? Result<FileStamp>(StampOf(status)) : SystemError(error, path);
}

}  // namespace

PrivateFolder::PrivateFolder(Path path, std::shared_ptr<const Descriptor> claim)
    : path_(std::move(path)), claim_(std::move(claim)) {}

Result<PrivateFolder> PrivateFolder::Make(const Path& parent) {
  if (const Status made = MakeFolder(parent); !made) return made.error();
  constexpr int kAttempts = 100;
  for (int i = 0; i < kAttempts; ++i) {
    const Path path = parent / RandomName();
    if (mkdir(path.c_str(), S_IRWXU) != 0) {
      if (errno != EEXIST) return SystemError(errno, path);
    } else if (auto claim = Claim(path)) {
      return PrivateFolder(path, std::move(claim));
    }
  }
  return SystemError(EEXIST, parent);
}

std::vector<PrivateFolder> PrivateFolder::Abandoned(const Path& parent) {
  std::vector<PrivateFolder> found;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(parent, error), end; !error && entry != end; entry.increment(error))
    if (auto claim = Claim(entry->path())) found.push_back(PrivateFolder(entry->path(), std::move(claim)));
  return found;
}

Result<FileStamp> PrivateFolder::Write(const Path& name, std::string_view bytes, bool readOnly) const {
  const Path path = path_ / name;
  const mode_t mode = readOnly ? S_IRUSR : S_IRUSR | S_IWUSR;
  Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
  if (!file) return SystemError(errno, path);
  auto written = WriteAll(file, bytes, path);
  if (!written) unlink(path.c_str());
  return written;
}

Result<FileStamp> PrivateFolder::Replace(const Path& name, std::string_view bytes, bool readOnly) const {
  const Path temporary = "." + RandomName();
  auto written = Write(temporary, bytes, readOnly);
  if (!written) return written;
  const Path from = path_ / temporary, to = path_ / name;
  if (rename(from.c_str(), to.c_str()) == 0) return written;
  const int error = errno;
  unlink(from.c_str());
  return SystemError(error, to);
}

Result<FileStamp> PrivateFolder::Overwrite(const Path& name, std::string_view bytes) const {
  const Path path = path_ / name;
  Descriptor file(open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC));
  if (!file) return SystemError(errno, path);
  return WriteAll(file, bytes, path);
}

void PrivateFolder::SetReadOnly(const Path& name, bool readOnly) const {
  const Path path = path_ / name;
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
  if (file) static_cast<void>(fchmod(file.get(), readOnly ? 0400 : 0600));
}

std::vector<Path> PrivateFolder::RemoveWith(const std::vector<Path>& names) const {
  std::vector<Path> others;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(path_, error), end; !error && entry != end; entry.increment(error))
    if (std::ranges::count(names, entry->path().filename()) == 0 || entry->is_directory(error))
      others.push_back(entry->path());
  if (error == std::errc::no_such_file_or_directory) return {};
  if (error) others.push_back(path_);
  if (!others.empty()) return others;
  for (const Path& name : names) Forget(name);
  // What has come meanwhile keeps it.
  rmdir(path_.c_str());
  return {};
}

void PrivateFolder::Forget(const Path& name) const {
  unlink((path_ / name).c_str());
}

}  // namespace files
