// From a key event to the painted frame in the whole program, off screen: main window, toolbar, panes and status bar.
// Argument: megabytes of the document (default 1024).
#include "bench/MeasureKeys.h"
#include "documents/frmText.h"
#include "shell/frmMyMDI.h"
#include "ui/dialogs/QtDialogs.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const int64_t megabytes = argc > 1 ? std::atoll(argv[1]) : 1024;
  std::string pattern = (std::filesystem::temp_directory_path() / "bench_program_XXXXXX").native();
  const files::Path folder = mkdtemp(pattern.data());
  const files::Path file = folder / "document.txt";
  {
    const std::string part = bench::Words(bench::kMega, false);
    std::ofstream out(file, std::ios::binary);
    for (int64_t i = 0; i < megabytes; ++i) out << part;
  }
  {
    ui::QtDialogs dialogs;
    ui::DesktopShell desktop;
    shell::Place place;
    place.application = {folder, {}, folder / "settings.json"};
    place.recovery = folder / "recovery";
    place.lock = folder / "lock";
    place.onlyLooking = true;
    place.offersRecovered = false;
    shell::frmMyMDI program(dialogs, desktop, place);
    const double shown = bench::Seconds([&] {
      program.Start({file});
      while (!program.documents().Active()) QApplication::processEvents();
    });
    ui::RichTextBox& box = program.documents().Active()->RichTextBox1();
    bench::PaintWatch watch;
    box.viewport()->installEventFilter(&watch);
    box.setFocus();
    QApplication::processEvents();
    std::printf("%lld MB in the program: started and open in %.1f ms\n", static_cast<long long>(megabytes),
                shown * 1e3);
    bench::MeasureKeys(box, watch);
  }
  std::filesystem::remove_all(folder);
}
