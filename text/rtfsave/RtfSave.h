// Which way a rich text document gets back into a file: as it was, spliced into what was read, or anew.
#pragma once

#include "text/rtf/Rtf.h"

#include <memory>
#include <string>

namespace text::rtf {

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

// The file that the content was read from, its text written again where it stood, everything else as it was, in
// canonical form. Never unchanged; anew when the content is not that of its source, or when reading the file did not
// give it.
Saved Rewrite(const Content& content, const DocumentProperties& properties);

// Writes what Save gives, in pieces of 64 KB. False when the sink refused or `progress`, which Save gets, said to stop.
bool Write(const Content& content, const DocumentProperties& properties, const ByteSink& sink,
           const Progress& progress = {});

}  // namespace text::rtf
