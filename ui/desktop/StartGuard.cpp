#include "ui/desktop/StartGuard.h"

#include <QString>
#include <QtGlobal>

#include <cstdio>
#include <unistd.h>

namespace ui {
namespace {

void OnMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
  if (type == QtFatalMsg) {
    std::fputs("quillmark: cannot reach a display (is DISPLAY or WAYLAND_DISPLAY set?)\n", stderr);
    std::fflush(stderr);
    _exit(1);
  }
  // What precedes the failure says the same in other words.
  if (message.contains(QLatin1String("display")) || message.contains(QLatin1String("plugin"))) return;
  std::fprintf(stderr, "%s\n", qPrintable(message));
}

}  // namespace

StartGuard::StartGuard() {
  qInstallMessageHandler(OnMessage);
}
StartGuard::~StartGuard() {
  qInstallMessageHandler(nullptr);
}

}  // namespace ui
