// What a running operation's steps share: the user, the counts and the answers for all; inside this room only.
#pragma once

#include "files/operations/FileOperation.h"

#include <array>
#include <chrono>
#include <functional>
#include <optional>
#include <sys/stat.h>

namespace files {

// Failures that are no errno.
enum OwnError : int { kSpecialFile = -1, kIntoItself = -2, kSourceChanged = -3 };

class OperationJob {
 public:
  explicit OperationJob(OperationUser& user) : user_(user) {}

  // False once the operation is cancelled.
  bool Continue();
  bool cancelled() const { return outcome.cancelled; }
  void ItemDone();
  void BytesDone(int64_t bytes) { progress.bytes += bytes; }
  void Skipped() { ++outcome.skipped; }
  // `path` is asked for only when it is time to tell it.
  void Current(const std::function<std::string()>& path);

  // Asks about a failure; true to try again. Else it is noted, and perhaps the operation cancelled.
  bool Retry(const std::string& path, int error);
  // Never kReplace where that may not be.
  ConflictChoice Resolve(const Conflict& conflict);

  OperationProgress progress;
  OperationOutcome outcome;

 private:
  void Note(OperationFailure failure);

  OperationUser& user_;
  std::array<std::optional<ConflictChoice>, 3> forAll_;
  bool skipFailures_ = false;
  std::chrono::steady_clock::time_point told_;
};

ItemKind KindOf(const struct stat& status);

}  // namespace files
