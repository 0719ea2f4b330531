#include "text/pictures/Pictures.h"

#include "text/pictures/Metafile.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFontMetricsF>
#include <QImageReader>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace text::pictures {
namespace {

constexpr double kTwipsPerPixel = 15;
constexpr int kMegabytesToDecode = 512;
constexpr double kWhole = 10000;  // of what crops are counted in

// The bytes are not copied; a reader over them must not outlive them.
class PictureReader {
 public:
  explicit PictureReader(const EmbeddedObject& object)
      : bytes_(
            QByteArray::fromRawData(object.picture.bytes.data(),
                                    static_cast<qsizetype>(std::min(object.picture.bytes.size(), kMaxPictureBytes)))) {
    // For all of the process; the toolkit's own limit is below what kMaxPicturePixels needs.
    static const bool raised = (QImageReader::setAllocationLimit(kMegabytesToDecode), true);
    const char* format = raised ? FormatOf(object.type) : nullptr;
    if (!format || object.picture.bytes.empty() || object.picture.bytes.size() > kMaxPictureBytes) return;
    buffer_.setBuffer(&bytes_);
    if (!buffer_.open(QIODevice::ReadOnly)) return;
    reader_.setDevice(&buffer_);
    reader_.setDecideFormatFromContent(false);
    reader_.setFormat(format);
    reader_.setAutoTransform(false);
    size_ = reader_.size();
    if (int64_t{size_.width()} * size_.height() > kMaxPicturePixels) size_ = {};
  }
  // Empty when it is damaged, too large or not of a known type.
  QSize size() const { return size_; }
  QImage Read(QSize scaled) {
    if (size_.isEmpty()) return {};
    const bool smaller = scaled.width() < size_.width() && scaled.height() < size_.height();
    if (smaller) reader_.setScaledSize(scaled);
    return reader_.read();
  }

 private:
  static const char* FormatOf(PictureType type) {
    switch (type) {
      case PictureType::kPng:
        return "png";
      case PictureType::kJpeg:
        return "jpeg";
      case PictureType::kDib:
        return "dib";
      default:
        return nullptr;
    }
  }

  QByteArray bytes_;
  QBuffer buffer_;
  QImageReader reader_;
  QSize size_;
};

struct Crop {
  double left, top, width, height;  // of the whole picture
};

Crop CropOf(const EmbeddedObject& object) {
  const auto part = [](int32_t crop) { return std::clamp(crop / kWhole, -10.0, 10.0); };
  const double left = part(object.cropLeft), top = part(object.cropTop);
  return {left, top, std::max(0.001, 1 - left - part(object.cropRight)),
          std::max(0.001, 1 - top - part(object.cropBottom))};
}

QImage Cropped(const QImage& whole, const Crop& crop) {
  if (crop.left == 0 && crop.top == 0 && crop.width == 1 && crop.height == 1) return whole;
  const QRectF part(crop.left * whole.width(), crop.top * whole.height(), crop.width * whole.width(),
                    crop.height * whole.height());
  const QRect pixels = part.toRect();
  constexpr int kMost = 16384;
  if (pixels.width() < 1 || pixels.height() < 1 || pixels.width() > kMost || pixels.height() > kMost) return whole;
  return whole.copy(pixels);
}

QImage Decode(const EmbeddedObject& object, QSize pixels) {
  const Crop crop = CropOf(object);
  const QSize whole(static_cast<int>(std::clamp(pixels.width() / crop.width, 1.0, 1e5)),
                    static_cast<int>(std::clamp(pixels.height() / crop.height, 1.0, 1e5)));
  QImage image = object.type == PictureType::kWmf   ? DrawWmf(object.picture.bytes, whole)
                 : object.type == PictureType::kEmf ? DrawEmf(object.picture.bytes, whole)
                                                    : PictureReader(object).Read(whole);
  if (image.isNull()) return image;
  image = Cropped(image, crop);
  // Never made larger here: the painter does that without memory.
  if (image.width() > pixels.width() && image.height() > pixels.height()) {
    image = image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  }
  return image;
}

}  // namespace

QSizeF ShownSize(const EmbeddedObject& object, const QFont& font, double zoom) {
  const QFontMetricsF metrics(font);
  const double height = std::ceil(metrics.ascent() + metrics.descent());
  if (object.kind == ObjectKind::kNote) return {std::ceil(height / 2), std::ceil(metrics.ascent())};
  QSizeF size(object.width / kTwipsPerPixel, object.height / kTwipsPerPixel);
  if (size.isEmpty()) {
    const QSize own = PictureReader(object).size();
    const Crop crop = CropOf(object);
    size = QSizeF(own.width() * crop.width, own.height() * crop.height);
  }
  // What says nothing of its size is a frame for its name.
  if (size.isEmpty()) return {metrics.horizontalAdvance(NameOf(object)) + height, 2 * height};
  return size * zoom;
}

QString NameOf(const EmbeddedObject& object) {
  // It is measured and shaped at every painting.
  constexpr qsizetype kMostShown = 256;
  const auto bytes = static_cast<qsizetype>(std::min<size_t>(object.name.size(), 4 * kMostShown));
  QString name = QString::fromUtf8(object.name.data(), bytes).simplified().left(kMostShown);
  if (!name.isEmpty() && name.back().isHighSurrogate()) name.chop(1);
  const auto tr = [](const char* text) { return QCoreApplication::translate("text::pictures", text); };
  if (object.kind == ObjectKind::kNote) return tr(QT_TRANSLATE_NOOP("text::pictures", "Note"));
  if (object.kind == ObjectKind::kEmbedded) {
    return name.isEmpty() ? tr(QT_TRANSLATE_NOOP("text::pictures", "Embedded object")) : name;
  }
  static constexpr const char* kNames[] = {
      QT_TRANSLATE_NOOP("text::pictures", "Picture"),          QT_TRANSLATE_NOOP("text::pictures", "PNG picture"),
      QT_TRANSLATE_NOOP("text::pictures", "JPEG picture"),     QT_TRANSLATE_NOOP("text::pictures", "DIB picture"),
      QT_TRANSLATE_NOOP("text::pictures", "WMF picture"),      QT_TRANSLATE_NOOP("text::pictures", "EMF picture"),
      QT_TRANSLATE_NOOP("text::pictures", "Macintosh picture")};
  const QString kind = tr(kNames[static_cast<size_t>(object.type)]);
  return name.isEmpty() ? kind : kind + QStringLiteral(": ") + name;
}

QImage ImageOf(const EmbeddedObject& object) {
  constexpr double kFiner = 2;  // than on the screen
  constexpr int kAny = 1 << 14;
  if (object.type != PictureType::kWmf && object.type != PictureType::kEmf) return Decode(object, {kAny, kAny});
  const QSizeF size = ShownSize(object, QFont(), kFiner).boundedTo({kAny, kAny});
  return Decode(object, size.toSize().expandedTo({1, 1}));
}

const char* MimeTypeOf(const EmbeddedObject& object) {
  if (object.cropLeft != 0 || object.cropTop != 0 || object.cropRight != 0 || object.cropBottom != 0) return nullptr;
  switch (object.type) {
    case PictureType::kPng:
      return "image/png";
    case PictureType::kJpeg:
      return "image/jpeg";
    case PictureType::kWmf:
      return "image/x-wmf";
    case PictureType::kEmf:
      return "image/x-emf";
    default:
      return nullptr;
  }
}

QImage PictureCache::Get(const FormatTable& formats, ObjectId id, QSize pixels) {
  pixels = pixels.expandedTo({1, 1});
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.id == id && entry.pixels == pixels; });
  if (found != entries_.end()) {
    entries_.splice(entries_.begin(), entries_, found);
    return found->image;
  }
  // One size of each is enough: others were of another zoom.
  entries_.remove_if([&](const Entry& entry) {
    if (entry.id != id) return false;
    bytes_ -= static_cast<size_t>(entry.image.sizeInBytes());
    return true;
  });
  entries_.push_front({id, pixels, Decode(formats[id], pixels)});
  bytes_ += static_cast<size_t>(entries_.front().image.sizeInBytes());
  while (bytes_ > kMaxBytes && entries_.size() > 1) {
    bytes_ -= static_cast<size_t>(entries_.back().image.sizeInBytes());
    entries_.pop_back();
  }
  return entries_.front().image;
}

void PictureCache::Clear() {
  entries_.clear();
  bytes_ = 0;
}

}  // namespace text::pictures
