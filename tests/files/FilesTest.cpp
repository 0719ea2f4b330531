#include "FilesTest.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace files {

ScratchFolder::ScratchFolder(Place place) {
  const Path memory = "/dev/shm";
  const bool quick = place == Place::kMemory && access(memory.c_str(), W_OK) == 0;
  std::string name = ((quick ? memory : std::filesystem::temp_directory_path()) / "quillmark-test-XXXXXX").native();
  EXPECT_NE(nullptr, mkdtemp(name.data()));
  path_ = name;
  chmod(path_.c_str(), 0755);
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void Put(const Path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string Get(const Path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return "<none>";
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> NamesIn(const Path& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& item : std::filesystem::directory_iterator(folder, error)) names.push_back(item.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

struct stat StatusOf(const Path& path) {
  struct stat status {};
  EXPECT_EQ(0, lstat(path.c_str(), &status)) << path;
  return status;
}

std::string Pattern(size_t size, uint32_t seed) {
  std::string bytes(size, '\0');
  uint32_t state = seed * 2654435761u + 1;
  for (char& byte : bytes) {
    state = state * 1664525u + 1013904223u;
    byte = static_cast<char>(state >> 24);
  }
  return bytes;
}

std::string Outcome(const Status& status) {
  return status ? "" : std::to_string(status.error().number) + " " + status.error().text;
}

std::string Outcome(const Result<FileStamp>& result) {
  return result ? "" : Outcome(Status(result.error()));
}

Result<FileStamp> Save(const Path& target, const Path& stateFolder, std::string_view bytes) {
  return SaveAtomically(target, stateFolder, [&](const ByteSink& sink) { return sink(bytes); });
}

void Checks::SameBytes(const char* what, const std::string& expected, const std::string& actual) {
  if (expected == actual) return;
  const auto differ = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  text_ << what << ": " << actual.size() << " bytes instead of " << expected.size() << ", different from byte "
        << differ.first - expected.begin() << "\n";
}

std::string InChild(const ChildBody& body) {
  int ends[2];
  if (pipe(ends) != 0) return "no pipe";
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    std::string text;
    try {
      text = body();
    } catch (const std::exception& exception) {
      // Out of here it would go on as a second test program.
      text = exception.what();
    }
    const bool told = write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
    _exit(told ? 0 : 1);
  }
  close(ends[1]);
  std::string text;
  char buffer[4096];
  for (ssize_t count; (count = read(ends[0], buffer, sizeof buffer)) > 0;)
    text.append(buffer, static_cast<size_t>(count));
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFSIGNALED(status))
    text += std::string("the child was ended by ") + strsignal(WTERMSIG(status));
  else if (WEXITSTATUS(status) != 0)
    text += "the child failed with status " + std::to_string(WEXITSTATUS(status));
  return text;
}

std::string AsNobody(const ChildBody& body) {
  return InChild([&]() -> std::string {
    if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) return "SKIP cannot become another user";
    return body();
  });
}

std::string WithSmallVolume(const Path& folder, int kilobytes, const ChildBody& body) {
  return InChild([&]() -> std::string {
    const std::string options = "size=" + std::to_string(kilobytes) + "k";
    if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) != 0)
      return std::string("SKIP mounting is not permitted: ") + strerror(errno);
    return body();
  });
}

bool FailCall(int call, int error, int argument, uint32_t least, bool exact) {
  const uint32_t refuse = SECCOMP_RET_ERRNO | static_cast<uint32_t>(error);
  // The lower half of an argument; little-endian.
  const uint32_t place = static_cast<uint32_t>(offsetof(seccomp_data, args)) + 8u * static_cast<uint32_t>(argument);
  const uint16_t compare = BPF_JMP | BPF_K | (exact ? BPF_JEQ : BPF_JGE);
  sock_filter always[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(call), 0, 1),
      BPF_STMT(BPF_RET | BPF_K, refuse),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  sock_filter some[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(call), 0, 3),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, place),
      BPF_JUMP(compare, least, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, refuse),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  sock_fprog program{4, always};
  if (argument >= 0) program = {6, some};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace files
