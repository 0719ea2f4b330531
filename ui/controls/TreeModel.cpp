#include "ui/controls/TreeModel.h"

#include "ui/PathText.h"
#include "ui/controls/Icons.h"

#include <array>

namespace ui {
namespace {

const QIcon& IconOf(TreeImage image) {
  static const std::array<QIcon, 4> icons = {ThemedIcon("tree-root"), ThemedIcon("tree-closed"),
                                             ThemedIcon("tree-open"), ThemedIcon("tree-leaf")};
  return icons[static_cast<size_t>(image)];
}

}  // namespace

void TreeModel::SetSource(TreeSource* source) {
  beginResetModel();
  source_ = source;
  endResetModel();
}

void TreeModel::Reset(const std::function<void()>& change) {
  beginResetModel();
  change();
  endResetModel();
}

void TreeModel::Insert(TreePlace below, int first, int count, const std::function<void()>& change) {
  if (count == 0) return change();
  beginInsertRows(IndexOf(below), first, first + count - 1);
  change();
  endInsertRows();
}

void TreeModel::Remove(TreePlace below, int first, int count, const std::function<void()>& change) {
  if (count == 0) return change();
  beginRemoveRows(IndexOf(below), first, first + count - 1);
  change();
  endRemoveRows();
}

void TreeModel::ShowChanged(TreePlace place) {
  Q_EMIT dataChanged(IndexOf(place), IndexOf(place));
}

void TreeModel::Rearrange(const std::function<void()>& change,
                          const std::function<std::optional<TreePlace>(TreePlace)>& placeAfter) {
  Q_EMIT layoutAboutToBeChanged();
  change();
  const QModelIndexList before = persistentIndexList();
  QModelIndexList after;
  after.reserve(before.size());
  for (const QModelIndex& index : before) {
    const auto place = placeAfter(PlaceOf(index));
    after.push_back(place ? IndexOf(*place) : QModelIndex());
  }
  changePersistentIndexList(before, after);
  Q_EMIT layoutChanged();
}

TreeList TreeModel::ListBelow(const QModelIndex& parent) const {
  if (!source_) return kNoList;
  return parent.isValid() ? source_->ListBelow(PlaceOf(parent)) : kTopList;
}

QModelIndex TreeModel::index(int row, int column, const QModelIndex& parent) const {
  const TreeList list = ListBelow(parent);
  if (list == kNoList || column != 0 || row < 0 || row >= source_->Count(list)) return {};
  return IndexOf({list, row});
}

QModelIndex TreeModel::parent(const QModelIndex& child) const {
  const TreeList list = child.isValid() ? PlaceOf(child).list : kTopList;
  return list == kTopList ? QModelIndex() : IndexOf(source_->PlaceOf(list));
}

int TreeModel::rowCount(const QModelIndex& parent) const {
  const TreeList list = ListBelow(parent);
  return list == kNoList ? 0 : source_->Count(list);
}

// What is in a closed folder is not known before it is opened.
bool TreeModel::hasChildren(const QModelIndex& parent) const {
  return rowCount(parent) > 0 || (parent.isValid() && source_->Image(PlaceOf(parent)) == TreeImage::kClosed);
}

Qt::ItemFlags TreeModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const bool leaf = source_->Image(PlaceOf(index)) == TreeImage::kLeaf;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable | Qt::ItemIsEditable |
         (leaf ? Qt::ItemNeverHasChildren : Qt::NoItemFlags);
}

QVariant TreeModel::data(const QModelIndex& index, int role) const {
  const TreePlace place = PlaceOf(index);
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
      return ShortDisplayText(source_->Text(place));
    case Qt::EditRole:
      return DisplayText(source_->Text(place));
    case Qt::DecorationRole:
      return IconOf(source_->Image(place));
    case Qt::CheckStateRole:
      return source_->Checked(place) ? Qt::Checked : Qt::Unchecked;
    default:
      return {};
  }
}

bool TreeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role == Qt::CheckStateRole) {
    source_->SetChecked(PlaceOf(index), value.toInt() == Qt::Checked);
    Q_EMIT dataChanged(index, index, {role});
    return true;
  }
  if (role != Qt::EditRole || !rename_) return false;
  rename_(value.toString());
  return true;
}

}  // namespace ui
