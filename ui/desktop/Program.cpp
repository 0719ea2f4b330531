#include "ui/desktop/Program.h"

#include "ui/desktop/KeyOrder.h"
#include "ui/desktop/ProgramStyle.h"
#include "ui/desktop/StartGuard.h"

#include <QApplication>
#include <QTimer>

#include <exception>

namespace ui {

Program::Program(const char* name, const char* version) {
  {
    const StartGuard guard;
    // It gets no arguments: a file may be called as one of its options.
    application_ = std::make_unique<QApplication>(argc_, argv_);
  }
  QApplication::setStyle(new ProgramStyle);
  keyOrder_ = std::make_unique<KeyOrder>();
  QApplication::setApplicationName(QLatin1String(name));
  QApplication::setApplicationVersion(QLatin1String(version));
  QApplication::setDesktopFileName(QLatin1String(name_));
  // The main window decides when the program ends.
  QApplication::setQuitOnLastWindowClosed(false);
}

Program::~Program() = default;

int Program::Run() {
  if (!status_) status_ = QApplication::exec();
  return *status_;
}

// An event loop that has not begun does not hear of it.
void Program::Quit(int status) {
  status_ = status;
  QApplication::exit(status);
}

void Program::AfterPainting(std::function<void()> call) {
  QTimer::singleShot(0, application_.get(), [this, call = std::move(call)] {
    try {
      QApplication::processEvents();
      call();
    } catch (const std::exception& failure) {
      qCritical("%s", failure.what());
      Quit(1);
    }
  });
}

}  // namespace ui
