// Collects a document's text and hands it to the builder in long runs.
#pragma once

#include "text/Content.h"

#include <memory>
#include <string>
#include <string_view>

namespace text::rtf {

class RtfOutput {
 public:
  explicit RtfOutput(std::shared_ptr<TextStore> store) : builder_(std::move(store)) {}

  // UTF-8 without a line break.
  void Text(std::string_view utf8, CharFormatId format) {
    if (owed_) PayOwed(format);
    if (format != char_ || pending_.size() > kFlushAt) StartRun(format);
    pending_.append(utf8);
    count_ += static_cast<int64_t>(utf8.size());
  }
  // The end of a paragraph. It is held back until more follows, so that the document's last one can be left out.
  void Break(CharFormatId format, ParaFormatId paragraph);
  // The end of a table's cell: a tab before whatever follows in the row.
  void Cell() { ++cells_, owed_ = true; }
  // The end of a table's row; the last cell adds no tab.
  void Row(CharFormatId format, ParaFormatId paragraph);

  // Bytes of text so far; breaks do not count.
  int64_t count() const { return count_; }
  // With `keepBreak` a break at the end stays and an empty last paragraph of that format follows; without, the break's
  // own format becomes the last paragraph's.
  Content Finish(bool keepBreak, ParaFormatId lastParagraph);

 private:
  static constexpr size_t kFlushAt = 1 << 16;

  void PayOwed(CharFormatId format);
  void StartRun(CharFormatId format);
  void PutHeldBreak();
  void Flush();

  ContentBuilder builder_;
  // Not handed over yet: text of one character format whose breaks, which end at breaksEnd_, have one paragraph format.
  std::string pending_;
  CharFormatId char_ = CharFormatId::kDefault;
  ParaFormatId paragraph_ = ParaFormatId::kDefault;
  size_t breaksEnd_ = 0;

  bool owed_ = false;  // a held break or cells come first
  bool held_ = false;
  CharFormatId heldChar_ = CharFormatId::kDefault;
  ParaFormatId heldParagraph_ = ParaFormatId::kDefault;
  int64_t cells_ = 0;
  int64_t count_ = 0;
};

}  // namespace text::rtf
