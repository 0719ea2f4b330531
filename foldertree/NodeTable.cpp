#include "foldertree/NodeTable.h"

#include "files/Attributes.h"
#include "files/CurrentDirectory.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace foldertree {
namespace {

using ui::TreeImage;
using ui::TreeList;
using ui::TreePlace;

// What the entries of a folder are sorted by; the bytes decide between names that differ by case alone.
struct SortKey {
  std::string folded;
  std::string_view bytes;

  explicit SortKey(std::string_view name) : folded(files::NameKey(name)), bytes(name) {}
  auto operator<=>(const SortKey&) const = default;
};

std::string_view NameIn(const std::string& names, const NodeTable::Node& node) {
  return std::string_view(names).substr(node.nameAt, node.nameSize);
}

// The part of the path below the root's, without a separator at its beginning; nothing when it is not below it.
std::optional<std::string_view> Below(std::string_view path, std::string_view root) {
  if (!path.starts_with(root)) return std::nullopt;
  path.remove_prefix(root.size());
  if (path.empty() || root.ends_with('/')) return path;
  if (!path.starts_with('/')) return std::nullopt;
  return path.substr(1);
}

}  // namespace

int NodeTable::Count(TreeList list) const {
  const auto found = lists_.find(list);
  return found == lists_.end() ? 0 : static_cast<int>(found->second.nodes.size());
}

TreePlace NodeTable::PlaceOf(TreeList list) const {
  return ListAt(list).place;
}

std::string_view NodeTable::Text(TreePlace place) const {
  const List& list = ListAt(place.list);
  return NameIn(list.names, list.nodes[static_cast<size_t>(place.row)]);
}

std::string NodeTable::Key(TreePlace place) const {
  std::vector<std::string_view> parts = {Text(place)};
  for (; place.list != ui::kTopList; parts.push_back(Text(place))) place = Parent(place);
  std::string key(parts.back());
  for (size_t i = parts.size() - 1; i-- > 0;) key = files::JoinPath(std::move(key), parts[i]);
  return key;
}

std::optional<TreePlace> NodeTable::Find(std::string_view key) const {
  if (empty()) return std::nullopt;
  std::optional<std::string_view> rest = Below(key, Text(kRoot));
  if (!rest) return std::nullopt;
  TreePlace place = kRoot;
  while (!rest->empty()) {
    const std::string_view name = rest->substr(0, rest->find('/'));
    const std::optional<int> row = FindChild(ListBelow(place), name);
    if (!row) return std::nullopt;
    place = {ListBelow(place), *row};
    rest->remove_prefix(std::min(name.size() + 1, rest->size()));
  }
  return place;
}

std::optional<int> NodeTable::FindChild(TreeList listNumber, std::string_view name) const {
  if (listNumber == ui::kNoList) return std::nullopt;
  const List& list = ListAt(listNumber);
  const std::string folded = files::NameKey(name);
  const auto keyOf = [&](const Node& node) { return files::NameKey(NameIn(list.names, node)); };
  const auto alike = std::ranges::equal_range(list.nodes, folded, {}, keyOf);
  const auto rowOf = [&](auto node) { return static_cast<int>(node - list.nodes.begin()); };
  for (auto node = alike.begin(); node != alike.end(); ++node)
    if (NameIn(list.names, *node) == name) return rowOf(node);
  const std::string folder = alike.empty() ? std::string() : Key(list.place);
  for (auto node = alike.begin(); node != alike.end(); ++node)
    if (files::SamePath(files::JoinPath(folder, NameIn(list.names, *node)), files::JoinPath(folder, name)))
      return rowOf(node);
  return std::nullopt;
}

std::vector<std::string> NodeTable::CheckedKeys() const {
  std::vector<std::pair<uint64_t, std::string>> found;
  for (const auto& [number, list] : lists_) {
    std::optional<std::string> folder;  // made once for all of its entries
    for (const Node& node : list.nodes) {
      if (!node.checked) continue;
      if (!folder) folder = number == ui::kTopList ? std::string() : Key(list.place);
      const std::string_view name = NameIn(list.names, node);
      found.emplace_back(node.number, folder->empty() ? std::string(name) : files::JoinPath(*folder, name));
    }
  }
  std::ranges::sort(found, {}, &std::pair<uint64_t, std::string>::first);
  std::vector<std::string> keys;
  keys.reserve(found.size());
  for (auto& [number, key] : found) keys.push_back(std::move(key));
  return keys;
}

void NodeTable::Clear() {
  lists_.clear();
  count_ = 0;
}

void NodeTable::SetRoot(const std::string& key) {
  List& top = lists_[ui::kTopList];
  top.names = key;
  top.nodes = {{.number = ++lastNumber_, .nameSize = static_cast<uint16_t>(key.size()), .image = TreeImage::kRoot}};
  count_ = 1;
}

void NodeTable::UncheckAll() {
  for (auto& [number, list] : lists_)
    for (Node& node : list.nodes) node.checked = false;
}

NodeTable::Children NodeTable::Sort(const std::vector<std::string>& names, const std::vector<int>& attributes,
                                    bool checked) {
  std::vector<SortKey> keys;
  keys.reserve(names.size());
  for (const std::string& name : names) keys.emplace_back(name);
  std::vector<uint32_t> order(names.size());
  std::iota(order.begin(), order.end(), 0u);
  std::ranges::sort(order, {}, [&](uint32_t i) -> const SortKey& { return keys[i]; });
  Children children;
  children.nodes.reserve(names.size());
  for (size_t i = 0; i < order.size(); ++i) {
    const std::string& name = names[order[i]];
    // A folder that changes while it is read may give a name twice.
    if (i > 0 && name == names[order[i - 1]]) continue;
    if (name.size() > std::numeric_limits<uint16_t>::max()) continue;
    const bool folder = attributes[order[i]] & files::kDirectory;
    children.nodes.push_back({.number = lastNumber_ + order[i] + 1,
                              .nameAt = static_cast<uint32_t>(children.names.size()),
                              .nameSize = static_cast<uint16_t>(name.size()),
                              .image = folder ? TreeImage::kClosed : TreeImage::kLeaf,
                              .checked = !folder && checked});
    children.names += name;
  }
  lastNumber_ += names.size();
  return children;
}

void NodeTable::SetChildren(TreePlace folder, Children children) {
  const TreeList number = ++lastList_;
  At(folder).below = number;
  count_ += children.nodes.size();
  lists_[number] = {folder, std::move(children.nodes), std::move(children.names)};
}

int NodeTable::RowFor(TreePlace folder, std::string_view name) const {
  if (ListBelow(folder) == ui::kNoList) return 0;
  const List& list = ListAt(ListBelow(folder));
  const auto keyOf = [&](const Node& node) { return SortKey(NameIn(list.names, node)); };
  return static_cast<int>(std::ranges::lower_bound(list.nodes, SortKey(name), {}, keyOf) - list.nodes.begin());
}

void NodeTable::AddFolder(TreePlace folder, int row, std::string_view name) {
  if (ListBelow(folder) == ui::kNoList) SetChildren(folder, {});
  List& list = lists_.at(ListBelow(folder));
  list.nodes.insert(list.nodes.begin() + row, {.number = ++lastNumber_,
                                               .nameAt = static_cast<uint32_t>(list.names.size()),
                                               .nameSize = static_cast<uint16_t>(name.size()),
                                               .image = TreeImage::kClosed});
  list.names += name;
  ++count_;
  Renumber(list, static_cast<size_t>(row));
}

void NodeTable::Remove(TreeList number, const std::vector<int>& rows) {
  if (rows.empty()) return;
  for (const int row : rows) RemoveChildren({number, row});
  std::vector<Node>& nodes = lists_.at(number).nodes;
  auto going = rows.begin();
  auto kept = nodes.begin() + *going;
  for (auto node = kept; node != nodes.end(); ++node) {
    if (going != rows.end() && node - nodes.begin() == *going) {
      ++going;
    } else {
      *kept++ = *node;
    }
  }
  nodes.erase(kept, nodes.end());
  count_ -= rows.size();
  Renumber(lists_.at(number), static_cast<size_t>(rows.front()));
}

// Tells the lists below the nodes that have moved.
void NodeTable::Renumber(List& list, size_t from) {
  for (size_t row = from; row < list.nodes.size(); ++row)
    if (list.nodes[row].below != ui::kNoList) lists_.at(list.nodes[row].below).place.row = static_cast<int>(row);
}

void NodeTable::RemoveChildren(TreePlace folder) {
  std::vector<TreeList> going = {std::exchange(At(folder).below, ui::kNoList)};
  while (!going.empty()) {
    const TreeList number = going.back();
    going.pop_back();
    if (number == ui::kNoList) continue;
    for (const Node& node : ListAt(number).nodes) going.push_back(node.below);
    count_ -= ListAt(number).nodes.size();
    lists_.erase(number);
  }
}

}  // namespace foldertree
