// Which paragraphs of a text are written as a table's: those of whole rows.
#pragma once

#include "text/FormatTable.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace text::rtf {

// Paragraphs are added in their order, then asked for in the same order.
class RtfRowPlan {
 public:
  // The next `count` paragraphs have this format.
  void Add(const FormatTable& formats, ParaFormatId format, int64_t count);
  void Finish() { EndStretch(); }

  bool Contains(int64_t paragraph);
  // The row to define where one begins at this paragraph; nothing when only tables in tables follow.
  std::optional<RowId> RowAt(int64_t paragraph);

 private:
  struct Stretch {
    int64_t first = 0, last = 0;
  };
  struct Outer {
    int64_t paragraph = 0;
    RowId row = RowId::kNone;
  };

  void EndStretch();

  int64_t added_ = 0;
  int64_t first_ = -1, lastEnd_ = -1;  // of the stretch under way
  bool rowBegins_ = true;
  std::optional<int64_t> unknown_;  // where a row began whose definition has not come yet
  std::vector<Stretch> stretches_;
  std::vector<Outer> outers_;
  size_t nextStretch_ = 0, nextOuter_ = 0;
};

}  // namespace text::rtf
