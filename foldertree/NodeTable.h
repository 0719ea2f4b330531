// The nodes of the folder tree. Listed folders hold their entries in one array each, in the order of their texts
// without regard to letter case; a node's key is its path. An entry costs some 24 bytes beside its name.
#pragma once

#include "ui/controls/TreeSource.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace foldertree {

class NodeTable final : public ui::TreeSource {
 public:
  struct Node {
    uint64_t number = 0;  // rises in the order of adding, which is the order of the tree's index
    uint32_t nameAt = 0;
    uint16_t nameSize = 0;
    ui::TreeImage image = ui::TreeImage::kLeaf;
    bool checked = false;
    ui::TreeList below = ui::kNoList;
  };
  // The entries of a folder, sorted but not yet in the tree.
  struct Children {
    std::vector<Node> nodes;
    std::string names;
  };

  // --- TreeSource
  int Count(ui::TreeList list) const override;
  ui::TreeList ListBelow(ui::TreePlace place) const override { return At(place).below; }
  ui::TreePlace PlaceOf(ui::TreeList list) const override;
  std::string_view Text(ui::TreePlace place) const override;
  ui::TreeImage Image(ui::TreePlace place) const override { return At(place).image; }
  bool Checked(ui::TreePlace place) const override { return At(place).checked; }
  void SetChecked(ui::TreePlace place, bool checked) override { At(place).checked = checked; }

  bool empty() const { return count_ == 0; }
  size_t count() const { return count_; }  // of all nodes
  static constexpr ui::TreePlace kRoot{};

  // The node of that path. Letter case counts only where the disk knows two such entries. O(depth * log entries).
  std::optional<ui::TreePlace> Find(std::string_view key) const;
  std::string Key(ui::TreePlace place) const;
  // The folder that holds it; not of the root.
  ui::TreePlace Parent(ui::TreePlace place) const { return PlaceOf(place.list); }
  // The keys of all nodes with a check mark, in the order of the index.
  std::vector<std::string> CheckedKeys() const;

  void Clear();
  void SetRoot(const std::string& key);  // in an empty tree
  void SetImage(ui::TreePlace place, ui::TreeImage image) { At(place).image = image; }
  void UncheckAll();

  // As many nodes as names, less those that are given twice. Files take the check mark.
  Children Sort(const std::vector<std::string>& names, const std::vector<int>& attributes, bool checked);
  // Of a folder without children.
  void SetChildren(ui::TreePlace folder, Children children);
  // The place that a folder of that name would take among the children of `folder`.
  int RowFor(ui::TreePlace folder, std::string_view name) const;
  void AddFolder(ui::TreePlace folder, int row, std::string_view name);
  // Rising rows of one list, with all below them.
  void Remove(ui::TreeList list, const std::vector<int>& rows);
  void RemoveChildren(ui::TreePlace folder);

 private:
  struct List {
    ui::TreePlace place;  // the node whose children it holds
    std::vector<Node> nodes;
    std::string names;
  };

  const List& ListAt(ui::TreeList list) const { return lists_.at(list); }
  const Node& At(ui::TreePlace place) const { return ListAt(place.list).nodes[static_cast<size_t>(place.row)]; }
  Node& At(ui::TreePlace place) { return lists_.at(place.list).nodes[static_cast<size_t>(place.row)]; }
  std::optional<int> FindChild(ui::TreeList list, std::string_view name) const;
  void Renumber(List& list, size_t from);

  std::unordered_map<ui::TreeList, List> lists_;
  ui::TreeList lastList_ = ui::kTopList;
  uint64_t lastNumber_ = 0;
  size_t count_ = 0;
};

}  // namespace foldertree
