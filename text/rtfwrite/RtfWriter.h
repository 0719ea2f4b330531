// Writes content as 7-bit RTF: one pass over the formats in use for the tables, one over the text.
#pragma once

#include "text/rtf/Rtf.h"
#include "text/rtf/RtfTables.h"
#include "text/rtfsyntax/RtfTokenizer.h"
#include "text/rtfwrite/RtfRowPlan.h"
#include "text/rtfwrite/RtfWords.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace text::rtf {

// Of an object that is the very first thing in a text, LibreOffice 7.4 keeps only the picture, unless anything stands
// before it: an empty bookmark, which is nothing for other readers.
constexpr std::string_view kBeforeFirstObject = "{\\*\\bkmkstart _Object}{\\*\\bkmkend _Object}";

class RtfWriter {
 public:
  RtfWriter(const Content& content, const DocumentProperties& properties, const ByteSink& sink);
  // A whole document closes its last paragraph with \par; a fragment only one whose break is in the range. False when
  // the sink refused.
  bool Run(Range range, bool wholeDocument);
  // Only the group that stands for an object.
  bool RunObject(const EmbeddedObject& object);

 private:
  // Text of the paragraph under way; the views lie in the content.
  struct Stretch {
    std::string_view bytes;
    CharFormatId format;
  };
  // Character formats as they were written last.
  struct WrittenChars {
    bool any = false;
    CharFormatId id = CharFormatId::kDefault;
    CharFormat format = UnknownChars();
    TextCoding coding;  // of the font
  };

  // --- RtfWriterTables.cpp: what the tables must hold
  void CollectFormats(Range range, bool wholeDocument);
  void CollectChars(CharFormatId id);
  void CollectParagraph(ParaFormatId id);
  void CollectFont(FontId id);
  std::optional<int32_t> NumberFont(Font font);
  void CollectColor(Color color);
  void CollectList(ListId id);
  int32_t FontNumber(FontId id) const;
  int32_t ColorNumber(Color color) const;
  int32_t ListNumber(ListId id) const;
  int32_t ListsBefore() const;
  void Header(bool wholeDocument);
  void FontTable();
  void ColorTable();
  void ListTables();

  // --- RtfWriter.cpp: text
  void Body(Range range);
  void SplitParagraphs(const PieceView& piece);
  // Writes what was gathered; without a break's format it keeps the text's.
  void Paragraph(ParaFormatId format, bool close, std::optional<CharFormatId> breakFormat);
  // False, and nothing written, when the format is written like the one in force.
  bool ParagraphFormat(const ParaFormat& format);
  bool IsDefined(RowId row) const;
  void Close(const ParaFormat& format);
  void Chars(CharFormatId id);
  void Text(const Stretch& stretch);
  void PlainText(std::string_view bytes);

  // --- RtfWriterObjects.cpp: fields and what stands for U+FFFC
  void Link(LinkId link);
  void TextWithObject(std::string_view bytes, const EmbeddedObject& object);
  void Object(const EmbeddedObject& object);
  void Picture(const EmbeddedObject& object);
  void Note(const EmbeddedObject& object);
  void Description(const EmbeddedObject& object);
  void HexBytes(std::string_view bytes);
  // As it is, or with the numbers of its file's tables translated.
  void Kept(std::string_view group, uint8_t fallbackCount, bool translated, std::string_view mark = {});
  void Group(std::string_view group, bool translated = false);

  void SendIfLarge();

  // --- RtfWriterSource.cpp
  struct PageGroup {
    std::string_view bytes;
    uint8_t fallbackCount;
  };
  static std::vector<PageGroup> PageGroups(std::string_view source);
  void CollectFromSource(Range range, bool wholeDocument);
  bool IsOfSource(const EmbeddedObject& object) const;
  FontId SourceFont(int32_t number) const;
  std::string Translated(const Token& token, std::string_view bytes) const;

  const Content& content_;
  const FormatTable& formats_;
  const DocumentProperties& properties_;
  const ByteSink& sink_;
  std::string out_;
  RtfWords words_{out_};
  TableNumbers numbers_;
  bool refused_ = false;

  std::vector<bool> seenChars_, seenParagraphs_;
  std::map<FontId, int32_t> fontNumbers_;
  std::map<std::tuple<std::string, uint8_t, uint8_t>, int32_t> fontsByValue_;
  std::vector<Font> fonts_;
  std::map<uint32_t, int32_t> colorNumbers_;
  std::vector<Color> colors_;
  std::map<ListId, int32_t> listNumbers_;
  std::vector<ListId> lists_;
  bool anyBullet_ = false, anyOldList_ = false;

  std::optional<Tables> sourceTables_;
  std::vector<PageGroup> pageGroups_;

  RtfRowPlan plan_;
  int64_t paragraphNumber_ = 0;  // from the beginning of the range

  std::vector<Stretch> paragraph_;
  bool anyParagraph_ = false;
  ParaFormat currentParagraph_;
  std::string paragraphWords_;  // as written for it
  WrittenChars chars_, charsBeforeLink_;
  LinkId link_ = LinkId::kNone;  // whose field is open
};

}  // namespace text::rtf
