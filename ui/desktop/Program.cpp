#include "ui/desktop/Program.h"

#include "ui/desktop/StartGuard.h"

#include <QApplication>
#include <QTimer>

namespace ui {

Program::Program(const char* name, const char* version) {
  {
    const StartGuard guard;
    // It gets no arguments: a file may be called as one of its options.
    application_ = std::make_unique<QApplication>(argc_, argv_);
  }
  QApplication::setApplicationName(QLatin1String(name));
  QApplication::setApplicationVersion(QLatin1String(version));
  QApplication::setDesktopFileName(QLatin1String(name_));
  // The main window decides when the program ends.
  QApplication::setQuitOnLastWindowClosed(false);
}

Program::~Program() = default;

void Program::Run() {
  QApplication::exec();
}
void Program::Quit() { QApplication::exit(0); }

void Program::AfterPainting(std::function<void()> call) {
  QTimer::singleShot(0, application_.get(), [call = std::move(call)] {
    QApplication::processEvents();
    call();
  });
}

}  // namespace ui
