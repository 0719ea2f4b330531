#include "documents/DocumentWriter.h"

#include "text/rtfsave/RtfSave.h"

#include <algorithm>
#include <cerrno>
#include <exception>

namespace documents {
namespace {

bool WriteVerbatim(std::string_view bytes, const files::ByteSink& sink) {
  constexpr size_t kPortion = 1 << 20;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kPortion, bytes.size())))
    if (!sink(bytes.substr(0, kPortion))) return false;
  return true;
}

}  // namespace

bool WriteDocument(const DocumentBytes& document, const text::Progress& progress, const files::ByteSink& sink) {
  int64_t done = 0;
  const text::ByteSink counted = [&](std::string_view bytes) {
    done += static_cast<int64_t>(bytes.size());
    return (!progress || progress(done)) && sink(bytes);
  };
  switch (document.form) {
    case DocumentBytes::Form::kPlain:
      return text::WritePlainText(document.content, document.plainProperties, counted, document.plainOptions);
    case DocumentBytes::Form::kRtf:
      return text::rtf::Write(document.content, document.rtfProperties, counted, progress);
    case DocumentBytes::Form::kVerbatim:
      return WriteVerbatim(*document.verbatim, counted);
  }
  return false;
}

files::Result<files::FileStamp> SaveDocument(const files::Path& path, const files::Path& recoveryFolder,
                                             const DocumentBytes& document, const text::Progress& progress) noexcept {
  try {
    bool cancelled = false;
    const text::Progress watched = [&](int64_t done) {
      cancelled = cancelled || (progress && !progress(done));
      return !cancelled;
    };
    auto saved = files::SaveAtomically(
        path, recoveryFolder, [&](const files::ByteSink& sink) { return WriteDocument(document, watched, sink); });
    // The writer gave up by itself: a character that the encoding does not have.
    if (!saved && saved.error().systemError == ECANCELED && !cancelled) return files::SystemError(EILSEQ, path);
    return saved;
  } catch (const std::exception&) {
    return files::SystemError(ENOMEM, path);
  }
}

files::Result<files::RecoveryEntry> RescueDocument(const files::Path& recoveryFolder, const RescuedText& text,
                                                   const text::Progress& progress) noexcept {
  try {
    return files::WriteRecovery(recoveryFolder, text.path, text.kind,
                                [&](const files::ByteSink& sink) { return WriteDocument(text.bytes, progress, sink); });
  } catch (const std::exception&) {
    return files::SystemError(ENOMEM, text.path);
  }
}

}  // namespace documents
