// Pictures and embedded objects of RTF, read from their groups without being drawn, run or followed.
#pragma once

#include "text/Objects.h"
#include "text/rtfsyntax/RtfCodePages.h"
#include "text/rtfsyntax/RtfTokenizer.h"

#include <memory>
#include <string>
#include <string_view>

namespace text::rtf {

// What the bytes are by their own beginning.
PictureType SniffPicture(std::string_view bytes);

struct PixelSize {
  int64_t width = 0, height = 0;
};
// By the picture's own header; 0 when it gives none.
PixelSize PixelsOf(PictureType type, std::string_view bytes);

// Reads the rest of a {\pict} group, behind that word, and stops before its closing brace. The group's own slice is
// for the caller to add. What the tokenizer reads is owned by `owner`; `page` is that of the text around.
struct ReadingPictures {
  const std::shared_ptr<const std::string>& owner;
  const CodePage& page;
  uint8_t fallbackCount;  // \uc
  bool limited = false;  // a picture was too large and is left out
};
EmbeddedObject ReadPicture(RtfTokenizer& tokenizer, ReadingPictures& reading);

struct ScannedObject {
  bool showsText = false;  // its result holds text, not just a picture
  EmbeddedObject object;
};

// The same for {\object}, but only looks: the tokenizer is a copy.
ScannedObject ScanObject(RtfTokenizer tokenizer, ReadingPictures& reading);

// Name and size of a Cocoa attachment, from behind \NeXTGraphic.
EmbeddedObject ReadAttachment(RtfTokenizer& tokenizer);
// A character stands behind it that is none.
bool IsAttachment(std::string_view group);

}  // namespace text::rtf
