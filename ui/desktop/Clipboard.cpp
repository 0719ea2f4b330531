#include "ui/desktop/Clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QStringDecoder>

#include <memory>

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

void SetClipboardText(std::string_view text) {
  const QByteArray bytes(text.data(), static_cast<qsizetype>(text.size()));
  QStringDecoder decoder(QStringDecoder::Utf8);
  const QString decoded = decoder(bytes);
  auto data = std::make_unique<QMimeData>();
  if (decoder.hasError()) {
    data->setData(QStringLiteral("text/plain"), bytes);
  } else {
    data->setText(decoded);
  }
  QGuiApplication::clipboard()->setMimeData(data.release());
}

}  // namespace ui
