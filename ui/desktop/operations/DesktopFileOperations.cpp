#include "ui/desktop/operations/DesktopFileOperations.h"

#include "ui/Forms.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/operations/OperationTalk.h"
#include "ui/desktop/operations/OperationTexts.h"
#include "ui/dialogs/OperationForms.h"

namespace ui {
namespace {

using files::OperationKind;

QWidget* WidgetOf(Form* owner) {
  return owner ? owner->widget() : nullptr;
}

void Add(files::OperationOutcome& outcome, files::OperationFailure failure) {
  ++outcome.failed;
  outcome.lastError = failure.number;
  if (outcome.failures.size() < files::OperationOutcome::kMostFailures) outcome.failures.push_back(std::move(failure));
}

void Add(files::OperationOutcome& outcome, const files::OperationOutcome& further) {
  const int64_t failed = outcome.failed + further.failed;
  for (const files::OperationFailure& failure : further.failures) Add(outcome, failure);
  outcome.done += further.done;
  outcome.skipped += further.skipped;
  outcome.failed = failed;
  outcome.cancelled |= further.cancelled;
}

}  // namespace

DesktopFileOperations::DesktopFileOperations(Dialogs& dialogs, std::unique_ptr<Trash> trash)
    : dialogs_(dialogs), trash_(std::move(trash)) {}

FileOperations::Result DesktopFileOperations::Delete(Form* owner, const Paths& paths, bool toTrash) {
  const CommandScope scope;
  const Paths items = files::WithoutNested(paths);
  if (items.empty()) return {};
  if (!Confirms(owner, toTrash ? TrashQuestion(items) : DeletionQuestion(items), !toTrash)) return {kAborted, true};
  if (toTrash) return Trashed(owner, items);
  return Report(owner, Run(owner, {OperationKind::kDelete, items, {}}), items.size() == 1);
}

FileOperations::Result DesktopFileOperations::Copy(Form* owner, const Paths& paths, const std::string& folder) {
  const CommandScope scope;
  return Report(owner, Run(owner, {OperationKind::kCopy, paths, folder}), paths.size() == 1);
}

FileOperations::Result DesktopFileOperations::Move(Form* owner, const Paths& paths, const std::string& folder) {
  const CommandScope scope;
  return Report(owner, Run(owner, {OperationKind::kMove, paths, folder}), paths.size() == 1);
}

FileOperations::Result DesktopFileOperations::CopyThenDelete(Form* owner, const Paths& paths,
                                                             const std::string& folder) {
  const CommandScope scope;
  return Report(owner, Run(owner, {OperationKind::kCopyThenDelete, paths, folder}), paths.size() == 1);
}

bool DesktopFileOperations::Confirms(Form* owner, const QString& text, bool forGood) {
  return dialogs_.ShowMessage(
             owner, {.text = text, .buttons = Buttons::kYesNo, .icon = Icon::kExclamation, .noIsPreset = forGood}) ==
         Answer::kYes;
}

files::OperationOutcome DesktopFileOperations::PutIntoTrash(Form* owner, const Paths& paths, Paths& left) {
  files::OperationOutcome outcome;
  dialogs_.RunWork(owner, TrashProgress(paths.size()), static_cast<int64_t>(paths.size()), [&](WorkPort& port) {
    for (size_t i = 0; i < paths.size(); ++i) {
      outcome.cancelled = !port.Report(static_cast<int64_t>(i));
      if (outcome.cancelled) return;
      port.ShowDetail(ShortDisplayText(paths[i]));
      auto failure = trash_->Put(paths[i]);
      if (!failure)
        ++outcome.done;
      else if (failure->noTrash)
        left.push_back(paths[i]);
      else
        Add(outcome, std::move(failure->what));
    }
  });
  return outcome;
}

FileOperations::Result DesktopFileOperations::Trashed(Form* owner, const Paths& paths) {
  Paths left;
  files::OperationOutcome outcome = PutIntoTrash(owner, paths, left);
  if (!left.empty() && !outcome.cancelled) {
    if (Confirms(owner, NoTrashQuestion(left), true))
      Add(outcome, Run(owner, {OperationKind::kDelete, left, {}}));
    else
      outcome.cancelled = true;
  }
  return Report(owner, outcome, false);
}

files::OperationOutcome DesktopFileOperations::Run(Form* owner, files::FileOperation operation) {
  if (operation.sources.empty()) return {};
  const QString text = ProgressText(operation);
  OperationTalk talk(std::move(operation));
  for (;;) {
    dialogs_.RunWork(owner, text, OperationTalk::kWhole, [&](WorkPort& port) { talk.Wait(port); });
    const OperationTalk::Question question = talk.question();
    if (const auto* conflict = std::get_if<files::Conflict>(&question)) {
      ConflictForm form(*conflict, WidgetOf(owner));
      dialogs_.ShowModal(form);
      talk.Reply(form.answer());
    } else if (const auto* failure = std::get_if<files::OperationFailure>(&question)) {
      FailureForm form(*failure, WidgetOf(owner));
      dialogs_.ShowModal(form);
      talk.Reply(form.answer());
    } else {
      return talk.TakeOutcome();
    }
  }
}

FileOperations::Result DesktopFileOperations::Report(Form* owner, const files::OperationOutcome& outcome, bool single) {
  // It was asked about, and there is nothing else to tell.
  const bool told = single && outcome.failed == 1 && outcome.done == 0;
  if (outcome.failed > 0 && !told) {
    OperationReportForm form(outcome, WidgetOf(owner));
    dialogs_.ShowModal(form);
  }
  if (outcome.cancelled) return {kAborted, true};
  return {outcome.lastError, false};
}

}  // namespace ui
