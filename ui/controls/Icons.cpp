#include "ui/controls/Icons.h"

#include <QColor>
#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <algorithm>

static void LoadPictures() {
  Q_INIT_RESOURCE(icons);
}

namespace ui {
namespace {

// A picture's strokes are wider than a letter's: with the full colour they would outweigh the text.
constexpr int kNormalAlpha = 215, kDisabledAlpha = 80;

QString FileOf(const QString& name) {
  LoadPictures();
  return QStringLiteral(":/icons/%1.svg").arg(name);
}

QByteArray BytesOf(const QString& name) {
  QFile file(FileOf(name));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QColor InkOf(QIcon::Mode mode, QIcon::State state) {
  const QPalette palette = QGuiApplication::palette();
  // A checked entry's picture stands on a plate of its own, which does not change with the entry.
  if ((mode == QIcon::Active || mode == QIcon::Selected) && state == QIcon::Off)
    return palette.color(QPalette::Active, QPalette::HighlightedText);
  QColor ink = palette.color(QPalette::Active, QPalette::ButtonText);
  ink.setAlpha(mode == QIcon::Disabled ? kDisabledAlpha : kNormalAlpha);
  return ink;
}

class ThemedIconEngine final : public QIconEngine {
 public:
  explicit ThemedIconEngine(QString name)
      : name_(std::move(name)), on24_(BytesOf(name_)), on16_(BytesOf(QStringLiteral("16/") + name_)) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    const double ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1;
    painter->drawPixmap(rect, pixmap(rect.size() * ratio, mode, state));
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    const QColor ink = InkOf(mode, state);
    const QString key =
        QStringLiteral("%1 %2 %3x%4").arg(name_, ink.name(QColor::HexArgb)).arg(size.width()).arg(size.height());
    QPixmap drawn;
    if (!QPixmapCache::find(key, &drawn)) QPixmapCache::insert(key, drawn = Draw(size, ink));
    return drawn;
  }

  QIconEngine* clone() const override { return new ThemedIconEngine(*this); }

 private:
  // A faint picture is faint as a whole: its strokes would show where they cross.
  QPixmap Draw(const QSize& size, const QColor& ink) const {
    QSvgRenderer renderer(QByteArray(PictureFor(size)).replace("currentColor", ink.name(QColor::HexRgb).toLatin1()));
    QPixmap opaque(size), drawn(size);
    opaque.fill(Qt::transparent);
    drawn.fill(Qt::transparent);
    QPainter picture(&opaque);
    renderer.render(&picture);
    picture.end();
    QPainter painter(&drawn);
    painter.setOpacity(ink.alphaF());
    painter.drawPixmap(0, 0, opaque);
    return drawn;
  }

  // The one whose grid falls onto the pixels.
  const QByteArray& PictureFor(const QSize& size) const {
    const int side = std::min(size.width(), size.height());
    const bool small = side % 24 != 0 && (side % 16 == 0 || side < 20);
    return small ? on16_ : on24_;
  }

  QString name_;
  QByteArray on24_, on16_;  // each is drawn on a grid of that many units
};

}  // namespace

QIcon ThemedIcon(std::string_view name) {
  const QString shown = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  if (name.empty() || !QFile::exists(FileOf(shown))) return {};
  return QIcon(new ThemedIconEngine(shown));
}

QIcon ApplicationIcon() {
  return QIcon(FileOf(QStringLiteral("quillmark")));
}

}  // namespace ui
