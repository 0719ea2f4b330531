// Tables: the definition of a row as its words give it, and which paragraphs are in which row.
#pragma once

#include "text/FormatTable.h"
#include "text/rtfsyntax/RtfKeywords.h"
#include "text/rtfsyntax/RtfLimits.h"
#include "text/rtfsyntax/RtfTokenizer.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace text::rtf {

// From \trowd on. Holds for every row that ends before the next \trowd.
class RowDefinition {
 public:
  void Begin();
  void Word(const Keyword& word, int32_t number, Color color);  // the colour of that number
  // The words as they were read, for a writer.
  void Record(const Token& token);
  // The row; `cells` is how many it has if none is defined.
  RowId Id(FormatTable& formats, uint8_t level, int64_t cells);
  // What comes behind a row's end without a \trowd defines another.
  void End() { ended_ = true; }

 private:
  struct Cell {
    TableCell cell;
    uint8_t said = 0;  // sides about which something was said
    std::optional<Color> back, pattern;
    int32_t patternShare = 0;  // of 10000
  };

  void EndCell(int32_t edge);
  void SetBorder(bool on);
  TableRow Row(uint8_t level, int64_t cells) const;

  TableRow row_;
  std::vector<uint8_t> said_;  // per cell
  Cell cell_;
  uint8_t rowBorders_ = 0;
  uint8_t* bordersAtHand_ = nullptr;  // what the next style of a border is about
  uint8_t sideAtHand_ = 0;
  std::array<std::optional<RowId>, kMaxTableLevel + 1> ids_;  // by level
  bool ended_ = false;
};

// Rows under way, by the level of their table. A paragraph's row is known for certain only when the row ends, since a
// definition may stand behind its cells; what was given before is then put right.
class RtfRows {
 public:
  struct Given {
    int64_t number = 0;  // of the break
    RowId row = RowId::kNone;
    RowMark mark = RowMark::kNone;
  };

  explicit RtfRows(FormatTable& formats) : formats_(formats) {}

  RowDefinition& definition(bool nested) { return definitions_[nested]; }
  bool any() const { return deepest_ > 0; }

  // The format of a paragraph that ends with a break of this number; level 0 is outside of all tables.
  ParaFormatId AtBreak(ParaFormatId paragraph, uint8_t level, int64_t number);
  // The same for a break that ends a cell. Past kMaxCells it ends none.
  ParaFormatId AtCell(ParaFormatId paragraph, uint8_t level, int64_t number, bool inTable);
  // The same for one that ends a row; it may have been given as that of a cell before.
  ParaFormatId AtRow(ParaFormatId paragraph, uint8_t level, int64_t number);
  // What to put right, in ascending order.
  std::vector<Given> Finish();

 private:
  struct Row {
    bool marked = false;  // its paragraphs say that they are in a table
    int64_t cells = 0;
    std::vector<Given> breaks;  // of its paragraphs, with what they were given
  };

  void Open(uint8_t level);
  void CloseAbove(uint8_t level);
  void EndDeepest();
  void GiveUpDeepest();
  void MoveBreaks(Row& row, Row& around);
  ParaFormatId InRow(ParaFormatId paragraph, uint8_t level, int64_t number, RowMark mark);

  FormatTable& formats_;
  std::array<RowDefinition, 2> definitions_;  // of tables, of tables in tables
  std::array<Row, kMaxTableLevel + 1> rows_;  // 0 is none
  uint8_t deepest_ = 0;                       // level of the deepest row under way
  std::vector<Given> fixes_;
};

}  // namespace text::rtf
