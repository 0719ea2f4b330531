// What is kept at an end that nobody can be asked about, and offered at the next start.
#include "documents/frmText.h"
#include "documents/objects/ObjectCopies.h"
#include "services/Messages.h"
#include "shell/frmMyMDI.h"
#include "ui/PathText.h"

#include <QCoreApplication>

#include <cerrno>
#include <exception>

namespace shell {
namespace {

bool IsProject(const files::RecoveryEntry& entry) {
  return entry.complete && entry.kind == project::Project::kRecoveryKind;
}

// The file may be damaged, and what it held before is in the entry only.
bool MayBeAllThatIsLeft(const files::RecoveryEntry& entry) {
  return entry.previous.has_value();
}

// What the question is about; %1 is its name, which may have been lost.
const char* WhatHappened(const files::RecoveryEntry& entry) {
  const bool named = !entry.originalPath.empty();
  if (IsProject(entry))
    return named ? QT_TRANSLATE_NOOP("Recovery", "The project [%1] was changed and not saved when the program ended.")
                 : QT_TRANSLATE_NOOP("Recovery", "A project without a name was not saved when the program ended.");
  if (!named)
    return entry.complete
               ? QT_TRANSLATE_NOOP("Recovery", "A text was kept in the recovery folder, but its name is lost.")
               : QT_TRANSLATE_NOOP("Recovery",
                                   "The beginning of a text was kept in the recovery folder, but its name "
                                   "is lost.");
  if (!entry.complete)
    return entry.originalPath.is_absolute()
               ? QT_TRANSLATE_NOOP("Recovery",
                                   "Only the beginning of the text of [%1] could be kept; the file itself "
                                   "is as it was.")
               : QT_TRANSLATE_NOOP("Recovery", "Only the beginning of the text of [%1] could be kept.");
  if (entry.kind.empty()) return QT_TRANSLATE_NOOP("Recovery", "Saving [%1] was cut short.");
  return QT_TRANSLATE_NOOP("Recovery", "The text of [%1] was not saved when its window was closed.");
}

const char* WhatToDo(const files::RecoveryEntry& entry) {
  if (MayBeAllThatIsLeft(entry))
    return QT_TRANSLATE_NOOP("Recovery",
                             "Do you want to open the text that was to be saved?  No leaves it for the next start, in "
                             "the folder\r\n%1");
  return QT_TRANSLATE_NOOP("Recovery",
                           "Do you want to open it now?  No deletes it, Cancel leaves it for the next start.");
}

ui::Message QuestionAbout(const files::RecoveryEntry& entry) {
  QString text = QCoreApplication::translate("Recovery", WhatHappened(entry));
  if (!entry.originalPath.empty()) text = text.arg(ui::DisplayText(entry.originalPath.native()));
  QString choices = QCoreApplication::translate("Recovery", WhatToDo(entry));
  if (MayBeAllThatIsLeft(entry)) choices = choices.arg(ui::DisplayText(entry.folder.native()));
  const ui::Buttons buttons = MayBeAllThatIsLeft(entry) ? ui::Buttons::kYesNo : ui::Buttons::kYesNoCancel;
  return {text + QStringLiteral("\r\n") + choices, buttons, ui::Icon::kQuestion};
}

// One text that cannot be kept must not keep the others from it.
std::optional<files::Error> Keep(const std::function<std::optional<files::Error>()>& keep, const files::Path& folder) {
  try {
    return keep();
  } catch (const std::exception&) {
    return files::SystemError(ENOMEM, folder);
  }
}

}  // namespace

std::optional<files::Error> frmMyMDI::KeepTexts() {
  std::optional<files::Error> first = Keep([this] { return project_.KeepProject(); }, place_.recovery);
  const auto keepNotes = [this] { return panes_.notes().pad() ? panes_.notes().pad()->KeepText() : std::nullopt; };
  if (auto error = Keep(keepNotes, place_.recovery); error && !first) first = std::move(error);
  for (const ui::FormId id : forms_.InLoadOrder()) {
    documents::frmText* document = table_.Find(id);
    if (!document) continue;
    auto error = Keep([document] { return document->KeepText(); }, place_.recovery);
    if (error && !first) first = std::move(error);
  }
  return first;
}

void frmMyMDI::EndSession() {
  if (const auto error = KeepTexts()) {
    services::ShowError(dialogs_, &frame_, services::ErrorText(place_.recovery.native(), *error));
    return;
  }
  panes_.RecordStates();
  SaveSettings();
  Quit();
}

void frmMyMDI::OfferRecovered() {
  auto entries = files::ListRecovery(place_.recovery);
  if (!entries) {
    services::ShowError(dialogs_, &frame_, services::ErrorText(place_.recovery.native(), entries.error()));
    return;
  }
  for (files::RecoveryEntry& entry : entries.value()) OfferRecovered(entry);
  table_.copies().SweepLeftovers();
}

void frmMyMDI::OfferRecovered(files::RecoveryEntry& entry) {
  // Another copy of the program may have taken it while the one before was being asked about.
  if (!files::ClaimRecovery(entry)) return;
  const ui::Answer answer = dialogs_.ShowMessage(&frame_, QuestionAbout(entry));
  if (answer == ui::Answer::kYes) {
    if (IsProject(entry)) {
      project_.OpenKept(entry);
    } else {
      table_.OpenRecovered(entry);
    }
  }
  if (answer != ui::Answer::kNo || MayBeAllThatIsLeft(entry)) return;
  if (const auto removed = files::RemoveRecovery(entry); !removed)
    services::ShowError(dialogs_, &frame_, services::ErrorText(entry.folder.native(), removed.error()));
}

}  // namespace shell
