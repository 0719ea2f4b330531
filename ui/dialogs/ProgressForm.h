// Work on another thread behind a modal progress.
#pragma once

#include "ui/Dialogs.h"

class QWidget;

namespace ui {

// Returns when the work has ended. Short work is waited for without an event loop; then come the hourglass and, half a
// second after the start, the progress with Cancel.
// What the work throws is thrown here, on the caller's thread.
void RunBehindProgress(QWidget* owner, const QString& text, int64_t total, const std::function<void(WorkPort&)>& work);

}  // namespace ui
