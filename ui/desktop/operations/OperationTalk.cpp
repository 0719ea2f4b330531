#include "ui/desktop/operations/OperationTalk.h"

#include "ui/PathText.h"

#include <algorithm>
#include <chrono>

namespace ui {
namespace {

constexpr std::chrono::milliseconds kBetweenReports(40);
constexpr double kBytesOfAnItem = 4096;  // what an item costs beside its bytes

}  // namespace

OperationTalk::OperationTalk(files::FileOperation operation)
    : operation_(std::move(operation)), thread_([this] { Run(); }) {}

OperationTalk::~OperationTalk() {
  const std::lock_guard lock(mutex_);
  cancelled_ = true;
  changed_.notify_all();
}

void OperationTalk::Run() {
  try {
    outcome_ = files::RunOperation(operation_, *this);
  } catch (...) {
    thrown_ = std::current_exception();
  }
  const std::lock_guard lock(mutex_);
  ended_ = true;
  changed_.notify_all();
}

void OperationTalk::Wait(WorkPort& port) {
  std::unique_lock lock(mutex_);
  const auto look = [&] {
    port.ShowDetail(ShortDisplayText(current_));
    if (port.Report(done_)) return;
    cancelled_ = true;
    changed_.notify_all();
  };
  const auto arrived = [&] { return ended_ || (!cancelled_ && question_.index() != 0); };
  for (look(); !changed_.wait_for(lock, kBetweenReports, arrived);) look();
}

OperationTalk::Question OperationTalk::question() const {
  const std::lock_guard lock(mutex_);
  return question_;
}

void OperationTalk::Reply(Answer answer) {
  const std::lock_guard lock(mutex_);
  question_ = {};
  answer_ = std::move(answer);
  changed_.notify_all();
}

files::OperationOutcome OperationTalk::TakeOutcome() {
  if (thrown_) std::rethrow_exception(thrown_);
  return std::move(outcome_);
}

OperationTalk::Answer OperationTalk::Ask(Question question) {
  std::unique_lock lock(mutex_);
  // What a default answer says is: cancel.
  const bool conflict = std::holds_alternative<files::Conflict>(question);
  question_ = std::move(question);
  changed_.notify_all();
  changed_.wait(lock, [&] { return answer_ || cancelled_; });
  question_ = {};
  if (!answer_) return conflict ? Answer(files::ConflictAnswer{}) : Answer(files::FailureAnswer{});
  return *std::exchange(answer_, std::nullopt);
}

files::ConflictAnswer OperationTalk::OnConflict(const files::Conflict& conflict) {
  return std::get<files::ConflictAnswer>(Ask(conflict));
}

files::FailureAnswer OperationTalk::OnFailure(const files::OperationFailure& failure) {
  return std::get<files::FailureAnswer>(Ask(failure));
}

bool OperationTalk::OnProgress(const files::OperationProgress& progress) {
  const double total =
      static_cast<double>(progress.bytesTotal) + kBytesOfAnItem * static_cast<double>(progress.itemsTotal);
  const double done = static_cast<double>(progress.bytes) + kBytesOfAnItem * static_cast<double>(progress.items);
  done_ = total > 0 ? static_cast<int64_t>(std::min(done / total, 1.0) * static_cast<double>(kWhole)) : 0;
  return !cancelled_;
}

void OperationTalk::OnCurrent(const std::string& path) {
  const std::lock_guard lock(mutex_);
  current_ = path;
}

}  // namespace ui
