// Pictures made of drawing records, WMF and EMF, as far as documents use them: lines, shapes, text and bitmaps. The
// formats are those of Microsoft's open specifications MS-WMF and MS-EMF. Opens nothing but the bytes it is given.
#pragma once

#include <QImage>

#include <string_view>

namespace text::pictures {

// In at most 8 million pixels of the asked shape; null where nothing can be drawn. Records that are not known are
// passed over. What painting costs is counted, and a clock stands beside it: a picture that would take more than about
// half a second (a whole page of a printer: one) is what was drawn until then.
QImage DrawWmf(std::string_view bytes, QSize pixels);
QImage DrawEmf(std::string_view bytes, QSize pixels);

}  // namespace text::pictures
