// A file operation on a thread of its own, and the talk with it.
#pragma once

#include "files/operations/FileOperation.h"
#include "ui/Dialogs.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <variant>

namespace ui {

// Begins at once. While nobody answers a question the operation stands still; when the talk goes away it is cancelled.
class OperationTalk final : private files::OperationUser {
 public:
  using Question = std::variant<std::monostate, files::Conflict, files::OperationFailure>;
  using Answer = std::variant<files::ConflictAnswer, files::FailureAnswer>;
  static constexpr int64_t kWhole = 1000;  // what is reported to the port counts up to this

  explicit OperationTalk(files::FileOperation operation);
  ~OperationTalk() override;
  OperationTalk(const OperationTalk&) = delete;
  OperationTalk& operator=(const OperationTalk&) = delete;

  // Waits for the next question or the end, on any thread. Cancelled at the port, the operation is.
  void Wait(WorkPort& port);
  // Of two items of the variant: nothing when it has ended.
  Question question() const;
  void Reply(Answer answer);  // of the question's kind
  // After the end. Throws what the operation threw.
  files::OperationOutcome TakeOutcome();

 private:
  void Run();
  Answer Ask(Question question);
  files::ConflictAnswer OnConflict(const files::Conflict& conflict) override;
  files::FailureAnswer OnFailure(const files::OperationFailure& failure) override;
  bool OnProgress(const files::OperationProgress& progress) override;
  void OnCurrent(const std::string& path) override;

  const files::FileOperation operation_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  Question question_;
  std::optional<Answer> answer_;
  files::OperationOutcome outcome_;
  std::exception_ptr thrown_;
  std::string current_;
  bool ended_ = false;
  std::atomic<bool> cancelled_ = false;
  std::atomic<int64_t> done_ = 0;
  std::jthread thread_;
};

}  // namespace ui
