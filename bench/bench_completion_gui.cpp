// From a key event to the painted frame while the completion list is open, against the same key in the editor alone.
// Argument: number of entries (default 20000).
#include "bench/MeasureKeys.h"
#include "documents/frmText.h"
#include "shell/frmMyMDI.h"
#include "ui/controls/CompletionBox.h"
#include "ui/dialogs/QtDialogs.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

constexpr bench::Key kLetter = {"letter", Qt::Key_X, {}, "x"}, kBackspace = {"Backspace", Qt::Key_Backspace, {}, "\b"},
                     kDown = {"Down", Qt::Key_Down, {}, ""}, kPageDown = {"PageDown", Qt::Key_PageDown, {}, ""},
                     kOpen = {"open", Qt::Key_Less, {}, "<"}, kEscape = {"Escape", Qt::Key_Escape, {}, ""};

// Until what the key changed has been painted.
double Press(const bench::Key& key) {
  static bench::PaintWatch watch;
  static const bool watching = (qApp->installEventFilter(&watch), true);
  constexpr int kMostTurns = 20;  // a key at the end of the list paints nothing
  watch.paints = watching ? 0 : 1;
  return bench::Seconds([&] {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, key.key, key.modifiers, QString::fromLatin1(key.text));
      QApplication::sendEvent(QApplication::focusWidget(), &event);
    }
    for (int i = 0; i < kMostTurns && watch.paints == 0; ++i) QApplication::processEvents();
  });
}

// The median of the key, each time after `before`.
double Measure(const bench::Key& key, const std::function<void()>& before = {}) {
  std::vector<double> times;
  for (int i = 0; i < 100; ++i) {
    if (before) before();
    times.push_back(Press(key));
  }
  return bench::Median(times);
}

void Run(documents::frmText& document) {
  document.Activate();
  const double alone = Measure(kLetter, [] { Press(kBackspace); });
  const auto print = [alone](const char* what, double seconds) {
    std::printf("  %-34s median %6.2f ms, %4.1f times a letter without the list\n", what, seconds * 1e3,
                seconds / alone);
  };
  print("letter without the list", alone);
  print("open on all", Measure(kOpen, [] { Press(kEscape), Press(kBackspace); }));
  print("letter that narrows", Measure(kLetter, [] { Press(kBackspace); }));
  print("Backspace that widens", Measure(kBackspace, [] { Press(kLetter); }));
  print("Down", Measure(kDown));
  print("PageDown", Measure(kPageDown));
}

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const int count = argc > 1 ? std::atoi(argv[1]) : 20000;
  std::string pattern = (std::filesystem::temp_directory_path() / "bench_completion_XXXXXX").native();
  const files::Path folder = mkdtemp(pattern.data());
  {
    std::ofstream words(folder / "words.txt");
    for (int i = 0; i < count; ++i) words << (i % 2 ? "<x" : "<y") << " number=\"" << i << "\">\r\n";
  }
  {
    ui::QtDialogs dialogs;
    ui::DesktopShell desktop;
    shell::Place place;
    place.application = {folder, {}, folder / "settings.json"};
    place.recovery = folder / "recovery";
    place.lock = folder / "lock";
    place.offersRecovered = false;
    std::ofstream(folder / ".first-run") << (folder / "").native() << "\n";
    shell::SettingsFile(place.application.settings, place.recovery)
        .SaveSetting(services::kApplicationName, services::kGeneral, "AutoTagFile", (folder / "words.txt").native());
    shell::frmMyMDI program(dialogs, desktop, place);
    program.Start({});
    while (!program.AutoCompleteOn()) QApplication::processEvents();
    program.commands().mnuNew_Click();
    std::printf("%d entries\n", count);
    Run(*program.documents().Active());
  }
  std::filesystem::remove_all(folder);
}
