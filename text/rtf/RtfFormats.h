// What is in force in a group, as ids of the store's formats: its words, the styles it names, tables and lists.
#pragma once

#include "text/FormatTable.h"
#include "text/rtf/RtfState.h"
#include "text/rtf/RtfTables.h"

#include <array>

namespace text::rtf {

class RtfFormats {
 public:
  explicit RtfFormats(FormatTable& formats) : formats_(formats), lists_(formats) {}

  Tables& tables() { return tables_; }
  RtfLists& lists() { return lists_; }
  RtfStyles& styles() { return styles_; }
  const CodePage& Page(int number) { return pages_[number]; }

  CharFormatId Chars(GroupState& group);
  CharFormatId CharsOfBreak(GroupState& group);  // never a link
  // Without what \super and \sub make of it; false when neither is in force.
  bool PlainChars(GroupState& group, CharFormat& plain);
  ParaFormatId Paragraph(GroupState& group);
  // What the paragraph's style alone would say of paragraphs.
  ParaFormat OfStyle(const GroupState& group);
  const CodePage& Page(GroupState& group);

  // --- Labels
  LabelFont LabelFontOf(int32_t number);
  void FinishNumbering(GroupState& group);
  int32_t NumberOf(ListId list);

 private:
  void LookUpFont(GroupState& group, int32_t number);
  CharFormat StyledChars(GroupState& group, int8_t& script);
  ParaFormat Finished(const Look& look, ListUse use);
  LabelFonts labelFonts() {
    return [this](int32_t number) { return LabelFontOf(number); };
  }

  struct CachedFormat {
    CharFormat format;
    CharFormatId id = CharFormatId::kDefault;
    bool used = false;
  };

  FormatTable& formats_;
  Tables tables_;
  CodePages pages_;
  RtfLists lists_;
  RtfStyles styles_;
  std::array<CachedFormat, 64> cache_{};
};

}  // namespace text::rtf
