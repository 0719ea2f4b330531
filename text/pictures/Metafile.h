// Pictures made of drawing records, WMF and EMF, as far as documents use them: lines, shapes, text and bitmaps. The
// formats are those of Microsoft's open specifications MS-WMF and MS-EMF. Opens nothing but the bytes it is given.
#pragma once

#include <QImage>

#include <string_view>

namespace text::pictures {

// Null where nothing can be drawn. Records that are not known are passed over; their number and the points they may
// have are bounded, so no picture takes long.
QImage DrawWmf(std::string_view bytes, QSize pixels);
QImage DrawEmf(std::string_view bytes, QSize pixels);

}  // namespace text::pictures
