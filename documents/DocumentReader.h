// Reading a document's file, on any thread.
#pragma once

#include "files/OpenFile.h"
#include "text/plain/PlainText.h"
#include "text/rtf/Rtf.h"

#include <memory>
#include <optional>
#include <string>

namespace documents {

// A name that ends in ".RTF", in any case, is rich text. Contents are never looked at.
bool IsRichName(std::string_view path);

struct ReadDocument {
  std::optional<files::Error> error;
  bool cancelled = false;
  files::FileStamp stamp;
  bool rich = false;    // `rtf` holds the content, else `plain`
  bool notRtf = false;  // asked for as rich text, but the bytes are none
  text::LoadedText plain;
  text::rtf::ReadResult rtf;
  // The file's own bytes, for rich text only: writing what was read would change them.
  std::shared_ptr<const std::string> rtfBytes;
};

// Never throws. An empty file is an empty rich text when asked for as one.
ReadDocument ReadDocumentFile(const files::Path& path, bool rich, const text::Progress& progress = {}) noexcept;

}  // namespace documents
