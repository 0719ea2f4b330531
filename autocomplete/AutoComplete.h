// The words that are offered, and whether they are.
#pragma once

#include "services/Services.h"
#include "ui/controls/completion/CompletionEntries.h"

#include <memory>
#include <string>

namespace autocomplete {

class AutoComplete {
 public:
  explicit AutoComplete(services::Services& services);

  // In file order, never empty: without a word file the one character with code 0, after an error its text, and 999
  // empty entries of a file without any. Shared by all lists.
  const std::shared_ptr<const ui::CompletionEntries>& AutoCompleteWords() const { return AutoCompleteWords_; }
  const std::string& AutoCompleteFile() const { return services_.settings().AutoTagFile; }
  bool AutoCompleteOn() const { return AutoCompleteOn_; }

  // What the settings want, once they have been read.
  void StartUp();
  void mnuOpenAutoComplete_Click();
  void mnuAutoCompleteToggle_Click();

 private:
  void LoadAutoCompleteFile(const files::Path& path);
  void SetWords(std::vector<QString> words);
  bool noFileLoaded() const;

  services::Services& services_;
  std::shared_ptr<const ui::CompletionEntries> AutoCompleteWords_;
  bool AutoCompleteOn_ = false;
};

}  // namespace autocomplete
