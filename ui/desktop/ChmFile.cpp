#include "ui/desktop/ChmFile.h"

#include "files/OpenFile.h"

#include <algorithm>
#include <cerrno>
#include <chm_lib.h>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace ui {
namespace {

constexpr size_t kMostEntries = 20000;
constexpr rlim_t kSecondsOfWork = 8;
constexpr std::chrono::seconds kLongestWait{20};
constexpr rlim_t kMemory = rlim_t{512} << 20;  // beside what the program has already
constexpr int kPollMilliseconds = 50;

// What the pipe carries: for each entry this, the name and the bytes. One without a name is the end.
struct Header {
  uint32_t name = 0, bytes = 0;
};

// --- In the other process

bool IsWanted(std::string_view path) {
  if (path.size() < 2 || path[0] != '/' || path.back() == '/') return false;
  if (path[1] != '#' && path[1] != '$') return true;
  return path == "/#SYSTEM" || path == "/#STRINGS" || path == "/#IVB";
}

int Collect(chmFile*, chmUnitInfo* unit, void* context) {
  auto& units = *static_cast<std::vector<chmUnitInfo>*>(context);
  if (IsWanted(unit->path) && unit->length <= kLargestChmEntry) units.push_back(*unit);
  return units.size() < kMostEntries ? CHM_ENUMERATOR_CONTINUE : CHM_ENUMERATOR_SUCCESS;
}

bool Send(int pipe, const void* bytes, size_t count) {
  const char* at = static_cast<const char*>(bytes);
  while (count > 0) {
    const ssize_t sent = write(pipe, at, count);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    at += sent;
    count -= static_cast<size_t>(sent);
  }
  return true;
}

void LimitThisProcess() {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  for (const int number : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGPIPE, SIGXCPU, SIGTERM})
    signal(number, SIG_DFL);
  const rlimit none{0, 0}, time{kSecondsOfWork, kSecondsOfWork};
  setrlimit(RLIMIT_CORE, &none);
  setrlimit(RLIMIT_CPU, &time);
#ifndef __SANITIZE_ADDRESS__  // it reserves terabytes
  long pages = 0;
  FILE* const sizes = std::fopen("/proc/self/statm", "r");
  if (sizes && std::fscanf(sizes, "%ld", &pages) == 1 && pages > 0) {
    const rlim_t most = static_cast<rlim_t>(pages) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + kMemory;
    const rlimit memory{most, most};
    setrlimit(RLIMIT_AS, &memory);
  }
  if (sizes) std::fclose(sizes);
#endif
}

int SendEntries(const std::string& path, int pipe) {
  chmFile* const chm = chm_open(path.c_str());
  if (!chm) return 1;
  std::vector<chmUnitInfo> units;
  chm_enumerate(chm, CHM_ENUMERATE_ALL, Collect, &units);
  int64_t total = 0;
  for (chmUnitInfo& unit : units) {
    const std::string_view name(unit.path);
    total += static_cast<int64_t>(unit.length);
    if (total > kLargestChmText) break;
    std::string bytes(unit.length, '\0');
    const auto read = chm_retrieve_object(chm, &unit, reinterpret_cast<unsigned char*>(bytes.data()), 0,
                                          static_cast<LONGINT64>(bytes.size()));
    if (read != static_cast<LONGINT64>(bytes.size())) continue;
    const Header header{static_cast<uint32_t>(name.size()), static_cast<uint32_t>(bytes.size())};
    if (!Send(pipe, &header, sizeof header) || !Send(pipe, name.data(), name.size()) ||
        !Send(pipe, bytes.data(), bytes.size()))
      return 1;
  }
  const Header end;
  return Send(pipe, &end, sizeof end) ? 0 : 1;
}

// --- In this one

// The pipe's bytes until it is closed; nothing when they are too many, too late or nobody wants them any more.
std::optional<std::string> ReadAnswer(int pipe, const std::function<bool()>& goOn) {
  const auto end = std::chrono::steady_clock::now() + kLongestWait;
  constexpr size_t kMost = static_cast<size_t>(kLargestChmText) + kMostEntries * (CHM_MAX_PATHLEN + sizeof(Header) + 1);
  std::string answer;
  std::vector<char> buffer(1 << 16);
  while (goOn() && std::chrono::steady_clock::now() < end && answer.size() <= kMost) {
    pollfd ready{pipe, POLLIN, 0};
    if (poll(&ready, 1, kPollMilliseconds) <= 0) continue;
    const ssize_t got = read(pipe, buffer.data(), buffer.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    if (got == 0) return answer;
    answer.append(buffer.data(), static_cast<size_t>(got));
  }
  return std::nullopt;
}

// Nothing when the end is missing.
std::optional<ChmEntries> Unpack(std::string_view answer) {
  ChmEntries entries;
  Header header;
  while (answer.size() >= sizeof header) {
    answer.copy(reinterpret_cast<char*>(&header), sizeof header);
    answer.remove_prefix(sizeof header);
    if (header.name == 0) return entries;
    if (answer.size() < size_t{header.name} + header.bytes) break;
    entries.emplace(ChmKey(answer.substr(0, header.name)), answer.substr(header.name, header.bytes));
    answer.remove_prefix(size_t{header.name} + header.bytes);
  }
  return std::nullopt;
}

// The header says how long the file is: at 0x38 stands where a section begins whose third number that is. Behind it
// there may be more, such as a signature.
bool IsCutShort(const files::InputFile& file) {
  unsigned char bytes[8] = {};
  const auto number = [&](int64_t at) -> std::optional<uint64_t> {
    if (pread(file.descriptor(), bytes, sizeof bytes, at) != sizeof bytes) return std::nullopt;
    uint64_t value = 0;
    for (size_t i = sizeof bytes; i-- > 0;) value = value << 8 | bytes[i];
    return value;
  };
  const auto section = number(0x38);
  if (!section || *section > static_cast<uint64_t>(file.size())) return true;
  const auto length = number(static_cast<int64_t>(*section) + 8);
  return !length || *length > static_cast<uint64_t>(file.size());
}

files::Error Damaged(const files::Path& path) {
  return {.number = 5, .path = path, .text = "The file is no help file, or is damaged."};
}

}  // namespace

std::string ChmKey(std::string_view path) {
  std::string key(path.starts_with('/') ? path.substr(1) : path);
  std::ranges::transform(key, key.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return key;
}

files::Result<ChmEntries> ReadChm(const files::Path& path, const std::function<bool()>& goOn) {
  const auto file = files::OpenForReading(path);
  if (!file) return file.error();
  if (file.value().size() > kLargestChm || IsCutShort(file.value())) return Damaged(path);
  int pipes[2];
  if (pipe2(pipes, O_CLOEXEC) != 0) return files::SystemError(errno, path);
  // By number, so that it is the very file that was looked at.
  const std::string opened = "/proc/self/fd/" + std::to_string(file.value().descriptor());
  const pid_t child = fork();
  if (child == 0) {
    close(pipes[0]);
    LimitThisProcess();
    _exit(SendEntries(opened, pipes[1]));
  }
  const int failure = errno;
  close(pipes[1]);
  const auto answer = child < 0 ? std::nullopt : ReadAnswer(pipes[0], goOn);
  close(pipes[0]);
  if (child < 0) return files::SystemError(failure, path);
  if (!answer) kill(child, SIGKILL);
  while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) continue;
  auto entries = answer ? Unpack(*answer) : std::nullopt;
  if (!entries || entries->empty()) return Damaged(path);
  return std::move(*entries);
}

}  // namespace ui
