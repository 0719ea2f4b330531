// A long project in the whole program, off screen: loading, sorting, adding, removing, saving, and from a key event in
// the list to the painted frame. Argument: number of entries (default 20000).
#include "bench/support/AgreeingDialogs.h"
#include "bench/support/Program.h"
#include "project/ProjectFile.h"
#include "search/frmYesNoAll.h"
#include "ui/PendingEvents.h"

#include <QAccessible>

#include <random>

namespace {

// Answers every question with Yes, one by one or for all.
class SaysYes final : public bench::AgreeingDialogs {
 public:
  bool forAll = false;

  bool ShowModal(ui::ModalForm& form) override {
    auto& question = dynamic_cast<search::frmYesNoAll&>(form);
    question.chkAll().SetValue(forAll);
    question.Command1_Click();
    return true;
  }
};

std::vector<std::string> Entries(const files::Path& folder, int count) {
  std::mt19937 chance(1);
  std::vector<std::string> entries;
  for (int i = 0; i < count; ++i) {
    const std::string name =
        (folder / "some folder" / ("Chapter " + std::to_string(chance() % 100000) + " of ")).native();
    entries.push_back(name + std::to_string(i) + (i % 10 == 0 ? "/" : i % 10 == 1 ? ".pdf.lnk" : ".txt"));
  }
  return entries;
}

class Bench {
 public:
  Bench(shell::frmMyMDI& program, SaysYes& dialogs, std::vector<std::string> entries, const files::Path& folder)
      : program_(program), dialogs_(dialogs), entries_(std::move(entries)), file_((folder / "long.prj").native()) {
    List1().viewport()->installEventFilter(&watch_);
    std::ofstream(file_, std::ios::binary) << project::FormatProjectFile(entries_);
  }

  void Commands() {
    project::ProjectList& list = program_.projectList();
    Time("load", [&] { Load(); });
    Time("sort", [&] { list.mnuListSort_Click(); });
    Time("sort again", [&] { list.mnuListSort_Click(); });
    Time("save", [&] { program_.project().mnuSaveProject_Click(); });
    Time("copy all pathnames", [&] { list.mnuSelectAll_Click(), list.mnuCopyListPath_Click(); });
    Time("remove one", [&] { List1().SelectOnly(count() / 2), list.mnuRemoveFile_Click(); });
    dialogs_.forAll = true;
    SelectEveryOther();
    Time("remove every other", [&] { list.mnuRemoveFile_Click(); });
    Load();
    Time("remove all, asked once", [&] { list.mnuSelectAll_Click(), list.mnuRemoveFile_Click(); });
    Load();
    dialogs_.forAll = false;
    Time("remove all, asked each", [&] { list.mnuSelectAll_Click(), list.mnuRemoveFile_Click(); });
    Time("drop all", [&] { Q_EMIT List1().FilesDropped(entries_); });
    Time("drop all again", [&] { Q_EMIT List1().FilesDropped(entries_); });
    program_.project().ProjectFile = file_;
    program_.project().mnuSaveProject_Click();
    Load();
  }

  void Keys() {
    const bench::Key keys[] = {{"Down", Qt::Key_Down, {}, ""},
                               {"Up", Qt::Key_Up, {}, ""},
                               {"PageDown", Qt::Key_PageDown, {}, ""},
                               {"End", Qt::Key_End, {}, ""},
                               {"Home", Qt::Key_Home, {}, ""},
                               {"letter", Qt::Key_C, {}, "c"},
                               {"no such letter", Qt::Key_X, {}, "x"},
                               {"Shift+End", Qt::Key_End, Qt::ShiftModifier, ""},
                               {"Shift+Up", Qt::Key_Up, Qt::ShiftModifier, ""},
                               {"Ctrl+A", Qt::Key_A, Qt::ControlModifier, ""}};
    for (const bench::Key& key : keys) {
      std::vector<double> times;
      for (int i = 0; i < 50; ++i) {
        if (key.key == Qt::Key_End || key.key == Qt::Key_A) Press({"", Qt::Key_Home, {}, ""});
        if (key.key == Qt::Key_Home) Press({"", Qt::Key_End, {}, ""});
        times.push_back(Press(key));
      }
      Print(key.name, times);
    }
    std::vector<double> times;
    for (int i = 0; i < 50; ++i) {
      program_.projectList().mnuProjListClearSelected_Click();
      times.push_back(
          bench::Seconds([&] { program_.projectList().mnuSelectAll_Click(), QApplication::processEvents(); }));
    }
    Print("Select all", times);
  }

 private:
  ui::ListBox& List1() { return program_.frame().leftPane().List1(); }
  int count() { return List1().count(); }
  void Load() {
    program_.project().ProjectFile = file_;
    program_.project().LoadProject();
  }
  void SelectEveryOther() {
    List1().SelectOnly(1);
    for (int line = 3; line < count(); line += 2) List1().Select(line, true);
  }
  void Time(const char* what, const std::function<void()>& work) {
    const double seconds = bench::Seconds([&] { work(), QApplication::processEvents(); });
    std::printf("  %-24s %8.1f ms, %d entries left\n", what, seconds * 1e3, count() - 1);
  }
  double Press(const bench::Key& key) {
    watch_.paints = 0;
    return bench::Seconds([&] {
      QKeyEvent press(QEvent::KeyPress, key.key, key.modifiers, QString::fromLatin1(key.text));
      QApplication::sendEvent(&List1(), &press);
      QApplication::processEvents();
    });
  }
  static void Print(const char* what, const std::vector<double>& times) {
    std::printf("  %-24s median %6.2f ms, worst %6.2f ms\n", what, bench::Median(times) * 1e3,
                bench::Percentile(times, 1) * 1e3);
  }

  shell::frmMyMDI& program_;
  SaysYes& dialogs_;
  std::vector<std::string> entries_;
  std::string file_;
  bench::PaintWatch watch_;
};

}  // namespace

int main(int argc, char** argv) {
  bench::UseNoDisplay();
  QApplication application(argc, argv);
  const int count = argc > 1 ? std::atoi(argv[1]) : 20000;
  const bench::TemporaryFolder folder;
  SaysYes dialogs;
  bench::Program program(dialogs, folder.path(), bench::FirstRun::kNow);
  program->Start({});
  while (program->project().ProjectFile.empty()) QApplication::processEvents();  // the first run's
  Bench bench(*program, dialogs, Entries(folder.path(), count), folder.path());
  for (const bool screenReader : {false, true}) {
    QAccessible::setActive(screenReader);
    std::printf("%d entries%s\n", count, screenReader ? ", with a screen reader" : "");
    bench.Commands();
    bench.Keys();
  }
}
