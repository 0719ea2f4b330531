// Stripping a whole document in the program against the engine's own work, and what keys cost when the state of
// toolbar, menus and status bar has to follow in a text of a million runs, against the same keys in a plain one. Off
// screen. Argument: megabytes of each document (default 100).
#include "bench/support/AgreeingDialogs.h"
#include "bench/support/Program.h"
#include "text/plain/Strip.h"

namespace {

constexpr int kRuns = 5;

void MeasureStrip(bench::Program& program, const char* name, void (documents::frmText::*command)(),
                  const std::function<std::optional<std::string>(const text::Content&, text::Range)>& strip) {
  ui::RichTextBox& box = program.box();
  const text::Content content = box.document().content();
  std::vector<double> own, whole, undone;
  for (int i = 0; i < kRuns; ++i) {
    own.push_back(bench::Seconds([&] { static_cast<void>(strip(content, content.all())); }));
    box.SelectAll();
    QApplication::processEvents();
    whole.push_back(bench::Seconds([&] {
      std::invoke(command, program->documents().Active());
      QApplication::processEvents();
    }));
    const bool changed = !box.document().content().SameAs(content);
    undone.push_back(bench::Seconds([&] { box.Undo(); }));
    if (!changed || !box.document().content().SameAs(content)) std::printf("  %s is not one step\n", name);
  }
  std::printf("  %-16s engine %5.0f ms, program %5.0f ms, ratio %.2f, undone in %.2f ms\n", name,
              bench::Median(own) * 1e3, bench::Median(whole) * 1e3, bench::Median(whole) / bench::Median(own),
              bench::Median(undone) * 1e3);
}

// Bold and plain words in turn, about 100 bytes a run of RTF.
void WriteRuns(const files::Path& file, int64_t megabytes) {
  std::ofstream out(file, std::ios::binary);
  out << "{\\rtf1\\ansi{\\fonttbl{\\f0 Sans;}}\n";
  const std::string words(88, 'w');
  for (int64_t i = 0; i < megabytes * 10000; ++i)
    out << (i % 2 ? "{\\b " : "{\\i ") << words << (i % 20 ? "}\n" : "}\\par\n");
  out << "}";
}

void MeasureState(bench::Program& program, const char* name) {
  ui::RichTextBox& box = program.box();
  bench::PaintWatch watch;
  box.viewport()->installEventFilter(&watch);
  box.setFocus();
  const bench::Key right = {"Right", Qt::Key_Right, {}, ""}, letter = {"letter", Qt::Key_X, {}, "x"},
                   all = {"Select All", Qt::Key_A, Qt::ControlModifier, ""};
  box.SetSelStart(box.document().content().surfaceSize().value() / 2);
  for (const bench::Key* key : {&right, &letter}) {
    std::vector<double> times;
    for (int i = 0; i < 300; ++i) times.push_back(bench::PressAndPaint(box, watch, *key));
    std::printf("  %s, %-10s median %6.2f ms, 99th percentile %6.2f ms\n", name, key->name, bench::Median(times) * 1e3,
                bench::Percentile(times, 0.99) * 1e3);
  }
  std::vector<double> times;
  for (int i = 0; i < 50; ++i) {
    bench::PressAndPaint(box, watch, right);
    times.push_back(bench::PressAndPaint(box, watch, all));
  }
  std::printf("  %s, %-10s median %6.2f ms, 99th percentile %6.2f ms\n", name, all.name, bench::Median(times) * 1e3,
              bench::Percentile(times, 0.99) * 1e3);
}

}  // namespace

int main(int argc, char** argv) {
  bench::UseNoDisplay();
  QApplication application(argc, argv);
  const int64_t megabytes = argc > 1 ? std::atoll(argv[1]) : 100;
  const bench::TemporaryFolder folder;
  const files::Path plain = folder.path() / "plain.txt", runs = folder.path() / "runs.rtf";
  bench::WriteWords(plain, megabytes);
  WriteRuns(runs, megabytes);
  bench::WorkingDialogs dialogs;
  std::printf("%lld MB\n", static_cast<long long>(megabytes));
  {
    bench::Program program(dialogs, folder.path());
    program.Open(plain);
    MeasureState(program, "plain text");
    program.box().Undo();
    MeasureStrip(program, "CRLF's", &documents::frmText::mnuStrip_Click,
                 [](const text::Content& content, text::Range range) { return text::JoinedLines(content, range); });
    MeasureStrip(program, "excess blanks", &documents::frmText::mnuStripBlanks_Click,
                 [](const text::Content& content, text::Range range) { return text::CollapsedBlanks(content, range); });
  }
  {
    bench::Program program(dialogs, folder.path());
    program.Open(runs);
    MeasureState(program, "a million runs");
  }
}
