// Pictures and other embedded objects as they are shown.
#pragma once

#include "text/FormatTable.h"
#include "text/Objects.h"

#include <QFont>
#include <QImage>
#include <QString>

#include <list>

namespace text::pictures {

// No picture with more pixels or bytes is decoded.
constexpr int64_t kMaxPicturePixels = int64_t{64} << 20;
constexpr size_t kMaxPictureBytes = size_t{64} << 20;

// In logical pixels at that zoom, before it is made to fit; the font is that of text in its place. Reads a picture's
// head at most.
QSizeF ShownSize(const EmbeddedObject& object, const QFont& font, double zoom);

// What is written where there is no picture to show, for people: "PNG picture", or the object's own name.
QString NameOf(const EmbeddedObject& object);

// The shown part in the picture's own pixels, a metafile as large as it is shown; null when it cannot be drawn.
QImage ImageOf(const EmbeddedObject& object);
// The type of the picture's bytes where they are all that is shown and a type other programs know, else null.
const char* MimeTypeOf(const EmbeddedObject& object);

// The pictures painted last, as large as they were painted.
class PictureCache {
 public:
  static constexpr size_t kMaxBytes = size_t{96} << 20;

  // The shown part of the object's picture in about so many pixels of the device; null when it cannot be drawn.
  QImage Get(const FormatTable& formats, ObjectId id, QSize pixels);
  void Clear();

 private:
  struct Entry {
    ObjectId id;
    QSize pixels;
    QImage image;  // null: damaged
  };
  std::list<Entry> entries_;  // the one used last in front
  size_t bytes_ = 0;
};

}  // namespace text::pictures
