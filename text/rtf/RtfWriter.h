// Writes content as 7-bit RTF: one pass over the formats in use for the tables, one over the text.
#pragma once

#include "text/rtf/Rtf.h"
#include "text/rtf/RtfWords.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace text::rtf {

class RtfWriter {
 public:
  RtfWriter(const Content& content, const DocumentProperties& properties, const ByteSink& sink);
  // A whole document closes its last paragraph with \par; a fragment only one whose break is in the range. False when
  // the sink refused.
  bool Run(Range range, bool wholeDocument);

 private:
  // Text of the paragraph under way; the views lie in the content.
  struct Stretch {
    std::string_view bytes;
    CharFormatId format;
  };

  // --- What the tables must hold
  void CollectFormats(Range range);
  void CollectFont(FontId id);
  std::optional<int32_t> NumberFont(Font font);
  void CollectColor(Color color);
  int32_t FontNumber(FontId id) const;
  int32_t ColorNumber(Color color) const;
  void Header(bool wholeDocument);
  void FontTable();
  void ColorTable();
  void KeptGroups();

  // --- Text
  void Body(Range range);
  void SplitParagraphs(const PieceView& piece);
  // Writes what was gathered; without a break's format it keeps the text's.
  void Paragraph(ParaFormatId format, bool close, std::optional<CharFormatId> breakFormat);
  // False, and nothing written, when the format is written like the one in force.
  bool ParagraphFormat(const ParaFormat& format);
  void Chars(CharFormatId id);
  void Text(std::string_view bytes);
  void SendIfLarge();

  const Content& content_;
  const FormatTable& formats_;
  const DocumentProperties& properties_;
  const ByteSink& sink_;
  std::string out_;
  RtfWords words_{out_};
  TableNumbers numbers_;
  bool refused_ = false;

  std::vector<bool> seenChars_;
  std::map<FontId, int32_t> fontNumbers_;
  std::map<std::tuple<std::string, uint8_t, uint8_t>, int32_t> fontsByValue_;
  std::vector<Font> fonts_;
  std::map<uint32_t, int32_t> colorNumbers_;
  std::vector<Color> colors_;
  bool anyBullet_ = false;

  std::vector<Stretch> paragraph_;
  bool anyParagraph_ = false;
  ParaFormatId currentParagraph_ = ParaFormatId::kDefault;
  std::string paragraphWords_;  // as written for it
  bool anyChars_ = false;
  CharFormatId currentId_ = CharFormatId::kDefault;
  CharFormat current_ = UnknownChars();
  TextCoding coding_;  // of the current font
};

}  // namespace text::rtf
