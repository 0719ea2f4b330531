// A text of a help file beside what it explains, until a key or a click takes it away.
#pragma once

#include <QString>

class QPoint;
class QWidget;

namespace ui {

// At the point of the screen, inside it. The window deletes itself.
void ShowHelpPopup(QWidget* owner, const QPoint& globalPosition, const QString& text);

}  // namespace ui
