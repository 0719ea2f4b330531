// Plain-text files as bytes: what was read and not edited is written back byte for byte.
#pragma once

#include "text/Document.h"

#include <atomic>
#include <functional>
#include <span>

namespace text {

// Called with bytes done so far; returning false cancels.
using Progress = std::function<bool(int64_t bytes)>;
// Takes the next bytes of what is written; false stops the writing.
using ByteSink = std::function<bool(std::string_view)>;

struct LoadedText {
  Content content;
  TextProperties properties;
  int error = 0;  // errno of a failed read, ECANCELED after a cancel; the content is then empty
};

// Reads from the descriptor's current position to its end. One thread reads while another scans; memory is the file's
// size plus about one per cent. The file may grow or shrink meanwhile: what read() gave is what counts.
// Detection: a UTF-16 byte-order mark (if the text survives the way there and back), else UTF-8 with stray bytes, else,
// when almost nothing above 0x7F is valid UTF-8, Windows-1252.
LoadedText ReadPlainText(int descriptor, const Progress& progress = {});
LoadedText ReadPlainText(std::string_view bytes);

// Every character as the engine's plain text, an object as nothing, converted to the encoding of `properties`.
// False when the sink refused.
bool WritePlainText(const Content& content, const TextProperties& properties, const ByteSink& sink);

// The first position of a character that the encoding cannot hold, if any. O(size) for 8-bit encodings, else O(1).
std::optional<Units> FirstUnencodable(const Content& content, Encoding encoding);

}  // namespace text
