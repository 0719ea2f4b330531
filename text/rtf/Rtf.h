// Rich Text Format, version 1.9.1: what a document is, and reading it.
#pragma once

#include "text/Document.h"
#include "text/plain/PlainText.h"

#include <string>
#include <string_view>
#include <vector>

namespace text::rtf {

// Properties of the document that belong to no character or paragraph.
struct Source;
struct DocumentProperties {
  // The file that was read. While it is known, saving copies from it all that is still as it was.
  std::shared_ptr<const Source> source;
  int codePage = 1252;      // \ansicpg
  int defaultTab = 720;     // \deftab, twips
  int defaultLanguage = 0;  // \deflang; 0 = not said
  FontId defaultFont = FontId::kDefault;
  // Given back on saving as they were read: words of the page (\paperw12240\margl1800) and whole groups ({\info ...}).
  std::string headerWords;
  std::string headerGroups;
};

// A file as it was read and what came of it. Both together tell at saving what was edited.
struct Source {
  std::shared_ptr<const std::string> bytes;
  Content content;
};

struct ReadResult {
  bool isRtf = false;  // false: the bytes do not begin as RTF; the content is empty
  Content content;
  DocumentProperties properties;
  bool limited = false;  // a cap was reached and some content was left out
  bool cancelled = false;
};

// True when the bytes begin as RTF (a UTF-8 mark, blanks and NUL before it allowed).
bool LooksLikeRtf(std::string_view bytes);

// Reads a whole file. Never throws on bad input, never recurses, time linear in the input. No bytes at all are an empty
// document. A paragraph's end becomes CR LF, \line U+2028, \page U+000C; no byte of the text is a stray one. The ends
// of a table's cells and rows become breaks too. One \par that closes the document adds
// no empty paragraph. The objects and the source share the bytes.
ReadResult Read(std::shared_ptr<const std::string> bytes, std::shared_ptr<TextStore> store,
                const Progress& progress = {});
ReadResult Read(std::string bytes, std::shared_ptr<TextStore> store, const Progress& progress = {});
// The same for a piece to insert: here the closing \par is kept.
ReadResult ReadFragment(std::string_view bytes, std::shared_ptr<TextStore> store);

}  // namespace text::rtf
