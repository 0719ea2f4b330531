#include "files/operations/CountItems.h"

#include "files/operations/FolderChain.h"

#include <dirent.h>
#include <fcntl.h>

namespace files {

namespace {

class Count {
 public:
  Count(OperationJob& job, int folder, bool sizes) : job_(job), chain_(folder), sizes_(sizes) {}

  void Run(const std::string& name) {
    Add(name, DT_UNKNOWN);
    while (!levels_.empty() && job_.Continue()) {
      if (const auto entry = levels_.back().Next()) {
        Add(entry->name, entry->type);
      } else {
        levels_.pop_back();
        if (chain_.Pop() != 0) return;
      }
    }
  }

 private:
  void Add(const std::string& name, unsigned char type) {
    ++job_.progress.itemsTotal;
    if (type == DT_UNKNOWN || (sizes_ && type == DT_REG)) {
      struct stat status {};
      if (fstatat(chain_.folder(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return;
      if (sizes_ && S_ISREG(status.st_mode)) job_.progress.bytesTotal += status.st_size;
      type = S_ISDIR(status.st_mode) ? DT_DIR : DT_REG;
    }
    if (type == DT_DIR) Enter(name);
  }

  void Enter(const std::string& name) {
    Descriptor folder = OpenSubfolder(chain_.folder(), name);
    Listing listing;
    if (!folder || listing.Read(folder.get()) != 0) return;
    const Identity identity = IdentityOf(folder.get());
    chain_.Push(std::move(folder), identity);
    levels_.push_back(std::move(listing));
  }

  OperationJob& job_;
  FolderChain chain_;
  std::vector<Listing> levels_;
  const bool sizes_;
};

}  // namespace

void CountItem(OperationJob& job, const std::string& path, bool sizes) {
  const FolderEntry entry = FindEntry(path);
  if (!entry.error) Count(job, entry.folder.get(), sizes).Run(entry.name);
}

}  // namespace files
