// From and to the encodings that are not the engine's own. Internal to text/.
#pragma once

#include "text/Content.h"
#include "text/Document.h"

#include <optional>
#include <string>

namespace text {

// Windows-1252; its undefined bytes 81 8D 8F 90 9D are U+0081 and so on.
char32_t FromWindows1252(unsigned char byte);
std::optional<unsigned char> ToWindows1252(char32_t c);

// How often each spelling of a line break occurs.
struct LineEndCounts {
  int64_t crLfs = 0;
  int64_t lfs = 0;
  int64_t crs = 0;
  LineEnd Prevailing() const;
};

struct DecodedText {
  Content content;
  LineEndCounts lineEnds;
};

// The text of a file whose bytes are those of `raw`. Long stretches of ASCII are shared when there are few other bytes.
Content DecodeWindows1252(const Content& raw, bool fewBytesChange);
// Nothing if the bytes behind the mark do not come back exactly when they are written again.
std::optional<DecodedText> DecodeUtf16(const Content& raw, bool bigEndian);

// Appends the bytes, which are whole characters, in the encoding. Returns the offset of the first byte that cannot be
// written, npos when all were.
size_t AppendEncoded(std::string& out, std::string_view bytes, Encoding encoding);

}  // namespace text
