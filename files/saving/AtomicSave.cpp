#include "files/saving/AtomicSave.h"

#include "files/saving/Leftovers.h"
#include "files/saving/OverwriteFile.h"
#include "files/saving/RecoveryWriter.h"
#include "files/saving/SaveTarget.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace files {

namespace {

// That this file cannot be replaced by renaming, as against that saving it fails.
bool RenamingIsRefused(int error) {
  return error == EACCES || error == EPERM || error == EINVAL || error == ENOTSUP || error == EBUSY || error == EXDEV;
}

// A temporary file in the target's folder; gone with the object unless it was renamed.
class Temporary {
 public:
  Temporary() = default;
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;
  ~Temporary() { Discard(); }

  int Create(const SaveTarget& target);
  int Publish(const SaveTarget& target);
  void Discard();
  int get() const { return file_.descriptor.get(); }
  mode_t newMode() const { return newMode_; }

 private:
  int folder_ = -1;  // the target's
  UniqueFile file_;
  mode_t newMode_ = 0600;  // what the system gives a new file here
};

int Temporary::Create(const SaveTarget& target) {
  // The umask cannot be read without changing it for all threads, and a folder's default ACL counts too: a file that is
  // to be new is made as any program would make it and only then closed to others.
  file_ = CreateUnique(target.folder.get(), kTemporaryPrefix, target.exists ? 0600 : 0666);
  if (file_.error) return file_.error;
  folder_ = target.folder.get();
  struct stat status;
  if (fstat(get(), &status) != 0) return errno;
  newMode_ = status.st_mode & 07777;
  // Volumes without modes refuse; what they give is then what it has.
  if ((newMode_ & 0077) && fchmod(get(), 0600) != 0 && errno != EPERM && errno != ENOTSUP) return errno;
  return target.exists ? CopyOwner(target, get()) : 0;
}

int Temporary::Publish(const SaveTarget& target) {
  const int folder = target.folder.get();
  const char* name = target.name.c_str();
  if (target.exists) {
    if (renameat(folder, file_.name.c_str(), folder, name) != 0) return errno;
  } else if (renameat2(folder, file_.name.c_str(), folder, name, RENAME_NOREPLACE) != 0) {
    // Not every volume can refuse to replace by itself.
    if (errno != EINVAL && errno != ENOSYS) return errno;
    if (const int change = ChangeSince(target)) return change;
    if (renameat(folder, file_.name.c_str(), folder, name) != 0) return errno;
  }
  folder_ = -1;
  return 0;
}

void Temporary::Discard() {
  file_.descriptor.Close();
  if (folder_ >= 0) unlinkat(folder_, file_.name.c_str(), 0);
  folder_ = -1;
}

}  // namespace

struct AtomicSave::Impl {
  Path path, stateFolder;
  std::optional<Error> error;
  SaveTarget target;
  // Exactly one of the two is in use: beside the target for renaming, or in the state folder for writing in place.
  Temporary temporary;
  RecoveryWriter entry;
  BufferedWriter out;
  FileStamp stamp;

  Status Fail(Error e) {
    error = std::move(e);
    temporary.Discard();
    entry.Discard();
    return *error;
  }
  Status Fail(int systemError) { return Fail(SystemError(systemError, path)); }

  Status Open();
  Status BeginInPlace();
  Status SwitchToInPlace();
  Status CommitInPlace(int64_t size);
  Status CommitByRenaming();
};

Status AtomicSave::Impl::Open() {
  auto found = FindSaveTarget(path);
  if (!found) return Fail(found.error());
  target = std::move(found.value());
  if (target.exists && target.status.st_nlink > 1) return BeginInPlace();
  const int refused = temporary.Create(target);
  if (refused) {
    temporary.Discard();
    return target.exists && RenamingIsRefused(refused) ? BeginInPlace() : Fail(refused);
  }
  out = BufferedWriter(temporary.get());
  return {};
}

Status AtomicSave::Impl::BeginInPlace() {
  std::error_code ignored;
  const Path absolute = std::filesystem::absolute(path, ignored);
  if (auto status = entry.Begin(stateFolder, ignored ? path : absolute, {}); !status) return Fail(status.error());
  out = BufferedWriter(entry.text());
  return {};
}

// Renaming was refused only now: the text goes over to the state folder.
Status AtomicSave::Impl::SwitchToInPlace() {
  const int64_t size = out.size();
  if (auto status = BeginInPlace(); !status) return status;
  if (const int failed = CopyRange(temporary.get(), entry.text(), 0, size).error)
    return Fail(SystemError(failed, entry.path()));
  temporary.Discard();
  return CommitInPlace(size);
}

Status AtomicSave::Impl::CommitInPlace(int64_t size) {
  auto written = OverwriteFile(target, entry, size, path);
  if (!written) return Fail(written.error());
  stamp = written.value();
  entry.Discard();
  return {};
}

Status AtomicSave::Impl::CommitByRenaming() {
  if (target.exists) {
    struct stat now;
    if (fstat(target.file.get(), &now) != 0) return Fail(errno);
    const int refused = now.st_nlink > 1 ? EPERM : CopyAttributes(target, temporary.get());
    if (refused) return RenamingIsRefused(refused) ? SwitchToInPlace() : Fail(refused);
  } else if (temporary.newMode() & 0077) {
    if (fchmod(temporary.get(), temporary.newMode()) != 0 && errno != EPERM && errno != ENOTSUP) return Fail(errno);
  }
  if (const int failed = SyncFile(temporary.get())) return Fail(failed);
  if (const int change = ChangeSince(target)) return Fail(ChangedError(change, path));
  if (const int refused = temporary.Publish(target))
    return target.exists && RenamingIsRefused(refused) ? SwitchToInPlace() : Fail(refused);
  if (const int failed = SyncFolder(target.folder.get(), temporary.get())) return Fail(failed);
  struct stat now;
  if (fstat(temporary.get(), &now) != 0) return Fail(errno);
  stamp = StampOf(now);
  ClearLeftovers(target.folder.get());
  return {};
}

AtomicSave::AtomicSave(Path target, Path stateFolder) : impl_(std::make_unique<Impl>()) {
  impl_->path = std::move(target);
  impl_->stateFolder = std::move(stateFolder);
}

AtomicSave::~AtomicSave() = default;

Status AtomicSave::Open() {
  return impl_->Open();
}

bool AtomicSave::Write(std::string_view bytes) {
  return !impl_->error && impl_->out.Write(bytes);
}

Status AtomicSave::Commit() {
  Impl& save = *impl_;
  if (save.error) return *save.error;
  if (!save.out.Flush()) return save.Fail(save.out.error());
  return save.entry.begun() ? save.CommitInPlace(save.out.size()) : save.CommitByRenaming();
}

FileStamp AtomicSave::stamp() const {
  return impl_->stamp;
}

Result<FileStamp> SaveAtomically(const Path& target, const Path& stateFolder, const ByteProducer& write) {
  AtomicSave save(target, stateFolder);
  if (auto status = save.Open(); !status) return status.error();
  bool failed = false;
  const bool produced = write([&](std::string_view bytes) {
    failed = failed || !save.Write(bytes);
    return !failed;
  });
  if (!produced && !failed) return SystemError(ECANCELED, target);
  if (auto status = save.Commit(); !status) return status.error();
  return save.stamp();
}

}  // namespace files
