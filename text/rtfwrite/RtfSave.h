// Rich Text Format, version 1.9.1: writing it, and which way a document gets back into a file.
#pragma once

#include "text/rtf/Rtf.h"

#include <memory>
#include <string>

namespace text::rtf {

// Writes 7-bit RTF with CR LF between paragraphs, in pieces of about 64 KB. False when the sink refused or `progress`,
// which Save gets, said to stop. Reading it back gives the same text and formats, but for: breaks, which all become
// CR LF; stray bytes, which become the Windows-1252 characters they stand for; offsets, which RTF counts in steps of 10
// twips; lengths past a million twips; kept words and objects. Writing what was read back gives the same bytes.
bool Write(const Content& content, const DocumentProperties& properties, const ByteSink& sink,
           const Progress& progress = {});
// The last paragraph is closed by \par only when its break lies in the range.
std::string WriteFragment(const Content& content, Range range, const DocumentProperties& properties);

enum class SavedAs : uint8_t {
  kUnchanged,  // the bytes that were read
  kSpliced,    // these, but for what was edited
  kAnew,       // as WriteAnew writes it: what the model does not hold is lost
  kCancelled,
};
struct Saved {
  SavedAs as = SavedAs::kAnew;
  std::shared_ptr<const std::string> bytes;  // null for the last two
};
// What Write does. Anew only without a source of the same store, or when reading the spliced file did not give what was
// wanted. Takes about three times as long as reading. `progress` counts up to the size of the source's bytes.
Saved Save(const Content& content, const DocumentProperties& properties, const Progress& progress = {});

// As Write does without a source.
bool WriteAnew(const Content& content, const DocumentProperties& properties, const ByteSink& sink);

}  // namespace text::rtf
