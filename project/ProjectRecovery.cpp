// What the recovery folder keeps of a project that was changed and not saved.
#include "files/saving/Recovery.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "services/Messages.h"
#include "ui/PendingEvents.h"

#include <utility>

namespace project {

std::string Project::FileBytes() const {
  std::vector<std::string> entries;
  for (size_t i = 1; i <= ProjectItems_.Highest(); ++i) entries.push_back(ProjectItems_[i]);
  return FormatProjectFile(entries);
}

std::optional<files::Error> Project::KeepProject() {
  givenUp_ = false;
  if (ProjectSaved) return std::nullopt;
  std::string bytes = FileBytes();
  if (kept_ && keptBytes_ == bytes && kept_->originalPath.native() == ProjectFile) return std::nullopt;
  auto written = files::WriteRecovery(services_.recoveryFolder(), ProjectFile, kRecoveryKind,
                                      [&](const files::ByteSink& sink) { return sink(bytes); });
  if (!written) return written.error();
  ForgetKept();
  kept_ = std::move(written).value();
  keptBytes_ = std::move(bytes);
  return std::nullopt;
}

bool Project::OpenKept(const files::RecoveryEntry& entry) {
  const ui::CommandScope scope;
  if (!fncconfirm("Project")) return false;
  auto file = files::OpenForReading(entry.text);
  auto bytes = file ? files::ReadAll(file.value(), kMaxProjectBytes) : files::Result<std::string>(file.error());
  if (!bytes) {
    services::ShowError(services_.dialogs(), services_.forms().at(0),
                        services::ErrorText(entry.text.native(), bytes.error()));
    return false;
  }
  ProjectFile = entry.originalPath.native();
  TakeEntries(bytes.value());
  // Which file it was made from is not known any more, so replacing it is asked about.
  stamp_.reset();
  couldNotBeRead_ = false;
  ShowProject();
  ProjectSaved = false;
  kept_ = entry;
  keptBytes_ = std::move(bytes.value());
  return true;
}

void Project::LeaveKept() {
  if (givenUp_) ForgetKept();
  kept_.reset();
  givenUp_ = false;
}

// When it cannot be removed it is offered once more, which loses nothing.
void Project::ForgetKept() {
  if (kept_) static_cast<void>(files::RemoveRecovery(*kept_));
  kept_.reset();
}

}  // namespace project
