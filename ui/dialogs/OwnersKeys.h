// The keys of the main window in the windows that belong to it.
#pragma once

class QKeyEvent;
class QWidget;

namespace ui {

// Runs the action of the window's owner that has the key, if any can be used.
bool TriggerKeyOfOwner(const QWidget& window, QKeyEvent& event);

}  // namespace ui
