// The entries that completion lists offer: made once, shared by all of them.
#pragma once

#include <QString>

#include <vector>

namespace ui {

// Texts as the editor's: a stray byte of a file is one unit U+DC80 .. U+DCFF.
class CompletionEntries {
 public:
  CompletionEntries() = default;
  explicit CompletionEntries(std::vector<QString> entries);

  const std::vector<QString>& entries() const { return entries_; }
  int longest() const { return longest_; }  // the index of the one with most units; 0 when there is none
  // The entries that begin with the text, whatever the case, in their order. O(all of them).
  std::vector<int> BeginningWith(const QString& text) const;

 private:
  std::vector<QString> entries_, folded_;
  int longest_ = 0;
};

}  // namespace ui
