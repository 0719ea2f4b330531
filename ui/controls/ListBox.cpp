#include "ui/controls/ListBox.h"

#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/controls/FocusFrame.h"
#include "ui/editing/exchange/DroppedFiles.h"

#include <QAbstractListModel>
#include <QApplication>
#include <QDrag>
#include <QHelpEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QTimer>
#include <QToolTip>

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace ui {

class ListBox::Model : public QAbstractListModel {
 public:
  using QAbstractListModel::QAbstractListModel;

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(lines.size());
  }
  QVariant data(const QModelIndex& index, int role) const override {
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
    return shown(lines[static_cast<size_t>(index.row())].text);
  }
  void Replace(std::vector<ListLine> with) {
    beginResetModel();
    lines = std::move(with);
    rows_.clear();
    known_ = 0;
    endResetModel();
  }
  void Append(ListLine line) {
    beginInsertRows({}, rowCount(), rowCount());
    lines.push_back(std::move(line));
    endInsertRows();
  }
  void SetText(int row, std::string text) {
    lines[static_cast<size_t>(row)].text = std::move(text);
    Q_EMIT dataChanged(index(row), index(row));
  }

  int RowOf(int64_t data) const {
    for (; known_ < lines.size(); ++known_) rows_.emplace(lines[known_].data, static_cast<int>(known_));
    const auto found = rows_.find(data);
    return found == rows_.end() ? rowCount() : found->second;
  }

  std::vector<ListLine> lines;
  QString (*shown)(std::string_view) = ShortDisplayText;

 private:
  mutable std::unordered_map<int64_t, int> rows_;  // of the lines before known_, by their data
  mutable size_t known_ = 0;
};

ListBox::ListBox(QWidget* parent) : QListView(parent), model_(new Model(this)) {
  setModel(model_);
  setUniformItemSizes(true);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setTabKeyNavigation(false);
  setTextElideMode(Qt::ElideMiddle);
  setAcceptDrops(true);
  viewport()->setAcceptDrops(true);
  KeepFocusFrameInPlace(*this);
}

ListBox::~ListBox() = default;

int ListBox::count() const {
  return model_->rowCount();
}
const ListLine& ListBox::line(int index) const {
  return model_->lines[static_cast<size_t>(index)];
}
int ListBox::LineOf(int64_t number) const {
  return model_->RowOf(number);
}
void ListBox::ShowTextsBy(QString (*shown)(std::string_view)) {
  model_->shown = shown;
}

void ListBox::SetLines(std::vector<ListLine> lines) {
  model_->Replace(std::move(lines));
  if (count() > 0) SetListIndex(0);
}
void ListBox::Append(ListLine line) {
  model_->Append(std::move(line));
}
void ListBox::SetText(int index, std::string text) {
  model_->SetText(index, std::move(text));
}

int ListBox::ListIndex() const {
  return currentIndex().row();
}
void ListBox::SetListIndex(int index) {
  selectionModel()->setCurrentIndex(model_->index(index), QItemSelectionModel::NoUpdate);
}
bool ListBox::Selected(int index) const {
  return selectionModel()->isSelected(model_->index(index));
}
void ListBox::Select(int index, bool on) {
  selectionModel()->select(model_->index(index), on ? QItemSelectionModel::Select : QItemSelectionModel::Deselect);
}
void ListBox::SelectToo(std::vector<int> lines) {
  std::sort(lines.begin(), lines.end());
  QItemSelection stretches;
  for (size_t first = 0, next = 0; first < lines.size(); first = next) {
    next = first + 1;
    while (next < lines.size() && lines[next] <= lines[next - 1] + 1) ++next;
    stretches.append({model_->index(lines[first]), model_->index(lines[next - 1])});
  }
  selectionModel()->select(stretches, QItemSelectionModel::Select);
}
int ListBox::SelCount() const {
  int selected = 0;
  for (const QItemSelectionRange& range : selectionModel()->selection()) selected += range.height();
  return selected;
}

std::vector<int> ListBox::SelectedLines() const {
  std::vector<int> lines;
  for (const QItemSelectionRange& range : selectionModel()->selection())
    for (int i = range.top(); i <= range.bottom(); ++i) lines.push_back(i);
  std::sort(lines.begin(), lines.end());
  return lines;
}

void ListBox::SelectOnly(int index) {
  selectionModel()->setCurrentIndex(model_->index(index), QItemSelectionModel::ClearAndSelect);
}
void ListBox::SelectFrom(int first) {
  selectionModel()->clearSelection();
  if (first >= count()) return;
  selectionModel()->select({model_->index(first), model_->index(count() - 1)}, QItemSelectionModel::Select);
  if (ListIndex() < first) SetListIndex(count() - 1);
}

int ListBox::ItemFromPoint(const QPoint& point) const {
  if (!viewport()->rect().contains(point)) return count();
  const QModelIndex hit = indexAt(point);
  return hit.isValid() ? hit.row() : count() - 1;  // below the last line
}

void ListBox::SetFontSize(double points) {
  QFont sized = font();
  sized.setPointSizeF(points);
  setFont(sized);
}

// --- Events

void ListBox::paintEvent(QPaintEvent* event) {
  QListView::paintEvent(event);
  PaintFocusFrame(*this);
}

bool ListBox::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::ToolTip) return ShowToolTip(*static_cast<QHelpEvent*>(event));
  return QListView::viewportEvent(event);
}

bool ListBox::ShowToolTip(const QHelpEvent& event) {
  const int line = ItemFromPoint(event.pos());
  const QString text = line >= 0 && line < count() && toolTip_ ? toolTip_(line) : QString();
  const QRect place = visualRect(indexAt(event.pos()));  // none below the last line
  QToolTip::showText(event.globalPos(), PlainToolTip(text), viewport(), place);
  return true;
}

// A press with a modifier only arms a drag; let go before the pointer has moved it is the ordinary click.
void ListBox::mousePressEvent(QMouseEvent* event) {
  dragging_ = false;
  armed_.reset();
  if (event->button() == Qt::RightButton) return;  // contextMenuEvent does it
  const bool modified = event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
  if (event->button() == Qt::LeftButton && modified && dragFiles_) {
    armed_.reset(event->clone());
    return;
  }
  QListView::mousePressEvent(event);
}

void ListBox::mouseMoveEvent(QMouseEvent* event) {
  if (!armed_) return QListView::mouseMoveEvent(event);
  if ((event->pos() - armed_->pos()).manhattanLength() >= QApplication::startDragDistance()) StartDrag();
}

void ListBox::mouseReleaseEvent(QMouseEvent* event) {
  if (const auto press = std::exchange(armed_, nullptr)) QListView::mousePressEvent(press.get());
  QListView::mouseReleaseEvent(event);
}

void ListBox::mouseDoubleClickEvent(QMouseEvent* event) {
  dragging_ = false;
  armed_.reset();
  if (event->button() != Qt::LeftButton || !indexAt(event->pos()).isValid()) return;
  AfterThisEvent([this] { Q_EMIT Opened(); });
}

void ListBox::contextMenuEvent(QContextMenuEvent* event) {
  dragging_ = false;
  const QPoint position = event->pos();
  if (event->reason() == QContextMenuEvent::Mouse) {
    const int under = ItemFromPoint(position);
    if (under < 0 || under >= count()) return;
    Select(under, true);
    SetListIndex(under);
    Q_EMIT MenuRequested(viewport()->mapToGlobal(position));
  } else {
    RequestMenuByKey();
  }
}

// In view, also when the line has been scrolled out of it.
void ListBox::RequestMenuByKey() {
  if (ListIndex() < 0) return;
  Select(ListIndex(), true);
  scrollTo(currentIndex());
  const QRect seen = visualRect(currentIndex()) & viewport()->rect();
  Q_EMIT MenuRequested(viewport()->mapToGlobal(seen.center()));
}

void ListBox::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Delete && event->isAutoRepeat()) return;
  deletePressed_.reset();
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    dragging_ = false;
    Q_EMIT Opened();
  } else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
    RequestMenuByKey();  // the toolkit knows the menu key alone, which many keyboards do not have
  } else if (event->key() == Qt::Key_Delete) {
    deletePressed_ = event->modifiers() & Qt::ShiftModifier;
  } else {
    QListView::keyPressEvent(event);
  }
}

void ListBox::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Delete) return QListView::keyReleaseEvent(event);
  if (event->isAutoRepeat()) return;
  // A key that was pressed elsewhere deletes nothing here. Shift counts as it was then: it may be let go first.
  if (const auto shift = std::exchange(deletePressed_, std::nullopt)) Q_EMIT Deleted(*shift);
}

void ListBox::focusInEvent(QFocusEvent* event) {
  QListView::focusInEvent(event);
  viewport()->update();  // the base class repaints the lines, which may be none
  // A press selects by itself.
  if (event->reason() != Qt::MouseFocusReason) Q_EMIT FocusGained();
}

void ListBox::focusOutEvent(QFocusEvent* event) {
  QListView::focusOutEvent(event);
  viewport()->update();
  deletePressed_.reset();
  // A menu or another window in front is no other pane.
  const Qt::FocusReason reason = event->reason();
  if (reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason || reason == Qt::ActiveWindowFocusReason)
    return;
  Q_EMIT FocusLost();
}

// --- Drag and drop

void ListBox::StartDrag() {
  armed_.reset();
  auto files = MimeDataOfFiles(dragFiles_());
  if (!HoldsFiles(*files)) return;
  dragging_ = true;
  auto* drag = new QDrag(this);
  drag->setMimeData(files.release());
  drag->exec(Qt::CopyAction);
  dragging_ = false;
}

void ListBox::Answer(QDropEvent& event) const {
  event.setDropAction(Qt::CopyAction);
  event.setAccepted(holdsFiles_ && !dragging_ && event.source() != this && event.possibleActions() & Qt::CopyAction);
}

// The source is asked for its data once, not at each move.
void ListBox::dragEnterEvent(QDragEnterEvent* event) {
  holdsFiles_ = HoldsFiles(*event->mimeData());
  Answer(*event);
}

void ListBox::dragMoveEvent(QDragMoveEvent* event) {
  Answer(*event);
}

void ListBox::dropEvent(QDropEvent* event) {
  const std::vector<std::string> files = FilesOf(*event->mimeData());
  holdsFiles_ = !files.empty();
  Answer(*event);
  if (!event->isAccepted()) return;
  AfterThisEvent([this, files] { Q_EMIT FilesDropped(files); });
}

// The event may have come in the middle of a command.
void ListBox::AfterThisEvent(std::function<void()> call) {
  QTimer::singleShot(0, this, [this, call = std::move(call)] { AfterCommand(this, call); });
}

}  // namespace ui
