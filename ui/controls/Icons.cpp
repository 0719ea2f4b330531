#include "ui/controls/Icons.h"

#include <QColor>
#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

static void LoadPictures() {
  Q_INIT_RESOURCE(icons);
}

namespace ui {
namespace {

// A picture's strokes are wider than a letter's: with the full colour they would outweigh the text.
constexpr int kNormalAlpha = 215, kDisabledAlpha = 80;

QString FileOf(std::string_view name) {
  LoadPictures();
  return QStringLiteral(":/icons/%1.svg").arg(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
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
  explicit ThemedIconEngine(QString name, QByteArray picture) : name_(std::move(name)), picture_(std::move(picture)) {}

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
    QSvgRenderer renderer(QByteArray(picture_).replace("currentColor", ink.name(QColor::HexRgb).toLatin1()));
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

  QString name_;
  QByteArray picture_;
};

}  // namespace

QIcon ThemedIcon(std::string_view name) {
  QFile file(FileOf(name));
  if (name.empty() || !file.open(QIODevice::ReadOnly)) return {};
  return QIcon(new ThemedIconEngine(file.fileName(), file.readAll()));
}

QIcon ApplicationIcon() {
  return QIcon(FileOf("quillmark"));
}

}  // namespace ui
