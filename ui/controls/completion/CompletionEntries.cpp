#include "ui/controls/completion/CompletionEntries.h"

namespace ui {

CompletionEntries::CompletionEntries(std::vector<QString> entries) : entries_(std::move(entries)) {
  folded_.reserve(entries_.size());
  for (size_t i = 0; i < entries_.size(); ++i) {
    folded_.push_back(entries_[i].toCaseFolded());
    if (entries_[i].size() > entries_[static_cast<size_t>(longest_)].size()) longest_ = static_cast<int>(i);
  }
}

std::vector<int> CompletionEntries::BeginningWith(const QString& text) const {
  const QString folded = text.toCaseFolded();
  std::vector<int> found;
  for (size_t i = 0; i < folded_.size(); ++i)
    if (folded_[i].startsWith(folded)) found.push_back(static_cast<int>(i));
  return found;
}

}  // namespace ui
