// The whole program in a folder of its own, for a benchmark.
#pragma once

#include "bench/support/MeasureKeys.h"
#include "documents/frmText.h"
#include "shell/frmMyMDI.h"

#include <cstdlib>
#include <filesystem>

namespace bench {

// A new folder, removed with everything in it at the end.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillmark_bench_XXXXXX").native();
    if (mkdtemp(pattern.data())) path_ = pattern;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const files::Path& path() const { return path_; }

 private:
  files::Path path_;
};

// Without a first run the folder counts as that of an earlier one.
enum class FirstRun : bool { kOver, kNow };

class Program {
 public:
  Program(ui::Dialogs& dialogs, const files::Path& folder, FirstRun firstRun = FirstRun::kOver)
      : program_(dialogs, desktop_, PlaceIn(folder, firstRun)) {}

  // Until the file's window is there; then the seconds that took.
  double Open(const files::Path& file) {
    return Seconds([&] {
      program_.Start({file});
      while (!program_.documents().Active()) QApplication::processEvents();
    });
  }

  shell::frmMyMDI& operator*() { return program_; }
  shell::frmMyMDI* operator->() { return &program_; }
  ui::RichTextBox& box() { return program_.documents().Active()->RichTextBox1(); }

 private:
  static shell::Place PlaceIn(const files::Path& folder, FirstRun firstRun) {
    shell::Place place;
    place.application = {folder, {}, folder / "settings.json"};
    place.recovery = folder / "recovery";
    place.lock = folder / "lock";
    place.offersRecovered = false;
    if (firstRun == FirstRun::kOver) std::ofstream(folder / ".first-run") << (folder / "").native() << "\n";
    return place;
  }

  ui::DesktopShell desktop_;
  shell::frmMyMDI program_;
};

inline void UseNoDisplay() {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
}

// A text file of this many megabytes of words, and a last line.
inline void WriteWords(const files::Path& file, int64_t megabytes, std::string_view last = {}) {
  const std::string part = Words(kMega, false);
  std::ofstream out(file, std::ios::binary);
  for (int64_t i = 0; i < megabytes; ++i) out << part;
  out << last;
}

}  // namespace bench
