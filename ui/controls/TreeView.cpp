#include "ui/controls/TreeView.h"

#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/controls/FocusFrame.h"
#include "ui/controls/TreeModel.h"

#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QTimer>
#include <QToolTip>

#include <utility>

namespace ui {
namespace {

constexpr int kIndentation = 16;  // pixels; the pane is narrow

}  // namespace

TreeView::TreeView(QWidget* parent) : QTreeView(parent), model_(new TreeModel(this)) {
  setModel(model_);
  setHeaderHidden(true);
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  header()->setResizeContentsPrecision(0);  // what is seen; looking at every node would take its time
  setUniformRowHeights(true);
  setTabKeyNavigation(false);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setExpandsOnDoubleClick(false);
  setItemsExpandable(false);
  setRootIsDecorated(false);
  setIndentation(kIndentation);
  setTextElideMode(Qt::ElideMiddle);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  model_->SetRename([this](const QString& text) { TakeLabel(text); });
}

TreeView::~TreeView() = default;

void TreeView::SetSource(TreeSource* source) {
  source_ = source;
  model_->SetSource(source);
}

void TreeView::Reset(const std::function<void()>& change) {
  model_->Reset(change);
  expand(model_->index(0, 0, {}));
}

void TreeView::InsertBelow(TreePlace node, int first, int count, const std::function<void()>& change) {
  model_->Insert(node, first, count, change);
  expand(model_->IndexOf(node));
}

void TreeView::RemoveBelow(TreePlace node, int first, int count, const std::function<void()>& change) {
  model_->Remove(node, first, count, change);
}

void TreeView::ShowChanged(TreePlace node) {
  model_->ShowChanged(node);
}

void TreeView::ShowAllChanged() {
  viewport()->update();
}

std::optional<TreePlace> TreeView::SelectedItem() const {
  if (!currentIndex().isValid()) return std::nullopt;
  return TreeModel::PlaceOf(currentIndex());
}

void TreeView::SelectItem(TreePlace node) {
  setCurrentIndex(model_->IndexOf(node));
}

void TreeView::EnsureVisible(TreePlace node) {
  scrollTo(model_->IndexOf(node));
}

std::optional<TreePlace> TreeView::NodeAt(const QPoint& point) const {
  const QModelIndex index = indexAt(point);
  if (!index.isValid()) return std::nullopt;
  return TreeModel::PlaceOf(index);
}

void TreeView::SetFontSize(double points) {
  QFont sized = font();
  sized.setPointSizeF(points);
  setFont(sized);
}

// --- Changing a name in place

void TreeView::StartLabelEdit() {
  if (!currentIndex().isValid() || state() == EditingState) return;
  newLabel_.reset();
  setFocus();
  Q_EMIT LabelEditBegins();
  edit(currentIndex());
}

// What is around the part that was changed keeps its bytes, though they may show as something else.
void TreeView::TakeLabel(const QString& text) {
  newLabel_ = EditedName(source_->Text(TreeModel::PlaceOf(currentIndex())), text);
}

void TreeView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  QTreeView::closeEditor(editor, hint);
  if (const auto label = std::exchange(newLabel_, std::nullopt)) {
    AfterThisEvent([this, label] { Q_EMIT LabelEdited(*label); });
  } else {
    Q_EMIT LabelEditCancelled();
  }
}

// --- Events

void TreeView::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  PaintFocusFrame(*this);
}

// Lines are at least as wide as the pane.
void TreeView::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  header()->setMinimumSectionSize(viewport()->width());
}

bool TreeView::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QTreeView::viewportEvent(event);
  ShowToolTip(*static_cast<QHelpEvent*>(event));
  return true;
}

// The text of a node that does not fit.
void TreeView::ShowToolTip(const QHelpEvent& event) {
  const QModelIndex index = indexAt(event.pos());
  const QRect place = visualRect(index);
  const bool fits = viewport()->rect().left() <= place.left() && place.right() <= viewport()->rect().right();
  const QString text = index.isValid() && !fits ? index.data().toString() : QString();
  QToolTip::showText(event.globalPos(), PlainToolTip(text), viewport(), place);
}

bool TreeView::IsOnArrow(const QModelIndex& index, const QPoint& point) const {
  if (!index.isValid() || !model_->hasChildren(index)) return false;
  const QRect text = visualRect(index);
  if (isRightToLeft()) return point.x() > text.right() && point.x() <= text.right() + indentation();
  return point.x() < text.left() && point.x() >= text.left() - indentation();
}

void TreeView::mousePressEvent(QMouseEvent* event) {
  pressed_ = QModelIndex();
  if (event->button() == Qt::RightButton) return;  // contextMenuEvent does it
  const QModelIndex index = indexAt(event->pos());
  if (event->button() == Qt::LeftButton && IsOnArrow(index, event->pos()))
    return EmitFor(index, &TreeView::ToggleWanted);
  QTreeView::mousePressEvent(event);
  if (event->button() == Qt::LeftButton && visualRect(index).contains(event->pos())) pressed_ = index;
}

void TreeView::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() == Qt::NoButton) QTreeView::mouseMoveEvent(event);
}

void TreeView::mouseReleaseEvent(QMouseEvent* event) {
  const QPersistentModelIndex index = std::exchange(pressed_, QModelIndex());
  const QVariant before = index.data(Qt::CheckStateRole);
  QTreeView::mouseReleaseEvent(event);
  clicked_ = index;
  const bool there = index.isValid() && indexAt(event->pos()) == index && visualRect(index).contains(event->pos());
  if (there && index.data(Qt::CheckStateRole) == before) EmitFor(index, &TreeView::NodeClicked);
}

// Only where the first click was: what that one did may have brought another node under the pointer.
void TreeView::mouseDoubleClickEvent(QMouseEvent* event) {
  const QModelIndex index = indexAt(event->pos());
  if (event->button() != Qt::LeftButton) return;
  if (!index.isValid() || index != clicked_) return mousePressEvent(event);
  AfterThisEvent([this] { Q_EMIT DoubleClicked(); });
}

void TreeView::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() != QContextMenuEvent::Mouse) return RequestMenuByKey();
  const QModelIndex index = indexAt(event->pos());
  if (!index.isValid()) return;
  setCurrentIndex(index);
  Q_EMIT MenuRequested(viewport()->mapToGlobal(event->pos()));
}

void TreeView::RequestMenuByKey() {
  if (!currentIndex().isValid()) return;
  scrollTo(currentIndex());
  const QRect seen = visualRect(currentIndex()) & viewport()->rect();
  Q_EMIT MenuRequested(viewport()->mapToGlobal(seen.center()));
}

// The arrow keys open and close folders, and go up and down between the levels.
bool TreeView::ToggleByKey(int key) {
  const QModelIndex index = currentIndex();
  if (!index.isValid()) return false;
  if (isRightToLeft() && (key == Qt::Key_Left || key == Qt::Key_Right))
    key = key == Qt::Key_Left ? Qt::Key_Right : Qt::Key_Left;
  const TreeImage image = source_->Image(TreeModel::PlaceOf(index));
  const bool opens = (key == Qt::Key_Right || key == Qt::Key_Plus) && image == TreeImage::kClosed;
  const bool closes = (key == Qt::Key_Left || key == Qt::Key_Minus) && image == TreeImage::kOpen;
  if (opens || closes) {
    EmitFor(index, &TreeView::ToggleWanted);
  } else if (key == Qt::Key_Right && model_->rowCount(index) > 0) {
    setCurrentIndex(model_->index(0, 0, index));
  } else if (key == Qt::Key_Left && index.parent().isValid()) {
    setCurrentIndex(index.parent());
  } else {
    return key == Qt::Key_Left || key == Qt::Key_Right;
  }
  return true;
}

void TreeView::keyPressEvent(QKeyEvent* event) {
  const int key = event->key();
  const bool plain = !(event->modifiers() & ~Qt::KeypadModifier);
  if (key == Qt::Key_Return || key == Qt::Key_Enter) {
    Q_EMIT EnterPressed();
  } else if (key == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
    RequestMenuByKey();
  } else if (key == Qt::Key_F5 && plain) {
    Q_EMIT RefreshPressed();
  } else if (key == Qt::Key_Delete || key == Qt::Key_Asterisk) {
    // When it is let go; and the toolkit would open all folders for the other.
  } else if (key == Qt::Key_Space && currentIndex().isValid()) {
    const bool checked = source_->Checked(TreeModel::PlaceOf(currentIndex()));
    model_->setData(currentIndex(), checked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
  } else if (!plain || !ToggleByKey(key)) {
    QTreeView::keyPressEvent(event);
  }
}

void TreeView::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Delete) return QTreeView::keyReleaseEvent(event);
  if (!event->isAutoRepeat()) Q_EMIT Deleted(event->modifiers() & Qt::ShiftModifier);
}

// The base class repaints the lines, which may be none.
void TreeView::focusInEvent(QFocusEvent* event) {
  QTreeView::focusInEvent(event);
  viewport()->update();
}

void TreeView::focusOutEvent(QFocusEvent* event) {
  QTreeView::focusOutEvent(event);
  viewport()->update();
}

// The event may have come in the middle of a command.
void TreeView::AfterThisEvent(std::function<void()> call) {
  QTimer::singleShot(0, this, [this, call = std::move(call)] { AfterCommand(this, call); });
}

void TreeView::EmitFor(const QModelIndex& index, void (TreeView::*signal)(TreePlace)) {
  AfterThisEvent([this, signal, index = QPersistentModelIndex(index)] {
    if (index.isValid()) Q_EMIT(this->*signal)(TreeModel::PlaceOf(index));
  });
}

}  // namespace ui
