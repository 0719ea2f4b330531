#include "foldertree/FolderTree.h"

#include "files/Attributes.h"
#include "files/FolderEntries.h"
#include "services/Messages.h"
#include "ui/Hourglass.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/Shell.h"

#include <algorithm>
#include <cerrno>
#include <ranges>
#include <utility>

namespace foldertree {

using ui::TreeImage;
using ui::TreePlace;

namespace {

constexpr size_t kManyEntries = 32767;
constexpr size_t kFewNodes = 8;

}  // namespace

FolderTree::FolderTree(services::Services& services, files::CurrentDirectory& directory, ui::DriveBox& Drive1,
                       ui::TreeView& TreeView1)
    : services_(services), directory_(directory), Drive1_(Drive1), TreeView1_(TreeView1) {
  TreeView1_.SetSource(&nodes_);
  ConnectView();
}

FolderTree::~FolderTree() {
  TreeView1_.SetSource(nullptr);
  Drive1_.SetRefresh({});
}

// --- Nodes by their keys

std::optional<std::string> FolderTree::SelectedKey() const {
  const auto place = TreeView1_.SelectedItem();
  if (!place) return std::nullopt;
  return nodes_.Key(*place);
}

TreeImage FolderTree::ImageOf(const std::string& key) const {
  const auto place = nodes_.Find(key);
  return place ? nodes_.Image(*place) : TreeImage::kLeaf;
}

std::string FolderTree::ParentOf(const std::string& key) const {
  const auto place = nodes_.Find(key);
  return place && *place != NodeTable::kRoot ? nodes_.Key(nodes_.Parent(*place)) : key;
}

std::string FolderTree::FolderOf(const std::string& key) const {
  return IsFolder(key) ? key : ParentOf(key);
}

void FolderTree::Select(const std::string& key) {
  if (const auto place = nodes_.Find(key)) TreeView1_.SelectItem(*place);
}

void FolderTree::Check(const std::string& key) {
  const auto place = nodes_.Find(key);
  if (!place) return;
  nodes_.SetChecked(*place, true);
  TreeView1_.ShowChanged(*place);
}

void FolderTree::EnsureVisible(const std::string& key) {
  if (const auto place = nodes_.Find(key)) TreeView1_.EnsureVisible(*place);
}

std::string FolderTree::Nearest(std::string key) const {
  while (!Exists(key) && key.size() > TreeRoot.size()) key.resize(std::max(key.rfind('/'), TreeRoot.size()));
  return key;
}

void FolderTree::RemoveNodes(const std::vector<std::string>& keys) {
  Rows rows;
  for (const std::string& key : keys)
    if (const auto place = nodes_.Find(key); place && *place != NodeTable::kRoot)
      rows[place->list].push_back(place->row);
  size_t count = 0;
  for (auto& [list, going] : rows) {
    std::ranges::sort(going);
    going.erase(std::unique(going.begin(), going.end()), going.end());
    count += going.size();
  }
  const auto selected = TreeView1_.SelectedItem();
  const std::string key = selected ? nodes_.Key(*selected) : std::string();
  count <= kFewNodes ? RemoveOneByOne(rows) : RemoveTogether(rows);
  if (!selected || TreeView1_.SelectedItem()) return;
  const int left = nodes_.Count(selected->list);
  if (left == 0) return SelectNearest(key);
  const int before =
      static_cast<int>(std::ranges::lower_bound(rows[selected->list], selected->row) - rows[selected->list].begin());
  TreeView1_.SelectItem({selected->list, std::min(selected->row - before, left - 1)});
}

void FolderTree::RemoveOneByOne(const Rows& rows) {
  for (const auto& [list, going] : rows) {
    for (const int row : std::views::reverse(going)) {
      if (nodes_.Count(list) == 0) break;  // gone with a folder above
      TreeView1_.RemoveBelow(nodes_.PlaceOf(list), row, 1, [&, list = list] { nodes_.Remove(list, {row}); });
    }
  }
}

// Each step lays out all that is shown, so many nodes go in one.
void FolderTree::RemoveTogether(const Rows& rows) {
  const auto remove = [&] {
    for (const auto& [list, going] : rows)
      if (nodes_.Count(list) > 0) nodes_.Remove(list, going);
  };
  const auto placeAfter = [&](TreePlace place) -> std::optional<TreePlace> {
    if (nodes_.Count(place.list) == 0) return std::nullopt;
    const auto list = rows.find(place.list);
    if (list == rows.end()) return place;
    const auto row = std::ranges::lower_bound(list->second, place.row);
    if (row != list->second.end() && *row == place.row) return std::nullopt;
    return TreePlace{place.list, place.row - static_cast<int>(row - list->second.begin())};
  };
  TreeView1_.Rearrange(remove, placeAfter);
}

void FolderTree::AddFolder(const std::string& parentKey, const std::string& name) {
  const auto parent = nodes_.Find(parentKey);
  if (!parent) return;
  const int row = nodes_.RowFor(*parent, name);
  TreeView1_.InsertBelow(*parent, row, 1, [&] { nodes_.AddFolder(*parent, row, name); });
}

void FolderTree::ClearNodes() {
  TreeView1_.Reset([this] { nodes_.Clear(); });
}

// --- Reading folders

bool FolderTree::ChangeDirectory(const files::Path& path) {
  if (path.empty()) {
    services_.dialogs().ShowMessage(services_.forms().at(0),
                                    {.text = tr("Please enter the directory to CD"), .icon = ui::Icon::kNone});
    return false;
  }
  bool changed = true;
  const auto step = [&](const files::Status& status) {
    if (status) return;
    changed = false;
    Report(path.native(), status);
  };
  step(directory_.ChangeDrive(directory_.DriveOf(directory_.MakeAbsolute(path))));
  step(directory_.Change(path));
  return changed;
}

void FolderTree::Report(const std::string& key, const files::Status& status) {
  if (status || status.error().systemError == ECANCELED) return;
  services::ShowError(services_.dialogs(), services_.forms().at(0),
                      tr("Folder: %1\r\n%2\r\nCannot resolve to this folder")
                          .arg(ui::ShortDisplayText(key), QString::fromStdString(status.error().text)));
}

// A big folder's names are given back.
void FolderTree::ClearFolderLists() {
  std::vector<std::string>().swap(FolderEntryNames);
  std::vector<int>().swap(FolderEntryAttributes);
}

files::Status FolderTree::ListFolder(const std::string& path) {
  ClearFolderLists();
  const bool changed = path.empty() || ChangeDirectory(path);
  const std::string folder = path.empty() ? TreeRoot : path;
  files::Result<files::FolderEntries> read = files::FolderEntries();
  services_.dialogs().RunWork(
      services_.forms().at(0), tr("Reading the folder\r\n%1").arg(ui::ShortDisplayText(folder)), 0,
      [&](ui::WorkPort& port) { read = files::ReadFolder(folder, [&] { return !port.cancelled(); }); });
  if (!read) {
    if (changed && !path.empty()) Report(path, read.error());  // else it has been told, or the caller tells it
    return read.error();
  }
  files::FolderEntries entries = std::move(read).value();
  FolderEntryNames = std::move(entries.names);
  FolderEntryAttributes = std::move(entries.attributes);
  return {};
}

void FolderTree::AddFolderNodes(const std::string& parentKey) {
  if (files::SamePath(parentKey, TreeRoot) && FolderEntryNames.empty()) {
    TreeView1_.Reset([this] {
      nodes_.Clear();
      nodes_.SetRoot(TreeRoot);
    });
    return;
  }
  const size_t count = FolderEntryAttributes.size();
  auto parent = nodes_.Find(parentKey);
  if (count == 0 || !parent) return;
  // No key is there twice.
  TreeView1_.RemoveBelow(*parent, 0, nodes_.Count(nodes_.ListBelow(*parent)), [&] { nodes_.RemoveChildren(*parent); });
  NodeTable::Children children = nodes_.Sort(FolderEntryNames, FolderEntryAttributes, nodes_.Checked(*parent));
  if (children.nodes.empty()) return;
  const int last = static_cast<int>(children.nodes.size()) - 1;
  TreeView1_.InsertBelow(*parent, 0, static_cast<int>(children.nodes.size()),
                         [&] { nodes_.SetChildren(*parent, std::move(children)); });
  // As much of the folder as fits, but never without the folder itself: the next click may be meant for it.
  TreeView1_.EnsureVisible({nodes_.ListBelow(*parent), last});
  TreeView1_.EnsureVisible(*parent);
  if (count > kManyEntries) ShowTooManyEntries();
}

void FolderTree::ShowTooManyEntries() {
  services::ShowError(
      services_.dialogs(), services_.forms().at(0),
      tr("Treeview Warning: The Microsoft limit of 32,767 folders and files that can be shown at one time, has been "
         "exceeded.\r\nThe Tree view behavior is unpredictable when this limit is exceeded.\r\nTo recover: Click "
         "'Collapse All', then open only the folder(s) you need."));
}

// --- Opening and closing

void FolderTree::ToggleFolderNode(const std::optional<std::string>& key) {
  const ui::CommandScope scope;
  if (!key) {
    services_.dialogs().ShowMessage(services_.forms().at(0),
                                    {.text = tr("no Selection to enumerate"), .icon = ui::Icon::kNone});
    return;
  }
  Report(*key, ToggleNode(*key));
}

files::Status FolderTree::ToggleNode(const std::string& key) {
  const auto place = nodes_.Find(key);
  if (!place) return {};
  const TreeImage image = nodes_.Image(*place);
  files::Status status;
  if (image == TreeImage::kRoot) {
    ChangeDirectory(TreeRoot);
    status = RefreshNode(key);
  } else if (image != TreeImage::kLeaf) {
    nodes_.SetImage(*place, image == TreeImage::kClosed ? TreeImage::kOpen : TreeImage::kClosed);
    TreeView1_.ShowImageChanged(*place);
    status = RefreshNode(key);
  }
  ui::LetPendingEventsRun();
  return status;
}

void FolderTree::RefreshFolderNode(const std::string& key) {
  const ui::CommandScope scope;
  Report(key, RefreshNode(key));
}

// The same node is selected afterwards, or the nearest one above it that is there.
files::Status FolderTree::RefreshNode(const std::string& key) {
  const ui::Hourglass hourglass;
  const auto selected = SelectedKey();
  auto node = nodes_.Find(key);
  if (!node) return {};
  const bool root = *node == NodeTable::kRoot;
  if (root) {
    ClearNodes();
    ClearFolderLists();
    AddFolderNodes(TreeRoot);
    TreeView1_.SelectItem(NodeTable::kRoot);
  } else {
    const int children = nodes_.Count(nodes_.ListBelow(*node));
    TreeView1_.RemoveBelow(*node, 0, children, [&] { nodes_.RemoveChildren(*node); });
  }
  const bool lists = root || ImageOf(key) == TreeImage::kOpen;
  files::Status status;
  if (lists) status = ListFolder(root ? std::string() : key);
  if (!status && !root) CloseNode(key);
  if (lists && !FolderEntryNames.empty()) {
    AddFolderNodes(key);
    ClearFolderLists();
    ui::LetPendingEventsRun();
  } else {
    EnsureVisible(key);
  }
  if (selected && !root && SelectedKey() != selected) SelectNearest(*selected);
  return root ? status : files::Status();
}

// What could not be read is not shown as an empty folder.
void FolderTree::CloseNode(const std::string& key) {
  const auto place = nodes_.Find(key);
  if (!place) return;
  nodes_.SetImage(*place, TreeImage::kClosed);
  TreeView1_.ShowImageChanged(*place);
}

// --- Commands on folders

void FolderTree::mnuTreeDirChg_Click() {
  const ui::CommandScope scope;
  if (const auto selected = SelectedKey()) {
    const std::string folder = FolderOf(*selected);
    ChangeDirectory(folder);
    ImageOf(folder) == TreeImage::kOpen ? RefreshFolderNode(folder) : ToggleFolderNode(folder);
  }
  TreeView1_.setFocus();
}

void FolderTree::mnuTreeCollapseAll_Click() {
  const ui::CommandScope scope;
  const std::string before = CurDir();
  if (nodes_.empty()) {
    Drive1_Change();
  } else if (const files::Status status = ToggleNode(TreeRoot); !status) {
    return FallBackToRoot(status.error());
  }
  EnsureVisible(CurDir());
  ChangeDirectory(before);
  TreeView1_.setFocus();
}

void FolderTree::mnuTreeRefresh_Click() {
  const ui::CommandScope scope;
  if (const auto selected = SelectedKey()) {
    std::string folder = FolderOf(*selected);
    while (!IsRoot(folder) && (ImageOf(folder) != TreeImage::kOpen || !files::GetAttributes(folder)))
      folder = ParentOf(folder);
    RefreshFolderNode(folder);
  }
  TreeView1_.setFocus();
}

void FolderTree::mnuTreeClearSelections_Click() {
  nodes_.UncheckAll();
  TreeView1_.ShowAllChanged();
  TreeView1_.setFocus();
}

void FolderTree::mnuTreeExplore_Click() {
  if (const auto selected = SelectedKey()) services_.shell().Open(FolderOf(*selected));
}

}  // namespace foldertree
