// The desktop's clipboard.
#pragma once

#include <QByteArray>
#include <QString>

namespace ui {

bool ClipboardHasText();
bool ClipboardHasRtf();
QString ClipboardText();
QByteArray ClipboardRtf();
void SetClipboardText(const QString& text);

}  // namespace ui
