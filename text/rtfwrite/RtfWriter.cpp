#include "text/rtfwrite/RtfWriter.h"

#include "text/ObjectAt.h"
#include "text/Utf16.h"
#include "text/rtfsyntax/RtfCodePages.h"
#include "text/rtfwrite/RtfWrite.h"

namespace text::rtf {

namespace {

constexpr size_t kSendAt = 1 << 16;

bool SameLook(const ParaFormat& a, ParaFormat b) {
  b.rowMark = a.rowMark;
  return a == b;
}

}  // namespace

RtfWriter::RtfWriter(const Content& content, const DocumentProperties& properties, const ByteSink& sink)
    : content_(content), formats_(content.formats()), properties_(properties), sink_(sink) {
  numbers_.font = [this](FontId id) { return FontNumber(id); };
  numbers_.color = [this](Color color) { return ColorNumber(color); };
  numbers_.list = [this](ListId id) { return ListNumber(id); };
}

bool RtfWriter::Run(Range range, bool wholeDocument) {
  CollectFormats(range, wholeDocument);
  Header(wholeDocument);
  if (!range.empty() && EmbeddedAt(content_, range.begin)) words_.Raw(kBeforeFirstObject);
  Body(range);
  const bool openEnd = wholeDocument || !paragraph_.empty();
  if (openEnd && !refused_)
    Paragraph(content_.ParaFormatOf(content_.ParagraphAt(range.end)), wholeDocument, std::nullopt);
  words_.Raw(wholeDocument ? "}\r\n" : "}");
  if (!refused_ && !sink_(out_)) refused_ = true;
  return !refused_;
}

void RtfWriter::Body(Range range) {
  content_.ForEachPiece(range, [this](const PieceView& piece) {
    SplitParagraphs(piece);
    return !refused_;
  });
}

// A paragraph's format is known only at its end, so its text is gathered first.
void RtfWriter::SplitParagraphs(const PieceView& piece) {
  std::string_view rest = piece.bytes;
  while (!rest.empty() && !refused_) {
    const size_t end = piece.sums.breaks.value() > 0 ? FindBreak(rest) : rest.size();
    if (end != 0) paragraph_.push_back({rest.substr(0, end), piece.charFormat});
    if (end == rest.size()) return;
    Paragraph(piece.paraFormat, true, piece.charFormat);
    rest.remove_prefix(end + (rest.substr(end).starts_with("\r\n") ? 2 : 1));
  }
}

void RtfWriter::Paragraph(ParaFormatId id, bool close, std::optional<CharFormatId> breakFormat) {
  ParaFormat format = formats_[id];
  const RtfRowPlan::Given given = breakFormat ? plan_.At(paragraphNumber_) : RtfRowPlan::Given();
  format.row = given.row;
  format.rowMark = given.mark;
  if (const auto row = plan_.RowAt(paragraphNumber_); row && !IsDefined(*row)) words_.Row(formats_[*row], numbers_);
  const bool same = anyParagraph_ && SameLook(currentParagraph_, format);
  if (same || !ParagraphFormat(format)) words_.Label(format, formats_, numbers_);
  anyParagraph_ = true;
  currentParagraph_ = format;
  for (const Stretch& stretch : paragraph_) {
    if (refused_) break;
    Link(formats_[stretch.format].link);
    Chars(stretch.format);
    Text(stretch);
  }
  Link(LinkId::kNone);
  paragraph_.clear();
  ++paragraphNumber_;
  if (!close) return;
  if (breakFormat) Chars(*breakFormat);
  Close(format);
  SendIfLarge();
}

// A definition holds on for the rows behind. It is left out only where it is so long that rows of few cells would grow
// by a multiple, which no usual table does: not all readers know.
bool RtfWriter::IsDefined(RowId row) const {
  constexpr size_t kMany = 64;
  return currentParagraph_.rowMark == RowMark::kRowEnd && currentParagraph_.row == row &&
         formats_[row].cells.size() > kMany;
}

void RtfWriter::Close(const ParaFormat& format) {
  words_.Break(format, formats_, numbers_);
  words_.Raw("\r\n");
  // Some readers have left the table behind such a row, whatever words are in force.
  if (format.rowMark == RowMark::kRowEnd && formats_[format.row].level > 1)
    anyParagraph_ = false, paragraphWords_.clear();
}

bool RtfWriter::ParagraphFormat(const ParaFormat& format) {
  const RtfWords::Mark before = words_.mark();
  words_.Paragraph(format, formats_, numbers_);
  // Formats may differ in what RTF cannot hold.
  const std::string_view words = std::string_view(out_).substr(before.size);
  if (words == paragraphWords_) {
    words_.CutTo(before);
    return false;
  }
  paragraphWords_ = words;
  return true;
}

void RtfWriter::Chars(CharFormatId id) {
  if (chars_.any && id == chars_.id) return;
  const CharFormat& next = formats_[id];
  words_.Chars(chars_.format, next, numbers_);
  const auto font = static_cast<size_t>(FontNumber(next.font));
  chars_ = {true, id, next, {CodePageOfCharset(fonts_[font].charset, properties_.codePage), 1}};
}

void RtfWriter::Text(const Stretch& stretch) {
  const ObjectId object = formats_[stretch.format].object;
  if (object != ObjectId::kNone) return TextWithObject(stretch.bytes, formats_[object]);
  PlainText(stretch.bytes);
}

void RtfWriter::PlainText(std::string_view bytes) {
  while (!bytes.empty() && !refused_) {
    bytes = words_.Text(bytes, chars_.coding, kSendAt);
    SendIfLarge();
  }
}

void RtfWriter::SendIfLarge() {
  if (out_.size() < kSendAt || refused_) return;
  refused_ = !sink_(out_);
  out_.clear();
}

bool WriteAnew(const Content& content, const DocumentProperties& properties, const ByteSink& sink) {
  return RtfWriter(content, properties, sink).Run(content.all(), true);
}

std::string WriteFragment(const Content& content, Range range, const DocumentProperties& properties) {
  std::string bytes;
  const ByteSink append = [&bytes](std::string_view part) {
    bytes += part;
    return true;
  };
  RtfWriter(content, properties, append).Run(range, false);
  return bytes;
}

}  // namespace text::rtf
