// Colours as numbers, 0x00BBGGRR, and as the toolkit's.
#pragma once

#include <QColor>

#include <cstdint>

namespace ui {

inline QColor ToQColor(int64_t color) {
  return QColor(static_cast<int>(color & 255), static_cast<int>((color >> 8) & 255),
                static_cast<int>((color >> 16) & 255));
}

inline int64_t FromQColor(const QColor& color) {
  return color.red() | color.green() << 8 | color.blue() << 16;
}

}  // namespace ui
