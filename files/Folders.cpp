#include "files/Folders.h"

#include "files/Io.h"

#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace files {

namespace {

constexpr char kProgram[] = "quillmark";

std::optional<Path> AbsoluteFrom(const Environment& environment, const char* name) {
  const auto value = environment(name);
  if (!value || !value->starts_with('/')) return std::nullopt;
  return Path(*value);
}

std::optional<Path> HomeOfAccount() {
  std::vector<char> buffer(16384);
  passwd account;
  passwd* found = nullptr;
  if (getpwuid_r(geteuid(), &account, buffer.data(), buffer.size(), &found) != 0 || !found) return std::nullopt;
  if (!found->pw_dir || found->pw_dir[0] != '/') return std::nullopt;
  return Path(found->pw_dir);
}

// The XDG base directory rules want a folder of ours that nobody else may enter.
bool IsPrivate(const Path& folder) {
  struct stat status;
  return stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid() &&
         (status.st_mode & 0777) == 0700;
}

}  // namespace

std::optional<std::string> ProcessEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value ? std::optional<std::string>(value) : std::nullopt;
}

Result<UserFolders> FindUserFolders(const Environment& environment) {
  std::optional<Path> home = AbsoluteFrom(environment, "HOME");
  if (!home) home = HomeOfAccount();
  UserFolders folders;
  const struct {
    const char* variable;
    const char* fallback;
    Path& folder;
  } kRows[] = {
      {"XDG_CONFIG_HOME", ".config", folders.config},
      {"XDG_DATA_HOME", ".local/share", folders.data},
      {"XDG_STATE_HOME", ".local/state", folders.state},
  };
  for (const auto& row : kRows) {
    const auto base = AbsoluteFrom(environment, row.variable);
    if (!base && !home) return Error{76, 0, {}, "No home folder"};
    row.folder = (base ? *base : *home / row.fallback) / kProgram;
  }
  const auto runtime = AbsoluteFrom(environment, "XDG_RUNTIME_DIR");
  folders.runtime = runtime && IsPrivate(*runtime) ? *runtime / kProgram : folders.state / "runtime";
  return folders;
}

Status MakeFolder(const Path& path) {
  if (HasNul(path)) return SystemError(EINVAL, path);
  if (path.empty()) return SystemError(ENOENT, path);
  struct stat status;
  if (stat(path.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return {};
    return SystemError(ENOTDIR, path);
  }
  if (errno != ENOENT) return SystemError(errno, path);
  const Path name = path.has_filename() ? path : path.parent_path();
  const Path parent = name.has_parent_path() ? name.parent_path() : Path(".");
  if (parent != name) {
    if (auto made = MakeFolder(parent); !made) return made;
  }
  if (mkdir(name.c_str(), 0700) != 0) {
    // Somebody else may have been faster, and a dangling link is in the way.
    if (errno != EEXIST) return SystemError(errno, path);
    if (stat(name.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return SystemError(ENOTDIR, path);
    return {};
  }
  // A parent that may not be read (a mount's root, say) is not ours to worry about: the name is only not yet durable.
  const int error = SyncFolder(parent);
  if (error && error != EACCES) return SystemError(error, path);
  return {};
}

}  // namespace files
