#include "text/rtf/RtfRows.h"

#include "text/rtfsyntax/RtfLimits.h"

#include <algorithm>
#include <utility>

namespace text::rtf {

namespace {

constexpr int32_t kWholePattern = 10000;
constexpr int32_t kUsualWidth = 9000;  // of a table without edges

uint32_t Mixed(uint32_t back, uint32_t front, int32_t share, int shift) {
  const int64_t a = back >> shift & 0xFF, b = front >> shift & 0xFF;
  return static_cast<uint32_t>((a * (kWholePattern - share) + b * share) / kWholePattern) << shift;
}

// A pattern seen from far away.
Color Shading(std::optional<Color> back, std::optional<Color> front, int32_t share) {
  if (share <= 0) return back.value_or(Color{});
  const uint32_t paper = back && !back->isAuto() ? back->rgb : 0xFFFFFF;
  const uint32_t ink = front && !front->isAuto() ? front->rgb : 0;
  return {Mixed(paper, ink, share, 0) | Mixed(paper, ink, share, 8) | Mixed(paper, ink, share, 16)};
}

}  // namespace

void RowDefinition::Begin() {
  *this = {};
  row_.words = "\\trowd";
}

void RowDefinition::Word(const Keyword& word, int32_t number, Color color) {
  if (ended_ && word.op != Op::kOtherBorder && word.op != Op::kBorderStyle) Begin();
  if (word.op == Op::kOtherBorder || word.op == Op::kRowPassing || (word.op == Op::kBorderStyle && !bordersAtHand_)) {
    bordersAtHand_ = word.op == Op::kOtherBorder ? nullptr : bordersAtHand_;
    return;
  }
  ids_.fill({});
  switch (word.op) {
    case Op::kRowLeft:
      row_.left = ClampLength(number);
      return;
    case Op::kRowGap:
      row_.gap = ClampLength(std::max(number, 0));
      return;
    case Op::kRowHeight:
      row_.height = ClampLength(number);
      return;
    case Op::kRowBorder:
      bordersAtHand_ = &rowBorders_;
      sideAtHand_ = static_cast<uint8_t>(word.value);
      return;
    case Op::kCellBorder:
      bordersAtHand_ = &cell_.cell.borders;
      sideAtHand_ = static_cast<uint8_t>(word.value);
      cell_.said |= sideAtHand_;
      return;
    case Op::kBorderStyle:
      return SetBorder(word.value != 0);
    case Op::kCellColor:
      cell_.back = color;
      return;
    case Op::kCellPatternColor:
      cell_.pattern = color;
      return;
    case Op::kCellPattern:
      cell_.patternShare = std::clamp(number, 0, kWholePattern);
      return;
    case Op::kCellJoinsLeft:
      cell_.cell.joinsLeft = true;
      return;
    case Op::kCellJoinsAbove:
      cell_.cell.joinsAbove = true;
      return;
    case Op::kCellEdge:
      return EndCell(ClampLength(number));
    default:
      return;
  }
}

void RowDefinition::SetBorder(bool on) {
  if (!bordersAtHand_) return;
  *bordersAtHand_ = static_cast<uint8_t>(on ? *bordersAtHand_ | sideAtHand_ : *bordersAtHand_ & ~sideAtHand_);
}

// Past the cap the last cell grows.
void RowDefinition::EndCell(int32_t edge) {
  bordersAtHand_ = nullptr;
  Cell done = std::exchange(cell_, {});
  const int32_t before = row_.cells.empty() ? row_.left : row_.cells.back().right;
  done.cell.right = std::max(edge, before);
  done.cell.shading = Shading(done.back, done.pattern, done.patternShare);
  if (row_.cells.size() == kMaxCells) {
    row_.cells.back().right = done.cell.right;
    return;
  }
  row_.cells.push_back(done.cell);
  said_.push_back(done.said);
}

void RowDefinition::Record(const Token& token) {
  if (row_.words.empty() || row_.words.size() > kMaxRowWords) return row_.words.clear();
  row_.words += '\\';
  row_.words += token.text;
  if (token.hasParameter) row_.words += std::to_string(token.parameter);
}

TableRow RowDefinition::Row(uint8_t level, int64_t cells) const {
  TableRow row = row_;
  row.level = level;
  const auto shared = [this](int32_t side) { return (rowBorders_ & side) != 0; };
  for (size_t i = 0; i < row.cells.size(); ++i) {
    uint8_t borders = 0;
    if (shared(i == 0 ? TableCell::kLeft : kInnerDown)) borders |= TableCell::kLeft;
    if (shared(i + 1 == row.cells.size() ? TableCell::kRight : kInnerDown)) borders |= TableCell::kRight;
    if (shared(TableCell::kTop | kInnerAcross)) borders |= TableCell::kTop;
    if (shared(TableCell::kBottom | kInnerAcross)) borders |= TableCell::kBottom;
    row.cells[i].borders |= static_cast<uint8_t>(borders & ~said_[i]);
  }
  if (!row.cells.empty()) return row;
  row.words.clear();
  const auto count = static_cast<int32_t>(std::clamp<int64_t>(cells, 1, static_cast<int64_t>(kMaxCells)));
  for (int32_t i = 1; i <= count; ++i) row.cells.emplace_back().right = row.left + kUsualWidth / count * i;
  return row;
}

RowId RowDefinition::Id(FormatTable& formats, uint8_t level, int64_t cells) {
  if (row_.cells.empty()) return formats.Intern(Row(level, cells));
  if (!ids_[level]) ids_[level] = formats.Intern(Row(level, cells));
  return *ids_[level];
}

ParaFormatId RtfRows::InRow(ParaFormatId paragraph, uint8_t level, int64_t number, RowMark mark) {
  ParaFormat format = formats_[paragraph];
  Row& row = rows_[level];
  // How many cells there are is known at the row's end, and nothing but the end's own definition counts in the end.
  const bool ends = mark == RowMark::kRowEnd;
  format.row = ends || row.breaks.empty() ? definition(level > 1).Id(formats_, level, ends ? row.cells : 1)
                                          : row.breaks.back().row;
  format.rowMark = mark;
  row.breaks.push_back({number, format.row, mark});
  return formats_.Intern(format);
}

void RtfRows::Open(uint8_t level) {
  deepest_ = std::max(deepest_, level);
}

// What a row leaves when nothing says that it ends: its last cell is taken for its end, what stands behind that for
// text of the row around.
void RtfRows::EndDeepest() {
  Row& row = rows_[deepest_];
  Row& around = rows_[deepest_ - 1];
  const RowId id = definition(deepest_ > 1).Id(formats_, deepest_, row.cells);
  const auto isCell = [](const Given& given) { return given.mark == RowMark::kCellEnd; };
  const auto behind = std::find_if(row.breaks.rbegin(), row.breaks.rend(), isCell).base();
  for (auto given = row.breaks.begin(); given != behind; ++given) {
    const RowMark mark = given + 1 == behind ? RowMark::kRowEnd : given->mark;
    if (given->row != id || given->mark != mark) fixes_.push_back({given->number, id, mark});
  }
  row.breaks.erase(row.breaks.begin(), behind);
  MoveBreaks(row, around);
  --deepest_;
}

void RtfRows::MoveBreaks(Row& row, Row& around) {
  for (const Given& given : row.breaks) {
    if (&around == &rows_[0]) {
      fixes_.push_back({given.number, RowId::kNone, RowMark::kNone});
    } else {
      around.breaks.push_back(given);
    }
  }
  row = {};
}

// Without a cell it is no row: its paragraphs are those of the row around.
void RtfRows::GiveUpDeepest() {
  MoveBreaks(rows_[deepest_], rows_[deepest_ - 1]);
  --deepest_;
}

void RtfRows::CloseAbove(uint8_t level) {
  while (deepest_ > level) {
    if (rows_[deepest_].cells > 0) {
      EndDeepest();
    } else {
      GiveUpDeepest();
    }
  }
}

ParaFormatId RtfRows::AtBreak(ParaFormatId paragraph, uint8_t level, int64_t number) {
  const bool inTable = level > 0;
  // Some writers mark nothing but the cells' ends.
  if (deepest_ > level && rows_[deepest_].cells > 0 && !rows_[deepest_].marked) level = deepest_;
  CloseAbove(level);
  if (level == 0) return paragraph;
  Open(level);
  rows_[level].marked |= inTable;
  return InRow(paragraph, level, number, RowMark::kNone);
}

ParaFormatId RtfRows::AtCell(ParaFormatId paragraph, uint8_t level, int64_t number, bool inTable) {
  CloseAbove(level);
  Open(level);
  Row& row = rows_[level];
  row.marked |= inTable;
  const bool counts = static_cast<size_t>(++row.cells) <= kMaxCells;
  return InRow(paragraph, level, number, counts ? RowMark::kCellEnd : RowMark::kNone);
}

ParaFormatId RtfRows::AtRow(ParaFormatId paragraph, uint8_t level, int64_t number) {
  for (Row& row : rows_)
    if (!row.breaks.empty() && row.breaks.back().number == number) row.breaks.pop_back();
  CloseAbove(level);
  Open(level);
  const ParaFormatId format = InRow(paragraph, level, number, RowMark::kRowEnd);
  for (Given given : rows_[level].breaks) {
    if (given.row == formats_[format].row) continue;
    given.row = formats_[format].row;
    fixes_.push_back(given);
  }
  rows_[level] = {};
  deepest_ = static_cast<uint8_t>(level - 1);
  definition(level > 1).End();
  return format;
}

std::vector<RtfRows::Given> RtfRows::Finish() {
  CloseAbove(0);
  std::sort(fixes_.begin(), fixes_.end(), [](const Given& a, const Given& b) { return a.number < b.number; });
  return std::exchange(fixes_, {});
}

}  // namespace text::rtf
