// Copying and moving items with everything in them; inside this room only.
#pragma once

#include "files/operations/CopyItem.h"
#include "files/operations/MovedLog.h"

#include <map>

namespace files {

class TransferTree {
 public:
  // `target` (O_PATH) is the caller's; `targetPath` is how it is called.
  TransferTree(OperationJob& job, OperationKind kind, int target, std::string targetPath);

  // An item of the operation, by its number.
  void Transfer(size_t item, const std::string& path);
  // Deletes what was copied completely, after it has been synced. From time to time, and at the end.
  void DeleteMoved();
  bool ManyToDelete() const;

 private:
  struct Attributes {
    mode_t mode;
    uid_t user;
    gid_t group;
    timespec accessed, modified;
  };
  struct Level {
    std::string name, targetName;
    Listing listing;
    Attributes attributes;  // of the source
    bool made = false;      // the folder is ours and gets the attributes when it is full
    bool renames = false;   // moving is worth a try
    bool keeps = false;     // something in it was not moved
  };
  struct Source {
    std::string name;
    struct stat status {};
  };
  struct Decision {
    enum { kGo, kLeaveOut, kFailed } how = kGo;
    int error = 0;
    Placement place = {};
  };

  std::string SourcePath(const std::string& name) const;
  std::string TargetPath(const std::string& name) const;
  bool Walk();  // true when the item was gone through to its end
  void One(const std::string& name);
  int Attempt(const std::string& name);
  Decision Decide(const Source& source, bool look);
  Decision Resolve(const Source& source, const struct stat& seen);
  bool AlreadyThere(const Source& source, const struct stat& seen) const;
  bool Inside(const struct stat& target) const;
  int FindFreeName(const Source& source, std::string& name) const;
  int Put(Source& source, const Placement& place);
  int Copy(Source& source, const Placement& place, bool renames);
  int Enter(const Source& source, const Placement& place, bool renames);
  int OpenTarget(const Placement& place, Descriptor& folder) const;
  bool Leave();  // false when there is no way back to the folder above
  void Abandon();
  void Keep();
  bool renames() const { return levels_.empty() ? kind_ == OperationKind::kMove : levels_.back().renames; }
  bool moves() const { return kind_ != OperationKind::kCopy; }
  void NoteVolume();

  OperationJob& job_;
  const OperationKind kind_;
  const int target_;
  const std::string targetPath_;
  const std::vector<Identity> aboveTarget_;
  ItemCopier copier_;
  MovedLog log_;
  std::map<dev_t, Descriptor> volumes_;  // that were copied to

  // The item at hand.
  std::string path_;
  FolderChain from_, to_;
  std::vector<Level> levels_;
  Identity firstMade_;  // the folder that the item becomes
  bool lost_ = false;
};

}  // namespace files
