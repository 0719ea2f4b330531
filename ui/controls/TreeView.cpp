#include "ui/controls/TreeView.h"

#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/controls/FocusFrame.h"
#include "ui/controls/TreeModel.h"
#include "ui/editing/exchange/DroppedFiles.h"

#include <QApplication>
#include <QDrag>
#include <QHeaderView>
#include <QHelpEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QTimer>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace ui {
namespace {

constexpr int kIndentation = 16;  // pixels; the pane is narrow

// GTK offers nothing but moving while Shift is held. The toolkit turns an answer that is not among the offered actions
// into one that is; the mask of all actions it lets pass, and sends as "copy".
constexpr Qt::DropAction kCopyNotOffered = Qt::ActionMask;

bool Moves(const QDropEvent& event) {
  return event.modifiers() & Qt::ShiftModifier && event.possibleActions() & Qt::MoveAction;
}

}  // namespace

TreeView::TreeView(QWidget* parent) : QTreeView(parent), model_(new TreeModel(this)) {
  setModel(model_);
  setHeaderHidden(true);
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(QHeaderView::Fixed);  // FitColumn sets it
  setUniformRowHeights(true);
  setTabKeyNavigation(false);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setExpandsOnDoubleClick(false);
  setItemsExpandable(false);
  setRootIsDecorated(false);
  setIndentation(kIndentation);
  KeepFocusFrameInPlace(*this);
  setTextElideMode(Qt::ElideMiddle);
  setAcceptDrops(true);
  viewport()->setAcceptDrops(true);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  model_->SetRename([this](const QString& text) { TakeLabel(text); });
}

TreeView::~TreeView() = default;

void TreeView::SetSource(TreeSource* source) {
  source_ = source;
  model_->SetSource(source);
}

void TreeView::Reset(const std::function<void()>& change) {
  widest_ = 0;
  model_->Reset(change);
  expand(model_->index(0, 0, {}));
}

void TreeView::InsertBelow(TreePlace node, int first, int count, const std::function<void()>& change) {
  model_->Insert(node, first, count, change);
  expand(model_->IndexOf(node));
}

void TreeView::RemoveBelow(TreePlace node, int first, int count, const std::function<void()>& change) {
  widest_ = 0;
  // Of an open node without children the toolkit shows no arrow when it is closed later.
  if (count == model_->rowCount(model_->IndexOf(node))) collapse(model_->IndexOf(node));
  model_->Remove(node, first, count, change);
}

void TreeView::Rearrange(const std::function<void()>& change,
                         const std::function<std::optional<TreePlace>(TreePlace)>& placeAfter) {
  widest_ = 0;
  model_->Rearrange(change, placeAfter);
}

void TreeView::ShowChanged(TreePlace node) {
  model_->ShowChanged(node);
}

void TreeView::ShowImageChanged(TreePlace node) {
  model_->ShowChanged(node);
  scheduleDelayedItemsLayout();
}

// Only what is seen, which is what others may have been told of.
void TreeView::ShowAllChanged() {
  const int bottom = viewport()->height();
  for (QModelIndex index = indexAt({0, 0}); index.isValid(); index = indexBelow(index)) {
    model_->ShowChanged(TreeModel::PlaceOf(index));
    if (visualRect(index).bottom() >= bottom) break;
  }
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
  widest_ = 0;
}

// --- Changing a name in place

void TreeView::StartLabelEdit() {
  if (!currentIndex().isValid() || state() == EditingState) return;
  newLabel_.reset();
  oldLabel_ = source_->Text(TreeModel::PlaceOf(currentIndex()));
  setFocus();
  Q_EMIT LabelEditBegins();
  edit(currentIndex());
  editor_ = indexWidget(currentIndex());
}

// What is around the part that was changed keeps its bytes, though they may show as something else.
void TreeView::TakeLabel(const QString& text) {
  if (editor_) newLabel_ = EditedName(oldLabel_, text);
}

void TreeView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  // Hiding the editor takes its focus, which would end it once more.
  const bool ends = editor && editor_ == editor;
  if (ends) editor_.clear();
  const auto label = std::exchange(newLabel_, std::nullopt);
  // The Tab key would begin another edit, which nobody has prepared.
  const bool toAnother = hint == QAbstractItemDelegate::EditNextItem || hint == QAbstractItemDelegate::EditPreviousItem;
  QTreeView::closeEditor(editor, toAnother ? QAbstractItemDelegate::NoHint : hint);
  if (!ends) return;
  if (label) {
    AfterThisEvent([this, label] { Q_EMIT LabelEdited(*label); });
  } else {
    Q_EMIT LabelEditCancelled();
  }
}

// --- Events

void TreeView::paintEvent(QPaintEvent* event) {
  MeasureSeenLines();
  QTreeView::paintEvent(event);
  PaintFocusFrame(*this);
  if (!highlighted_.isValid()) return;
  QPainter painter(viewport());
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.drawRect(visualRect(highlighted_).adjusted(1, 1, -1, -1));
}

void TreeView::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  FitColumn();
}

// As wide as the widest line that has been seen, and as the pane. It only grows while nodes stay: a width that followed
// what is seen just now would bring the scroll bars to and fro for ever. Looking at every node would take its time.
void TreeView::FitColumn() {
  setColumnWidth(0, std::max(widest_, viewport()->width()));
}

void TreeView::MeasureSeenLines() {
  int widest = widest_;
  const int bottom = viewport()->height();
  for (QModelIndex index = indexAt({0, 0}); index.isValid(); index = indexBelow(index)) {
    int depth = 0;
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) ++depth;
    widest = std::max(widest, depth * indentation() + sizeHintForIndex(index).width());
    if (visualRect(index).bottom() >= bottom) break;
  }
  if (widest != widest_ || (widest < columnWidth(0) && columnWidth(0) > viewport()->width()))
    QTimer::singleShot(0, this, [this] { FitColumn(); });
  widest_ = widest;
}

bool TreeView::viewportEvent(QEvent* event) {
  // While a name is changed the refreshing key would throw away what has been typed.
  if (event->type() == QEvent::ShortcutOverride && editor_ && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F5) {
    event->accept();
    return true;
  }
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

// A press with a modifier only arms a drag; let go before the pointer has moved it is the ordinary click.
void TreeView::mousePressEvent(QMouseEvent* event) {
  pressed_ = QModelIndex();
  armed_.reset();
  if (event->button() == Qt::RightButton) return;  // contextMenuEvent does it
  const QModelIndex index = indexAt(event->pos());
  if (event->button() == Qt::LeftButton && IsOnArrow(index, event->pos()))
    return EmitFor(index, &TreeView::ToggleWanted);
  const bool modified = event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier);
  if (event->button() == Qt::LeftButton && modified && dragFiles_ && index.isValid()) {
    armed_.reset(event->clone());
    pressed_ = index;
    return;
  }
  QTreeView::mousePressEvent(event);
  if (event->button() == Qt::LeftButton && visualRect(index).contains(event->pos())) pressed_ = index;
}

void TreeView::mouseMoveEvent(QMouseEvent* event) {
  if (!armed_) {
    if (event->buttons() == Qt::NoButton) QTreeView::mouseMoveEvent(event);
  } else if ((event->pos() - armed_->pos()).manhattanLength() >= QApplication::startDragDistance()) {
    StartDrag();
  }
}

void TreeView::mouseReleaseEvent(QMouseEvent* event) {
  if (const auto press = std::exchange(armed_, nullptr)) QTreeView::mousePressEvent(press.get());
  const QPersistentModelIndex index = std::exchange(pressed_, QModelIndex());
  const QVariant before = index.data(Qt::CheckStateRole);
  QTreeView::mouseReleaseEvent(event);
  const bool there = index.isValid() && indexAt(event->pos()) == index && visualRect(index).contains(event->pos());
  const bool clicked = there && index.data(Qt::CheckStateRole) == before;  // else it was on the check box
  clicked_ = clicked ? QModelIndex(index) : QModelIndex();
  if (clicked) EmitFor(index, &TreeView::NodeClicked);
}

// Only where the first click was: what that one did may have brought another node under the pointer.
void TreeView::mouseDoubleClickEvent(QMouseEvent* event) {
  const QModelIndex index = indexAt(event->pos());
  if (event->button() != Qt::LeftButton) return;
  if (!index.isValid() || index != clicked_) return mousePressEvent(event);
  EmitFor(index, &TreeView::DoubleClicked);
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
  if (key == Qt::Key_Delete && event->isAutoRepeat()) return;
  deletePressed_.reset();
  if (editor_) return;  // what the field for a name passes on
  const bool plain = !(event->modifiers() & ~Qt::KeypadModifier);
  if (key == Qt::Key_Return || key == Qt::Key_Enter) {
    // The key that ended a change of a name may still be held down.
    if (!event->isAutoRepeat()) Q_EMIT EnterPressed();
  } else if (key == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
    RequestMenuByKey();
  } else if (key == Qt::Key_F5 && plain) {
    Q_EMIT RefreshPressed();
  } else if (key == Qt::Key_Delete) {
    deletePressed_ = event->modifiers() & Qt::ShiftModifier;
  } else if (key == Qt::Key_Asterisk) {
    // The toolkit would open all folders.
  } else if (key == Qt::Key_Space && currentIndex().isValid()) {
    const bool checked = source_->Checked(TreeModel::PlaceOf(currentIndex()));
    model_->setData(currentIndex(), checked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
  } else if (!plain || !ToggleByKey(key)) {
    QTreeView::keyPressEvent(event);
  }
}

void TreeView::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Delete) return QTreeView::keyReleaseEvent(event);
  if (event->isAutoRepeat()) return;
  // A key that was pressed elsewhere, in the field for a name perhaps, deletes nothing here. Shift counts as it was
  // then: it may be let go first.
  const auto shift = std::exchange(deletePressed_, std::nullopt);
  if (shift && !editor_) Q_EMIT Deleted(*shift);
}

// The base class repaints the lines, which may be none.
void TreeView::focusInEvent(QFocusEvent* event) {
  QTreeView::focusInEvent(event);
  viewport()->update();
}

void TreeView::focusOutEvent(QFocusEvent* event) {
  QTreeView::focusOutEvent(event);
  viewport()->update();
  deletePressed_.reset();
}

// --- Drag and drop

void TreeView::StartDrag() {
  const auto press = std::exchange(armed_, nullptr);
  setCurrentIndex(std::exchange(pressed_, QModelIndex()));
  const bool mayMove = press->modifiers() & Qt::ShiftModifier;
  auto files = MimeDataOfFiles(dragFiles_(mayMove ? 3 : 1));
  if (HoldsFiles(*files)) {
    auto* drag = new QDrag(this);
    drag->setMimeData(files.release());
    drag->exec(mayMove ? Qt::CopyAction | Qt::MoveAction : Qt::CopyAction, Qt::CopyAction);
  }
  AfterThisEvent([this] { Q_EMIT DragEnded(); });
}

// The tree may scroll when it is asked, so what was under the pointer is kept.
void TreeView::Offer(const QPoint& point) {
  const QPersistentModelIndex index = indexAt(point);
  DropOffer offer;
  if (holdsFiles_ && dropOffer_)
    offer = dropOffer_(index.isValid() ? std::optional(TreeModel::PlaceOf(index)) : std::nullopt, point);
  offered_ = offer.accepted ? index : QPersistentModelIndex();
  Highlight(offer.highlighted ? QModelIndex(index) : QModelIndex());
}

// A program that would delete what it was told is moved is told that it is copied, also when it has not offered that.
void TreeView::Answer(QDropEvent& event) {
  const bool copies = event.possibleActions() & Qt::CopyAction, moves = Moves(event);
  if (moves && event.source() == this) {
    event.setDropAction(Qt::MoveAction);
  } else {
    event.setDropAction(copies ? Qt::CopyAction : kCopyNotOffered);
  }
  event.setAccepted(offered_.isValid() && (copies || moves));
}

void TreeView::Highlight(const QModelIndex& index) {
  if (highlighted_ == index) return;
  highlighted_ = index;
  viewport()->update();
}

// The source is asked for its data once, not at each move.
void TreeView::dragEnterEvent(QDragEnterEvent* event) {
  holdsFiles_ = HoldsFiles(*event->mimeData());
  Offer(event->position().toPoint());
  Answer(*event);
  if (holdsFiles_) event->accept();  // else no moves are told
}

void TreeView::dragMoveEvent(QDragMoveEvent* event) {
  Offer(event->position().toPoint());
  Answer(*event);
}

void TreeView::dragLeaveEvent(QDragLeaveEvent*) {
  offered_ = QModelIndex();
  Highlight({});
  Q_EMIT DragLeft();
}

void TreeView::dropEvent(QDropEvent* event) {
  Drop drop{.target = {}, .files = FilesOf(*event->mimeData()), .move = Moves(*event), .own = event->source() == this};
  if (drop.files.empty()) offered_ = QModelIndex();
  Answer(*event);
  drop.target = PathOf(offered_);
  offered_ = QModelIndex();
  Highlight({});
  Q_EMIT DragLeft();
  if (event->isAccepted()) AfterThisEvent([this, drop] { Q_EMIT FilesDropped(drop); });
}

std::string TreeView::PathOf(QModelIndex index) const {
  std::string path;
  for (; index.isValid(); index = index.parent()) {
    std::string text(source_->Text(TreeModel::PlaceOf(index)));
    if (!path.empty() && !text.ends_with('/')) text += '/';
    path.insert(0, text);
  }
  return path;
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
