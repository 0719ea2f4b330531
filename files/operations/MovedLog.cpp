#include "files/operations/MovedLog.h"

#include "files/operations/DeleteTree.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace files {

namespace {

bool SameTime(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}  // namespace

void MovedLog::Add(Record::Kind kind, const std::string& name, const struct stat& status) {
  // The last change of a file with several names may be the removal of one of them by us.
  const timespec changed = status.st_nlink == 1 ? status.st_ctim : timespec{};
  records_.push_back({kind, false, names_.size(), IdentityOf(status), status.st_size, status.st_mtim, changed});
  names_.append(name.c_str(), name.size() + 1);
}

void MovedLog::EndItem() {
  // What was only renamed has left nothing to delete.
  if (items_.back().begin == records_.size())
    items_.pop_back();
  else
    records_.push_back({.kind = Record::kEnd});
}

void MovedLog::DropItem() {
  records_.resize(items_.back().begin);
  items_.pop_back();
}

bool MovedLog::Unchanged(const Record& record, const struct stat& now) {
  if (IdentityOf(now) != record.identity) return false;
  if (record.kind == Record::kEnter) return S_ISDIR(now.st_mode);
  return !S_ISDIR(now.st_mode) && now.st_size == record.size && SameTime(now.st_mtim, record.modified) &&
         (record.changed.tv_sec == 0 || SameTime(now.st_ctim, record.changed));
}

// One item of the log.
class LogDeletion {
 public:
  LogDeletion(OperationJob& job, const MovedLog& log, const std::string& path, int folder, bool wasCancelled)
      : job_(job), log_(log), path_(path), chain_(folder), wasCancelled_(wasCancelled) {}

  // Deletes what the item's records say, from that one on.
  void Run(size_t at) {
    for (; log_.records_[at].kind != MovedLog::Record::kEnd; ++at) {
      const MovedLog::Record& record = log_.records_[at];
      // What is below a folder that is not the one we copied, or after the user had enough, stays.
      if (lost_ > 0 || (job_.cancelled() && !wasCancelled_))
        lost_ += record.kind == MovedLog::Record::kEnter ? 1 : record.kind == MovedLog::Record::kLeave ? -1 : 0;
      else if (record.kind == MovedLog::Record::kLeave)
        Leave(record.keeps);
      else
        Try(record);
    }
  }

 private:
  struct Level {
    std::string name;
    bool keeps = false;
  };

  std::string PathOf(const std::string& name) const {
    if (levels_.empty()) return path_;
    std::string path = path_;
    for (size_t i = 1; i < levels_.size(); ++i) path += "/" + levels_[i].name;
    return path + "/" + name;
  }
  void Keep() {
    if (!levels_.empty()) levels_.back().keeps = true;
  }

  void Try(const MovedLog::Record& record) {
    const std::string name = log_.names_.c_str() + record.name;
    job_.Current([&] { return PathOf(name); });
    while (const int error = Apply(record, name)) {
      if (job_.Retry(PathOf(name), error)) continue;
      if (record.kind == MovedLog::Record::kEnter) ++lost_;
      Keep();
      return;
    }
  }

  int Apply(const MovedLog::Record& record, const std::string& name) {
    struct stat status {};
    if (fstatat(chain_.folder(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
      if (errno != ENOENT || record.kind == MovedLog::Record::kEnter) return errno;
      return 0;
    }
    if (!MovedLog::Unchanged(record, status)) return kSourceChanged;
    if (record.kind == MovedLog::Record::kItem) return unlinkat(chain_.folder(), name.c_str(), 0) == 0 ? 0 : errno;
    Descriptor folder = OpenSubfolder(chain_.folder(), name);
    if (!folder) return errno;
    if (IdentityOf(folder.get()) != record.identity) return kSourceChanged;
    chain_.Push(std::move(folder), record.identity);
    levels_.push_back({name});
    return 0;
  }

  void Leave(bool keeps) {
    const Level level = std::move(levels_.back());
    const Identity identity = chain_.identity();
    if (const int error = chain_.Pop()) {
      levels_.back().name = level.name;
      job_.Retry(PathOf(""), error);
      lost_ = static_cast<int64_t>(levels_.size()) - 1;  // so many are still to be left
      levels_.clear();
      return;
    }
    levels_.pop_back();
    int error = 0;
    if (!keeps && !level.keeps) {
      while ((error = RemoveFolder(chain_.folder(), level.name, identity)) && job_.Retry(PathOf(level.name), error)) {
      }
    }
    if (keeps || level.keeps || error) Keep();
  }

  OperationJob& job_;
  const MovedLog& log_;
  const std::string& path_;
  FolderChain chain_;
  std::vector<Level> levels_;
  const bool wasCancelled_;  // while copying: that was about later items, not about these
  int64_t lost_ = 0;         // folders of the log around here that are not entered
};

void MovedLog::DeleteSources(OperationJob& job) {
  const bool wasCancelled = job.cancelled();
  for (const auto& [number, path, begin] : items_) {
    const int64_t failed = job.outcome.failed;
    FolderEntry entry = FindEntry(path);
    while (entry.error && job.Retry(path, entry.error)) entry = FindEntry(path);
    if (!entry.error) LogDeletion(job, *this, path, entry.folder.get(), wasCancelled).Run(begin);
    if (job.outcome.failed > failed) job.outcome.items[number] = OperationOutcome::State::kPartly;
  }
  *this = {};
}

}  // namespace files
