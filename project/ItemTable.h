// The entries of the project, found by their path.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace project {

// Element 0 is the tooltip of the list's first line, elements 1 .. Highest() are entries.
class ItemTable {
 public:
  size_t Highest() const { return items_.size() - 1; }
  const std::string& operator[](size_t index) const { return items_[index]; }

  // Element 0 empty and no entries.
  void Clear();
  void SetTooltip(std::string text) { items_.front() = std::move(text); }
  void Append(std::string entry);
  void Replace(size_t index, std::string entry);  // 1 .. Highest()
  // Takes the marked entries away; the others keep their order. marked[i] is of element i.
  void Remove(const std::vector<bool>& marked);

  // The entries that are the same path, in rising order.
  std::vector<size_t> Find(const std::string& path) const;

 private:
  std::vector<std::string> items_ = {{}};
  // Index of the entries 1 .. indexed_ by the path without letter case. What is found is compared again, so a
  // replaced entry may stay in it.
  mutable std::unordered_multimap<std::string, size_t> byKey_;
  mutable size_t indexed_ = 0;
};

}  // namespace project
