// A file as an object of a text.
#pragma once

#include "files/OpenFile.h"
#include "text/Objects.h"

#include <string>
#include <string_view>

namespace documents {

// The reason why a file cannot be embedded, as an error of its path.
files::Error TooLarge(const files::Path& path);
// Its bytes; error 61 when it has more than an object may have.
files::Result<std::string> ReadEmbeddable(const files::Path& path, files::FileStamp* stamp = nullptr);

// RTF with nothing but that object. `card` is shown unless the file is a picture; as large, and cut off as much, as
// `like`, if that has a picture of the same proportions. Any thread.
std::string ObjectRtf(std::string_view name, std::string_view bytes, const text::EmbeddedObject& card,
                      const text::EmbeddedObject* like = nullptr);

}  // namespace documents
