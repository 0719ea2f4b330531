#include "text/rtf/RtfOutput.h"

namespace text::rtf {

void RtfOutput::Break(CharFormatId format, ParaFormatId paragraph) {
  if (owed_) PayOwed(format);
  owed_ = held_ = true;
  heldChar_ = format;
  heldParagraph_ = paragraph;
}

void RtfOutput::Row(CharFormatId format, ParaFormatId paragraph) {
  if (cells_ > 0) --cells_;
  Break(format, paragraph);
}

void RtfOutput::PayOwed(CharFormatId format) {
  owed_ = false;
  PutHeldBreak();
  for (; cells_ > 0; --cells_) {
    if (format != char_ || pending_.size() > kFlushAt) StartRun(format);
    pending_ += '\t';
  }
}

void RtfOutput::StartRun(CharFormatId format) {
  Flush();
  char_ = format;
}

void RtfOutput::PutHeldBreak() {
  if (!held_) return;
  held_ = false;
  if (heldChar_ != char_ || pending_.size() > kFlushAt) StartRun(heldChar_);
  if (heldParagraph_ != paragraph_) {
    if (breaksEnd_ > 0) {
      builder_.Append(std::string_view(pending_).substr(0, breaksEnd_), char_, paragraph_);
      pending_.erase(0, breaksEnd_);
    }
    paragraph_ = heldParagraph_;
  }
  pending_ += "\r\n";
  breaksEnd_ = pending_.size();
}

void RtfOutput::Flush() {
  if (!pending_.empty()) builder_.Append(pending_, char_, paragraph_);
  pending_.clear();
  breaksEnd_ = 0;
}

Content RtfOutput::Finish(bool keepBreak, ParaFormatId lastParagraph) {
  if (held_ && !keepBreak) {
    lastParagraph = heldParagraph_;
    held_ = false;
  }
  PutHeldBreak();
  Flush();
  return builder_.Finish(lastParagraph);
}

}  // namespace text::rtf
