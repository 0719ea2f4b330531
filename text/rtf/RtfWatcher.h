// Follows the reader through a file that was read before: what became of which bytes.
#pragma once

#include "text/Formats.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace text::rtf {

// Offsets of the bytes that the reader reads.
struct Span {
  size_t begin = 0, end = 0;
  size_t size() const { return end - begin; }
};

// The formats in force where the reader stands.
struct InForce {
  CharFormat chars;        // with the link
  CharFormat plainChars;   // without what \super and \sub make of it
  bool script = false;     // these are in force
  ParaFormat paragraph;    // without its row
  ParaFormat ofStyle;      // what the style that is named says of paragraphs
  uint8_t tableLevel = 0;  // 0: in no table
  int32_t fallbackCount = 1;
  bool multiByte = false;
  int codePage = 1252;       // of the font
  bool besideStyle = false;  // \plain came behind the style's name: naming it again would bring its characters' look
};

class RtfWatcher {
 public:
  enum class Table : uint8_t { kFonts, kColors, kLists, kOverrides };
  enum class Text : uint8_t {
    kBytes,  // as many units as bytes, each for itself
    kWhole,  // cannot be taken apart
    kOpen,   // neither, and a fallback may follow
    kGroup,  // neither; the innermost group, whose end has come, makes it
  };

  virtual ~RtfWatcher() = default;

  // --- What makes content, in its order
  virtual void OnText(Span span, std::string_view utf8, Text kind) = 0;
  // Bytes that belong to the text before; unless they make it `complete` the next ones may, too.
  virtual void OnFallback(Span span, bool complete) = 0;
  // `joins`: this word and the break before it are one break.
  virtual void OnBreak(Span span, bool joins) = 0;

  // --- What does not
  virtual void OnLabel(Span span) = 0;       // {\pntext} and {\listtext}
  virtual void OnOldPicture(Span span) = 0;  // another form of the picture before it
  virtual void OnGroup(size_t begin) = 0;
  virtual void OnGroupEnd(size_t end) = 0;  // behind its brace
  // The innermost group, which begins there, is worth nothing without what it makes.
  virtual void OnField(size_t begin) = 0;
  // A word or group that changes the paragraph's format; `reset` is \pard.
  virtual void OnParagraphWord(Span span, bool reset) = 0;
  // A word that means nothing to the reader, or no more than part of a border.
  virtual void OnUnknownWord(Span span) = 0;
  virtual void OnTableEnd(Table table, size_t end) = 0;  // before its brace
  // Before the brace that closes everything, or at the end of the bytes.
  virtual void OnEnd(size_t offset) = 0;
};

}  // namespace text::rtf
