// What shows an embedded file in a text.
#include "text/rtfsyntax/RtfPictures.h"
#include "ui/PathText.h"
#include "ui/desktop/ObjectTypes.h"

#include <QBuffer>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QIcon>
#include <QImageReader>
#include <QMimeDatabase>
#include <QPainter>

#include <algorithm>

namespace ui {
namespace {

constexpr int kFiner = 2;  // than the screen's usual pixels
constexpr int kTwipsPerPixel = 15;
constexpr int kWidest = 600, kHighest = 800;  // pixels at 96 dots an inch, about a page
constexpr qsizetype kMostKept = 1 << 20;      // bytes of a picture that are shown as they are
constexpr int64_t kMostPixels = int64_t{64} << 20;

// A sheet with a turned corner where the desktop has no icons. Not one in the palette's colour: the card is white.
void DrawIcon(QPainter& painter, const std::string& name, const QRect& place) {
  const QMimeType type = QMimeDatabase().mimeTypeForFile(DisplayText(name), QMimeDatabase::MatchExtension);
  const QIcon icon = QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName()));
  if (!icon.isNull()) return painter.drawPixmap(place, icon.pixmap(place.size() * kFiner));
  constexpr double kSheet = 22, kCorner = 8;
  const QRectF sheet(place.center().x() - kSheet / 2, place.top() + 1, kSheet, place.height() - 2);
  const QPointF corner[] = {sheet.topRight() - QPointF(kCorner, 0), sheet.topRight() + QPointF(-kCorner, kCorner),
                            sheet.topRight() + QPointF(0, kCorner)};
  painter.setPen(QPen(QColor(0x50, 0x50, 0x50), 1.5));
  painter.drawPolygon(QPolygonF{sheet.topLeft(), corner[0], corner[2], sheet.bottomRight(), sheet.bottomLeft()});
  painter.drawPolyline(corner, 3);
}

std::string Encoded(const QImage& image, const char* format) {
  constexpr int kQuality = 90;
  QByteArray bytes;
  QBuffer buffer(&bytes);
  const bool jpeg = qstrcmp(format, "JPEG") == 0;
  if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, format, jpeg ? kQuality : -1)) return {};
  return bytes.toStdString();
}

// Formats whose decoders look at nothing but the bytes, and end.
bool IsDrawn(const QByteArray& format) {
  return QByteArrayList{"png", "jpeg", "gif", "bmp", "webp", "tiff"}.contains(format);
}

text::EmbeddedObject Shown(std::string picture, QSize logical) {
  text::EmbeddedObject shown;
  shown.type = text::rtf::SniffPicture(picture);
  shown.picture = text::SharedBytes(std::move(picture));
  shown.width = logical.width() * kTwipsPerPixel;
  shown.height = logical.height() * kTwipsPerPixel;
  return shown;
}

}  // namespace

// Black on white whatever the desktop's colours are: it is part of the document.
text::EmbeddedObject FileCard(const std::string& name) {
  constexpr int kWidth = 132, kHeight = 78, kIcon = 32, kMargin = 6;
  QImage card(QSize(kWidth, kHeight) * kFiner, QImage::Format_RGB32);
  card.setDevicePixelRatio(kFiner);
  card.fill(Qt::white);
  QPainter painter(&card);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QColor(0xB0, 0xB0, 0xB0));
  painter.drawRect(QRectF(0.5, 0.5, kWidth - 1, kHeight - 1));
  DrawIcon(painter, name, QRect((kWidth - kIcon) / 2, kMargin, kIcon, kIcon));
  painter.setPen(Qt::black);
  QFont font = QGuiApplication::font();
  font.setPixelSize(12);
  painter.setFont(font);
  const QFontMetrics metrics(font, &card);
  QRect place(kMargin, kMargin + kIcon + 2, kWidth - 2 * kMargin, metrics.lineSpacing());
  QString shown = DisplayText(name);
  // Two lines; the ending of a long name says what the file is.
  if (metrics.horizontalAdvance(shown) > place.width()) {
    qsizetype fits = 1;
    while (fits < shown.size() && metrics.horizontalAdvance(shown.left(fits + 1)) <= place.width()) ++fits;
    if (shown.at(fits - 1).isHighSurrogate() && fits > 1) --fits;
    painter.drawText(place, Qt::AlignHCenter | Qt::TextSingleLine, shown.left(fits));
    place.translate(0, metrics.lineSpacing());
    shown = metrics.elidedText(shown.mid(fits), Qt::ElideMiddle, place.width());
  }
  painter.drawText(place, Qt::AlignHCenter | Qt::TextSingleLine, shown);
  painter.end();
  return Shown(Encoded(card, "PNG"), {kWidth, kHeight});
}

text::EmbeddedObject PictureOfFile(std::string_view bytes, const text::EmbeddedObject& card) {
  const QByteArray raw = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer;
  buffer.setData(raw);
  QImageReader reader(&buffer);
  const bool opened = buffer.open(QIODevice::ReadOnly) && reader.canRead() && IsDrawn(reader.format());
  const QSize size = opened ? reader.size() : QSize();
  const bool drawable = !size.isEmpty() && int64_t{size.width()} * size.height() <= kMostPixels;
  if (drawable) {
    const QSize most(kWidest, kHighest);
    const bool fits = size.width() <= kWidest && size.height() <= kHighest;
    const QSize logical = (fits ? size : size.scaled(most, Qt::KeepAspectRatio)).expandedTo({1, 1});
    const bool jpeg = reader.format() == "jpeg";
    const bool asItIs = raw.size() <= kMostKept && (jpeg || reader.format() == "png") &&
                        reader.transformation() == QImageIOHandler::TransformationNone;
    reader.setAutoTransform(true);
    const QSize finest = logical * kFiner;
    if (!fits && finest.width() < size.width()) reader.setScaledSize(finest);
    const QImage image = reader.read();  // also tells whether it is whole
    const bool turned = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    if (!image.isNull())
      return Shown(asItIs ? std::string(bytes) : Encoded(image, jpeg ? "JPEG" : "PNG"),
                   turned ? logical.transposed() : logical);
  }
  return card;
}

}  // namespace ui
