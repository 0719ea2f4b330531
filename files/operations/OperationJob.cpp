#include "files/operations/OperationJob.h"

#include "files/Result.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace files {

namespace {

constexpr std::chrono::milliseconds kBetweenPaths(100);

// Whether the folder of a missing name is missing too makes no difference here: it is open.
OperationFailure FailureOf(const std::string& path, int error) {
  switch (error) {
    case kSpecialFile:
      return {path, 70, 0, "Not a regular file"};
    case kIntoItself:
      return {path, 5, 0, "A folder cannot be put into itself"};
    case kSourceChanged:
      return {path, 75, 0, "It was changed meanwhile, so it was copied but not removed"};
    default: {
      char buffer[256];
      return {path, ErrorNumber(error), error, strerror_r(error, buffer, sizeof buffer)};
    }
  }
}

size_t SortOf(const Conflict& conflict) {
  const bool source = conflict.source.kind == ItemKind::kFolder, target = conflict.target.kind == ItemKind::kFolder;
  return source && target ? 0 : source || target ? 1 : 2;
}

}  // namespace

bool OperationJob::Continue() {
  if (!outcome.cancelled && !user_.OnProgress(progress)) outcome.cancelled = true;
  return !outcome.cancelled;
}

void OperationJob::ItemDone() {
  ++progress.items;
  ++outcome.done;
}

void OperationJob::Current(const std::function<std::string()>& path) {
  const auto now = std::chrono::steady_clock::now();
  if (now - told_ < kBetweenPaths) return;
  told_ = now;
  user_.OnCurrent(path());
}

bool OperationJob::Retry(const std::string& path, int error) {
  if (error == ECANCELED && outcome.cancelled) return false;
  OperationFailure failure = FailureOf(path, error);
  if (!skipFailures_ && !outcome.cancelled) {
    const FailureAnswer answer = user_.OnFailure(failure);
    if (answer.choice == FailureChoice::kRetry) return true;
    if (answer.choice == FailureChoice::kCancel) outcome.cancelled = true;
    skipFailures_ = answer.choice == FailureChoice::kSkip && answer.forAll;
  }
  Note(std::move(failure));
  return false;
}

void OperationJob::Note(OperationFailure failure) {
  ++outcome.failed;
  outcome.lastError = failure.number;
  if (outcome.failures.size() < OperationOutcome::kMostFailures) outcome.failures.push_back(std::move(failure));
}

ConflictChoice OperationJob::Resolve(const Conflict& conflict) {
  std::optional<ConflictChoice>& forAll = forAll_[SortOf(conflict)];
  const auto fits = [&](ConflictChoice choice) { return choice != ConflictChoice::kReplace || conflict.mayReplace; };
  if (forAll && fits(*forAll)) return *forAll;
  const ConflictAnswer answer = user_.OnConflict(conflict);
  const ConflictChoice choice = fits(answer.choice) ? answer.choice : ConflictChoice::kSkip;
  if (choice == ConflictChoice::kCancel)
    outcome.cancelled = true;
  else if (answer.forAll)
    forAll = choice;
  return choice;
}

ItemKind KindOf(const struct stat& status) {
  return S_ISREG(status.st_mode)   ? ItemKind::kFile
         : S_ISDIR(status.st_mode) ? ItemKind::kFolder
         : S_ISLNK(status.st_mode) ? ItemKind::kLink
                                   : ItemKind::kSpecial;
}

}  // namespace files
