#include "text/layout/FormatFonts.h"

#include "text/layout/ViewLayout.h"
#include "text/outline/SymbolFonts.h"
#include "text/pictures/Pictures.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace text::layout {
namespace {

QFont::StyleHint HintOf(uint8_t family) {
  switch (family) {
    case 1:
      return QFont::Serif;
    case 2:
      return QFont::SansSerif;
    case 3:
      return QFont::TypeWriter;
    case 4:
      return QFont::Cursive;
    case 5:
      return QFont::Fantasy;
    default:
      return QFont::AnyStyle;
  }
}

// What a point size has to be multiplied with so that 72 points are 96 pixels on this screen.
double PointScale() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  const int dots = screen ? qRound(screen->logicalDotsPerInchY()) : 96;
  return dots > 0 ? 96.0 / dots : 1.0;
}

}  // namespace

QFont FontOf(const FormatTable& formats, const CharFormat& format, const QFont& defaultFont, double zoom) {
  const Font& named = formats[format.font];
  QFont font = defaultFont;
  if (!named.name.empty()) {
    font.setFamilies({QString::fromStdString(named.name)});
    font.setStyleHint(named.charset == kSymbolCharset ? QFont::AnyStyle : HintOf(named.family));
  }
  const double pixels = std::clamp(format.halfPoints / 2.0 * 96 / 72 * zoom, 1.0, kMaxPixels);
  font.setPointSizeF(pixels * 72 / 96 * PointScale());
  font.setBold(format.flags & kBold);
  font.setItalic(format.flags & kItalic);
  font.setUnderline((format.flags & kUnderline) || format.link != LinkId::kNone);
  font.setStrikeOut(format.flags & kStrikeThru);
  return font;
}

QColor ColorFrom(Color color) {
  return QColor(color.rgb & 255, color.rgb >> 8 & 255, color.rgb >> 16 & 255);
}

QColor ReadableOn(Color background) {
  return qGray(ColorFrom(background).rgb()) > 110 ? Qt::black : Qt::white;
}

void FormatFonts::Set(const QFont& defaultFont, double zoom) {
  defaultFont_ = defaultFont;
  zoom_ = zoom;
  Forget();
}

const FormatLook& FormatFonts::Of(const FormatTable& formats, CharFormatId id) {
  const auto key = static_cast<uint32_t>(id);
  if (const auto found = looks_.find(key); found != looks_.end()) return found->second;
  return looks_.emplace(key, Make(formats, formats[id])).first->second;
}

FormatLook FormatFonts::Make(const FormatTable& formats, const CharFormat& format) const {
  FormatLook look;
  look.source = format;
  look.font = FontOf(formats, format, defaultFont_, zoom_);
  const QFontMetricsF metrics(look.font);
  look.ascent = metrics.ascent();
  look.descent = metrics.descent();
  look.leading = std::max(0.0, metrics.leading());
  look.raise = std::clamp(format.offset / kTwipsPerPixel * zoom_, -kMaxPixels / 2, kMaxPixels / 2);
  look.format.setFont(look.font);
  if (!format.color.isAuto()) {
    look.format.setForeground(ColorFrom(format.color));
  } else if (!format.background.isAuto()) {
    look.format.setForeground(ReadableOn(format.background));
  } else if (format.link != LinkId::kNone) {
    look.format.setForeground(linkColor_);
  }
  if (format.object != ObjectId::kNone) look.object = pictures::ShownSize(formats[format.object], look.font, zoom_);
  if (look.raise != 0) look.format.setBaselineOffset(100 * look.raise / (look.ascent + look.descent));
  look.fontOnly =
      format.color.isAuto() && format.background.isAuto() && format.link == LinkId::kNone && look.raise == 0;
  return look;
}

}  // namespace text::layout
