#include "project/ProjectList.h"

#include "files/AnyCase.h"
#include "files/Attributes.h"
#include "files/OpenFile.h"
#include "project/ProjectFile.h"
#include "services/Messages.h"
#include "ui/Hourglass.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/Clipboard.h"

#include <QCoreApplication>

#include <algorithm>
#include <numeric>
#include <utility>

namespace project {
namespace {

constexpr int kYes = 6, kCancel = 2;

}  // namespace

ProjectList::ProjectList(services::Services& services, Project& project, ui::ListBox& List1)
    : services_(services), project_(project), List1_(List1) {
  ConnectList();
}

template <class Signal, class Handler>
void ProjectList::On(Signal signal, Handler handler) {
  connect(&List1_, signal, this,
          [this, handler](const auto&... arguments) { services_.forms().Guarded([&] { handler(arguments...); }); });
}

void ProjectList::ConnectList() {
  On(&ui::ListBox::Opened, [this] { mnuOpenFromList_Click(); });
  On(&ui::ListBox::Deleted, [this](bool shift) { RemoveFromProject(!shift); });
  On(&ui::ListBox::FocusGained, [this] { SelectFocusLineIfNone(); });
  On(&ui::ListBox::FocusLost, [this] {
    // A single selection made just by clicking is gone when another pane is used.
    if (List1_.ListIndex() >= 0 && List1_.SelCount() == 1 && List1_.Selected(List1_.ListIndex()))
      List1_.Select(List1_.ListIndex(), false);
  });
  On(&ui::ListBox::MenuRequested, [this](const QPoint& position) {
    if (menu_) menu_(position);
  });
  On(&ui::ListBox::FilesDropped, [this](const std::vector<std::string>& paths) { TakeDropped(paths); });
  List1_.SetToolTips([this](int line) {
    QString text;
    services_.forms().Guarded([&] { text = ToolTipOf(line); });
    return text;
  });
  List1_.SetDragFiles([this] {
    std::vector<std::string> files;
    services_.forms().Guarded([&] { files = FilesOfDrag(); });
    return files;
  });
}

void ProjectList::SelectFocusLineIfNone() {
  if (List1_.SelCount() == 0 && List1_.ListIndex() >= 0) List1_.Select(List1_.ListIndex(), true);
}

QString ProjectList::ToolTipOf(int line) const {
  if (List1_.line(line).data > static_cast<int64_t>(project_.ProjectItems().Highest())) return {};
  const std::string& entry = project_.EntryOf(line);
  const QString text = ui::ShortDisplayText(entry);
  if (line == 0) return text;
  switch (KindOf(entry)) {
    case EntryKind::kReadOnlyShortcut:
      return text + tr(" [Read only shortcut]");
    case EntryKind::kFolder:
      return text + tr(" [Folder shortcut]");
    case EntryKind::kDocument:
      break;
  }
  return text;
}

// --- Opening

void ProjectList::mnuOpenFromList_Click() {
  const ui::CommandScope scope;
  services::PathFilter filter = services_.GetFilterForPath({});
  if (List1_.ListIndex() >= 1) {
    services_.AskEach();
    SelectFocusLineIfNone();
    const Opened opened = OpenSelected(filter);
    if (opened == Opened::kCancelled) return;
    project_.SelectListItem(List1_.ListIndex(), false);
    if (opened == Opened::kAll) return;
  }
  PickDocument(filter);
}

ProjectList::Opened ProjectList::OpenSelected(services::PathFilter& filter) {
  const ui::Hourglass hourglass;
  for (const auto& [index, entry] : SelectedItems()) {
    const int line = project_.LineOf(index, entry);
    if (line >= List1_.count() || !List1_.Selected(line)) continue;
    List1_.SetListIndex(line);
    const Opened opened = OpenEntry(entry, filter);
    if (opened != Opened::kAll) return opened;
    ui::LetPendingEventsRun();
  }
  return Opened::kAll;
}

ProjectList::Opened ProjectList::OpenEntry(std::string entry, services::PathFilter& filter) {
  const files::Path path = services_.MakeAbsolute(entry);
  std::string opened = path.native();
  if (KindOf(entry) == EntryKind::kReadOnlyShortcut) {
    const int answer =
        services_.fncYesNoAll(tr("Linked item: %1\r\n\r\nShould I open this item in its external application?")
                                  .arg(ui::ShortDisplayText(entry)));
    ui::LetPendingEventsRun();
    if (answer == kCancel) return Opened::kCancelled;
    if (answer == kYes) services_.OpenDocument(opened);
    return Opened::kAll;
  }
  const auto attributes = files::GetAttributes(path);
  if (attributes && attributes.value() & files::kDirectory) {
    services_.ChangeDirectory(path);
    ui::LetPendingEventsRun();
    services_.mnuTreeSync_Click();
    return Opened::kAll;
  }
  if (!CanBeRead(entry, path)) {
    filter = services_.GetFilterForPath(entry);
    return Opened::kFailed;
  }
  services_.OpenDocument(opened);
  return Opened::kAll;
}

bool ProjectList::CanBeRead(const std::string& entry, const files::Path& path) {
  const auto file = files::OpenForReading(path);
  if (file) return true;
  services::ShowError(services_.dialogs(), services_.forms().at(0), services::ErrorText(entry, file.error()));
  return false;
}

// Opens what the user picks; with the focus on an entry the entry stands for that from now on.
void ProjectList::PickDocument(const services::PathFilter& filter) {
  const files::Path chosen = services::AskForDocument(services_, filter);
  if (chosen.empty()) return;
  if (List1_.ListIndex() >= 1) project_.ReplaceEntryOf(List1_.ListIndex(), chosen.native());
  std::string path = chosen.native();
  services_.OpenDocument(path);
  ui::LetPendingEventsRun();
  services::SyncTree(services_);
}

void ProjectList::mnuListEditPrj_Click() {
  const ui::CommandScope scope;
  // A project without a name has no file yet.
  if (project_.ProjectFile.empty() && project_.mnuSaveProjectAs_Click() != Saved::kYes) return;
  if (!services_.fncconfirm("Project")) return;
  ui::LetPendingEventsRun();
  std::string path = project_.ProjectFile;
  services_.OpenDocument(path);
}

// --- Adding and removing

void ProjectList::mnuLinkAdd_Click() {
  const ui::CommandScope scope;
  const files::Path chosen = services_.ShowOpenDialog(
      {.owner = services_.forms().at(0),
       .filter = QStringLiteral("Acrobat Files (*.pdf)|*.pdf|Powerpoint Files (*.pps)|*.pps|Excel Files (*.xls)|*.xls|"
                                "Word Files (*.doc)|*.doc|Write document (*.wri)|*.wri|HTML Help Files (*.chm)|*.chm|"
                                "Win Help Files (*.hlp)|*.hlp|Internet URL's (*.url)|*.url|BMP Files (*.bmp)|*.bmp|"
                                "GIF Files (*.gif)|*.gif|JPG Files (*.jpg)|*.jpg|Application Files (*.exe)|*.exe|"
                                "Shortcuts (*.lnk)|*.lnk|All Files|*.*"),
       .flags = services::kNoDereferenceLinks + services::kFileMustExist + services::kHideReadOnly,
       .title = tr("Select a file to create a read-only shortcut for")});
  if (chosen.empty()) return;
  std::string path = chosen.native();
  if (!files::EndsWithAnyCase(path, "lnk")) path += ".lnk";
  const ui::Answer answer = services_.dialogs().ShowMessage(
      services_.forms().at(0),
      {tr("Add a read-only shortcut to the project for\r\n%1 ?").arg(ui::ShortDisplayText(path)), ui::Buttons::kYesNo,
       ui::Icon::kInformation});
  if (answer == ui::Answer::kYes) project_.AddNewDocOrLink(path);
}

void ProjectList::RemoveFromProject(bool confirm) {
  const ui::CommandScope scope;
  confirm ? services_.AskEach() : services_.AnswerAllYes();
  if (List1_.ListIndex() < 1) return;
  SelectFocusLineIfNone();
  std::vector<std::pair<size_t, std::string>> agreed;
  for (const auto& [index, entry] : SelectedItems()) {
    if (project_.LineOf(index, entry) >= List1_.count()) continue;
    const int answer = services_.fncYesNoAll(tr("Remove %1\r\nfrom the project?").arg(ui::ShortDisplayText(entry)));
    ui::LetPendingEventsRun();
    if (answer == kCancel) break;
    if (answer == kYes) agreed.emplace_back(index, entry);
  }
  std::vector<bool> marked(project_.ProjectItems().Highest() + 1);
  for (const auto& [index, entry] : agreed)
    if (project_.LineOf(index, entry) < List1_.count()) marked[index] = true;
  project_.Remove(marked);
}

void ProjectList::TakeDropped(std::vector<std::string> paths) {
  const ui::CommandScope scope;
  const ui::Hourglass hourglass;
  ui::PendingEventsInLoop events;
  for (std::string& path : paths) {
    const auto attributes = files::GetAttributes(path);
    if (attributes && attributes.value() & files::kDirectory && !path.ends_with('/')) path += '/';
    events.LetRun();
  }
  project_.AddNewDocsOrLinks(paths);
}

// --- The selection and the order of the lines

// What a loop holds on to: the list and the table may change whenever events are let through.
std::vector<std::pair<size_t, std::string>> ProjectList::SelectedItems() const {
  std::vector<std::pair<size_t, std::string>> items;
  for (const int line : List1_.SelectedLines())
    if (line >= 1) items.emplace_back(static_cast<size_t>(List1_.line(line).data), project_.EntryOf(line));
  return items;
}

std::vector<std::string> ProjectList::SelectedEntries() {
  SelectFocusLineIfNone();
  std::vector<std::string> entries;
  for (auto& [index, entry] : SelectedItems()) entries.push_back(std::move(entry));
  return entries;
}

// Another program knows nothing of the current directory.
std::vector<std::string> ProjectList::FilesOfDrag() {
  std::vector<std::string> files = SelectedEntries();
  for (std::string& file : files) file = services_.MakeAbsolute(file).native();
  return files;
}

void ProjectList::mnuCopyListPath_Click() {
  std::string text;
  for (const std::string& entry : SelectedEntries()) (text += text.empty() ? "" : "\r\n") += entry;
  ui::SetClipboardPath(text);
}

void ProjectList::mnuSelectAll_Click() {
  List1_.SelectFrom(1);
  List1_.setFocus();
}

std::vector<size_t> SortedOrder(const std::vector<std::string>& texts) {
  std::vector<std::string> keys;
  for (const std::string& text : texts) keys.push_back(files::PathKey(text));
  std::vector<size_t> order(texts.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::ranges::sort(order, {}, [&](size_t i) -> const std::string& { return keys[i]; });
  // Only equal texts show how they were sorted. The shell sort may take many steps, so it compares numbers.
  std::vector<size_t> rank(texts.size());
  bool distinct = true;
  for (size_t i = 0; i < order.size(); ++i) {
    const bool again = i > 0 && keys[order[i]] == keys[order[i - 1]];
    rank[order[i]] = again ? rank[order[i - 1]] : i;
    if (again) distinct = false;
  }
  if (distinct) return order;
  std::iota(order.begin(), order.end(), size_t{0});
  // The gap begins at half the number of lines, the one that never moves included.
  for (size_t gap = (texts.size() + 1) / 2; gap > 0; gap /= 2) {
    size_t limit = texts.size() - std::min(gap, texts.size());
    for (size_t last = 1; last != 0;) {
      last = 0;
      for (size_t i = 1; i <= limit; ++i) {
        if (rank[order[i - 1]] <= rank[order[i - 1 + gap]]) continue;
        std::swap(order[i - 1], order[i - 1 + gap]);
        last = i;
      }
      limit = last > gap ? last - gap : 0;
    }
  }
  return order;
}

void ProjectList::mnuListSort_Click() {
  const ui::CommandScope scope;
  const ui::Hourglass hourglass;
  std::vector<std::string> texts;
  for (int line = 1; line < List1_.count(); ++line) texts.push_back(List1_.line(line).text);
  std::vector<ui::ListLine> lines = {List1_.line(0)};
  for (const size_t i : SortedOrder(texts)) lines.push_back(List1_.line(static_cast<int>(i) + 1));
  List1_.SetLines(std::move(lines));
  ui::LetPendingEventsRun();
  project_.SelectListItem(0, true);
}

}  // namespace project
