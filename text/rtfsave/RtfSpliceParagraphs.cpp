// Paragraph formats of the new file: each is led to before the paragraph's end and taken back behind it.
#include "text/rtfsave/RtfSplice.h"

#include <algorithm>

namespace text::rtf {

namespace {

// What `state` becomes when a paragraph of the format `from` gets the format `to`: the state may know more of a table's
// row, or less.
ParaFormat Changed(ParaFormat state, const ParaFormat& from, const ParaFormat& to) {
  const auto take = [&](auto field) {
    if (from.*field != to.*field) state.*field = to.*field;
  };
  take(&ParaFormat::alignment);
  take(&ParaFormat::bullet);
  take(&ParaFormat::rightToLeft);
  take(&ParaFormat::leftIndent);
  take(&ParaFormat::firstIndent);
  take(&ParaFormat::rightIndent);
  take(&ParaFormat::spaceBefore);
  take(&ParaFormat::spaceAfter);
  take(&ParaFormat::lineSpacing);
  take(&ParaFormat::lineSpacingMultiple);
  take(&ParaFormat::tabs);
  take(&ParaFormat::list);
  take(&ParaFormat::listLevel);
  take(&ParaFormat::row);
  take(&ParaFormat::rowMark);
  take(&ParaFormat::box);
  return state;
}

}  // namespace

void RtfSplice::EndParagraph(Span span, const ParaFormat* from, const ParaFormat* to,
                             std::optional<CharFormatId> chars) {
  const bool same = !from || *from == *to;
  if (!same || deviation_) {
    const Reach here = ReachHere(span.begin);
    const ParaFormat state = reader_.inForce().paragraph;
    const ParaFormat settled = Settled(here, state);
    const ParaFormat wanted = same ? state : Changed(state, *from, *to);
    LeadTo(here, settled, wanted);
    CopyBreak(span, chars);
    if (wanted != state) Deviate(ReachHere(span.end), wanted, state);
  }
  if (chars) CopyBreak(span, chars);
  paragraphBegin_.reset(), paragraphGroup_.reset();
  atParagraphBegin_ = true;
}

void RtfSplice::CopyBreak(Span span, std::optional<CharFormatId> chars) {
  output_.CopyTo(span.begin);
  const std::string lead = chars ? CharLead(reader_.inForce(), formats_[*chars]) : std::string();
  if (!lead.empty()) output_.Append("{" + lead);
  output_.CopyTo(span.end);
  if (!lead.empty()) output_.Append("}");
}

ParaFormat RtfSplice::Settled(const Reach& here, const ParaFormat& state) {
  if (!deviation_) return state;
  const Deviation was = *deviation_;
  deviation_.reset();
  if (!IsOpen(was.group)) return state;
  const bool sameWords = was.paragraphWord == here.paragraphWord;
  if (sameWords && was.group == here.group && !was.afresh) return was.format;
  if (was.reset && !sameWords) return state;
  const std::string back = was.afresh ? WordsAgain(was.original) : WordsFor(was.format, was.original);
  output_.Insert(was.at, back);
  if (paragraphBegin_ && paragraphBegin_->at.slot == was.at.slot) paragraphBegin_->at.at += back.size();
  return state;
}

// At the paragraph's beginning, where readers expect it, if the words reach from there to its end.
void RtfSplice::LeadTo(const Reach& here, const ParaFormat& from, const ParaFormat& to) {
  if (from == to) return;
  const std::string words = WordsFor(from, to);
  for (const auto& begin : {paragraphBegin_, paragraphGroup_})
    if (begin && begin->group == here.group && begin->paragraphWord == here.paragraphWord)
      return output_.Insert(begin->at, words);
  output_.Insert(here.at, words);
}

void RtfSplice::Deviate(const Reach& here, const ParaFormat& format, const ParaFormat& original) {
  Deviation deviation;
  static_cast<Reach&>(deviation) = here;
  deviation.format = format;
  deviation.original = original;
  deviation_ = deviation;
}

void RtfSplice::OnParagraphWord(Span span, bool reset) {
  EndRewrite();
  const auto note = [&](auto& place) {
    if (place && place->paragraphWord == paragraphWord_ && place->group == groups_.back()) place->reset = reset;
  };
  note(deviation_);
  note(last_);
  ++paragraphWord_;
  if (reset) return paragraphWords_.OnReset();
  paragraphWords_.OnWord(span);
}

// Where only \pard can take something away, what it takes besides is said again.
std::string RtfSplice::WordsFor(const ParaFormat& from, const ParaFormat& to) {
  std::string bytes;
  RtfWords words(bytes);
  const TableNumbers numbers = NumbersFor(to);
  const InForce state = reader_.inForce();
  const ParagraphWords::Kept kept = paragraphWords_.Replay(state.paragraph, to, formats_);
  ParaFormat listed = from, given = state.ofStyle;
  if (!from.bullet && from.list == ListId::kNone) {
    listed.bullet = to.bullet, listed.list = to.list, listed.listLevel = to.listLevel;
    words.Words(kept.list);
    if (kept.list.empty()) words.GiveList(to, formats_, numbers);
    if (GivesIndents(to, formats_)) given.leftIndent = given.firstIndent = 1;
  }
  if (words.ParagraphChange(listed, to, formats_, numbers, given)) return bytes;
  return WordsAfresh(to, kept, state.ofStyle) + CharWordsBesideStyle();
}

std::string RtfSplice::WordsAfresh(const ParaFormat& to, const ParagraphWords::Kept& kept, const ParaFormat& style) {
  std::string bytes;
  RtfWords(bytes).Paragraph(to, formats_, NumbersFor(to), kept, style);
  return bytes;
}

// What the file says, behind something that took it away.
std::string RtfSplice::WordsAgain(const ParaFormat& format) {
  const InForce state = reader_.inForce();
  return WordsAfresh(format, paragraphWords_.Replay(format, format, formats_), state.ofStyle) + CharWordsBesideStyle();
}

// Naming the style again gives its look to characters that had put it off.
std::string RtfSplice::CharWordsBesideStyle() {
  std::string bytes;
  const InForce state = reader_.inForce();
  if (!state.besideStyle) return bytes;
  CharFormat other = UnknownChars();
  other.flags = static_cast<uint16_t>(kAllCharFlags & ~state.plainChars.flags);
  RtfWords(bytes).Chars(other, state.plainChars, Numbers());
  return bytes;
}

// Before the brace that closes everything, or where the file ends without one.
void RtfSplice::OnEnd(size_t offset) {
  EndRewrite();
  if (sawClosing_) return;
  const ParaFormatId wanted = after_.lastParaFormat();
  const bool open = after_.ParagraphStart(after_.breaks()) < after_.size();
  const bool needsBreak = !open && !keptEnd_ && (after_.size() > Units(0) || wanted != ParaFormatId::kDefault);
  LeadLastParagraph(offset, needsBreak);
  if (!needsBreak) return;
  output_.CopyTo(offset);
  output_.Append("\\par\r\n");
}

void RtfSplice::LeadLastParagraph(size_t offset, bool needsBreak) {
  const ParaFormatId was = before_.lastParaFormat(), wanted = after_.lastParaFormat();
  std::optional<Place> tail = last_;
  const bool leavesTable = atParagraphBegin_ && reader_.inForce().tableLevel > 0;
  if (written_ < after_.size()) {
    const bool broken = after_.ParagraphAt(written_) < after_.breaks();
    Flush(offset, after_.size(), true);
    // Other programs lose text that says it is in a table and is in no row.
    if (leavesTable && paragraphBegin_ && formats_[wanted].row == RowId::kNone)
      return output_.Insert(paragraphBegin_->at, WordsAfresh(formats_[wanted], {}, {}));
    if (broken) tail.reset();
  }
  if (!needsBreak && was == wanted && !deviation_) return;
  if (!tail || tail->isBreak) tail = Here(offset);
  const ParaFormat& state = tail->state.paragraph;
  const ParaFormat settled = Settled(*tail, state);
  LeadTo(*tail, settled, was == wanted && !needsBreak ? state : Changed(state, formats_[was], formats_[wanted]));
}

}  // namespace text::rtf
