#include "ui/desktop/Clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace ui {
namespace {

constexpr const char* kRtfTypes[] = {"text/rtf", "application/rtf", "text/richtext"};

const QMimeData* Data() {
  return QGuiApplication::clipboard()->mimeData();
}

}  // namespace

bool ClipboardHasText() {
  return Data() && Data()->hasText();
}

bool ClipboardHasRtf() {
  for (const char* type : kRtfTypes)
    if (Data() && Data()->hasFormat(QLatin1String(type))) return true;
  return false;
}

QString ClipboardText() {
  return Data() ? Data()->text() : QString();
}

QByteArray ClipboardRtf() {
  for (const char* type : kRtfTypes)
    if (Data() && Data()->hasFormat(QLatin1String(type))) return Data()->data(QLatin1String(type));
  return {};
}

void SetClipboardText(const QString& text) {
  QGuiApplication::clipboard()->setText(text);
}

}  // namespace ui
