// Finding and bulk replacement over a content. Both work on the bytes, in place where they lie together and gathered
// where an edited text is scattered; they are O(bytes looked at).
#pragma once

#include "text/Content.h"
#include "text/Document.h"

#include <functional>
#include <optional>
#include <string_view>

namespace text {

struct SearchOptions {
  bool matchCase = true;   // off: Unicode simple case folding
  bool wholeWord = false;  // no word character directly before or behind the match
};

// Told every few milliseconds how many bytes have been looked at; false ends the search as cancelled.
using SearchProgress = std::function<bool(int64_t bytes)>;

// True for letters, decimal digits, marks, connector punctuation (Unicode), and so for "_".
bool IsWordCharacter(char32_t c);

// How replacing goes on after a match, and where it ends before the range does.
struct ReplaceRules {
  SurfaceUnits gap;  // from a match's end to where the search goes on, in the old text
  // It ends before a match of protected text or, where there are tables, with a break, and before one whose replacement
  // would make one break of a CR and a LF: there, what comes out depends on how an edit is made.
  bool stopsAtHard = false;
};

// A prepared needle. The needle is UTF-16 as the control's surface gives it: a CR LF, CR or LF in it matches any
// spelling of a line break, but never half of a CR LF; a unit U+DC80 .. U+DCFF matches that stray byte. Matches begin
// and end at characters. An empty needle, or one with half of a surrogate pair, matches nowhere.
class Searcher {
 public:
  Searcher(std::u16string_view needle, SearchOptions options);
  ~Searcher();
  Searcher(Searcher&&) noexcept;
  Searcher& operator=(Searcher&&) noexcept;

  // The first match that begins at or after `start` and ends at or before `limit`. A cancelled search finds nothing.
  std::optional<Range> FindNext(const Content& content, Units start, Units limit,
                                const SearchProgress& progress = {}) const;

  struct Replaced {
    Content content;
    int64_t count = 0;
    Change change;                 // covers all replacements
    Range first;                   // the first match replaced
    std::optional<Range> stopped;  // the match it ended before, in the old text
  };
  // Replaces every match in the range, left to right; inserted text is not searched. A replacement takes the format
  // of the first replaced character, as new text has it, and its breaks the format of the paragraph in which the match
  // begins. The result is built in one pass. Nothing when cancelled. Throws std::bad_alloc when the result would not
  // fit into the free memory.
  std::optional<Replaced> ReplaceAll(const Content& content, Range range, std::string_view replacementBytes,
                                     const ReplaceRules& rules = {}, const SearchProgress& progress = {}) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace text
