#include "text/rtfsave/RtfSplice.h"

#include "text/rtfsyntax/RtfCodePages.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace text::rtf {

namespace {

// In one past ASCII, escaped or not.
bool EndsInByte(std::string_view bytes) {
  if (bytes.size() >= 4 && bytes.substr(bytes.size() - 4, 2) == "\\'") return bytes[bytes.size() - 2] >= '8';
  return !bytes.empty() && static_cast<uint8_t>(bytes.back()) >= 0x80;
}

}  // namespace

RtfSplice::RtfSplice(const Source& source, const Content& wanted, Scope scope)
    : scope_(scope),
      bytes_(std::string_view(*source.bytes).substr(source.bytes->find('{'))),
      before_(source.content),
      after_(wanted),
      formats_(wanted.formats()),
      reader_(source.bytes, bytes_, wanted.store()),
      output_(bytes_),
      tables_(bytes_, wanted.formats(), reader_.tables()),
      sourceBytes_(source.bytes) {}

std::string RtfSplice::Run(const Progress& progress) {
  if (scope_ == Scope::kEdits) {
    MakeEdits(progress);
  } else if (!before_.all().empty()) {
    edits_.push_back({before_.all(), after_.all(), Edit::Kind::kReformat});
  }
  keptEnd_ = !edits_.empty() && edits_.back().kind != Edit::Kind::kReplace;
  edits_.push_back({{before_.size(), before_.size() + Units(1)}, {after_.size(), after_.size() + Units(1)}, {}});
  groups_.push_back(lastGroup_);
  const size_t header = EndOfHeader(bytes_);
  output_.CopyTo(header);
  ownTables_ = output_.Here();
  if (!reader_.Watch(*this, progress)) return {};
  output_.CopyTo(bytes_.size());
  std::string own;
  for (size_t i = 0; i < tablesEnd_.size(); ++i) {
    const auto table = static_cast<Table>(i);
    if (tablesEnd_[i]) output_.Insert(*tablesEnd_[i], tables_.New(table));
    if (!tablesEnd_[i]) own += tables_.OwnTable(table);
  }
  output_.Insert(ownTables_, own);
  return output_.Joined();
}

void RtfSplice::MakeEdits(const Progress& progress) {
  Units a(0), b(0);
  const auto add = [this](Range before, Range after, Edit::Kind kind) {
    if (before.empty() && after.empty()) return;
    edits_.push_back({before, after, kind});
    if (before.empty()) SlideInsertion();
  };
  for (const Match& match : Compare(before_, after_, [&] { return !progress || progress(0); })) {
    add({a, match.before.begin}, {b, match.after.begin}, Edit::Kind::kReplace);
    add(match.before, match.after, match.sameFormats ? Edit::Kind::kSame : Edit::Kind::kReformat);
    a = match.before.end, b = match.after.end;
  }
  add({a, before_.size()}, {b, after_.size()}, Edit::Kind::kReplace);
  MoveAcrossTables();
}

bool RtfSplice::IsInRow(const Content& content, Units at) const {
  return formats_[content.ParaFormatOf(content.ParagraphAt(at))].row != RowId::kNone;
}

// What remains of a paragraph before a table and ends in it now, or the other way round, cannot stay where it stands.
void RtfSplice::MoveAcrossTables() {
  for (size_t i = 1; i < edits_.size(); ++i) {
    Edit& edit = edits_[i];
    if (edit.kind != Edit::Kind::kReplace || edit.before.empty()) continue;
    const Units begin = before_.ParagraphStart(before_.ParagraphAt(edit.before.begin));
    if (IsInRow(before_, edit.before.begin) == IsInRow(after_, edit.after.begin)) continue;
    for (size_t other = i; other-- > 0 && edit.before.begin > begin;) {
      Edit& kept = edits_[other];
      const Units from = std::max(kept.before.begin, begin);
      const Units size = kept.before.end - from;
      kept.after.end -= kept.kind == Edit::Kind::kReplace ? kept.after.end - kept.after.begin : size;
      kept.before.end = from;
      edit.before.begin = from;
      edit.after.begin = kept.after.end;
    }
  }
  std::erase_if(edits_, [](const Edit& edit) { return edit.before.empty() && edit.after.empty(); });
}

// A paragraph put in between two others may be told as text and a break before the second or as a break and text
// behind the first. Where it ends like the first, that is the one it was typed in, and whose words count for it.
void RtfSplice::SlideInsertion() {
  Edit inserted = edits_.back();
  edits_.pop_back();
  const auto isBreak = [&](Units at) { return after_.ParagraphEnd(after_.ParagraphAt(at)) == at; };
  const auto last = inserted.after.end - Units(1), first = inserted.after.begin - Units(1);
  const bool behindBreak = !edits_.empty() && edits_.back().kind == Edit::Kind::kSame && isBreak(first);
  const auto same = [&] {
    const ParaFormatId a = after_.ParaFormatOf(after_.ParagraphAt(first));
    return a == after_.ParaFormatOf(after_.ParagraphAt(last)) && formats_[a].row == RowId::kNone &&
           after_.CharFormatAt(first) == after_.CharFormatAt(last);
  };
  if (!behindBreak || !isBreak(last) || !same()) return edits_.push_back(inserted);
  Edit& before = edits_.back();
  Edit tail = before;
  before.before.end -= Units(1), before.after.end -= Units(1);
  inserted.before = {before.before.end, before.before.end};
  inserted.after = {first, last};
  tail.before.begin = before.before.end;
  tail.after = {last, last + Units(1)};
  if (before.before.empty()) edits_.pop_back();
  edits_.push_back(inserted);
  edits_.push_back(tail);
}

// That of the unit at read_.
const RtfSplice::Edit& RtfSplice::CurrentEdit() {
  while (edits_[edit_].before.end <= read_) ++edit_;
  return edits_[edit_];
}

void RtfSplice::OnText(Span span, std::string_view utf8, Text kind) {
  const bool ascii = kind == Text::kBytes && utf8.size() == span.size();
  auto units = static_cast<int64_t>(ascii ? utf8.size() : 0);
  for (const char c : ascii ? std::string_view() : utf8) {
    const auto byte = static_cast<unsigned char>(c);
    units += (byte & 0xC0) != 0x80;
    units += byte >= 0xF0;
  }
  if (units == 0) return;
  const uint32_t group = groups_.back();
  if (kind == Text::kGroup) groups_.pop_back();
  if (scope_ == Scope::kAllText && !IsCoded(span, utf8)) {
    EndRewrite();
    Keep(span, Units(units), kind);
    read_ += Units(units);
    untoldEnd_ = utf8.ends_with("\uFFFD") ? span.end : 0;
  } else {
    Piece(span, Units(units), kind);
  }
  if (kind == Text::kGroup) groups_.push_back(group);
}

// It is spelled in a code page, or by a number, and the program knows which character that is. What is told by a group
// is none, \line is not quite U+2028 to all readers, a number keeps a blank apart from the blanks beside it, and the
// halves of a character may have words between them.
bool RtfSplice::IsCoded(Span span, std::string_view utf8) const {
  const std::string_view bytes = bytes_.substr(span.begin, span.size());
  const bool known = utf8 != "\uFFFC" && utf8 != " " && utf8.find("\u2028") == std::string_view::npos &&
                     utf8.find("\uFFFD") == std::string_view::npos;
  const bool numbered = bytes.starts_with("\\u") && static_cast<uint8_t>(utf8[0]) < 0xF0;
  return known && (numbered || static_cast<uint8_t>(bytes[0]) >= 0x80 || bytes.starts_with("\\'"));
}

// Nothing but what the reader passes over stands between.
bool RtfSplice::Touch(size_t end, size_t begin) const {
  return end <= begin &&
         bytes_.substr(end, begin - end).find_first_not_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

void RtfSplice::OnFallback(Span span, bool complete) {
  openEnd_ = complete || dropped_ ? 0 : span.end;
  if (rewrite_ && Touch(rewrite_->end, span.begin)) rewrite_->end = span.end;
  if (dropped_) {
    output_.CopyTo(span.begin);
    return output_.DropTo(span.end);
  }
  if (!last_) return;
  const bool bare = last_->bare, isBreak = last_->isBreak;
  Remember(span.end, isBreak);
  last_->bare = bare;
}

void RtfSplice::Piece(Span span, Units units, Text kind) {
  CurrentEdit();
  if (kind != Text::kBytes && read_ + units > edits_[edit_].before.end) return TornPiece(span, units);
  while (units > Units(0)) {
    const Units part = std::min(units, CurrentEdit().before.end - read_);
    const size_t size = kind == Text::kBytes ? static_cast<size_t>(part.value()) : span.size();
    Part({span.begin, span.begin + size}, part, kind);
    span.begin += size;
    units -= part;
  }
}

void RtfSplice::Part(Span span, Units units, Text kind) {
  const Edit& edit = CurrentEdit();
  if (edit.kind != Edit::Kind::kReformat) EndRewrite();
  if (edit.kind != Edit::Kind::kSame) {
    const size_t marked = span.end - WithMark(bytes_.substr(span.begin, span.size())).size();
    if (output_.position() <= marked) span.begin = marked;
  }
  switch (edit.kind) {
    case Edit::Kind::kSame:
      Keep(span, units, kind);
      break;
    case Edit::Kind::kReformat:
      Reformat(span, units);
      break;
    case Edit::Kind::kReplace:
      if (read_ == edit.before.begin && written_ < edit.after.end) ReplaceHere(span.begin, edit);
      Drop(span);
      break;
  }
  read_ += units;
}

void RtfSplice::Reformat(Span span, Units units) {
  const Units upTo = Mapped(read_) + units;
  const Range wanted{Mapped(read_), upTo};
  if (rewrite_ &&
      (rewrite_->end != span.begin || rewrite_->upTo != wanted.begin || !Allows(rewrite_->place.state, wanted)))
    EndRewrite();
  output_.CopyTo(span.begin);
  if (!rewrite_ && written_ == wanted.begin && !ContinuesLast()) {
    Place place = Here(span.begin);
    if (scope_ == Scope::kAllText)
      place.bare = !place.state.multiByte || untoldEnd_ == 0 || !Touch(untoldEnd_, span.begin);
    untoldEnd_ = 0;
    if (Allows(place.state, wanted)) rewrite_ = Reformatted{std::move(place), span.end, upTo};
  }
  if (!rewrite_) Flush(span.begin, upTo, false);
  Drop(span);
  if (!rewrite_) return;
  rewrite_->end = span.end;
  rewrite_->upTo = upTo;
}

void RtfSplice::EndRewrite() {
  if (!rewrite_) return;
  const Reformatted rewrite = *std::exchange(rewrite_, std::nullopt);
  Insert(rewrite.place, rewrite.upTo);
  MarkUsed();
  last_.reset(), middle_.reset();
}

// Bytes that make several characters together, not all of which remain: what does is written anew.
void RtfSplice::TornPiece(Span span, Units units) {
  EndRewrite();
  const Units end = read_ + units;
  Units upTo = written_;
  while (read_ < end) {
    const Edit& edit = CurrentEdit();
    const Units part = std::min(end, edit.before.end);
    upTo = edit.kind == Edit::Kind::kReplace ? edit.after.begin : Mapped(part);
    read_ = part;
  }
  output_.CopyTo(span.begin);
  if (upTo > written_) Flush(span.begin, upTo, false);
  Drop(span);
}

// What takes the place of other text in its format stands where that stood, in the words, fields and marks there.
void RtfSplice::ReplaceHere(size_t offset, const Edit& edit) {
  const bool bare = !last_ || last_->bare;
  Place place = Here(offset);
  const bool inRow = IsInRow(before_, edit.before.begin);
  if (inRow != IsInRow(after_, edit.after.begin) || inRow != IsInRow(after_, edit.after.end)) {
    if (before_.ParagraphStart(before_.ParagraphAt(edit.before.begin)) != edit.before.begin) return;
    last_ = place;
    last_->isBreak = true;
    return;
  }
  place.bare = bare;
  CharFormat first = Writable(formats_[afterCursor_.CharsAt(written_)]);
  first.object = ObjectId::kNone;
  if (first != place.state.chars || !Allows(place.state, {written_, edit.after.end})) return;
  Insert(place, edit.after.end);
  MarkUsed();
  last_.reset(), middle_.reset();
}

void RtfSplice::Drop(Span span) {
  output_.CopyTo(span.begin);
  // Without its own, a character would take what follows now for its fallback.
  if (openEnd_ > 0 && Touch(openEnd_, span.begin)) output_.Append("{}");
  openEnd_ = 0;
  output_.DropTo(span.end);
  dropped_ = true;
}

void RtfSplice::Keep(Span span, Units units, Text kind) {
  const Units to = Mapped(read_);
  if (written_ < to && !Flush(span.begin, to, false)) return Drop(span);
  if (atParagraphBegin_) {
    paragraphBegin_ = ReachHere(span.begin);
    atParagraphBegin_ = false;
  }
  MarkUsed();
  dropped_ = false;
  openEnd_ = kind == Text::kOpen && reader_.inForce().fallbackCount > 0 ? span.end : 0;
  written_ = to + units;
  last_.reset(), middle_.reset();
  if (read_ + units == edits_[edit_].before.end) {
    Remember(span.end, false);
    // Some readers take what follows for a trail byte.
    last_->bare = kind == Text::kBytes || (kind != Text::kOpen && !last_->state.multiByte);
  }
}

// Something new may follow here.
void RtfSplice::Remember(size_t end, bool isBreak) {
  last_ = Here(end);
  last_->isBreak = isBreak;
}

void RtfSplice::MarkUsed() {
  for (auto field = fields_.rbegin(); field != fields_.rend() && !field->used; ++field) field->used = true;
}

// What is to be written is in the format of the text before.
bool RtfSplice::ContinuesLast() {
  if (!last_ || last_->isBreak) return false;
  CharFormat first = Writable(formats_[afterCursor_.CharsAt(written_)]);
  first.object = ObjectId::kNone;
  return first == last_->state.chars;
}

bool RtfSplice::Flush(size_t here, Units upTo, bool beforeBreak) {
  if (last_ && last_->isBreak) FlushWholeParagraphs(upTo);
  if (written_ == upTo) return true;
  const auto allows = [&](const std::optional<Place>& place) {
    return place && Allows(place->state, {written_, upTo});
  };
  const bool behindLast = allows(last_) && !last_->isBreak && (beforeBreak || ContinuesLast());
  std::optional<Place> place;
  if (!behindLast) place = Here(here);
  const bool isHere = allows(place);
  if (!isHere) place = !behindLast && allows(middle_) ? middle_ : last_;
  if (!allows(place)) return false;
  Insert(*place, upTo);
  if (isHere) MarkUsed();
  last_.reset(), middle_.reset();
  return true;
}

// In the result of a link everything is part of the link.
bool RtfSplice::Allows(const InForce& state, Range wanted) const {
  if (state.chars.link == LinkId::kNone) return true;
  bool allowed = true;
  after_.ForEachPiece(wanted, [&](const PieceView& piece) {
    allowed = formats_[piece.charFormat].link == state.chars.link;
    return allowed;
  });
  return allowed;
}

// Behind a break: paragraphs that the words before the next text do not suit, because either begins a table. Rows are
// whole only there.
void RtfSplice::FlushWholeParagraphs(Units upTo) {
  const bool inTable = reader_.inForce().tableLevel > 0;
  Units end = written_, at = written_;
  bool rows = false;
  after_.ForEachPiece({written_, upTo}, [&](const PieceView& piece) {
    at += piece.sums.units;
    if (piece.sums.breaks == Breaks(0)) return true;
    const ParaFormat& format = formats_[piece.paraFormat];
    rows |= format.rowMark == RowMark::kRowEnd;
    if (!rows && (format.row != RowId::kNone) == inTable) return false;
    end = after_.ParagraphStart(after_.ParagraphAt(at));
    return true;
  });
  if (end > written_ && Allows(last_->state, {written_, end})) Insert(*last_, end);
}

RtfSplice::Reach RtfSplice::ReachHere(size_t offset) {
  output_.CopyTo(offset);
  return {output_.Here(), groups_.back(), paragraphWord_};
}

RtfSplice::Place RtfSplice::Here(size_t offset) {
  Place place;
  static_cast<Reach&>(place) = ReachHere(offset);
  place.state = reader_.inForce();
  place.bare = true;
  place.behindUtf8 =
      scope_ == Scope::kEdits && place.state.codePage == kUtf8CodePage && EndsInByte(bytes_.substr(0, offset));
  return place;
}

bool RtfSplice::IsOpen(uint32_t group) const {
  return std::binary_search(groups_.begin(), groups_.end(), group);
}

void RtfSplice::OnBreak(Span span, bool joins) {
  EndRewrite();
  if (joins) {
    if (dropped_) return Drop(span);
    if (last_ && last_->isBreak) Remember(span.end, true);
    if (deviation_) deviation_->at = ReachHere(span.end).at;
    return;
  }
  if (read_ == before_.size()) {
    if (written_ < after_.size()) Flush(span.begin, after_.size(), true);
    EndParagraph(span, &formats_[before_.lastParaFormat()], &formats_[after_.lastParaFormat()], std::nullopt);
    sawClosing_ = true;
    return;
  }
  const Edit& edit = CurrentEdit();
  const Units to = edit.kind == Edit::Kind::kReplace ? written_ : Mapped(read_);
  if (edit.kind == Edit::Kind::kReplace || (written_ < to && !Flush(span.begin, to, true))) {
    Drop(span);
    droppedBreak_ = true;
    read_ += Units(1);
    return;
  }
  if (edit.kind == Edit::Kind::kSame) {
    EndParagraph(span, nullptr, nullptr, std::nullopt);
  } else {
    const CharFormatId chars = afterCursor_.CharsAt(to);
    const bool same = chars == beforeCursor_.CharsAt(read_);
    EndParagraph(span, &formats_[beforeCursor_.ParagraphAt(read_)], &formats_[afterCursor_.ParagraphAt(to)],
                 same ? std::nullopt : std::optional(chars));
  }
  MarkUsed();
  dropped_ = droppedBreak_ = false;
  read_ += Units(1);
  written_ = to + Units(1);
  last_.reset(), middle_.reset();
  if (read_ == edits_[edit_].before.end) Remember(span.end, true);
}

// A label goes with the break before its paragraph, or with the paragraph's list.
void RtfSplice::OnLabel(Span span) {
  EndRewrite();
  bool keep = !droppedBreak_;
  const Breaks was = before_.ParagraphAt(read_);
  if (keep && CurrentEdit().before.end <= before_.ParagraphEnd(was)) {
    const Breaks is = after_.ParagraphAt(written_);
    const ParaFormat &a = formats_[before_.ParaFormatOf(was)], &b = formats_[after_.ParaFormatOf(is)];
    keep = a.bullet == b.bullet && a.list == b.list && a.listLevel == b.listLevel;
  }
  if (keep) return;
  output_.CopyTo(span.begin);
  output_.DropTo(span.end);
}

void RtfSplice::OnOldPicture(Span span) {
  EndRewrite();
  if (dropped_) Drop(span);
}

void RtfSplice::OnGroup(size_t begin) {
  EndRewrite();
  if (atParagraphBegin_ && !paragraphGroup_ && reader_.inBody()) paragraphGroup_ = ReachHere(begin);
  groups_.push_back(++lastGroup_);
  paragraphWords_.OnGroup();
}

void RtfSplice::OnField(size_t begin) {
  EndRewrite();
  output_.CopyTo(begin);
  fields_.push_back({groups_.back(), output_.Here(), read_});
}

// A field of whose result nothing is left goes as a whole.
void RtfSplice::OnGroupEnd(size_t end) {
  EndRewrite();
  if (groups_.size() < 2) return;
  const uint32_t group = groups_.back();
  groups_.pop_back();
  paragraphWords_.OnGroupEnd();
  if (fields_.empty() || fields_.back().group != group) return;
  const OpenField field = fields_.back();
  fields_.pop_back();
  const bool gone = !field.used && read_ > field.before;
  if (gone) {
    output_.CopyTo(end);
    output_.CutTo(field.at);
    Forget(field.at);
  }
  if (gone || last_ || CurrentEdit().kind != Edit::Kind::kSame) middle_ = Here(end);
}

// What was cut off is no place any more.
void RtfSplice::Forget(const SpliceOutput::Place& cut) {
  const auto check = [&](auto& place, auto at) {
    if (place && std::invoke(at, *place).slot > cut.slot) place.reset();
  };
  for (auto& end : tablesEnd_) check(end, [](const SpliceOutput::Place& place) { return place; });
  const auto at = [](const Reach& reach) { return reach.at; };
  check(last_, at), check(middle_, at), check(paragraphBegin_, at), check(paragraphGroup_, at), check(deviation_, at);
}

void RtfSplice::OnTableEnd(Table table, size_t end) {
  EndRewrite();
  output_.CopyTo(end);
  tablesEnd_[static_cast<size_t>(table)] = output_.Here();
  if (table == Table::kColors) tables_.ColorTableEnds(bytes_.substr(0, end));
}

}  // namespace text::rtf
