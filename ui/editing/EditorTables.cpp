// Tables: what an edit may not take away, what comes into a cell, and the way from cell to cell.
#include "text/outline/TableRows.h"
#include "ui/editing/EditorController.h"
#include "ui/editing/EditorOperation.h"

namespace ui {

using text::Breaks;
using text::Content;
using text::ContentBuilder;
using text::ParaFormat;
using text::ParaFormatId;
using text::Range;
using text::RowId;
using text::RowMark;
using text::Units;

namespace {

const ParaFormat& FormatOf(const Content& content, Breaks paragraph) {
  return content.formats()[content.ParaFormatOf(paragraph)];
}

// A break within that ends a cell or a row.
bool HasMarks(const Content& content, Range range) {
  bool found = false;
  content.ForEachPiece(range, [&](const text::PieceView& piece) {
    found = piece.sums.breaks > Breaks(0) && content.formats()[piece.paraFormat].rowMark != RowMark::kNone;
    return !found;
  });
  return found;
}

ParaFormat WithoutRow(ParaFormat format, RowId row = RowId::kNone) {
  format.row = row;
  format.rowMark = RowMark::kNone;
  return format;
}

}  // namespace

// The ends of cells and rows go only with whole rows, and what stands outside of a cell never flows into it.
bool EditorController::KeepsTables(const Content& content, Range range) {
  if (range.empty() || !content.formats().hasRows()) return true;
  const Breaks first = content.ParagraphAt(range.begin), last = content.ParagraphAt(range.end);
  if (first == last) return true;
  const bool wholeFirst = range.begin == content.ParagraphStart(first);
  const ParaFormat &before = FormatOf(content, first), &behind = FormatOf(content, last);
  if (!HasMarks(content, range)) return wholeFirst || behind.row == RowId::kNone || behind.row == before.row;
  const auto beginsRow = [&](Breaks paragraph, Units at) {
    const auto row = text::layout::RowOf(content, paragraph);
    return row ? at == content.ParagraphStart(row->first) : FormatOf(content, paragraph).row == RowId::kNone;
  };
  if (!beginsRow(first, range.begin)) return false;
  if (behind.row == RowId::kNone || range.end == content.size()) return true;
  return wholeFirst && beginsRow(last, range.end);
}

// What remains of a range within one table that may not go as a whole: the ends of its cells and rows. Nothing where it
// may, where it is not within one table, where a cell would lose more than its text, or where there is no text.
std::optional<Content> EditorController::WithEmptiedCells(Range range) const {
  const Content& content = document_.content();
  if (readOnly_ || !MayChange(range) || KeepsTables(range)) return std::nullopt;
  const Breaks last = content.ParagraphAt(range.end);
  ContentBuilder builder(content.store());
  Units textBegin = range.begin;
  bool anyText = false;
  const auto takeOut = [&](Range text) {
    anyText |= !text.empty();
    return KeepsTables(text);
  };
  for (Breaks paragraph = content.ParagraphAt(range.begin); paragraph <= last; ++paragraph) {
    const ParaFormat& format = FormatOf(content, paragraph);
    if (paragraph == last && content.ParagraphStart(last) == range.end) break;
    if (format.row == RowId::kNone) return std::nullopt;
    if (paragraph == last || format.rowMark == RowMark::kNone) continue;
    const Units mark = content.ParagraphEnd(paragraph);
    if (!takeOut({textBegin, mark})) return std::nullopt;
    textBegin = mark + Units(1);
    builder.Append(content, {mark, textBegin});
  }
  if (!takeOut({textBegin, range.end}) || !anyText) return std::nullopt;
  return builder.Finish();
}

bool EditorController::EmptyCells(Range range) {
  const auto rest = WithEmptiedCells(range);
  if (!rest) return false;
  DropComposition();
  document_.SealStep();
  remembered_.reset();
  const Content& content = document_.content();
  if (range.begin == content.ParagraphStart(content.ParagraphAt(range.begin))) KeepFormatForNextText();
  document_.Replace(range, *rest, text::EditKind::kCommand, selection_);
  document_.SealStep();
  PlaceCaret({range.begin, range.begin}, text::Bias::kRight);
  return true;
}

// Rows at the text's end have gone but for the format of its last paragraph.
bool EditorController::LeavesRowMark(Range range) const {
  const Content& content = document_.content();
  const Breaks first = content.ParagraphAt(range.begin);
  return content.formats().hasRows() && range.end == content.size() && first < content.breaks() &&
         FormatOf(content, content.breaks()).row != RowId::kNone && HasMarks(content, range);
}

void EditorController::DropLastRowMark() {
  const Content& content = document_.content();
  const text::ParaFormatId plain = document_.formats().Intern(WithoutRow(FormatOf(content, content.breaks())));
  const Units begin = content.ParagraphStart(content.breaks()), size = content.size() - begin;
  document_.Commit(content.WithLastParaFormat(plain), {begin, size, size, true}, text::EditKind::kCommand, selection_);
}

// In a cell rows become paragraphs of it. Elsewhere whole rows stay, in paragraphs of their own; parts of one do not.
Content EditorController::FittedToTables(Range range, const Content& fragment) const {
  const Content& content = document_.content();
  text::FormatTable& formats = document_.formats();
  if (!formats.hasRows() || fragment.breaks() == Breaks(0)) return fragment;
  const RowId target = FormatOf(content, content.ParagraphAt(range.end)).row;
  const auto into = [&formats](RowId row) {
    return [&formats, row](ParaFormatId id) { return formats.Intern(WithoutRow(formats[id], row)); };
  };
  if (target != RowId::kNone) return fragment.WithParaFormats(fragment.all(), into(target));
  Breaks rest(0);  // the first paragraph behind the last whole row
  for (Breaks paragraph(0); paragraph < fragment.breaks(); ++paragraph) {
    const ParaFormat& format = FormatOf(fragment, paragraph);
    const bool ends = format.rowMark == RowMark::kRowEnd && formats[format.row].level <= 1;
    if (ends || format.row == RowId::kNone) rest = paragraph + Breaks(1);
  }
  Content fitted = fragment;
  if (rest < fragment.breaks()) {
    fitted = fragment.WithParaFormats({fragment.ParagraphStart(rest), fragment.size()}, into(RowId::kNone));
  }
  const Breaks first = content.ParagraphAt(range.begin);
  const bool ownParagraph = range.begin == content.ParagraphStart(first);
  if (ownParagraph || FormatOf(fitted, Breaks(0)).row == RowId::kNone) return fitted;
  ContentBuilder builder(content.store());
  const ParaFormat& format = FormatOf(content, first);
  builder.Append(text::BytesOfUtf16(u"\n", document_.properties().lineEnd), fitted.CharFormatAt(Units(0)),
                 formats.Intern(format));
  builder.Append(fitted, fitted.all());
  return builder.Finish();
}

bool EditorController::MoveToCell(bool forward) {
  const Content& content = document_.content();
  const auto place = text::layout::CellOf(content, selection_.caret);
  if (!place) return false;
  const Operation operation(*this);
  const auto select = [this](Range cell) { Select({cell.begin, cell.end}); };
  if (forward ? place->cell + 1 < place->cells.size() : place->cell > 0) {
    select(place->cells[forward ? place->cell + 1 : place->cell - 1]);
    return true;
  }
  const bool atEdge = forward ? place->row.last == content.breaks() : place->row.first == Breaks(0);
  const Breaks beside = forward ? place->row.last + Breaks(1) : place->row.first - Breaks(1);
  const auto other =
      atEdge ? std::nullopt
             : text::layout::CellOf(content, forward ? content.ParagraphStart(beside) : content.ParagraphEnd(beside));
  if (other) {
    select(forward ? other->cells.front() : other->cells.back());
  } else if (forward) {
    AddRow(place->row.first, place->row.last);
  }
  return true;
}

// Behind the last row of a table, with cells like its own. At the text's end the last row has no break yet; then that
// comes first and the new row has none.
void EditorController::AddRow(Breaks first, Breaks last) {
  const Content& content = document_.content();
  const bool atEnd = last == content.breaks();
  const Units behind = content.ParagraphEnd(last) + Units(atEnd ? 0 : 1);
  if (!UserMayChange({behind, behind})) return;
  ContentBuilder builder(content.store());
  const auto lineBreak = text::BytesOfUtf16(u"\n", document_.properties().lineEnd);
  if (atEnd) builder.Append(lineBreak, text::CharFormatId::kDefault, content.lastParaFormat());
  for (Breaks paragraph = first; paragraph <= last; ++paragraph) {
    if (atEnd && paragraph == last) break;
    const ParaFormatId id = content.ParaFormatOf(paragraph);
    const ParaFormat& format = content.formats()[id];
    if (format.rowMark == RowMark::kNone || content.formats()[format.row].level > 1) continue;
    text::CharFormat chars = content.formats()[content.CharFormatAt(content.ParagraphEnd(paragraph))];
    chars = ForNewText(chars);
    builder.Append(lineBreak, document_.formats().Intern(chars), id);
  }
  DropComposition();
  document_.SealStep();
  document_.Replace({behind, behind}, builder.Finish(), text::EditKind::kCommand, selection_);
  document_.SealStep();
  remembered_.reset();
  const Units cell = behind + Units(atEnd ? 1 : 0);
  PlaceCaret({cell, cell}, text::Bias::kRight);
}

}  // namespace ui
