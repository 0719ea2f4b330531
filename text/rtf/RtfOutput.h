// Collects a document's text and hands it to the builder in long runs.
#pragma once

#include "text/Content.h"
#include "text/rtf/RtfRows.h"

#include <memory>
#include <string>
#include <string_view>

namespace text::rtf {

class RtfOutput {
 public:
  explicit RtfOutput(const std::shared_ptr<TextStore>& store);

  // From now on nothing is built.
  void Mute() { mute_ = true; }
  // UTF-8 without a line break.
  void Text(std::string_view utf8, CharFormatId format) {
    if (held_) PutHeldBreak();
    if (format != char_ || pending_.size() > kFlushAt) StartRun(format);
    pending_.append(utf8);
    count_ += static_cast<int64_t>(utf8.size());
  }
  // The end of a paragraph, also one that ends a cell or a row. It is held back until more follows, so that the
  // document's last one can be left out and a row's last cell can end the row.
  void Break(CharFormatId format, ParaFormatId paragraph);
  // True behind the end of a cell.
  bool atCellEnd() const { return held_ && formats_[heldParagraph_].rowMark == RowMark::kCellEnd; }
  bool atRowEnd() const { return held_ && formats_[heldParagraph_].rowMark == RowMark::kRowEnd; }
  // The format of the break that is held; it may be changed.
  ParaFormatId& heldParagraph() { return heldParagraph_; }

  // Bytes of text so far; breaks do not count.
  int64_t count() const { return count_; }
  // The number that the next break gets.
  int64_t breaks() const { return breaks_; }
  // False behind a break.
  bool inParagraph() const { return !held_; }
  // With `keepBreak` a break at the very end stays and an empty last paragraph of that format follows; without, its own
  // format becomes the last paragraph's. The end of a cell or row always stays. Then the given formats are put right.
  Content Finish(bool keepBreak, ParaFormatId lastParagraph, const std::vector<RtfRows::Given>& fixes);

 private:
  static constexpr size_t kFlushAt = 1 << 16;

  void PutHeldBreak();
  void StartRun(CharFormatId format);
  void Flush();

  ContentBuilder builder_;
  FormatTable& formats_;
  // Not handed over yet: text of one character format whose breaks, which end at breaksEnd_, have one paragraph format.
  std::string pending_;
  CharFormatId char_ = CharFormatId::kDefault;
  ParaFormatId paragraph_ = ParaFormatId::kDefault;
  size_t breaksEnd_ = 0;

  bool held_ = false;
  CharFormatId heldChar_ = CharFormatId::kDefault;
  ParaFormatId heldParagraph_ = ParaFormatId::kDefault;
  int64_t count_ = 0;
  bool mute_ = false;
  int64_t breaks_ = 0;
};

}  // namespace text::rtf
