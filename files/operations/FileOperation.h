// Copying, moving and deleting lists of files and folders, with everything in them. Symbolic links are never followed:
// they are copied, moved and deleted themselves. Everything goes by open folders, so a folder that is exchanged for a
// link meanwhile leads nowhere else. There is no limit to the depth of a tree or the length of a path, and names are
// bytes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace files {

enum class OperationKind {
  kCopy,            // into `folder`, under the same names
  kMove,            // a rename within a volume, else as the next one
  kCopyThenDelete,  // everything is copied and synced before a source is deleted
  kDelete,          // for good
};

struct FileOperation {
  OperationKind kind = OperationKind::kCopy;
  std::vector<std::string> sources;  // absolute
  std::string folder;                // absolute; not for kDelete
};

enum class ItemKind { kFile, kFolder, kLink, kSpecial };

struct ItemInfo {
  std::string path;
  ItemKind kind = ItemKind::kFile;
  int64_t size = 0;
  int64_t modified = 0;  // seconds since 1970
};

// The name is taken where the source is to go.
struct Conflict {
  ItemInfo source, target;
  // Replacing two folders means merging them. Not offered between a folder and anything else, nor where both are the
  // same file, nor where the one is inside the other.
  bool mayReplace = true;
  bool same = false;  // both names are the same file
};
enum class ConflictChoice { kReplace, kSkip, kKeepBoth, kCancel };
struct ConflictAnswer {
  ConflictChoice choice = ConflictChoice::kCancel;
  bool forAll = false;  // for all later conflicts of this sort: two folders, two others, or one of each
};

struct OperationFailure {
  std::string path;
  int number = 0;       // the program's
  int systemError = 0;  // errno, 0 when it was no system call
  std::string text;     // UTF-8
};
enum class FailureChoice { kRetry, kSkip, kCancel };
struct FailureAnswer {
  FailureChoice choice = FailureChoice::kCancel;
  bool forAll = false;  // of kSkip: nothing is asked from now on
};

// What is renamed in one step counts as one item, and the totals hold no more than was counted so far.
struct OperationProgress {
  int64_t items = 0, itemsTotal = 0;
  int64_t bytes = 0, bytesTotal = 0;
};

// Who is asked and told, in the thread of the operation.
class OperationUser {
 public:
  virtual ~OperationUser() = default;
  virtual ConflictAnswer OnConflict(const Conflict& conflict) = 0;
  virtual FailureAnswer OnFailure(const OperationFailure& failure) = 0;
  // Between any two items and every few megabytes. False cancels: no half file stays behind.
  virtual bool OnProgress(const OperationProgress& progress) = 0;
  // What is being worked on, some ten times a second.
  virtual void OnCurrent(const std::string& path) = 0;
};

struct OperationOutcome {
  enum class State { kNotReached, kDone, kPartly, kSkipped, kFailed };
  static constexpr size_t kMostFailures = 1000;

  std::vector<State> items;                // one for each source
  std::vector<OperationFailure> failures;  // the first ones
  int64_t done = 0, skipped = 0, failed = 0;
  int lastError = 0;  // the program's number of the last failure
  bool cancelled = false;
};

OperationOutcome RunOperation(const FileOperation& operation, OperationUser& user);

// The paths without those that lie in another one of them, and each only once, by their texts; in their order.
std::vector<std::string> WithoutNested(const std::vector<std::string>& paths);

}  // namespace files
