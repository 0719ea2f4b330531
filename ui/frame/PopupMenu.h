// A pop-up menu made from a table.
#pragma once

#include "ui/frame/MenuBar.h"

class QPoint;

namespace ui {

// The index of the chosen row, or nothing. Rows are kItem and kSeparator only.
std::optional<size_t> PickFromPopup(const QPoint& globalPosition, const std::vector<MenuRow>& rows,
                                    const std::vector<bool>& enabled);

}  // namespace ui
