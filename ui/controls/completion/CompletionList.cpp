#include "ui/controls/completion/CompletionList.h"

#include "ui/PathText.h"

#include <QAbstractListModel>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>

namespace ui {
namespace {

constexpr int kMostRows = 10;

// Each entry begins at the side its text begins at.
class ByDirection final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    option->direction = option->text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
    option->displayAlignment = Qt::AlignLeft | Qt::AlignVCenter;  // mirrored with the direction
    option->state |= QStyle::State_Active;  // the box has the focus, but it is here that something is chosen
  }
};

}  // namespace

class CompletionList::Model final : public QAbstractListModel {
 public:
  using QAbstractListModel::QAbstractListModel;

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(rows.size());
  }
  QVariant data(const QModelIndex& index, int role) const override {
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
    return ShortDisplayText(QString(TextOf(index.row())).replace(QLatin1Char('\t'), QLatin1Char(' ')).toStdString());
  }
  const QString& TextOf(int row) const {
    return entries->entries()[static_cast<size_t>(rows[static_cast<size_t>(row)])];
  }
  void Replace(std::shared_ptr<const CompletionEntries> with, std::vector<int> shown) {
    beginResetModel();
    entries = std::move(with);
    rows = std::move(shown);
    endResetModel();
  }

  std::shared_ptr<const CompletionEntries> entries = std::make_shared<CompletionEntries>();
  std::vector<int> rows;
};

CompletionList::CompletionList(QWidget* parent) : QListView(parent), model_(new Model(this)) {
  setModel(model_);
  setItemDelegate(new ByDirection(this));
  setObjectName(QStringLiteral("Combo1List"));
  setAccessibleName(tr("Entries"));
  setUniformItemSizes(true);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setTextElideMode(Qt::ElideRight);
  setFrameStyle(static_cast<int>(QFrame::Box) | static_cast<int>(QFrame::Plain));
  setFocusPolicy(Qt::NoFocus);
  verticalScrollBar()->setFocusPolicy(Qt::NoFocus);
  hide();
}

CompletionList::~CompletionList() = default;

void CompletionList::Show(std::shared_ptr<const CompletionEntries> entries, std::vector<int> rows) {
  if (entries == model_->entries && rows == model_->rows) return Choose(-1);
  model_->Replace(std::move(entries), std::move(rows));
  scrollToTop();
}

int CompletionList::count() const {
  return model_->rowCount();
}
int CompletionList::Chosen() const {
  return currentIndex().row();
}
QString CompletionList::ChosenText() const {
  return Chosen() < 0 ? QString() : model_->TextOf(Chosen());
}
void CompletionList::Choose(int row) {
  selectionModel()->setCurrentIndex(model_->index(row), QItemSelectionModel::ClearAndSelect);
  if (row >= 0) scrollTo(model_->index(row));
}

int CompletionList::WantedHeight() const {
  return std::min(count(), kMostRows) * sizeHintForRow(0) + 2 * frameWidth();
}

int CompletionList::RowsOfAPage() const {
  return std::max(1, viewport()->height() / std::max(1, sizeHintForRow(0)));
}

int CompletionList::WantedWidth() const {
  const auto& entries = model_->entries->entries();
  if (entries.empty()) return 0;
  constexpr int kMost = 200;  // more is cut off anyway
  const QString longest = entries[static_cast<size_t>(model_->entries->longest())].left(kMost);
  const int beside = verticalScrollBar()->sizeHint().width() + 4 * fontMetrics().averageCharWidth() + 2 * frameWidth();
  return fontMetrics().horizontalAdvance(longest) + beside;
}

void CompletionList::Place(const QRect& box, bool above) {
  const QSize parent = parentWidget()->size();
  const int room = std::max(sizeHintForRow(0), above ? box.top() : parent.height() - box.bottom() - 1);
  // To the right as far as there is room.
  const int most = std::max(box.width(), std::min(2 * box.width(), parent.width() - box.left()));
  const int width = std::clamp(WantedWidth(), box.width(), most);
  const int height = std::min(WantedHeight(), room);
  const int left = std::max(0, std::min(box.left(), parent.width() - width));
  setGeometry(left, above ? box.top() - height : box.bottom() + 1, width, height);
}

void CompletionList::mousePressEvent(QMouseEvent* event) {
  const QModelIndex hit = indexAt(event->position().toPoint());
  if (event->button() == Qt::LeftButton && hit.isValid()) Q_EMIT Clicked(hit.row());
}

void CompletionList::mouseDoubleClickEvent(QMouseEvent* event) {
  const QModelIndex hit = indexAt(event->position().toPoint());
  if (event->button() == Qt::LeftButton && hit.isValid()) Q_EMIT DoubleClicked(hit.row());
}

}  // namespace ui
