#include "files/FolderUse.h"

#include "files/OpenFile.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace files {
namespace {

constexpr int64_t kMost = 1 << 16;

std::string ReadSystemFile(const Path& path) {
  auto file = OpenForReading(path);
  std::string bytes;
  if (file) static_cast<void>(ReadInto(file.value(), bytes, kMost));
  return bytes;
}

std::string_view LastPart(std::string_view path) {
  return path.substr(path.find_last_of('/') + 1);
}

std::vector<std::string_view> Split(std::string_view text, char at) {
  std::vector<std::string_view> parts;
  while (!text.empty()) {
    const size_t end = std::min(text.find(at), text.size());
    parts.push_back(text.substr(0, end));
    text.remove_prefix(std::min(text.size(), end + 1));
  }
  return parts;
}

// Programs that are scripts stand behind what interprets them.
FolderUse UseByArguments(const Path& process, std::string_view name, std::string_view program) {
  const std::string line = ReadSystemFile(process / "cmdline");
  if (line.find(name) != std::string::npos) return FolderUse::kPerhaps;
  const auto arguments = Split(line, '\0');
  const auto isProgram = [program](std::string_view argument) { return LastPart(argument) == program; };
  const auto end = arguments.begin() + static_cast<ptrdiff_t>(std::min<size_t>(2, arguments.size()));
  return !program.empty() && std::any_of(arguments.begin(), end, isProgram) ? FolderUse::kPerhaps : FolderUse::kNone;
}

FolderUse UseByDescriptors(const Path& process, const std::string& inside) {
  FolderUse use = FolderUse::kNone;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(process / "fd", error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    if (!std::filesystem::read_symlink(entry->path(), ignored).native().starts_with(inside)) continue;
    use = std::max(use, FolderUse::kOpen);
    const std::string state = ReadSystemFile(process / "fdinfo" / entry->path().filename());
    const size_t flags = state.find("flags:");
    const bool readOnly =
        flags == std::string::npos || (std::strtol(state.c_str() + flags + 6, nullptr, 8) & O_ACCMODE) == O_RDONLY;
    if (!readOnly) return FolderUse::kWritten;
  }
  return use;
}

}  // namespace

FolderUse UseOfFolder(const Path& folder, std::string_view program) {
  std::error_code error;
  const Path real = std::filesystem::canonical(folder, error);
  if (error) return FolderUse::kNone;
  const std::string inside = real.native() + '/', own = std::to_string(getpid());
  FolderUse use = FolderUse::kNone;
  for (std::filesystem::directory_iterator entry("/proc", error), end; !error && entry != end; entry.increment(error)) {
    const std::string number = entry->path().filename().native();
    struct stat status {};
    if (number == own || number.find_first_not_of("0123456789") != std::string::npos) continue;
    if (stat(entry->path().c_str(), &status) != 0 || status.st_uid != geteuid()) continue;
    use = std::max(use, UseByDescriptors(entry->path(), inside));
    if (use == FolderUse::kWritten) break;
    if (use == FolderUse::kNone) use = UseByArguments(entry->path(), real.filename().native(), program);
  }
  return use;
}

std::string BootId() {
  std::string id = ReadSystemFile("/proc/sys/kernel/random/boot_id");
  id.erase(std::min(id.find('\n'), id.size()));
  return id;
}

}  // namespace files
