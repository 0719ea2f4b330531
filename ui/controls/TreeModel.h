// Shows a tree source to the toolkit.
#pragma once

#include "ui/controls/TreeSource.h"

#include <QAbstractItemModel>

#include <functional>
#include <optional>

namespace ui {

class TreeModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  using QAbstractItemModel::QAbstractItemModel;

  void SetSource(TreeSource* source);
  QModelIndex IndexOf(TreePlace place) const { return createIndex(place.row, 0, static_cast<quintptr>(place.list)); }
  static TreePlace PlaceOf(const QModelIndex& index) {
    return {static_cast<TreeList>(index.internalId()), index.row()};
  }

  // What changes the source goes through these.
  void Reset(const std::function<void()>& change);
  void Insert(TreePlace below, int first, int count, const std::function<void()>& change);
  void Remove(TreePlace below, int first, int count, const std::function<void()>& change);
  void ShowChanged(TreePlace place);
  // Many changes in one go. `placeAfter`: where what was there is then, if it still is.
  void Rearrange(const std::function<void()>& change,
                 const std::function<std::optional<TreePlace>(TreePlace)>& placeAfter);

  // Renames as a user does.
  void SetRename(std::function<void(const QString&)> rename) { rename_ = std::move(rename); }

  QModelIndex index(int row, int column, const QModelIndex& parent) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent) const override;
  int columnCount(const QModelIndex&) const override { return 1; }
  bool hasChildren(const QModelIndex& parent) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 private:
  TreeList ListBelow(const QModelIndex& parent) const;

  TreeSource* source_ = nullptr;
  std::function<void(const QString&)> rename_;
};

}  // namespace ui
