// Trees written as text, and a user who answers.
#pragma once

#include "FilesTest.h"
#include "files/operations/FileOperation.h"

namespace files {

// "d/ d/f=text l@target p|": a folder, a file, a symbolic link, a FIFO; separated by blanks.
void MakeEntry(const Path& folder, const std::string& entry);
void MakeTree(const Path& folder, const std::string& tree);
// The same, sorted by path.
std::string TreeIn(const Path& folder);

// Answers everything alike, counts what it is asked, and does what the test wants at any moment.
class TestUser final : public OperationUser {
 public:
  ConflictAnswer conflict{ConflictChoice::kCancel};
  FailureAnswer failure{FailureChoice::kSkip};
  int conflicts = 0, failures = 0, moments = 0;
  int cancelAt = -1;  // at that moment
  std::function<ConflictChoice(const Conflict&)> decide;
  std::function<void(int)> at;  // every moment

  ConflictAnswer OnConflict(const Conflict& asked) override {
    ++conflicts;
    return decide ? ConflictAnswer{decide(asked)} : conflict;
  }
  FailureAnswer OnFailure(const OperationFailure&) override {
    ++failures;
    return failure;
  }
  bool OnProgress(const OperationProgress&) override {
    const int moment = moments++;
    if (at) at(moment);
    return moment != cancelAt;
  }
  void OnCurrent(const std::string&) override {}
};

// "3 done, 1 skipped; 70 d/x; cancelled", with paths below `folder`.
std::string Summary(const OperationOutcome& outcome, const Path& folder);

}  // namespace files
