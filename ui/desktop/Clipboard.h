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
// Text in UTF-8; what is none goes out as its bytes.
void SetClipboardText(std::string_view text);
inline void SetClipboardPath(std::string_view path) {
  SetClipboardText(path);
}

}  // namespace ui
