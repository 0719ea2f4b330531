// From a key event to the painted frame in the whole program, off screen: main window, toolbar, panes and status bar.
// Argument: megabytes of the document (default 1024).
#include "bench/support/Program.h"
#include "ui/dialogs/QtDialogs.h"

int main(int argc, char** argv) {
  bench::UseNoDisplay();
  QApplication application(argc, argv);
  const int64_t megabytes = argc > 1 ? std::atoll(argv[1]) : 1024;
  const bench::TemporaryFolder folder;
  const files::Path file = folder.path() / "document.txt";
  bench::WriteWords(file, megabytes);
  ui::QtDialogs dialogs;
  bench::Program program(dialogs, folder.path());
  const double shown = program.Open(file);
  bench::PaintWatch watch;
  program.box().viewport()->installEventFilter(&watch);
  program.box().setFocus();
  QApplication::processEvents();
  std::printf("%lld MB in the program: started and open in %.1f ms\n", static_cast<long long>(megabytes), shown * 1e3);
  bench::MeasureKeys(program.box(), watch);
}
