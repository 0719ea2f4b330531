#include "panes/TextFile.h"

#include "services/RecoveryKind.h"

#include <cerrno>
#include <exception>
#include <stdexcept>

namespace panes {
namespace {

ReadText Failed(files::Error error) {
  ReadText failed;
  failed.error = std::move(error);
  return failed;
}

files::ByteProducer Producer(const TextBytes& text, const text::Progress& progress) {
  return [&](const files::ByteSink& sink) {
    int64_t done = 0;
    return text::WritePlainText(text.content, text.properties, [&](std::string_view bytes) {
      done += static_cast<int64_t>(bytes.size());
      return (!progress || progress(done)) && sink(bytes);
    });
  };
}

}  // namespace

ReadText ReadTextFile(const files::Path& path, const text::Progress& progress) noexcept {
  try {
    auto file = files::OpenForReading(path);
    if (!file) return Failed(file.error());
    ReadText read;
    read.stamp = file.value().stamp();
    read.text = text::ReadPlainText(file.value().descriptor(), progress);
    read.cancelled = read.text.error == ECANCELED;
    if (read.text.error && !read.cancelled) read.error = files::SystemError(read.text.error, path);
    return read;
  } catch (const std::length_error&) {
    return Failed(files::SystemError(EFBIG, path));
  } catch (const std::exception&) {
    return Failed(files::SystemError(ENOMEM, path));
  }
}

files::Result<files::FileStamp> SaveTextFile(const files::Path& path, const files::Path& recoveryFolder,
                                             const TextBytes& text, const text::Progress& progress) noexcept {
  try {
    return files::SaveAtomically(path, recoveryFolder, Producer(text, progress));
  } catch (const std::exception&) {
    return files::SystemError(ENOMEM, path);
  }
}

files::Result<files::RecoveryEntry> KeepTextFile(const files::Path& path, const files::Path& recoveryFolder,
                                                 const TextBytes& text,
                                                 const std::optional<files::FileStamp>& original) noexcept {
  try {
    return files::WriteRecovery(recoveryFolder, path, services::ToLine({.rich = false, .original = original}),
                                Producer(text, {}));
  } catch (const std::exception&) {
    return files::SystemError(ENOMEM, path);
  }
}

}  // namespace panes
