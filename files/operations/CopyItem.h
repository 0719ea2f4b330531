// Copying one file, link, or a folder's attributes; inside this room only. Errors are errno values or an OwnError.
#pragma once

#include "files/operations/FolderChain.h"
#include "files/operations/OperationJob.h"

#include <memory>

namespace files {

// Where something is to go: a name that was free, or one whose file or link is to be replaced.
struct Placement {
  enum class How { kNew, kReplace, kMerge };
  std::string name;
  How how = How::kNew;
  struct stat seen {};  // what had the name
};

// Gives a file or link in `folder` its place, atomically. EEXIST when the name has been taken, or its file changed,
// since it was looked at; the old file is whole then. Other failures are EXDEV and the like.
int MoveInto(int fromFolder, const std::string& from, int folder, const Placement& place);

class ItemCopier {
 public:
  // `keepsOwner`: as far as the system permits.
  ItemCopier(OperationJob& job, bool keepsOwner);

  // Copies to a hidden temporary file first. `source` is the regular file as it was looked at; on return as it was
  // read. ECANCELED when the user cancelled.
  int CopyFile(int fromFolder, const std::string& from, struct stat& source, int folder, const Placement& place);
  int CopyLink(int fromFolder, const std::string& from, const struct stat& source, int folder, const Placement& place);
  // Mode, times, access lists and the user's extended attributes, and perhaps the owner. What the system does not let
  // it is left out.
  void GiveAttributes(int from, int to, const struct stat& source);

 private:
  int CopyContent(int from, int to, const struct stat& source);
  int CopyStretch(int from, int to, int64_t begin, int64_t end);
  int CopyByHand(int from, int to, int64_t begin, int64_t end);

  OperationJob& job_;
  const bool keepsOwner_;
  std::unique_ptr<char[]> buffer_;
};

}  // namespace files
