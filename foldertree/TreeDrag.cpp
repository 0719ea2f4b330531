#include "foldertree/TreeDrag.h"

#include "services/Messages.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/operations/FileOperations.h"

#include <utility>

namespace foldertree {

using ui::TreePlace;

namespace {

constexpr int kTopBand = 200 / 15, kBottomBand = 450 / 15;  // pixels
constexpr int kBetweenSteps = 200;                          // milliseconds

}  // namespace

TreeDrag::TreeDrag(services::Services& services, FolderTree& tree, TreeFiles& files)
    : services_(services), tree_(tree), files_(files) {
  Timer2_.setSingleShot(true);
  Timer2_.setInterval(kBetweenSteps);
  connect(&Timer2_, &QTimer::timeout, this, [this] { Guarded([this] { Timer2_Tick(); }); });
  ui::TreeView& view = tree_.view();
  view.SetDragFiles([this](int effects) {
    std::vector<std::string> dragged;
    Guarded([&] { dragged = FilesOfDrag(effects); });
    return dragged;
  });
  view.SetDropOffer([this](std::optional<TreePlace> node, const QPoint& point) {
    ui::TreeView::DropOffer offer;
    Guarded([&] { offer = DraggedOver(node, point); });
    return offer;
  });
  connect(&view, &ui::TreeView::DragEnded, this, [this] { Guarded([this] { DragEnded(); }); });
  connect(&view, &ui::TreeView::DragLeft, &Timer2_, &QTimer::stop);
  connect(&view, &ui::TreeView::FilesDropped, this,
          [this](const ui::TreeView::Drop& drop) { Guarded([&] { TakeDrop(drop); }); });
}

TreeDrag::~TreeDrag() {
  tree_.view().SetDragFiles({});
  tree_.view().SetDropOffer({});
}

// --- Out of the tree

std::vector<std::string> TreeDrag::FilesOfDrag(int effects) {
  TreeDragEffects = effects;
  return files_.CheckedOrSelected();
}

// What was moved away is no longer shown.
void TreeDrag::DragEnded() {
  TreeDragEffects = 0;
  files_.PruneMissingCheckedNodes();
}

// --- Over it

// A file stands for its folder, which is asked about, and is not shown as a target itself.
ui::TreeView::DropOffer TreeDrag::DraggedOver(std::optional<TreePlace> node, const QPoint& point) {
  ScrollAt(point);
  if (!node) return {};
  tree_.view().EnsureVisible(*node);
  const bool dragged = TreeDragEffects != 0 && tree_.Nodes().Checked(*node);
  return {!dragged, !dragged && tree_.Nodes().Image(*node) != ui::TreeImage::kLeaf};
}

void TreeDrag::ScrollAt(const QPoint& point) {
  const int height = tree_.view().viewport()->height();
  dragPoint_ = point;
  scrollsUp_ = point.y() < kTopBand;
  const bool inBand = point.y() >= 0 && point.y() <= height && (scrollsUp_ || point.y() > height - kBottomBand);
  if (!inBand) return Timer2_.stop();
  if (!Timer2_.isActive()) Timer2_.start();
}

void TreeDrag::Timer2_Tick() {
  const auto node = tree_.view().NodeAt(dragPoint_);
  if (!node) return;
  if (const auto next = scrollsUp_ ? NextUp(*node) : NextDown(*node)) tree_.view().EnsureVisible(*next);
}

std::optional<TreePlace> TreeDrag::NextDown(TreePlace node) const {
  const NodeTable& nodes = tree_.Nodes();
  if (nodes.Count(nodes.ListBelow(node)) > 0) return TreePlace{nodes.ListBelow(node), 0};
  for (; node != NodeTable::kRoot; node = nodes.Parent(node))
    if (node.row + 1 < nodes.Count(node.list)) return TreePlace{node.list, node.row + 1};
  return std::nullopt;
}

std::optional<TreePlace> TreeDrag::NextUp(TreePlace node) const {
  const NodeTable& nodes = tree_.Nodes();
  if (node == NodeTable::kRoot) return std::nullopt;
  if (node.row == 0) return nodes.Parent(node);
  const TreePlace previous{node.list, node.row - 1};
  const int below = nodes.Count(nodes.ListBelow(previous));
  return below > 0 ? TreePlace{nodes.ListBelow(previous), below - 1} : previous;
}

// --- Onto it

void TreeDrag::TakeDrop(const ui::TreeView::Drop& drop) {
  const ui::CommandScope scope;
  Timer2_.stop();
  const std::string folder = tree_.FolderOf(drop.target);
  if (!tree_.Exists(folder)) return;
  if (tree_.IsFolder(drop.target) || MayCopyBeside(drop.target)) Carry(drop, folder);
  tree_.view().setFocus();
  if (!tree_.Exists(folder)) return;
  tree_.ImageOf(folder) == ui::TreeImage::kOpen ? tree_.RefreshFolderNode(folder) : tree_.ToggleFolderNode(folder);
  ui::LetPendingEventsRun();
  if (drop.own) files_.PruneMissingCheckedNodes();
}

bool TreeDrag::MayCopyBeside(const std::string& file) {
  const auto place = tree_.Nodes().Find(tree_.ParentOf(file));
  const QString name = place ? ui::ShortDisplayText(tree_.Nodes().Text(*place)) : QString();
  return services_.dialogs().ShowMessage(services_.forms().at(0),
                                         {tr("Folder: %1\r\n\r\nDo you want to copy to the above folder?").arg(name),
                                          ui::Buttons::kYesNo, ui::Icon::kInformation}) == ui::Answer::kYes;
}

void TreeDrag::Carry(const ui::TreeView::Drop& drop, const std::string& folder) {
  tree_.EnsureVisible(folder);
  ui::FileOperations& operations = services_.fileOperations();
  ui::Form* const owner = services_.forms().at(0);
  // Another program was told that its files are copied, so it does nothing itself.
  const ui::FileOperations::Result result = !drop.move ? operations.Copy(owner, drop.files, folder)
                                            : drop.own ? operations.Move(owner, drop.files, folder)
                                                       : operations.CopyThenDelete(owner, drop.files, folder);
  if (result.succeeded() || result.aborted) return;
  services_.dialogs().ShowMessage(owner, {.text = QString::number(result.error), .icon = ui::Icon::kNone});
}

}  // namespace foldertree
