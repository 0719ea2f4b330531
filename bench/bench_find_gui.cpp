// Replace All through the dialog against the engine's own bulk replacement, and F3 up to the painted frame, off screen.
// Argument: megabytes of the document (default 100).
#include "bench/support/AgreeingDialogs.h"
#include "bench/support/Program.h"

namespace {

constexpr int kRuns = 7;

void MeasureReplaceAll(shell::frmMyMDI& program, const char* needle, const char* replacement) {
  ui::RichTextBox& box = program.documents().Active()->RichTextBox1();
  search::frmFind& dialog = *program.find().dialog();
  dialog.Combo1(0).SetText(QString::fromLatin1(needle));
  dialog.Combo1(1).SetText(QString::fromLatin1(replacement));
  const std::string sought = needle;
  const text::Searcher searcher(std::u16string(sought.begin(), sought.end()), {false, false});
  std::vector<double> own, whole;
  for (int i = 0; i < kRuns; ++i) {
    const text::Content content = box.document().content();
    own.push_back(bench::Seconds([&] {
      static_cast<void>(searcher.ReplaceAll(content, {text::Units(1), content.size()}, replacement,
                                            {text::SurfaceUnits(*replacement ? 1 : 2)}));
    }));
    whole.push_back(bench::Seconds([&] {
      dialog.cmdReplaceAll().click();
      QApplication::processEvents();
    }));
    if (box.CanUndo()) box.Undo();
    box.SetSelStart(0);
  }
  std::printf("  replace \"%s\" by \"%s\": %s engine %.0f ms, program %.0f ms, ratio %.2f\n", needle, replacement,
              qPrintable(dialog.Label3().text()), bench::Median(own) * 1e3, bench::Median(whole) * 1e3,
              bench::Median(whole) / bench::Median(own));
}

// In steps of one line, and over most of the text.
void MeasureF3(shell::frmMyMDI& program, const char* needle, bool fromBegin) {
  ui::RichTextBox& box = program.documents().Active()->RichTextBox1();
  bench::PaintWatch watch;
  box.viewport()->installEventFilter(&watch);
  program.find().engine().SearchText = QString::fromLatin1(needle);
  box.SetSelStart(0);
  std::vector<double> times;
  for (int i = 0; i < (fromBegin ? 15 : 300); ++i) {
    if (fromBegin) box.SetSelStart(0);
    QApplication::processEvents();
    const int before = watch.paints;
    times.push_back(bench::Seconds([&] {
      program.commands().mnuFindNext_Click();
      while (watch.paints == before) QApplication::processEvents();
    }));
  }
  std::printf("  F3 for \"%s\": median %.2f ms, 99th percentile %.2f ms\n", needle, bench::Median(times) * 1e3,
              bench::Percentile(times, 0.99) * 1e3);
}

}  // namespace

int main(int argc, char** argv) {
  bench::UseNoDisplay();
  QApplication application(argc, argv);
  const int64_t megabytes = argc > 1 ? std::atoll(argv[1]) : 100;
  const bench::TemporaryFolder folder;
  const files::Path file = folder.path() / "document.txt";
  bench::WriteWords(file, megabytes, "the only needle\n");
  bench::WorkingDialogs dialogs;
  bench::Program program(dialogs, folder.path());
  program.Open(file);
  std::printf("%lld MB\n", static_cast<long long>(megabytes));
  MeasureF3(*program, "fox", false);
  MeasureF3(*program, "needle", true);
  program->commands().mnuReplace_Click();
  QApplication::processEvents();
  MeasureReplaceAll(*program, "fox", "wolf");
  MeasureReplaceAll(*program, "fox", "");
  MeasureReplaceAll(*program, "the", "some");
  MeasureReplaceAll(*program, "zebra-ox", "horse");
}
