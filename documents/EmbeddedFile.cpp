#include "documents/EmbeddedFile.h"

#include "text/rtfsyntax/RtfPackage.h"
#include "ui/desktop/ObjectTypes.h"

#include <QCoreApplication>

#include <cerrno>

namespace documents {

files::Error TooLarge(const files::Path& path) {
  files::Error error = files::SystemError(EFBIG, path);
  constexpr size_t kMegabyte = 1 << 20;
  error.text = QCoreApplication::translate("documents", "is larger than %1 MB, the most that a document takes in.")
                   .arg(text::rtf::kMaxPackageBytes / kMegabyte)
                   .toStdString();
  return error;
}

files::Result<std::string> ReadEmbeddable(const files::Path& path, files::FileStamp* stamp) {
  auto file = files::OpenForReading(path);
  if (!file) return file.error();
  if (stamp) *stamp = file.value().stamp();
  if (file.value().size() > static_cast<int64_t>(text::rtf::kMaxPackageBytes)) return TooLarge(path);
  return files::ReadAll(file.value(), text::rtf::kMaxPackageBytes);
}

std::string ObjectRtf(std::string_view name, std::string_view bytes, const text::EmbeddedObject& card) {
  std::string rtf = "{\\rtf1\\ansi\\uc1 ";
  rtf += text::rtf::PackageGroup(name, bytes, ui::PictureOfFile(bytes, card));
  return rtf += "}";
}

}  // namespace documents
