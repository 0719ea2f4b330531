// The desktop's clipboard.
#pragma once

#include <QByteArray>
#include <QString>

#include <string_view>

namespace ui {

bool ClipboardHasText();
bool ClipboardHasRtf();
QString ClipboardText();
QByteArray ClipboardRtf();
// A path as text; one that is no UTF-8 goes out as its bytes.
void SetClipboardPath(std::string_view path);

}  // namespace ui
