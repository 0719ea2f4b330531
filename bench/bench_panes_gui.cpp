// A quotes file: loaded into its pane against opened as a document, and searched in vain against QString's own search
// over all of its text. Argument: number of lines (default 100000).
#include "bench/support/AgreeingDialogs.h"
#include "bench/support/Program.h"

namespace {

struct Answering : bench::AgreeingDialogs {
  std::optional<QString> AskText(ui::Form*, const QString&, const QString&) override { return text; }
  QString text = QStringLiteral("not there");
};

double MedianOf(const std::function<void()>& work) {
  std::vector<double> times;
  for (int i = 0; i < 9; ++i) times.push_back(bench::Seconds(work));
  return bench::Median(times);
}

void Print(const char* what, double seconds, const char* against, double other) {
  std::printf("  %-28s median %7.2f ms, %5.2f times %s (%.2f ms)\n", what, seconds * 1e3, seconds / other, against,
              other * 1e3);
}

}  // namespace

int main(int argc, char** argv) {
  bench::UseNoDisplay();
  QApplication application(argc, argv);
  const int count = argc > 1 ? std::atoi(argv[1]) : 100000;
  const bench::TemporaryFolder folder;
  std::string text;
  for (int i = 0; i < count; ++i) text += "Quote " + std::to_string(i) + ", and what else there is to be said.\r\n";
  const files::Path path = folder.path() / "quotes.txt";
  std::ofstream(path, std::ios::binary) << text;
  Answering dialogs;
  bench::Program program(dialogs, folder.path());
  program->Start({});
  QApplication::processEvents();
  panes::Quotes& quotes = program->panes().quotes();

  const double load = MedianOf([&] {
    quotes.LoadQuotesFile(path);
    QApplication::processEvents();
  });
  const double open = MedianOf([&] {
    std::string name = path.native();
    program->OpenDocument(name);
    QApplication::processEvents();
    program->documents().Active()->Close();
    QApplication::processEvents();
  });
  std::printf("%d lines, %.1f MB\n", quotes.pane()->List1().count(), static_cast<double>(text.size()) / 1e6);
  Print("load and show", load, "opening as a document", open);

  const QString all = QString::fromStdString(text);
  bool found = false;
  const double scan = MedianOf([&] { found = found || all.contains(dialogs.text, Qt::CaseInsensitive); });
  const double search = MedianOf([&] { quotes.mnuFindQuote_Click(); });
  Print(found ? "?" : "find what is not there", search, "one search of all the text", scan);
  const double random = MedianOf([&] {
    quotes.mnuRandom_Click();
    QApplication::processEvents();
  });
  Print("pick a random quote", random, "one search of all the text", scan);
}
