// Plain-text files as bytes: what was read and not edited is written back byte for byte.
#pragma once

#include "text/Document.h"

#include <functional>

namespace text {

// Called with the bytes done so far, about every 16 MB; returning false cancels. Runs on the caller's thread.
using Progress = std::function<bool(int64_t bytes)>;
// Takes the next bytes of what is written; false stops the writing.
using ByteSink = std::function<bool(std::string_view)>;

struct LoadedText {
  Content content;
  TextProperties properties;
  int error = 0;  // errno of a failed read, ENOMEM, ECANCELED after a cancel; the content is then empty
};

// Reads from the descriptor's current position to its end. One thread reads while the caller's scans; memory is the
// file's size plus about one per cent (plus what the decoding of the other encodings needs). The file may grow or
// shrink meanwhile: what read() gave is what counts. A file that does not fit into the free memory ends in ENOMEM.
//
// Detection, in this order:
// - UTF-8 with a byte-order mark.
// - UTF-16 with a byte-order mark, if the text survives the way there and back; else its bytes are shown as UTF-8.
// - Windows-1252, when almost nothing above 0x7F is valid UTF-8: there are stray bytes, and of all stray bytes and
//   characters above 0x7F less than one in twenty is a valid character.
// - UTF-8 with stray bytes.
// The prevailing line end is the most frequent one (CR LF before LF before CR); CR LF in a file without any.
LoadedText ReadPlainText(int descriptor, const Progress& progress = {});
LoadedText ReadPlainText(std::string_view bytes);

struct WriteOptions {
  // Rich content written as plain text: a soft break (U+2028) is written as a line end, the end of a table's cell as a
  // tab. A plain file's own U+2028 is text and stays.
  bool fromRichText = false;
};

// Every character as the engine's plain text, an object as nothing, converted to the encoding of `properties`.
// False when the sink refused, or when the encoding cannot hold a character (see FirstUnencodable); what the sink was
// given then is not the whole text. O(size).
bool WritePlainText(const Content& content, const TextProperties& properties, const ByteSink& sink,
                    WriteOptions options = {});

// The first position of a character that the encoding cannot hold, if any: for Windows-1252 what is not in the page
// (a stray byte is written as that byte), for UTF-16 a stray byte. O(size), O(1) for UTF-8.
std::optional<Units> FirstUnencodable(const Content& content, Encoding encoding, WriteOptions options = {});

}  // namespace text
