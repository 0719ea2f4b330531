// Finding and bulk replacement over a content.
#pragma once

#include "text/Content.h"
#include "text/Document.h"

#include <atomic>
#include <optional>
#include <string_view>
#include <vector>

namespace text {

struct SearchOptions {
  bool matchCase = true;   // off: Unicode simple case folding
  bool wholeWord = false;  // no word character directly before or behind the match
};

// True for letters, digits, marks, connector punctuation (Unicode), and so for "_".
bool IsWordCharacter(char32_t c);

// A prepared needle. The needle is UTF-16 as the control's surface gives it: a CR LF, CR or LF in it matches any
// spelling of a line break. An empty needle matches nowhere.
class Searcher {
 public:
  Searcher(std::u16string_view needle, SearchOptions options);
  ~Searcher();
  Searcher(Searcher&&) noexcept;

  // The first match that begins at or after `start` and ends at or before `limit`. `cancel`, when given, is looked at
  // every few milliseconds; a cancelled search finds nothing.
  std::optional<Range> FindNext(const Content& content, Units start, Units limit,
                                const std::atomic<bool>* cancel = nullptr) const;

  struct Replaced {
    Content content;
    int64_t count = 0;
    Change change;  // covers all replacements
  };
  // Replaces every match in the range, left to right; inserted text is not searched. After a match the search goes on
  // `gap` units behind its end. Replacements take the format of the first replaced character. The result is built in
  // one pass. Nothing when cancelled.
  std::optional<Replaced> ReplaceAll(const Content& content, Range range, std::string_view replacementBytes,
                                     Units gap = Units(0), const std::atomic<bool>* cancel = nullptr) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace text
