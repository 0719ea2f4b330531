// The program's own pictures: strokes in the palette's colour, drawn at the size and resolution asked for. Each is
// there twice, on a grid of 24 and, in data/icons/16/, on one of 16, so that straight strokes fill whole pixels.
#pragma once

#include <QIcon>

#include <string_view>

namespace ui {

// The picture of data/icons/ with that name, or an empty icon. It follows the palette by itself; a disabled one is
// faint, an active one has the colour of highlighted text.
QIcon ThemedIcon(std::string_view name);

QIcon ApplicationIcon();

}  // namespace ui
