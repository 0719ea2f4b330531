#include "files/saving/Recovery.h"

#include "files/Folders.h"
#include "files/saving/RecoveryWriter.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <tuple>
#include <unistd.h>

namespace files {

namespace {

constexpr char kPrefix[] = "entry-";
constexpr char kFormat[] = "quillmark-recovery 1\n";
constexpr char kAbout[] = "about";
constexpr char kText[] = "text";
constexpr char kPartialText[] = "text.part";
constexpr char kPrevious[] = "previous";
// Far above any path; a damaged file of another size is not taken into memory.
constexpr int64_t kAboutLimit = 1 << 20;

// Files in their order of disappearing: whatever is interrupted stays recognisable as what it is.
constexpr const char* kNames[] = {kPrevious, kPartialText, kText, kAbout};

int RemoveFiles(int folder) {
  for (const char* name : kNames) {
    if (unlinkat(folder, name, 0) != 0 && errno != ENOENT) return errno;
  }
  return 0;
}

Descriptor OpenFolder(const Path& path) {
  return Descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// A volume without locks counts as not locked.
bool IsBeingWritten(int folder) {
  const bool busy = flock(folder, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  if (!busy) flock(folder, LOCK_UN);
  return busy;
}

bool ReadAbout(RecoveryEntry& entry) {
  auto file = OpenForReading(entry.folder / kAbout);
  if (!file) return false;
  const auto bytes = ReadAll(file.value(), kAboutLimit);
  if (!bytes || !bytes.value().starts_with(kFormat)) return false;
  const size_t begin = sizeof kFormat - 1;
  const size_t end = bytes.value().find('\n', begin);
  if (end == std::string::npos) return false;
  entry.kind = bytes.value().substr(begin, end - begin);
  entry.originalPath = bytes.value().substr(end + 1);
  return true;
}

// Between making an entry and locking it there is a moment in which it looks left over.
bool IsOld(int folder) {
  struct stat status;
  return fstat(folder, &status) == 0 && time(nullptr) - status.st_mtim.tv_sec > 3600;
}

enum class Found { kEntry, kBusy, kLeftover };

Found ReadEntry(RecoveryEntry& entry) {
  const Descriptor folder = OpenFolder(entry.folder);
  if (!folder || IsBeingWritten(folder.get())) return Found::kBusy;
  entry.complete = faccessat(folder.get(), kText, F_OK, 0) == 0;
  entry.text = entry.folder / (entry.complete ? kText : kPartialText);
  const auto stamp = StampOf(entry.text);
  if (!stamp || (!entry.complete && stamp->size == 0)) return IsOld(folder.get()) ? Found::kLeftover : Found::kBusy;
  entry.stamp = *stamp;
  // A text whose description is damaged is still a text; only its name is lost.
  if (!ReadAbout(entry)) entry.originalPath.clear();
  if (entry.complete && faccessat(folder.get(), kPrevious, F_OK, 0) == 0) entry.previous = entry.folder / kPrevious;
  return Found::kEntry;
}

}  // namespace

Error RecoveryWriter::Failed(int error) const {
  return SystemError(error, path_);
}

Status RecoveryWriter::Begin(const Path& recoveryFolder, const Path& originalPath, std::string_view kind) {
  path_ = recoveryFolder;
  if (auto made = MakeFolder(recoveryFolder); !made) return made;
  parent_ = Descriptor(open(recoveryFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!parent_) return Failed(errno);
  const std::string name = kPrefix + RandomName();
  if (mkdirat(parent_.get(), name.c_str(), 0700) != 0) return Failed(errno);
  path_ /= name;
  folder_ = OpenFolder(path_);
  if (!folder_) {
    const int error = errno;
    unlinkat(parent_.get(), name.c_str(), AT_REMOVEDIR);
    return Failed(error);
  }
  flock(folder_.get(), LOCK_EX | LOCK_NB);
  text_ = Descriptor(openat(folder_.get(), kPartialText, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  Status status = text_ ? WriteAbout(originalPath, kind) : Failed(errno);
  if (!status) Discard();
  return status;
}

Status RecoveryWriter::WriteAbout(const Path& originalPath, std::string_view kind) {
  const Descriptor about(openat(folder_.get(), kAbout, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!about) return Failed(errno);
  std::string bytes = kFormat;
  bytes.append(kind.substr(0, kind.find('\n'))).append("\n").append(originalPath.native());
  if (const int error = WriteFully(about.get(), bytes, 0).error) return Failed(error);
  if (const int error = SyncFile(about.get())) return Failed(error);
  return {};
}

Status RecoveryWriter::Finish() {
  if (const int error = SyncFile(text_.get())) return Failed(error);
  if (renameat(folder_.get(), kPartialText, folder_.get(), kText) != 0) return Failed(errno);
  if (const int error = SyncFolder(folder_.get(), text_.get())) return Failed(error);
  if (const int error = SyncFolder(parent_.get(), text_.get())) return Failed(error);
  return {};
}

Status RecoveryWriter::AddPrevious(int file, int64_t size) {
  const Descriptor copy(openat(folder_.get(), kPrevious, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!copy) return Failed(errno);
  int error = CopyRange(file, copy.get(), 0, size).error;
  if (!error) error = SyncFile(copy.get());
  if (!error) error = SyncFolder(folder_.get(), copy.get());
  if (error) return Failed(error);
  return {};
}

Descriptor RecoveryWriter::Keep() {
  text_.Close();
  parent_.Close();
  return std::move(folder_);
}

void RecoveryWriter::Discard() {
  if (!folder_) return;
  RemoveFiles(folder_.get());
  unlinkat(parent_.get(), path_.filename().c_str(), AT_REMOVEDIR);
  Keep();
}

Result<RecoveryEntry> WriteRecovery(const Path& folder, const Path& originalPath, std::string_view kind,
                                    const ByteProducer& write) {
  RecoveryWriter entry;
  if (auto status = entry.Begin(folder, originalPath, kind); !status) return status.error();
  BufferedWriter out(entry.text());
  const bool produced = write([&](std::string_view bytes) { return out.Write(bytes); });
  if (produced) out.Flush();
  if (out.error()) return SystemError(out.error(), entry.path());
  if (!produced) return SystemError(ECANCELED, originalPath);
  if (auto status = entry.Finish(); !status) return status.error();
  struct stat status;
  if (fstat(entry.text(), &status) != 0) return SystemError(errno, entry.path());
  RecoveryEntry result;
  result.folder = entry.path();
  result.originalPath = originalPath;
  result.kind = kind.substr(0, kind.find('\n'));
  result.text = entry.path() / kText;
  result.complete = true;
  result.stamp = StampOf(status);
  result.claim = std::make_shared<const Descriptor>(entry.Keep());
  return result;
}

Result<std::vector<RecoveryEntry>> ListRecovery(const Path& folder) {
  std::vector<RecoveryEntry> entries;
  DIR* listing = opendir(folder.c_str());
  if (!listing && errno == ENOENT) return entries;
  if (!listing) return SystemError(errno, folder);
  std::vector<std::string> names;
  errno = 0;
  while (const dirent* item = readdir(listing)) {
    if (std::string_view(item->d_name).starts_with(kPrefix)) names.emplace_back(item->d_name);
  }
  const int error = errno;
  closedir(listing);
  if (error) return SystemError(error, folder);

  for (const std::string& name : names) {
    RecoveryEntry entry;
    entry.folder = folder / name;
    const Found found = ReadEntry(entry);
    if (found == Found::kEntry) entries.push_back(std::move(entry));
    // Only tidying: a leftover that cannot be removed now is met again the next time.
    else if (found == Found::kLeftover)
      static_cast<void>(RemoveRecovery(entry));
  }
  // The clock of files may stand still for some milliseconds.
  std::sort(entries.begin(), entries.end(), [](const RecoveryEntry& a, const RecoveryEntry& b) {
    const auto order = [](const RecoveryEntry& entry) {
      const FileStamp& stamp = entry.stamp;
      return std::tie(stamp.modifiedSeconds, stamp.modifiedNanoseconds, entry.originalPath.native(),
                      entry.folder.native());
    };
    return order(a) < order(b);
  });
  return entries;
}

bool ClaimRecovery(RecoveryEntry& entry) {
  if (entry.claim) return true;
  Descriptor folder = OpenFolder(entry.folder);
  if (!folder || (flock(folder.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)) return false;
  // Removed by its last owner between our opening and locking it.
  if (faccessat(folder.get(), entry.text.filename().c_str(), F_OK, 0) != 0) return false;
  entry.claim = std::make_shared<const Descriptor>(std::move(folder));
  return true;
}

Status RemoveRecovery(const RecoveryEntry& entry) {
  const Descriptor folder = OpenFolder(entry.folder);
  if (!folder) return SystemError(errno, entry.folder);
  if (const int error = RemoveFiles(folder.get())) return SystemError(error, entry.folder);
  if (rmdir(entry.folder.c_str()) != 0) return SystemError(errno, entry.folder);
  if (const int error = SyncFolder(entry.folder.parent_path())) return SystemError(error, entry.folder);
  return {};
}

}  // namespace files
