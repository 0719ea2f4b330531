// From a key event to the painted frame while the completion list is open, against the same key in the editor alone.
// Argument: number of entries (default 20000).
#include "bench/support/Program.h"
#include "ui/controls/completion/CompletionBox.h"
#include "ui/dialogs/QtDialogs.h"

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
  bench::UseNoDisplay();
  QApplication application(argc, argv);
  const int count = argc > 1 ? std::atoi(argv[1]) : 20000;
  const bench::TemporaryFolder folder;
  const files::Path words = folder.path() / "words.txt", settings = folder.path() / "settings.json";
  {
    std::ofstream out(words);
    for (int i = 0; i < count; ++i) out << (i % 2 ? "<x" : "<y") << " number=\"" << i << "\">\r\n";
  }
  shell::SettingsFile(settings, folder.path() / "recovery")
      .SaveSetting(services::kApplicationName, services::kGeneral, "AutoTagFile", words.native());
  ui::QtDialogs dialogs;
  bench::Program program(dialogs, folder.path());
  program->Start({});
  while (!program->AutoCompleteOn()) QApplication::processEvents();
  program->commands().mnuNew_Click();
  std::printf("%d entries\n", count);
  Run(*program->documents().Active());
}
