// The words and escapes that formats and text are written with, at the end of a string that grows.
#pragma once

#include "text/rtfwrite/RtfParagraphWords.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <string_view>

namespace text::rtf {

// The places of fonts and colours in the tables of the file that is written.
struct TableNumbers {
  std::function<int32_t(FontId)> font;
  std::function<int32_t(Color)> color;  // the automatic one too
  int32_t symbolFont = 0;               // of bullets
  std::function<int32_t(ListId)> list;  // \ls, 0 for a list that {\*\pn} can say; none: no list tables
};

// How characters past ASCII are written: as \'hh where `codePage`, that of the font in force, is 1252, or 42 for a
// symbol font, else as \uN with `fallbackCount` (\uc) question marks.
struct TextCoding {
  int codePage = 0;
  int32_t fallbackCount = 1;
  bool onlyUnicode = false;  // ASCII too
};

class RtfWords {
 public:
  explicit RtfWords(std::string& out) : out_(out) {}

  // --- Tokens
  void Word(std::string_view word) { out_ += '\\', out_ += word, needsDelimiter_ = true; }
  void Word(std::string_view word, int64_t number);
  // Control words, or nothing.
  void Words(std::string_view words) { out_ += words, needsDelimiter_ = needsDelimiter_ || !words.empty(); }
  // Anything that is no word; behind a word it must not begin with what would belong to that.
  void Raw(std::string_view bytes) { out_ += bytes, needsDelimiter_ = false; }
  void Hex(uint8_t byte);
  // Takes back what was written since.
  struct Mark {
    size_t size = 0;
    bool needsDelimiter = false;
  };
  Mark mark() const { return {out_.size(), needsDelimiter_}; }
  void CutTo(size_t size) { CutTo(Mark{size, false}); }  // where no word stood before
  void CutTo(Mark mark) { out_.resize(mark.size), needsDelimiter_ = mark.needsDelimiter; }
  // The next thing is preceded by something that is no control word, or by nothing.
  void Begin() { needsDelimiter_ = false; }
  // A space, if plain text that follows needs one after a word.
  void Delimit() { out_ += needsDelimiter_ ? " " : "", needsDelimiter_ = false; }

  // --- Text without line breaks. Stops when about `most` bytes are written and returns the rest.
  std::string_view Text(std::string_view utf8, const TextCoding& coding,
                        size_t most = std::numeric_limits<size_t>::max());
  void Character(char32_t character, const TextCoding& coding);
  // A font's name, as ASCII.
  void Name(std::string_view utf8);

  // --- Formats. Links, objects and ends of cells have no words here.
  // The words that lead from one character format to another; nothing when both are written alike.
  void Chars(const CharFormat& from, const CharFormat& to, const TableNumbers& numbers);
  // The words that lead from one paragraph format to another without \pard. False, and nothing written, when only \pard
  // can: stops or a box to take away, labels or rows that differ. What a style in force gives is said in any case,
  // since a word of the style that stands there makes the others void.
  bool ParagraphChange(const ParaFormat& from, const ParaFormat& to, const FormatTable& formats,
                       const TableNumbers& numbers, const ParaFormat& style = {});
  // \pard, what is to stand behind it as it was, and the rest of the format, before the paragraph's text.
  void Paragraph(const ParaFormat& format, const FormatTable& formats, const TableNumbers& numbers,
                 const ParagraphWords::Kept& kept = {}, const ParaFormat& style = {});
  // A bullet as readers show it that know nothing of lists; stands before the text of every paragraph but those that
  // begin with the words above.
  void Label(const ParaFormat& format, const FormatTable& formats, const TableNumbers& numbers);
  // Entries of {\fonttbl} and {\colortbl}.
  void FontEntry(int32_t number, const Font& font);
  void ColorEntry(Color color);
  // The label, and the words or the group that make the paragraph part of its list.
  void GiveList(const ParaFormat& format, const FormatTable& formats, const TableNumbers& numbers);
  // Their entries in {\*\listtable} and {\*\listoverridetable}.
  void ListEntry(const List& list, int32_t id, const FormatTable& formats, const TableNumbers& numbers);
  void OverrideEntry(int32_t id, int32_t number);
  // What ends a paragraph, and a cell or a row with it.
  void Break(const ParaFormat& format, const FormatTable& formats, const TableNumbers& numbers);
  // \trowd and what defines the row.
  void Row(const TableRow& row, const TableNumbers& numbers);

 private:
  void UnicodeWord(char32_t unit, int32_t fallbackCount);
  void Stop(const TabStop& stop);
  void Box(const ParaBox& box, const TableNumbers& numbers);
  void LevelEntry(const ListLevel& level, const FormatTable& formats, const TableNumbers& numbers);

  std::string& out_;
  bool needsDelimiter_ = false;  // the last thing was a control word without its space
};

// What \generator names.
inline constexpr std::string_view kGenerator = "Quillmark 0.1.0";

// True when the bytes, put behind a control word, would be taken for a part of it.
bool ContinuesWord(std::string_view bytes);

// In front of everything: no flags and colours, but a font and a size that differ from any other.
CharFormat UnknownChars();
constexpr FontId kUnknownFont{0xFFFFFFFF};
// Some readers give {\*\pn} numbers of their own, from 1 on: new lists come behind these.
constexpr int32_t kOldLists = 100;

// True where the paragraph's list may have a level with indents of its own, so that the paragraph must say its own.
bool GivesIndents(const ParaFormat& format, const FormatTable& formats);

// True for a list that {\*\pn} can say.
bool IsOldList(const List& list);

// What RTF can hold of a format, so that a change too small to be written is none.
CharFormat Writable(CharFormat format);

}  // namespace text::rtf
