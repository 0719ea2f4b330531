// A big folder in the whole program, off screen: opening, closing, checking and clearing all, and from a key event in
// the tree to the painted frame; and taking 10,000 nodes out that are no neighbours. Argument: number of entries
// (default 100000).
#include "bench/support/AgreeingDialogs.h"
#include "bench/support/Program.h"
#include "files/FolderEntries.h"

#include <QAccessible>

#include <dirent.h>
#include <fcntl.h>
#include <malloc.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace {

double Resident() {
  malloc_trim(0);
  std::ifstream statm("/proc/self/statm");
  double size = 0, resident = 0;
  statm >> size >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

void Fill(const files::Path& folder, int count) {
  std::mt19937 chance(1);
  for (int i = 0; i < count; ++i) {
    const std::string name = "Chapter " + std::to_string(chance() % 100000) + " of " + std::to_string(i);
    if (i % 10 == 0) {
      std::filesystem::create_directory(folder / name);
    } else {
      close(open((folder / (name + ".txt")).c_str(), O_CREAT | O_WRONLY, 0600));
    }
  }
}

// What no program can do without: each name, and a look at each entry.
void ReadAndLook(const std::string& folder) {
  DIR* const directory = opendir(folder.c_str());
  struct stat status;
  while (const dirent* entry = readdir(directory)) fstatat(dirfd(directory), entry->d_name, &status, 0);
  closedir(directory);
}

class Bench {
 public:
  Bench(shell::frmMyMDI& program, std::string folder) : program_(program), folder_(std::move(folder)) {
    View().viewport()->installEventFilter(&watch_);
    static_cast<void>(program_.commonDialogs().currentDirectory().Change(files::Path(folder_).parent_path()));
    Tree().mnuTreeSync_Click();
    Paint();
  }

  void Commands() {
    std::vector<double> bare, reading, opening, closing, checking, clearing;
    if (Tree().ImageOf(folder_) == ui::TreeImage::kOpen) Toggle();
    for (int i = 0; i < 5; ++i) {
      bare.push_back(bench::Seconds([&] { ReadAndLook(folder_); }));
      reading.push_back(bench::Seconds([&] { static_cast<void>(files::ReadFolder(folder_, [] { return true; })); }));
      const double before = Resident();
      opening.push_back(bench::Seconds([&] { Toggle(); }));
      const double open = Resident();
      checking.push_back(bench::Seconds([&] { CheckAll(), Paint(); }));
      clearing.push_back(bench::Seconds([&] { Tree().mnuTreeClearSelections_Click(), Paint(); }));
      closing.push_back(bench::Seconds([&] { Toggle(); }));
      std::printf("  memory before %6.1f MB, open %6.1f MB, closed %6.1f MB\n", before, open, Resident());
    }
    Print("readdir and stat alone", bare);
    Print("read the folder alone", reading);
    Print("open, to the painted frame", opening);
    std::printf("  opening / readdir and stat: %.2f\n", bench::Median(opening) / bench::Median(bare));
    Print("check all", checking);
    Print("clear all", clearing);
    Print("close", closing);
    Toggle();
  }

  void Keys() {
    const bench::Key keys[] = {{"Down", Qt::Key_Down, {}, ""},         {"Up", Qt::Key_Up, {}, ""},
                               {"PageDown", Qt::Key_PageDown, {}, ""}, {"End", Qt::Key_End, {}, ""},
                               {"Home", Qt::Key_Home, {}, ""},         {"letter", Qt::Key_C, {}, "c"},
                               {"no such letter", Qt::Key_X, {}, "x"}, {"Space", Qt::Key_Space, {}, " "}};
    for (const bench::Key& key : keys) {
      std::vector<double> times;
      for (int i = 0; i < 50; ++i) {
        if (key.key == Qt::Key_End) Press({"", Qt::Key_Home, {}, ""});
        if (key.key == Qt::Key_Home) Press({"", Qt::Key_End, {}, ""});
        times.push_back(Press(key));
      }
      Print(key.name, times);
    }
  }

  // The sub-folders, every tenth entry.
  void Removal() {
    std::vector<double> times, looking;
    for (int i = 0; i < 5; ++i) {
      std::vector<std::string> keys;
      const foldertree::NodeTable& nodes = Tree().Nodes();
      const ui::TreeList list = nodes.ListBelow(*nodes.Find(folder_));
      for (int row = 0; row < nodes.Count(list); ++row)
        if (nodes.Image({list, row}) == ui::TreeImage::kClosed) keys.push_back(nodes.Key({list, row}));
      times.push_back(bench::Seconds([&] { Tree().RemoveNodes(keys), Paint(); }));
      Tree().RefreshFolderNode(folder_);
      CheckAll();
      looking.push_back(bench::Seconds([&] { program_.treeFiles().PruneMissingCheckedNodes(), Paint(); }));
      Tree().mnuTreeClearSelections_Click();
    }
    Print("take the folders out", times);
    Print("look which are gone", looking);
  }

 private:
  foldertree::FolderTree& Tree() { return program_.folderTree(); }
  ui::TreeView& View() { return Tree().view(); }
  void Paint() {
    View().viewport()->repaint();
    QApplication::processEvents();
  }
  void Toggle() { Tree().ToggleFolderNode(folder_), Paint(); }
  void CheckAll() {
    foldertree::NodeTable& nodes = Tree().Nodes();
    const ui::TreeList list = nodes.ListBelow(*nodes.Find(folder_));
    for (int row = 0; row < nodes.Count(list); ++row) nodes.SetChecked({list, row}, true);
    View().ShowAllChanged();
  }
  double Press(const bench::Key& key) {
    return bench::Seconds([&] {
      QKeyEvent press(QEvent::KeyPress, key.key, key.modifiers, QString::fromLatin1(key.text));
      QApplication::sendEvent(&View(), &press);
      QApplication::processEvents();
    });
  }
  static void Print(const char* what, const std::vector<double>& times) {
    std::printf("  %-28s median %7.2f ms, worst %7.2f ms\n", what, bench::Median(times) * 1e3,
                bench::Percentile(times, 1) * 1e3);
  }

  shell::frmMyMDI& program_;
  std::string folder_;
  bench::PaintWatch watch_;
};

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const int count = argc > 1 ? std::atoi(argv[1]) : 100000;
  const bench::TemporaryFolder folder;
  std::filesystem::create_directory(folder.path() / "big");
  std::ofstream(folder.path() / "a.txt");
  Fill(folder.path() / "big", count);
  bench::AgreeingDialogs dialogs;
  bench::Program program(dialogs, folder.path());
  program.Open(folder.path() / "a.txt");
  Bench bench(*program, (folder.path() / "big").native());
  for (const bool screenReader : {false, true}) {
    QAccessible::setActive(screenReader);
    std::printf("%d entries%s\n", count, screenReader ? ", with a screen reader" : "");
    bench.Commands();
    bench.Keys();
    bench.Removal();
  }
}
