// Loading a plain-text file against a bare read() of it into fresh memory of the same page kind. Warm cache, runs in
// turn, each in a process of its own, so that every one starts with fresh memory and its peak is its own.
//   bench_load [MEGABYTES]        default 1024
#include "text/plain/PlainText.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kRuns = 7;

struct Figures {
  double milliseconds = 0;
  double peakMegabytes = 0;  // beyond what the process had before
};

double PeakMegabytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) / 1024;
  return 0;
}

void BareRead(int file, size_t size) {
  constexpr size_t kHuge = size_t{2} << 20;
  const size_t room = (size + 2 * kHuge) / kHuge * kHuge;
  char* memory = static_cast<char*>(mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  if (memory == MAP_FAILED) std::exit(1);
  madvise(memory, room, MADV_HUGEPAGE);
  size_t done = 0;
  for (ssize_t count; (count = read(file, memory + done, size - done)) > 0;) done += static_cast<size_t>(count);
  if (done != size) std::exit(1);
}

void Load(int file, size_t size) {
  const text::LoadedText loaded = text::ReadPlainText(file);
  if (loaded.error || loaded.content.sums().bytes.value() != static_cast<int64_t>(size)) std::exit(1);
  static text::Content kept;  // not freed within the measured time
  kept = loaded.content;
}

Figures InChild(const std::string& path, void (*work)(int, size_t)) {
  int ends[2];
  if (pipe(ends) != 0) std::exit(1);
  if (fork() == 0) {
    const int file = open(path.c_str(), O_RDONLY);
    const auto size = static_cast<size_t>(lseek(file, 0, SEEK_END));
    lseek(file, 0, SEEK_SET);
    const double before = PeakMegabytes();
    const auto start = std::chrono::steady_clock::now();
    work(file, size);
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    const Figures figures{taken.count(), PeakMegabytes() - before};
    _exit(write(ends[1], &figures, sizeof figures) == sizeof figures ? 0 : 1);
  }
  Figures figures;
  close(ends[1]);
  if (read(ends[0], &figures, sizeof figures) != sizeof figures) {
    std::fprintf(stderr, "a run failed\n");
    std::exit(1);
  }
  close(ends[0]);
  wait(nullptr);
  return figures;
}

Figures Median(std::vector<Figures> runs) {
  const auto middle = [&](double Figures::*field) {
    std::sort(runs.begin(), runs.end(), [field](const auto& a, const auto& b) { return a.*field < b.*field; });
    return runs[runs.size() / 2].*field;
  };
  return {middle(&Figures::milliseconds), middle(&Figures::peakMegabytes)};
}

void MakeFile(const std::string& path, size_t megabytes, const std::string& lineEnd, const std::string& letter) {
  std::string block;
  for (int line = 0; block.size() < (size_t{1} << 20); ++line)
    block += "Line " + std::to_string(line) + " of a text, long enough to look lik" + letter + " one." + lineEnd;
  block.resize(size_t{1} << 20);
  while ((block.back() & 0x80) != 0) block.back() = '.', block[block.size() - 2] = '.';
  std::ofstream file(path, std::ios::binary);
  for (size_t i = 0; i < megabytes && file; ++i) file << block;
  file.close();
  if (file) return;
  std::fprintf(stderr, "cannot write %s\n", path.c_str());
  std::exit(1);
}

void Compare(const char* name, const std::string& path) {
  InChild(path, BareRead);  // warms the cache
  std::vector<Figures> bare, load;
  for (int i = 0; i < kRuns; ++i) {
    bare.push_back(InChild(path, BareRead));
    load.push_back(InChild(path, Load));
  }
  const Figures a = Median(bare), b = Median(load);
  const double size = static_cast<double>(std::filesystem::file_size(path)) / (1 << 20);
  std::printf("%-22s read() %6.1f ms   load %6.1f ms   ratio %.2f   peak %.0f MB = %.3f x file\n", name, a.milliseconds,
              b.milliseconds, b.milliseconds / a.milliseconds, b.peakMegabytes, b.peakMegabytes / size);
}

}  // namespace

int main(int argc, char** argv) {
  const size_t megabytes = argc > 1 ? static_cast<size_t>(std::atol(argv[1])) : 1024;
  const auto folder = std::filesystem::temp_directory_path();
  if (std::filesystem::space(folder).available >> 20 < megabytes + 256) {
    std::fprintf(stderr, "not enough room in %s\n", folder.c_str());
    return 1;
  }
  const std::string path = folder / ("bench_load_" + std::to_string(getpid()) + ".txt");
  const struct {
    const char* name;
    const char* lineEnd;
    const char* letter;
  } kFiles[] = {{"ASCII, LF", "\n", "e"}, {"ASCII, CR LF", "\r\n", "e"}, {"UTF-8, a few accents", "\n", "\xC3\xA9"}};
  for (const auto& file : kFiles) {
    MakeFile(path, megabytes, file.lineEnd, file.letter);
    Compare(file.name, path);
    std::filesystem::remove(path);
  }
}
