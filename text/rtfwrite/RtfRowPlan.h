// Which paragraphs of a text are written as a table's: those of whole rows. What is left of a row, because a part of it
// is not there, is text of the row around it, or of none, as in what is read then.
#pragma once

#include "text/FormatTable.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace text::rtf {

// Paragraphs are added in their order, then asked for in the same order.
class RtfRowPlan {
 public:
  struct Given {
    RowId row = RowId::kNone;
    RowMark mark = RowMark::kNone;
  };

  // The next `count` paragraphs have this format.
  void Add(const FormatTable& formats, ParaFormatId format, int64_t count);
  void Finish() { EndTable(); }

  Given At(int64_t paragraph);
  // The outermost row to define before this paragraph.
  std::optional<RowId> RowAt(int64_t paragraph);
  // Each that is written, in their order; one may come several times.
  std::vector<RowId> Rows() const;

 private:
  struct Paragraph : Given {
    int64_t number = 0;
  };
  struct OpenRow {
    size_t cells = 0;
    std::vector<size_t> paragraphs;  // in paragraphs_
  };
  struct Outer {
    int64_t paragraph = 0;
    RowId row = RowId::kNone;
  };

  void Put(int64_t number, Given given, size_t level);
  void GiveUpAbove(size_t level);
  void EndTable();

  int64_t added_ = 0;
  std::vector<Paragraph> paragraphs_;  // that are in tables
  std::vector<OpenRow> rows_{1};       // by level; 0 is none
  size_t deepest_ = 0;                 // that is open
  size_t begin_ = 0;                   // of the outermost row, in paragraphs_
  std::vector<Outer> outers_;
  size_t next_ = 0, nextOuter_ = 0;
};

}  // namespace text::rtf
