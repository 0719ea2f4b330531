#include "shell/ApplicationFolder.h"

#include "files/saving/AtomicSave.h"

#include <algorithm>
#include <unistd.h>

namespace shell {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPortable = "portable";
constexpr const char* kSettingsName = "settings.json";
constexpr int kDeepest = 8;  // a link may lead back up

bool HasPortable(const files::Path& folder) {
  std::error_code ignored;
  return fs::is_regular_file(folder / kPortable, ignored);
}

bool IsFolder(const files::Path& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

// Help files are read, and programs run, where they were installed.
bool IsForTheUser(const files::Path& path) {
  return path.filename() != kPortable && path.extension() != ".chm" && path.extension() != ".exe";
}

bool CopyFile(const files::Path& from, const files::Path& to, const files::Path& stateFolder) {
  std::error_code error;
  const fs::file_type there = fs::symlink_status(to, error).type();
  if (there == fs::file_type::none) return false;  // nobody can tell
  if (there != fs::file_type::not_found) return true;
  auto file = files::OpenForReading(from);
  if (!file) return false;
  const auto bytes = files::ReadAll(file.value());
  if (!bytes) return false;
  // A new file: its mode is that of any file the user makes, whatever the installed one's is.
  return static_cast<bool>(
      files::SaveAtomically(to, stateFolder, [&](const files::ByteSink& sink) { return sink(bytes.value()); }));
}

bool CopyFolder(const files::Path& from, const files::Path& to, const files::Path& stateFolder, int depth) {
  if (!files::MakeFolder(to)) return false;
  std::error_code error;
  bool complete = true;
  fs::directory_iterator entry(from, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const files::Path& source = entry->path();
    const files::Path target = to / source.filename();
    if (!IsForTheUser(source)) continue;
    if (!IsFolder(source)) {
      complete &= CopyFile(source, target, stateFolder);
    } else {
      complete &= depth < kDeepest && CopyFolder(source, target, stateFolder, depth + 1);
    }
  }
  return complete && !error;
}

}  // namespace

ApplicationFolder FindApplicationFolder(const files::UserFolders& folders, const files::Path& program) {
  ApplicationFolder application{folders.data.lexically_normal(), {}, folders.config / kSettingsName};
  if (program.empty()) return application;
  const files::Path beside = program.parent_path() / "application";
  const files::Path installed = (program.parent_path() / QUILLMARK_DATA_FROM_PROGRAM).lexically_normal();
  for (const files::Path& folder : {beside, installed}) {
    if (!IsFolder(folder)) continue;
    application.installedData = folder;
    if (!HasPortable(folder) || access(folder.c_str(), W_OK | X_OK) != 0) break;
    application.path = folder;
    application.settings = folder / kSettingsName;
    break;
  }
  return application;
}

files::Path ProgramPath() {
  std::error_code ignored;
  return fs::read_symlink("/proc/self/exe", ignored);
}

bool FillApplicationFolder(const ApplicationFolder& application, const files::Path& stateFolder) {
  if (application.installedData.empty() || application.installedData == application.path)
    return static_cast<bool>(files::MakeFolder(application.path));
  return CopyFolder(application.installedData, application.path, stateFolder, 0);
}

}  // namespace shell
