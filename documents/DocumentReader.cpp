#include "documents/DocumentReader.h"

#include "files/AnyCase.h"

#include <cerrno>
#include <stdexcept>

namespace documents {
namespace {

ReadDocument Failed(files::Error error) {
  ReadDocument failed;
  failed.error = std::move(error);
  return failed;
}

void TakePlain(ReadDocument& read, text::LoadedText plain, const files::Path& path) {
  read.cancelled = plain.error == ECANCELED;
  if (plain.error && !read.cancelled) read.error = files::SystemError(plain.error, path);
  read.plain = std::move(plain);
}

void ReadRich(ReadDocument& read, files::InputFile& file, const files::Path& path, const text::Progress& progress) {
  auto bytes = files::ReadAll(file);
  if (!bytes) {
    read.error = bytes.error();
    return;
  }
  read.rtfBytes = std::make_shared<const std::string>(std::move(bytes.value()));
  if (read.rtfBytes->empty()) {
    read.rich = read.rtf.isRtf = true;
    return;
  }
  read.rtf = text::rtf::Read(read.rtfBytes, text::Content().store(), progress);
  read.cancelled = read.rtf.cancelled;
  read.rich = read.rtf.isRtf;
  if (read.rich || read.cancelled) return;
  read.notRtf = true;
  TakePlain(read, text::ReadPlainText(*read.rtfBytes), path);
  read.rtfBytes = nullptr;
}

}  // namespace

bool IsRichName(std::string_view path) {
  return files::EndsWithAnyCase(path, ".rtf");
}

ReadDocument ReadDocumentFile(const files::Path& path, bool rich, const text::Progress& progress) noexcept {
  try {
    auto file = files::OpenForReading(path);
    if (!file) return Failed(file.error());
    ReadDocument read;
    read.stamp = file.value().stamp();
    if (rich) {
      ReadRich(read, file.value(), path, progress);
    } else {
      TakePlain(read, text::ReadPlainText(file.value().descriptor(), progress), path);
    }
    return read;
  } catch (const std::length_error&) {
    return Failed(files::SystemError(EFBIG, path));
  } catch (const std::exception&) {
    return Failed(files::SystemError(ENOMEM, path));
  }
}

}  // namespace documents
