// Writing a document's file, on any thread.
#pragma once

#include "files/saving/Recovery.h"
#include "text/plain/PlainText.h"
#include "text/rtf/Rtf.h"

#include <memory>
#include <string>

namespace documents {

// What a document's file shall hold: a snapshot that the editor may go on changing.
struct DocumentBytes {
  enum class Form { kPlain, kRtf, kVerbatim };
  Form form = Form::kPlain;
  text::Content content;
  text::TextProperties plainProperties;
  text::WriteOptions plainOptions;
  text::rtf::DocumentProperties rtfProperties;
  std::shared_ptr<const std::string> verbatim;  // for kVerbatim
};

// False when the sink refused or `progress` cancelled.
bool WriteDocument(const DocumentBytes& document, const text::Progress& progress, const files::ByteSink& sink);

// Never throws. A cancelled save fails with ECANCELED and leaves the file as it was.
files::Result<files::FileStamp> SaveDocument(const files::Path& path, const files::Path& recoveryFolder,
                                             const DocumentBytes& document, const text::Progress& progress) noexcept;

// A text for the recovery folder.
struct RescuedText {
  files::Path path;  // or a caption that never was one
  std::string kind;  // ToLine(RecoveryKind)
  DocumentBytes bytes;
};

// Never throws. Cancelled, it fails with ECANCELED and leaves nothing.
files::Result<files::RecoveryEntry> RescueDocument(const files::Path& recoveryFolder, const RescuedText& text,
                                                   const text::Progress& progress = {}) noexcept;

}  // namespace documents
