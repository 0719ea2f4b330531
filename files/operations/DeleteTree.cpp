#include "files/operations/DeleteTree.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace files {

namespace {

class Deletion {
 public:
  Deletion(OperationJob& job, const std::string& path, int folder) : job_(job), path_(path), chain_(folder) {}

  void Run(const std::string& name) {
    Delete(name, DT_UNKNOWN);
    while (!levels_.empty() && job_.Continue()) {
      if (const auto entry = levels_.back().listing.Next())
        Delete(entry->name, entry->type);
      else
        Leave();
    }
  }

 private:
  struct Level {
    std::string name;
    Listing listing;
    bool keeps = false;  // something in it stays
  };

  // The name in the last folder.
  std::string PathOf(const std::string& name) const {
    if (levels_.empty()) return path_;
    std::string path = path_;
    for (size_t i = 1; i < levels_.size(); ++i) path += "/" + levels_[i].name;
    return path + "/" + name;
  }

  void Keep() {
    if (!levels_.empty()) levels_.back().keeps = true;
  }

  void Delete(const std::string& name, unsigned char type) {
    job_.Current([&] { return PathOf(name); });
    while (const int error = type == DT_DIR ? Enter(name) : Unlink(name, type)) {
      if (error == ENOENT && !levels_.empty()) return;
      if (job_.Retry(PathOf(name), error)) continue;
      Keep();
      return;
    }
  }

  int Unlink(const std::string& name, unsigned char type) {
    if (type == DT_UNKNOWN) {
      struct stat status {};
      if (fstatat(chain_.folder(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return errno;
      if (S_ISDIR(status.st_mode)) return Enter(name);
    }
    if (unlinkat(chain_.folder(), name.c_str(), 0) != 0) return errno == EISDIR ? Enter(name) : errno;
    job_.ItemDone();
    return 0;
  }

  int Enter(const std::string& name) {
    Descriptor folder = OpenSubfolder(chain_.folder(), name);
    if (!folder) return WithoutEntering(name, errno);
    const Identity identity = IdentityOf(folder.get());
    if (IsMountPoint(folder.get(), chain_.identity())) return EBUSY;
    Level level{name, {}};
    if (const int error = level.listing.Read(folder.get())) return error;
    chain_.Push(std::move(folder), identity);
    levels_.push_back(std::move(level));
    return 0;
  }

  // An empty folder needs no reading, and what is no folder any more is just a name.
  int WithoutEntering(const std::string& name, int error) {
    const bool folder = error != ENOTDIR && error != ELOOP;
    if (folder && error != EACCES) return error;
    if (unlinkat(chain_.folder(), name.c_str(), folder ? AT_REMOVEDIR : 0) != 0) return folder ? error : errno;
    job_.ItemDone();
    return 0;
  }

  void Leave() {
    const Level level = std::move(levels_.back());
    const Identity identity = chain_.identity();
    if (const int error = chain_.Pop()) {
      // The way back is lost, and with it everything above.
      levels_.back().name = level.name;
      job_.Retry(PathOf(""), error);
      levels_.clear();
      return;
    }
    levels_.pop_back();
    if (level.keeps) {
      Keep();
      return;
    }
    const int error = RemoveFolder(chain_.folder(), level.name, identity);
    if (!error)
      job_.ItemDone();
    else if (job_.Retry(PathOf(level.name), error))
      Delete(level.name, DT_DIR);
    else
      Keep();
  }

  OperationJob& job_;
  const std::string& path_;
  FolderChain chain_;
  std::vector<Level> levels_;
};

}  // namespace

void DeleteItem(OperationJob& job, const std::string& path) {
  FolderEntry entry = FindEntry(path);
  while (entry.error) {
    if (!job.Retry(path, entry.error)) return;
    entry = FindEntry(path);
  }
  Deletion(job, path, entry.folder.get()).Run(entry.name);
}

int RemoveFolder(int above, const std::string& name, const Identity& identity) {
  struct stat status {};
  if (fstatat(above, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return errno == ENOENT ? 0 : errno;
  // Another one has taken the name of the one that we emptied.
  if (IdentityOf(status) != identity) return ESTALE;
  return unlinkat(above, name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT ? 0 : errno;
}

}  // namespace files
