// Copying and deleting a tree of small files, compared with cp and rm, warm cache: medians of alternating runs.
//
//     bench_file_operations [FILES [ROUNDS [FOLDER]]]
#include "bench/support/Measure.h"
#include "files/operations/FileOperation.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class Silent final : public files::OperationUser {
 public:
  files::ConflictAnswer OnConflict(const files::Conflict&) override { return {}; }
  files::FailureAnswer OnFailure(const files::OperationFailure&) override { return {}; }
  bool OnProgress(const files::OperationProgress&) override { return true; }
  void OnCurrent(const std::string&) override {}
};

void Run(std::vector<const char*> command) {
  command.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    execvp(command[0], const_cast<char* const*>(command.data()));
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) std::exit(1);
}

void Operate(files::OperationKind kind, const fs::path& source, const fs::path& folder) {
  Silent user;
  const auto outcome = files::RunOperation({kind, {source}, folder}, user);
  if (outcome.failed || outcome.cancelled) std::exit(1);
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc > 1 ? std::atoi(argv[1]) : 100000;
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
  std::string folder =
      (fs::path(argc > 3 ? argv[3] : fs::temp_directory_path().c_str()) / "quillmark-bench-XXXXXX").native();
  if (count <= 0 || rounds <= 0 || !mkdtemp(folder.data())) return 1;
  const fs::path work = folder, source = work / "tree";
  for (int i = 0; i < count; ++i) {
    const fs::path part = source / std::to_string(i / 200);
    if (i % 200 == 0) fs::create_directories(part);
    std::ofstream(part / std::to_string(i)) << std::string(static_cast<size_t>(i * 37 % 4096), 'x');
  }
  for (const char* name : {"ours", "theirs"}) fs::create_directory(work / name);
  std::vector<double> copied, cp, deleted, rm;
  const std::string theirs = work / "theirs", theirTree = theirs + "/tree";
  for (int round = 0; round <= rounds; ++round) {
    double a = 0, b = 0, c = 0, d = 0;
    const auto ours = [&] {
      a = bench::Seconds([&] { Operate(files::OperationKind::kCopy, source, work / "ours"); });
      c = bench::Seconds([&] { Operate(files::OperationKind::kDelete, work / "ours/tree", {}); });
    };
    // Who comes second may have to wait for what the first one left to be written.
    if (round % 2) ours();
    b = bench::Seconds([&] { Run({"cp", "-a", source.c_str(), theirs.c_str()}); });
    d = bench::Seconds([&] { Run({"rm", "-r", theirTree.c_str()}); });
    if (round % 2 == 0) ours();
    if (round == 0) continue;  // warms the cache
    copied.push_back(a), cp.push_back(b), deleted.push_back(c), rm.push_back(d);
  }
  fs::remove_all(work);
  const auto print = [](const char* what, const std::vector<double>& ours, const char* other,
                        const std::vector<double>& others) {
    std::printf("%s %.2f s, %s %.2f s, ratio %.2f\n", what, bench::Median(ours), other, bench::Median(others),
                bench::Median(ours) / bench::Median(others));
  };
  std::printf("%d files, peak memory %.0f MB\n", count, bench::PeakMemory() / 1e6);
  print("copy", copied, "cp -a", cp);
  print("delete", deleted, "rm -r", rm);
}
