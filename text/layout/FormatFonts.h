// Character formats made ready for shaping, once per format.
#pragma once

#include "text/FormatTable.h"

#include <QColor>
#include <QFont>
#include <QSizeF>
#include <QTextCharFormat>

#include <unordered_map>

namespace text::layout {

// Twips to logical pixels.
constexpr double kTwipsPerPixel = 15.0;
// No length, line or font is laid out larger than this many pixels, so that a block stays within the range of QFixed.
constexpr double kMaxPixels = 2000;

struct FormatLook {
  CharFormat source;
  QFont font;
  double ascent = 0, descent = 0, leading = 0;
  double raise = 0;        // pixels, positive upwards
  QTextCharFormat format;  // font, colour, lines and offset; no background: the painter draws that behind the selection
  bool fontOnly = true;    // the format says nothing but the font
  QSizeF object;           // pixels, of what stands for an embedded object
};

QColor ColorFrom(Color color);
// Black or white, whichever is read better on a colour.
QColor ReadableOn(Color background);

class FormatFonts {
 public:
  void Set(const QFont& defaultFont, double zoom);
  void Forget() { looks_.clear(); }
  void SetLinkColor(const QColor& color) {
    linkColor_ = color;
    Forget();
  }
  const QColor& linkColor() const { return linkColor_; }
  // The reference stays good until Set or Forget.
  const FormatLook& Of(const FormatTable& formats, CharFormatId id);
  FormatLook Make(const FormatTable& formats, const CharFormat& format) const;
  const QFont& defaultFont() const { return defaultFont_; }
  double zoom() const { return zoom_; }

 private:
  QFont defaultFont_;
  QColor linkColor_ = Qt::blue;
  double zoom_ = 1;
  std::unordered_map<uint32_t, FormatLook> looks_;
};

}  // namespace text::layout
