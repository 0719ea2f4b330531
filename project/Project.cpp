#include "project/Project.h"

#include "files/AnyCase.h"
#include "files/Attributes.h"
#include "files/saving/AtomicSave.h"
#include "project/ProjectFile.h"
#include "services/Messages.h"
#include "ui/Hourglass.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"

#include <QCoreApplication>

#include <algorithm>

namespace project {
namespace {

QString Tr(const char* text) {
  return QCoreApplication::translate("Project", text);
}

ui::ListLine FirstLine() {
  return {Tr("_Open new document").toStdString(), 0};
}

}  // namespace

const std::string& Project::EntryOf(int line) const {
  return ProjectItems_[static_cast<size_t>(List1_.line(line).data)];
}

int Project::LineOf(size_t index, const std::string& entry) const {
  const bool same = index <= ProjectItems_.Highest() && ProjectItems_[index] == entry;
  return same ? List1_.LineOf(static_cast<int64_t>(index)) : List1_.count();
}

void Project::ReplaceEntryOf(int line, std::string entry) {
  if (!MayBeEntry(entry)) return;
  List1_.SetText(line, std::string(ShownPart(entry)));
  ProjectItems_.Replace(static_cast<size_t>(List1_.line(line).data), std::move(entry));
  ProjectSaved = false;
}

void Project::Remove(const std::vector<bool>& marked) {
  ProjectItems_.Remove(marked);
  FillList();
  SelectListItem(0, true);
  ProjectSaved = false;
}

// As AddToProject for every entry would leave it, but for the selection.
void Project::FillList() {
  std::vector<ui::ListLine> lines = {FirstLine()};
  for (size_t i = 1; i <= ProjectItems_.Highest(); ++i) lines.push_back(LineFor(i));
  List1_.SetLines(std::move(lines));
}

void Project::LoadProject() {
  const ui::CommandScope scope;
  const ui::Hourglass hourglass;
  LeaveKept();
  ProjectItems_.Clear();
  List1_.SetLines({FirstLine()});  // a message about the file shows no lines without entries
  stamp_.reset();
  couldNotBeRead_ = false;
  if (!ProjectFile.empty()) ReadProjectFile();
  ShowProject();
  ProjectSaved = true;
  if (!ProjectFile.empty()) services_.AddToRecentFiles(ProjectFile);
  if (!services_.AnyDocumentOpen()) services_.ToolbarToggle(false);
}

void Project::ShowProject() {
  FillList();
  ShowCaption();
  SelectListItem(0, true);
}

void Project::ReadProjectFile() {
  auto file = files::OpenForReading(ProjectFile);
  auto bytes = file ? files::ReadAll(file.value(), kMaxProjectBytes) : files::Result<std::string>(file.error());
  if (!bytes) {
    // A project is made by a name that does not exist yet.
    if (bytes.error().number == files::kFileNotFound) return;
    couldNotBeRead_ = true;
    services::ShowError(services_.dialogs(), services_.forms().at(0), services::ErrorText(ProjectFile, bytes.error()));
    return;
  }
  stamp_ = file.value().stamp();
  TakeEntries(bytes.value());
}

void Project::TakeEntries(std::string_view bytes) {
  ProjectItems_.Clear();
  for (std::string& entry : ParseProjectFile(bytes)) ProjectItems_.Append(std::move(entry));
  ProjectItems_.SetTooltip(Tr("Select this line to open a new document").toStdString());
}

void Project::ShowCaption() {
  services_.forms().at(0)->SetCaption("Quillmark - " + ProjectFile);
}

Saved Project::mnuSaveProject_Click() {
  const ui::CommandScope scope;
  // Who will not replace what is there means another name.
  if (ProjectFile.empty() || !MayReplaceFile()) return mnuSaveProjectAs_Click();
  const auto saved = files::SaveAtomically(ProjectFile, services_.recoveryFolder(),
                                           [bytes = FileBytes()](const files::ByteSink& sink) { return sink(bytes); });
  if (!saved) {
    services::ShowError(services_.dialogs(), services_.forms().at(0), services::ErrorText(ProjectFile, saved.error()));
    return Saved::kFailed;
  }
  stamp_ = saved.value();
  couldNotBeRead_ = false;
  ProjectSaved = true;
  ForgetKept();
  ShowCaption();
  services_.AddToRecentFiles(ProjectFile);
  return Saved::kYes;
}

// What another program wrote since the project was loaded is not replaced unasked.
bool Project::MayReplaceFile() {
  const auto now = files::StampOf(ProjectFile);
  if (!now || now == stamp_) return true;
  const auto attributes = files::GetAttributes(ProjectFile);
  if (attributes && attributes.value() & files::kDirectory) return true;  // saving tells that it cannot be replaced
  const QString question =
      couldNotBeRead_ ? Tr("could not be read when it was opened.  Do you want to replace it?")
      : stamp_        ? Tr("has been changed by another program since it was opened.  Do you want to replace it?")
      : kept_         ? Tr("may have been changed since the recovered project was kept.  Do you want to replace it?")
                      : Tr("has been made by another program meanwhile.  Do you want to replace it?");
  return services_.dialogs().ShowMessage(
             services_.forms().at(0),
             {services::FileText(ProjectFile, question), ui::Buttons::kYesNo, ui::Icon::kQuestion}) == ui::Answer::kYes;
}

Saved Project::mnuSaveProjectAs_Click() {
  const ui::CommandScope scope;
  const files::Path chosen =
      services_.ShowSaveDialog({.owner = services_.forms().at(0),
                                .defaultExtension = ".prj",
                                .filter = QStringLiteral("Project files (*.prj)|*.prj|All Files|*.*"),
                                .flags = services::kCreatePrompt + services::kHideReadOnly + services::kOverwritePrompt,
                                .initialFile = ProjectFile});
  if (chosen.empty()) return Saved::kCancelled;
  ProjectFile = chosen.native();
  stamp_ = files::StampOf(chosen);  // the dialog has asked about a file that exists
  couldNotBeRead_ = false;
  const Saved saved = mnuSaveProject_Click();
  ui::LetPendingEventsRun();
  services::SyncTree(services_);
  return saved;
}

void Project::mnuNewProject_Click() {
  const ui::CommandScope scope;
  if (!fncconfirm("Project")) return;
  ui::LetPendingEventsRun();
  ProjectFile.clear();
  LoadProject();
}

void Project::mnuOpen_Click() {
  const ui::CommandScope scope;
  if (!fncconfirm("Project")) return;
  ui::LetPendingEventsRun();
  const files::Path chosen =
      services_.ShowOpenDialog({.owner = services_.forms().at(0),
                                .defaultExtension = ".prj",
                                .filter = QStringLiteral("Project Files (*.prj)|*.prj|All Files|*.*"),
                                .flags = services::kCreatePrompt + services::kHideReadOnly,
                                .title = Tr("Select a project file")});
  if (chosen.empty()) return;
  ProjectFile = chosen.native();
  LoadProject();
  ui::LetPendingEventsRun();
  services::SyncTree(services_);
}

bool Project::fncconfirm(std::string_view what) {
  if (!files::SameAnyCase(what, "Project") || ProjectSaved) return true;
  const QString text = Tr("Project %1 has been changed.\r\nDo you want to save the changes before continuing?");
  const ui::Answer answer = services_.dialogs().ShowMessage(
      services_.forms().at(0),
      {text.arg(ui::DisplayText(ProjectFile)), ui::Buttons::kYesNoCancel, ui::Icon::kExclamation});
  givenUp_ = answer == ui::Answer::kNo;
  if (answer != ui::Answer::kYes) return givenUp_;
  const Saved saved = mnuSaveProject_Click();
  ui::LetPendingEventsRun();
  if (saved == Saved::kYes) return true;
  // The caller goes on without a file that holds it.
  const auto error = KeepProject();
  if (error)
    services::ShowError(services_.dialogs(), services_.forms().at(0), services::ErrorText(ProjectFile, *error));
  return !error;
}

// The first line of those that are the same path; count() = none.
int Project::LineOfPath(const std::string& path) const {
  int line = List1_.count();
  for (const size_t index : ProjectItems_.Find(path)) line = std::min(line, List1_.LineOf(static_cast<int64_t>(index)));
  return line;
}

int Project::FindPathInList(const std::string& path) {
  const int line = LineOfPath(path);
  if (line >= List1_.count()) return line;
  List1_.Select(line, true);
  List1_.SetListIndex(line);
  return line;
}

ui::ListLine Project::LineFor(size_t index) const {
  return {std::string(ShownPart(ProjectItems_[index])), static_cast<int64_t>(index)};
}

void Project::AddToProject(size_t index) {
  List1_.Append(LineFor(index));
  SelectListItem(List1_.count() - 1, true);
}

// By value: the window whose name it is may close meanwhile.
void Project::AddNewDocOrLink(std::string path) {
  const ui::CommandScope scope;
  const bool absent = FindPathInList(path) >= List1_.count();
  ui::LetPendingEventsRun();
  if (!absent || LineOfPath(path) < List1_.count()) return;
  if (!MayBeEntry(path)) return;
  ProjectItems_.Append(std::move(path));
  AddToProject(ProjectItems_.Highest());
  ProjectSaved = false;
}

// Selecting lays out and paints the whole list, so it is done once.
void Project::AddNewDocsOrLinks(const std::vector<std::string>& paths) {
  const ui::CommandScope scope;
  ui::PendingEventsInLoop events;
  std::optional<std::string> added;
  std::vector<std::string> found;  // since then
  for (const std::string& path : paths) {
    if (LineOfPath(path) < List1_.count()) {
      found.push_back(path);
    } else if (MayBeEntry(path)) {
      ProjectItems_.Append(path);
      List1_.Append(LineFor(ProjectItems_.Highest()));
      ProjectSaved = false;
      added = path;
      found.clear();
    }
    events.LetRun();
  }
  // The lines may be others by now.
  if (const int line = added ? LineOfPath(*added) : List1_.count(); line < List1_.count()) SelectListItem(line, true);
  std::vector<int> lines;
  for (const std::string& path : found)
    if (const int line = LineOfPath(path); line < List1_.count()) lines.push_back(line);
  if (lines.empty()) return;
  List1_.SelectToo(lines);
  List1_.SetListIndex(lines.back());
}

bool Project::MayBeEntry(const std::string& path) {
  if (path.find('\r') == std::string::npos) return true;
  services::ShowError(services_.dialogs(), services_.forms().at(0),
                      services::FileText(path, Tr("A project cannot hold a name with a carriage return.")));
  return false;
}

void Project::SelectListItem(int index, bool focus) {
  List1_.SelectOnly(index);
  if (focus) List1_.setFocus();
}

}  // namespace project
