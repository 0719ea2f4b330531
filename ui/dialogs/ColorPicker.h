// The colour dialog with the program's own row of the user's colours.
#pragma once

#include "ui/Dialogs.h"

class QColor;
class QWidget;

namespace ui {

// 0x00BBGGRR. Nothing on Cancel, and `custom` as it was.
std::optional<int64_t> PickColorWith(QWidget* owner, const QColor& initial, CustomColors& custom);

}  // namespace ui
