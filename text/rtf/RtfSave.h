// Which way a document gets back into a file.
#pragma once

#include "text/rtf/Rtf.h"

#include <memory>
#include <string>

namespace text::rtf {

enum class SavedAs : uint8_t {
  kUnchanged,  // the bytes that were read
  kSpliced,    // these, but for what was edited
  kAnew,       // as WriteAnew writes it: what the model does not hold is lost
};
struct Saved {
  SavedAs as = SavedAs::kAnew;
  std::shared_ptr<const std::string> bytes;  // null for kAnew
};
// What Write does. Anew only without a source of the same store, or when reading the spliced file did not give what was
// wanted. Takes about three times as long as reading.
Saved Save(const Content& content, const DocumentProperties& properties);

// As Write does without a source.
bool WriteAnew(const Content& content, const DocumentProperties& properties, const ByteSink& sink);

}  // namespace text::rtf
