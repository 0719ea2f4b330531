// What is new in a spliced file, in groups that begin with what is in force at their place.
#include "text/ObjectAt.h"
#include "text/Utf16.h"
#include "text/rtfsave/RtfSplice.h"
#include "text/rtfsyntax/RtfFields.h"
#include "text/rtfsyntax/RtfPictures.h"
#include "text/rtfwrite/RtfWriter.h"

namespace text::rtf {

namespace {

constexpr int32_t kMostFallback = 2;

}  // namespace

TableNumbers RtfSplice::Numbers() {
  TableNumbers numbers;
  numbers.font = [this](FontId font) { return tables_.Number(font); };
  numbers.color = [this](Color color) { return tables_.Number(color); };
  numbers.list = [this](ListId list) {
    const int32_t number = reader_.NumberOf(list);
    return number != 0 ? number : tables_.Number(list);
  };
  return numbers;
}

// With what the format's words need.
TableNumbers RtfSplice::NumbersFor(const ParaFormat& format) {
  TableNumbers numbers = Numbers();
  if (format.bullet && format.list == ListId::kNone)
    numbers.symbolFont = tables_.Number(formats_.Intern(Font{"Symbol", 2, 0}));
  return numbers;
}

// Puts what is wanted from written_ on up to a position there.
void RtfSplice::Insert(const Place& place, Units upTo) {
  inserted_.clear();
  words_.Begin();
  place_ = &place;
  run_.reset();
  bare_ = place.bare;
  mayTear_ = place.behindUtf8;
  paragraphAt_ = 0;
  paragraph_.reset();
  leftTable_ = false;
  const std::vector<PieceView>& pieces = afterCursor_.Pieces({written_, upTo});
  FindRows(pieces);
  for (const PieceView& piece : pieces) {
    for (std::string_view rest = piece.bytes; !rest.empty();) {
      const size_t end = piece.sums.breaks.value() > 0 ? FindBreak(rest) : rest.size();
      if (end > 0) InsertText(rest.substr(0, end), piece.charFormat);
      if (end == rest.size()) break;
      InsertBreak(piece.charFormat, formats_[piece.paraFormat]);
      rest.remove_prefix(end + (rest.substr(end).starts_with("\r\n") ? 2 : 1));
    }
  }
  CloseRun();
  const size_t before = output_.BytesAt(place.at);
  output_.InsertLast(place.at, inserted_);
  if (paragraph_) {
    EndInsertedParagraphs({place.at.slot, before + paragraphAt_}, leftTable_ && IsInRow(after_, upTo));
  } else if (atParagraphBegin_) {
    paragraphBegin_ = place;
    atParagraphBegin_ = false;
  }
  written_ = upTo;
}

void RtfSplice::InsertText(std::string_view utf8, CharFormatId id) {
  const CharFormat& format = formats_[id];
  if (format.object != ObjectId::kNone) {
    CloseRun();
    OpenRun(id);
    InsertObject(format.object);
    return CloseRun();
  }
  if (run_ != id) {
    CloseRun();
    OpenRun(id);
  }
  coding_.onlyUnicode = mayTear_;
  words_.Text(utf8, coding_);
}

void RtfSplice::OpenRun(CharFormatId id) {
  const CharFormat& to = formats_[id];
  const size_t begin = inserted_.size();
  run_ = id;
  coding_ = CodingFor(to);
  words_.Raw("{");
  runEnd_ = "}";
  const bool link = to.link != LinkId::kNone && to.link != place_->state.chars.link;
  if (link) {
    words_.Raw("\\field{\\*\\fldinst ");
    words_.Text(LinkInstruction(formats_[to.link]), {0, place_->state.fallbackCount});
    words_.Raw("}{\\fldrslt{");
    runEnd_ = "}}}";
  }
  const size_t bare = inserted_.size();
  if (place_->state.fallbackCount > kMostFallback) words_.Word("uc", 1);
  words_.Words(CharLead(place_->state, to));
  const bool group = link || inserted_.size() > bare || !bare_ || to.object != ObjectId::kNone;
  bare_ = true;
  if (group) return;
  words_.CutTo(begin);
  runEnd_ = {};
}

void RtfSplice::CloseRun() {
  if (!run_) return;
  run_.reset();
  if (!runEnd_.empty()) words_.Raw(runEnd_);
}

std::string RtfSplice::CharLead(const InForce& state, const CharFormat& toFormat) {
  std::string lead;
  RtfWords words(lead);
  const CharFormat to = Writable(toFormat), from = Writable(state.chars);
  if (state.script && (to.halfPoints != from.halfPoints || to.offset != from.offset)) {
    words.Word("nosupersub");
    words.Chars(state.plainChars, to, Numbers());
  } else {
    words.Chars(from, to, Numbers());
  }
  return lead;
}

TextCoding RtfSplice::CodingFor(const CharFormat& format) const {
  const InForce& state = place_->state;
  TextCoding coding;
  coding.codePage = state.codePage;
  if (format.font != state.chars.font) {
    const uint8_t charset = formats_[format.font].charset;
    coding.codePage = format.font == FontId::kDefault ? 0 : charset == 0 ? 1252 : charset == 2 ? kSymbolCodePage : 0;
  }
  coding.fallbackCount = state.fallbackCount > kMostFallback ? 1 : state.fallbackCount;
  return coding;
}

// A group of this file goes as it is, but for one that wants its mark.
void RtfSplice::InsertObject(ObjectId id) {
  const SharedBytes& group = formats_[id].rtf;
  if (group.owner == sourceBytes_ && !group.bytes.empty() && !IsAttachment(group.bytes)) {
    if (formats_[id].fallbackCount != coding_.fallbackCount) words_.Word("uc", formats_[id].fallbackCount);
    return words_.Raw(WithMark(group.bytes));
  }
  if (coding_.fallbackCount != 1) words_.Word("uc", 1);
  const ByteSink append = [this](std::string_view bytes) {
    words_.Raw(bytes);
    return true;
  };
  if (written_ == Units(0) && id == ObjectIdAt(after_, Units(0)) && EmbeddedAt(after_, Units(0)))
    words_.Raw(kBeforeFirstObject);
  const DocumentProperties properties;
  RtfWriter(after_, properties, append).RunObject(formats_[id]);
}

// With the \chftn in the text that shows a note's number, where it stands directly before.
std::string_view RtfSplice::WithMark(std::string_view note) const {
  constexpr std::string_view kMark = "\\chftn";
  const auto begin = static_cast<size_t>(note.data() - bytes_.data());
  const std::string_view before = bytes_.substr(0, begin);
  if (!note.starts_with("{\\footnote")) return note;
  for (const size_t blanks : {0, 1}) {
    const size_t size = kMark.size() + blanks;
    if (begin >= size && before.substr(begin - size).starts_with(kMark) && (blanks == 0 || before.ends_with(' ')))
      return bytes_.substr(begin - size, size + note.size());
  }
  return note;
}

// The rows that end in what is put in. A paragraph in no such row belongs to that around its place.
void RtfSplice::FindRows(const std::vector<PieceView>& pieces) {
  rows_.clear();
  row_ = 0;
  rowBegins_ = true;
  nestedRowEnded_ = false;
  for (const PieceView& piece : pieces) {
    const ParaFormat& format = formats_[piece.paraFormat];
    const bool ends = piece.sums.breaks > Breaks(0) && format.rowMark == RowMark::kRowEnd;
    if (ends && formats_[format.row].level <= 1)
      rows_.insert(rows_.end(), static_cast<size_t>(piece.sums.breaks.value()), format.row);
  }
}

void RtfSplice::InsertBreak(CharFormatId id, const ParaFormat& wantedFormat) {
  CloseRun();
  ParaFormat wanted = wantedFormat;
  const bool inRow = wanted.row != RowId::kNone && row_ < rows_.size();
  if (!inRow) wanted.row = RowId::kNone;
  ParaFormat look = wanted;
  look.rowMark = RowMark::kNone;
  const ParaFormat from = paragraph_ ? *paragraph_ : Settled(*place_, place_->state.paragraph);
  std::string row = inRow && rowBegins_ ? RowWords(rows_[row_]) : std::string();
  if (!inRow && wantedFormat.row != RowId::kNone && place_->state.tableLevel == 0) row = "\\intbl";
  // Other programs lose text that says it is in a table and is in no row.
  const bool leaves = !inRow && wantedFormat.row == RowId::kNone && place_->state.tableLevel > 0;
  leftTable_ |= leaves;
  if (leaves && !paragraph_ && atParagraphBegin_) {
    PutIn(inserted_, 0, WordsAfresh(look, {}, {}));
  } else if (leftTable_ && paragraph_ && !inRow) {
    PutIn(inserted_, paragraphAt_, from == look ? std::string() : WordsAfresh(look, {}, {}));
  } else if (inRow && nestedRowEnded_) {
    PutIn(inserted_, paragraphAt_, row + WordsAfresh(wanted, {}, {}));
  } else if (paragraph_ || atParagraphBegin_) {
    PutIn(inserted_, paragraphAt_, row + (from == look ? std::string() : WordsFor(from, look)));
  } else {
    LeadTo(*place_, from, look);
    words_.Words(row);
  }
  const std::string lead = CharLead(place_->state, formats_[id]);
  if (!lead.empty()) words_.Raw("{" + lead);
  words_.Break(wanted, formats_, Numbers());
  words_.Raw(lead.empty() ? "\r\n" : "}\r\n");
  // Some readers have left the table behind such a row, whatever words are in force.
  nestedRowEnded_ = wanted.rowMark == RowMark::kRowEnd && formats_[wanted.row].level > 1;
  if (inRow) rowBegins_ = wanted.rowMark == RowMark::kRowEnd && formats_[wanted.row].level <= 1;
  if (inRow && rowBegins_) ++row_;
  paragraph_ = look;
  paragraphAt_ = inserted_.size();
  bare_ = true;
}

std::string RtfSplice::RowWords(RowId row) {
  std::string bytes;
  RtfWords(bytes).Row(formats_[row], Numbers());
  return bytes;
}

// Behind the last break that was put in. A row that follows counts on the words before the place.
void RtfSplice::EndInsertedParagraphs(const SpliceOutput::Place& at, bool beforeRow) {
  Reach here = *place_;
  here.at = at;
  paragraphGroup_.reset();
  paragraphBegin_ = here;
  atParagraphBegin_ = false;
  if (*paragraph_ != place_->state.paragraph || beforeRow) Deviate(here, *paragraph_, place_->state.paragraph);
  if (beforeRow) deviation_->afresh = true;
}

}  // namespace text::rtf
