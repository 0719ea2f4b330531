#include "ui/controls/ChoiceList.h"

#include "ui/PathText.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>
#include <QToolTip>

#include <algorithm>

namespace ui {
namespace {

constexpr size_t kMostCopied = 16000;

// As wide as the list: the first line's width would be every line's.
class Lines : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return {1, QStyledItemDelegate::sizeHint(option, index).height()};
  }
  // Every text in the direction of its own.
  QString displayText(const QVariant& value, const QLocale&) const override {
    const QString text = value.toString();
    return text.isRightToLeft() ? QChar(0x2067) + text + QChar(0x2069) : text;
  }
};

std::string WithoutTabs(std::string_view line) {
  std::string shown(line);
  std::ranges::replace(shown, '\t', ' ');
  return shown;
}

}  // namespace

ChoiceList::ChoiceList(QWidget* parent) : ListBox(parent) {
  setSelectionMode(QAbstractItemView::SingleSelection);
  setTextElideMode(Qt::ElideRight);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setItemDelegate(new Lines(this));
  ShowTextsBy([](std::string_view line) {
    return line.size() <= kMostCopied ? ShortDisplayText(WithoutTabs(line)) : ShortDisplayText(line);
  });
  setAcceptDrops(false);
  viewport()->setAcceptDrops(false);
}

void ChoiceList::SetLines(std::vector<ListLine> lines) {
  ListBox::SetLines(std::move(lines));
  selectionModel()->clearCurrentIndex();
}

QString ChoiceList::DisplayText(std::string_view line) {
  return ui::DisplayText(WithoutTabs(line));
}

int ChoiceList::Choice() const {
  const std::vector<int> selected = SelectedLines();
  return selected.empty() ? -1 : selected.front();
}

void ChoiceList::Choose(int index) {
  SelectOnly(index);
}

void ChoiceList::ScrollToTop(int index) {
  scrollTo(model()->index(index, 0), QAbstractItemView::PositionAtTop);
}

bool ChoiceList::viewportEvent(QEvent* event) {
  // Below the last line there is nothing to tell.
  if (event->type() == QEvent::ToolTip && !indexAt(static_cast<QHelpEvent*>(event)->pos()).isValid()) {
    QToolTip::hideText();
    return true;
  }
  return ListBox::viewportEvent(event);
}

void ChoiceList::mousePressEvent(QMouseEvent* event) {
  const int before = Choice();
  ListBox::mousePressEvent(event);
  if (event->button() == Qt::LeftButton && before >= 0 && before == Choice() && indexAt(event->pos()).row() == before)
    Q_EMIT Picked();
}

void ChoiceList::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() != QContextMenuEvent::Mouse && ListIndex() >= 0) return ListBox::contextMenuEvent(event);
  const QPoint position = event->reason() == QContextMenuEvent::Mouse ? event->pos() : QPoint();
  const QModelIndex under = indexAt(position);
  if (under.isValid()) {
    const QScopedValueRollback byRightButton(byRightButton_, true);
    Choose(under.row());
  }
  Q_EMIT MenuRequested(viewport()->mapToGlobal(position));
}

void ChoiceList::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    Q_EMIT CopyRequested();
  } else if (event->key() == Qt::Key_Down && Choice() < 0 && ListIndex() >= 0) {
    Choose(ListIndex());  // the focus has come to a line that nobody chose
  } else {
    ListBox::keyPressEvent(event);
  }
}

void ChoiceList::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
  ListBox::selectionChanged(selected, deselected);
  if (!selected.isEmpty() && !byRightButton_) Q_EMIT Picked();
}

}  // namespace ui
