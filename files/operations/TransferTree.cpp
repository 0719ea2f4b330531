#include "files/operations/TransferTree.h"

#include "files/operations/FreeName.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace files {

namespace {

constexpr size_t kManyRecords = 4096;
constexpr int kManyAttempts = 20;

ItemInfo InfoOf(std::string path, const struct stat& status) {
  return {std::move(path), KindOf(status), status.st_size, status.st_mtim.tv_sec};
}

}  // namespace

TransferTree::TransferTree(OperationJob& job, OperationKind kind, int target, std::string targetPath)
    : job_(job),
      kind_(kind),
      target_(target),
      targetPath_(std::move(targetPath)),
      aboveTarget_(WithAncestors(target)),
      copier_(job, kind != OperationKind::kCopy),
      from_(-1),
      to_(target) {}

void TransferTree::Transfer(size_t item, const std::string& path) {
  FolderEntry entry = FindEntry(path);
  while (entry.error) {
    if (!job_.Retry(path, entry.error)) return;
    entry = FindEntry(path);
  }
  path_ = path;
  from_ = FolderChain(entry.folder.get());
  to_ = FolderChain(target_);
  levels_.clear();
  firstMade_ = {};
  lost_ = false;
  log_.Begin(item, path);
  One(entry.name);
  if (Walk())
    log_.EndItem();
  else
    log_.DropItem();
}

bool TransferTree::Walk() {
  while (!levels_.empty()) {
    const bool goesOn = job_.Continue();
    const auto next = goesOn ? levels_.back().listing.Next() : std::nullopt;
    if (next)
      One(next->name);
    else if (!goesOn || !Leave())
      Abandon();
  }
  return !job_.cancelled() && !lost_;
}

std::string TransferTree::SourcePath(const std::string& name) const {
  if (levels_.empty()) return path_;
  std::string path = path_;
  for (size_t i = 1; i < levels_.size(); ++i) path += "/" + levels_[i].name;
  return path + "/" + name;
}

std::string TransferTree::TargetPath(const std::string& name) const {
  std::string path = targetPath_;
  for (const Level& level : levels_) path += "/" + level.targetName;
  return path + "/" + name;
}

void TransferTree::Keep() {
  if (!levels_.empty()) levels_.back().keeps = true;
}

void TransferTree::One(const std::string& name) {
  job_.Current([&] { return SourcePath(name); });
  while (const int error = Attempt(name)) {
    if (job_.Retry(SourcePath(name), error)) continue;
    Keep();
    return;
  }
}

int TransferTree::Attempt(const std::string& name) {
  Source source{name};
  if (fstatat(from_.folder(), name.c_str(), &source.status, AT_SYMLINK_NOFOLLOW) != 0)
    return errno == ENOENT && !levels_.empty() ? 0 : errno;
  const bool folder = S_ISDIR(source.status.st_mode);
  if (folder && levels_.empty() &&
      std::find(aboveTarget_.begin(), aboveTarget_.end(), IdentityOf(source.status)) != aboveTarget_.end())
    return kIntoItself;
  // Nobody else knows a folder that was made a moment ago, so a look for every name in it would be in vain.
  bool look = levels_.empty() || !levels_.back().made;
  for (int attempt = 0;; ++attempt, look = true) {
    const Decision decision = Decide(source, look);
    if (decision.how == Decision::kFailed) return decision.error;
    if (decision.how == Decision::kLeaveOut) {
      Keep();
      return 0;
    }
    const int error = Put(source, decision.place);
    // A volume may say that a name is taken and, asked for it, know of no such thing.
    if (error != EEXIST || attempt == kManyAttempts) return error;
    if (!job_.Continue()) {
      Keep();
      return 0;
    }
  }
}

TransferTree::Decision TransferTree::Decide(const Source& source, bool look) {
  Decision decision;
  decision.place.name = source.name;
  struct stat seen {};
  if (!look) return decision;
  if (fstatat(to_.folder(), source.name.c_str(), &seen, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno != ENOENT) decision = {Decision::kFailed, errno};
    return decision;
  }
  return Resolve(source, seen);
}

TransferTree::Decision TransferTree::Resolve(const Source& source, const struct stat& seen) {
  if (AlreadyThere(source, seen)) {
    job_.ItemDone();
    return {Decision::kLeaveOut};
  }
  const bool folders = S_ISDIR(source.status.st_mode) && S_ISDIR(seen.st_mode);
  const bool anyFolder = S_ISDIR(source.status.st_mode) || S_ISDIR(seen.st_mode);
  const bool same = IdentityOf(source.status) == IdentityOf(seen);
  const bool mayReplace = !same && (folders ? !Inside(seen) : !anyFolder);
  const Conflict conflict{InfoOf(SourcePath(source.name), source.status), InfoOf(TargetPath(source.name), seen),
                          mayReplace, same};
  Decision decision;
  switch (job_.Resolve(conflict)) {
    case ConflictChoice::kCancel:
      return {Decision::kLeaveOut};
    case ConflictChoice::kSkip:
      job_.Skipped();
      return {Decision::kLeaveOut};
    case ConflictChoice::kReplace:
      decision.place = {source.name, folders ? Placement::How::kMerge : Placement::How::kReplace, seen};
      return decision;
    case ConflictChoice::kKeepBoth:
      decision.error = FindFreeName(source, decision.place.name);
      if (decision.error) decision.how = Decision::kFailed;
  }
  return decision;
}

// Moving to where it is. Another name of the same file is something else.
bool TransferTree::AlreadyThere(const Source& source, const struct stat& seen) const {
  return moves() && IdentityOf(source.status) == IdentityOf(seen) && from_.identity() == to_.identity();
}

// The folder with that name holds the item itself somewhere below.
bool TransferTree::Inside(const struct stat& target) const {
  if (!levels_.empty()) return false;
  const std::vector<Identity> above = WithAncestors(from_.folder());
  return std::find(above.begin(), above.end(), IdentityOf(target)) != above.end();
}

int TransferTree::FindFreeName(const Source& source, std::string& name) const {
  NumberedNames names(source.name, S_ISDIR(source.status.st_mode));
  struct stat status {};
  do {
    name = names.Next();
  } while (fstatat(to_.folder(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0);
  return errno == ENOENT ? 0 : errno;
}

int TransferTree::Put(Source& source, const Placement& place) {
  bool rename = renames();
  if (rename && place.how != Placement::How::kMerge) {
    const int error = MoveInto(from_.folder(), source.name, to_.folder(), place);
    if (!error) job_.ItemDone();
    if (error != EXDEV) return error;
    rename = false;
  }
  return Copy(source, place, rename);
}

int TransferTree::Copy(Source& source, const Placement& place, bool renames) {
  int error = kSpecialFile;
  if (S_ISDIR(source.status.st_mode)) return Enter(source, place, renames);
  if (S_ISREG(source.status.st_mode))
    error = copier_.CopyFile(from_.folder(), source.name, source.status, to_.folder(), place);
  else if (S_ISLNK(source.status.st_mode))
    error = copier_.CopyLink(from_.folder(), source.name, source.status, to_.folder(), place);
  if (error) return error;
  job_.ItemDone();
  if (moves()) {
    log_.Item(source.name, source.status);
    NoteVolume();
  }
  return 0;
}

int TransferTree::Enter(const Source& source, const Placement& place, bool renames) {
  Descriptor from = OpenSubfolder(from_.folder(), source.name);
  if (!from) return errno;
  struct stat status {};
  if (fstat(from.get(), &status) != 0) return errno;
  const Identity identity = IdentityOf(status);
  if (identity == firstMade_) return kIntoItself;  // by way of a mount that shows the target once more
  if (moves() && IsMountPoint(from.get(), from_.identity())) return EBUSY;
  Level level{source.name, place.name, {}, {}, place.how == Placement::How::kNew, renames};
  level.attributes = {status.st_mode, status.st_uid, status.st_gid, status.st_atim, status.st_mtim};
  if (const int error = level.listing.Read(from.get())) return error;
  Descriptor to;
  if (const int error = OpenTarget(place, to)) return error;
  const Identity made = IdentityOf(to.get());
  if (levels_.empty()) firstMade_ = made;
  from_.Push(std::move(from), identity);
  to_.Push(std::move(to), made);
  levels_.push_back(std::move(level));
  if (moves()) {
    log_.Enter(source.name, status);
    NoteVolume();
  }
  return 0;
}

int TransferTree::OpenTarget(const Placement& place, Descriptor& folder) const {
  const bool made = place.how == Placement::How::kNew;
  if (made && mkdirat(to_.folder(), place.name.c_str(), 0700) != 0) return errno;
  folder = OpenSubfolder(to_.folder(), place.name);
  if (!folder) return errno;
  return made || IdentityOf(folder.get()) == IdentityOf(place.seen) ? 0 : EEXIST;
}

bool TransferTree::Leave() {
  const Level level = std::move(levels_.back());
  if (level.made) {
    const Attributes& has = level.attributes;
    struct stat status {};
    status.st_mode = has.mode;
    status.st_uid = has.user;
    status.st_gid = has.group;
    status.st_atim = has.accessed;
    status.st_mtim = has.modified;
    copier_.GiveAttributes(from_.folder(), to_.folder(), status);
  }
  int error = from_.Pop();
  if (!error) error = to_.Pop();
  if (error) {
    levels_.back().name = level.name;
    job_.Retry(SourcePath(""), error);
    lost_ = true;
    return false;
  }
  levels_.pop_back();
  job_.ItemDone();
  if (moves()) log_.Leave(level.keeps);
  if (level.keeps) Keep();
  return true;
}

// The folders that were made get at least their modes, as far as there is a way back to them.
void TransferTree::Abandon() {
  bool found = true;
  for (; found && !levels_.empty(); levels_.pop_back()) {
    if (levels_.back().made && fchmod(to_.folder(), levels_.back().attributes.mode & 07777) != 0) errno = 0;
    found = to_.Pop() == 0;
  }
  levels_.clear();
}

void TransferTree::NoteVolume() {
  Descriptor& volume = volumes_[to_.identity().device];
  if (!volume) volume = Descriptor(openat(to_.folder(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

bool TransferTree::ManyToDelete() const {
  return log_.size() >= kManyRecords;
}

void TransferTree::DeleteMoved() {
  if (log_.size() == 0) return;
  bool synced = true;
  for (const auto& [device, volume] : volumes_) {
    while (synced && (!volume || syncfs(volume.get()) != 0)) synced = job_.Retry(targetPath_, volume ? errno : EACCES);
  }
  volumes_.clear();
  if (synced)
    log_.DeleteSources(job_);
  else
    log_ = {};
}

}  // namespace files
