#include "project/ItemTable.h"

#include "files/Attributes.h"

#include <algorithm>

namespace project {

void ItemTable::Clear() {
  items_.assign(1, {});
  byKey_.clear();
  indexed_ = 0;
}

void ItemTable::Append(std::string entry) {
  items_.push_back(std::move(entry));
}

void ItemTable::Replace(size_t index, std::string entry) {
  items_[index] = std::move(entry);
  if (index <= indexed_) byKey_.emplace(files::PathKey(items_[index]), index);
}

void ItemTable::Remove(const std::vector<bool>& marked) {
  size_t kept = 0;
  for (size_t i = 0; i < items_.size(); ++i) {
    if (i > 0 && marked[i]) continue;
    if (kept != i) items_[kept] = std::move(items_[i]);
    ++kept;
  }
  items_.resize(kept);
  byKey_.clear();
  indexed_ = 0;
}

std::vector<size_t> ItemTable::Find(const std::string& path) const {
  for (; indexed_ < Highest(); ++indexed_) byKey_.emplace(files::PathKey(items_[indexed_ + 1]), indexed_ + 1);
  std::vector<size_t> found;
  const auto [first, last] = byKey_.equal_range(files::PathKey(path));
  for (auto it = first; it != last; ++it)
    if (files::SamePath(items_[it->second], path)) found.push_back(it->second);
  std::ranges::sort(found);
  found.erase(std::ranges::unique(found).begin(), found.end());
  return found;
}

}  // namespace project
