// What Replace All makes of one text: the result of the loop "find, replace, find on", but in few passes. Pure, for any
// thread.
#pragma once

#include "text/Document.h"
#include "text/search/Search.h"

#include <QString>

#include <memory>
#include <optional>
#include <string>

namespace search {

// A search step begins one unit behind the caret, and two where the step before has left the caret.
constexpr int64_t NextStart(int64_t selStart, int64_t lastFound, bool newSearch) {
  return selStart + (selStart == lastFound && !newSearch ? 1 : 0) + 1;
}

// Positions are surface units.
struct Loop {
  text::Content content;
  int64_t selStart = 0;
  int64_t lastFound = 0;
  bool newSearch = false;
  std::optional<text::Range> replaceFirst = {};  // replaced before the search begins, and not counted
};

struct LoopResult {
  text::Content content;
  int64_t count = 0;
  text::Change change;                        // covers all that is different
  text::Range first;                          // what the first edit replaced
  std::optional<text::Range> selection = {};  // nothing: it has not been moved
  std::optional<int64_t> lastFound = {};      // nothing: no match
};

class ReplaceRun {
 public:
  // The options are those of ui::RichTextBox::Find. New line breaks take the given spelling.
  ReplaceRun(const QString& needle, int options, const QString& replacement, text::LineEnd lineEnd);

  // Runs until there is no further match. What the editor would refuse stays and is not counted. Nothing when
  // cancelled.
  std::optional<LoopResult> Run(const Loop& loop, const text::SearchProgress& progress) const;

 private:
  class State;

  text::Searcher searcher_;
  std::string replacement_;
  text::SurfaceUnits length_;  // of the replacement
};

}  // namespace search
