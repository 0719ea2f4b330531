#include "ui/frame/CustomizeForm.h"

#include "ui/controls/DialogControls.h"
#include "ui/controls/Icons.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QVBoxLayout>

namespace ui {
namespace {

constexpr int kSeparatorRow = -1;

int RowOf(const QListWidgetItem& item) {
  return item.data(Qt::UserRole).toInt();
}

}  // namespace

CustomizeForm::CustomizeForm(const ToolBar& bar, QWidget* owner) : ModalForm(owner), bar_(bar) {
  setObjectName(QStringLiteral("CustomizeForm"));
  setWindowTitle(tr("Customize the toolbar"));
  List1_ = new QListWidget(this);
  List1_->setObjectName(QStringLiteral("List1"));
  List1_->setAccessibleName(tr("Buttons and separators"));
  List1_->setDragDropMode(QAbstractItemView::InternalMove);
  List1_->setUniformItemSizes(true);
  cmdUp_ = new Button("cmdUp", tr("Move &up"), [this] { Move(-1); });
  cmdDown_ = new Button("cmdDown", tr("Move &down"), [this] { Move(1); });
  cmdAdd_ = new Button("cmdAdd", tr("Add &separator"), [this] { AddSeparator(); });
  cmdRemove_ = new Button("cmdRemove", tr("&Remove separator"), [this] { RemoveSeparator(); });
  cmdReset_ = new Button("cmdReset", tr("R&eset"), [this] { Fill(bar_.FirstPlaces()); });
  LayOut();
  connect(List1_, &QListWidget::currentRowChanged, this, &CustomizeForm::ShowWhatCanBeDone);
  connect(List1_->model(), &QAbstractItemModel::rowsMoved, this, &CustomizeForm::ShowWhatCanBeDone);
  OnKey(*this, "Alt+Up", [this] { Move(-1); });
  OnKey(*this, "Alt+Down", [this] { Move(1); });
  Fill(bar.places());
  List1_->setFocus();
}

void CustomizeForm::LayOut() {
  auto* side = new QVBoxLayout;
  for (Button* button : {cmdUp_, cmdDown_, cmdAdd_, cmdRemove_, cmdReset_}) {
    button->setAutoDefault(false);
    side->addWidget(button);
  }
  side->addStretch();
  auto* top = new QHBoxLayout;
  top->addWidget(List1_, 1);
  top->addLayout(side);
  auto* Command1 = new Button("Command1", tr("OK"), [this] { accept(); });
  auto* Command2 = new Button("Command2", tr("Cancel"), [this] { reject(); });
  Command1->setDefault(true);
  auto* bottom = new QHBoxLayout;
  bottom->addStretch();
  bottom->addWidget(Command1);
  bottom->addWidget(Command2);
  auto* hint = new Label("Label1", tr("Buttons with a check mark are shown.  Drag them to where they shall stand."));
  auto* all = new QVBoxLayout(this);
  all->addWidget(hint);
  all->addLayout(top);
  all->addLayout(bottom);
  resize(sizeHint().expandedTo({460, 480}));
}

void CustomizeForm::Fill(const std::vector<ToolBarPlace>& places) {
  List1_->clear();
  for (const ToolBarPlace& place : places) List1_->addItem(MakeItem(place));
  List1_->setCurrentRow(0);
}

QListWidgetItem* CustomizeForm::MakeItem(const ToolBarPlace& place) const {
  auto* item = new QListWidgetItem;
  item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
  item->setData(Qt::UserRole, place.row ? static_cast<int>(*place.row) : kSeparatorRow);
  if (!place.row) {
    item->setText(tr("Separator"));
    item->setForeground(palette().brush(QPalette::PlaceholderText));
    return item;
  }
  item->setText(bar_.button(*place.row).toolTip());
  item->setIcon(ThemedIcon(bar_.row(*place.row).icon));
  item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
  item->setCheckState(place.visible ? Qt::Checked : Qt::Unchecked);
  return item;
}

std::vector<ToolBarPlace> CustomizeForm::places() const {
  std::vector<ToolBarPlace> places;
  for (int i = 0; i < List1_->count(); ++i) {
    const QListWidgetItem& item = *List1_->item(i);
    if (RowOf(item) == kSeparatorRow) {
      places.push_back({});
    } else {
      places.push_back({static_cast<size_t>(RowOf(item)), item.checkState() == Qt::Checked});
    }
  }
  return places;
}

void CustomizeForm::Move(int by) {
  const int from = List1_->currentRow(), to = from + by;
  if (from < 0 || to < 0 || to >= List1_->count()) return;
  List1_->insertItem(to, List1_->takeItem(from));
  List1_->setCurrentRow(to);
}

void CustomizeForm::AddSeparator() {
  const int at = List1_->currentRow() + 1;
  List1_->insertItem(at, MakeItem({}));
  List1_->setCurrentRow(at);
}

void CustomizeForm::RemoveSeparator() {
  const QListWidgetItem* item = List1_->currentItem();
  if (item && RowOf(*item) == kSeparatorRow) delete List1_->takeItem(List1_->currentRow());
}

void CustomizeForm::ShowWhatCanBeDone() {
  const int row = List1_->currentRow();
  cmdUp_->setEnabled(row > 0);
  cmdDown_->setEnabled(row >= 0 && row + 1 < List1_->count());
  cmdRemove_->setEnabled(row >= 0 && RowOf(*List1_->item(row)) == kSeparatorRow);
}

}  // namespace ui
