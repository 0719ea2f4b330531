#include "documents/objects/EmbeddedFile.h"

#include "text/rtfsyntax/RtfPackage.h"
#include "text/rtfsyntax/RtfPictures.h"
#include "ui/desktop/ObjectTypes.h"

#include <QCoreApplication>

#include <cerrno>
#include <cmath>

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

namespace {

bool HaveSameProportions(const text::EmbeddedObject& a, const text::EmbeddedObject& b) {
  constexpr double kDifference = 0.01;
  const auto first = text::rtf::PixelsOf(a.type, a.picture.bytes),
             second = text::rtf::PixelsOf(b.type, b.picture.bytes);
  if (first.width <= 0 || first.height <= 0 || second.width <= 0 || second.height <= 0) return false;
  const double across = static_cast<double>(first.width) / static_cast<double>(second.width);
  const double down = static_cast<double>(first.height) / static_cast<double>(second.height);
  return std::abs(across / down - 1) < kDifference;
}

}  // namespace

std::string ObjectRtf(std::string_view name, std::string_view bytes, const text::EmbeddedObject& card,
                      const text::EmbeddedObject* like) {
  text::EmbeddedObject shown = ui::PictureOfFile(bytes, card);
  if (like && like->width > 0 && like->height > 0 && HaveSameProportions(*like, shown)) {
    shown.width = like->width, shown.height = like->height;
    shown.cropLeft = like->cropLeft, shown.cropTop = like->cropTop;
    shown.cropRight = like->cropRight, shown.cropBottom = like->cropBottom;
  }
  std::string rtf = "{\\rtf1\\ansi\\uc1 ";
  rtf += text::rtf::PackageGroup(name, bytes, shown);
  return rtf += "}";
}

}  // namespace documents
