// The files of the notes and of the text blocks: read whole, and written byte for byte. On any thread; never throws.
#pragma once

#include "files/saving/Recovery.h"
#include "text/plain/PlainText.h"

#include <optional>

namespace panes {

struct ReadText {
  text::LoadedText text;
  std::optional<files::Error> error;
  std::optional<files::FileStamp> stamp;
  bool cancelled = false;
};

ReadText ReadTextFile(const files::Path& path, const text::Progress& progress) noexcept;

// What a file shall hold: a snapshot.
struct TextBytes {
  text::Content content;
  text::TextProperties properties;
};

files::Result<files::FileStamp> SaveTextFile(const files::Path& path, const files::Path& recoveryFolder,
                                             const TextBytes& text, const text::Progress& progress) noexcept;
// Into the recovery folder, to be offered at the next start. `original` is what its file was when it was read.
files::Result<files::RecoveryEntry> KeepTextFile(const files::Path& path, const files::Path& recoveryFolder,
                                                 const TextBytes& text,
                                                 const std::optional<files::FileStamp>& original) noexcept;

}  // namespace panes
