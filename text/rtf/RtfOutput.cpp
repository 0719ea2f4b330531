#include "text/rtf/RtfOutput.h"

#include "text/TextStore.h"

#include <algorithm>

namespace text::rtf {

namespace {

// The content with other rows for some of its breaks; the number past the last is the last paragraph.
Content Fixed(const Content& content, const std::vector<RtfRows::Given>& fixes) {
  FormatTable& formats = content.formats();
  ContentBuilder builder(content.store());
  int64_t number = 0;
  auto next = fixes.begin();
  const auto format = [&](ParaFormatId given) {
    if (next == fixes.end() || next->number != number) return given;
    ParaFormat changed = formats[given];
    changed.row = next->row;
    changed.rowMark = (next++)->mark;
    return formats.Intern(changed);
  };
  content.ForEachPiece(content.all(), [&](const PieceView& piece) {
    const char* at = piece.bytes.data();
    const char* const end = at + piece.bytes.size();
    for (int64_t breaks = piece.sums.breaks.value(); breaks > 0;) {
      if (next == fixes.end() || next->number >= number + breaks) {
        number += breaks;
        break;
      }
      const char* const behind = std::find(at, end, '\n') + 1;
      builder.AppendCommitted(at, behind, piece.charFormat, format(piece.paraFormat));
      at = behind;
      ++number, --breaks;
    }
    if (at < end) builder.AppendCommitted(at, end, piece.charFormat, piece.paraFormat);
    return true;
  });
  return builder.Finish(format(content.lastParaFormat()));
}

}  // namespace

RtfOutput::RtfOutput(const std::shared_ptr<TextStore>& store) : builder_(store), formats_(store->formats()) {}

void RtfOutput::Break(CharFormatId format, ParaFormatId paragraph) {
  if (held_) PutHeldBreak();
  held_ = true;
  heldChar_ = format;
  heldParagraph_ = paragraph;
  ++breaks_;
}

void RtfOutput::StartRun(CharFormatId format) {
  Flush();
  char_ = format;
}

void RtfOutput::PutHeldBreak() {
  held_ = false;
  if (heldChar_ != char_ || pending_.size() > kFlushAt) StartRun(heldChar_);
  if (heldParagraph_ != paragraph_) {
    if (breaksEnd_ > 0) {
      if (!mute_) builder_.Append(std::string_view(pending_).substr(0, breaksEnd_), char_, paragraph_);
      pending_.erase(0, breaksEnd_);
    }
    paragraph_ = heldParagraph_;
  }
  pending_ += "\r\n";
  breaksEnd_ = pending_.size();
}

void RtfOutput::Flush() {
  if (!pending_.empty() && !mute_) builder_.Append(pending_, char_, paragraph_);
  pending_.clear();
  breaksEnd_ = 0;
}

Content RtfOutput::Finish(bool keepBreak, ParaFormatId lastParagraph, const std::vector<RtfRows::Given>& fixes) {
  if (held_ && !keepBreak && formats_[heldParagraph_].rowMark == RowMark::kNone) {
    lastParagraph = heldParagraph_;
    held_ = false;
  }
  if (held_) PutHeldBreak();
  Flush();
  const Content content = builder_.Finish(lastParagraph);
  return fixes.empty() ? content : Fixed(content, fixes);
}

}  // namespace text::rtf
