#include "shell/settings/SettingsFile.h"

#include "files/LockFile.h"
#include "files/saving/AtomicSave.h"
#include "shell/settings/SettingsDocument.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

namespace shell {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// Far beyond what a setting or a list of them can be.
constexpr int64_t kLargestFile = 4 << 20;
constexpr int kMostKeptAside = 1000;
constexpr milliseconds kPatience{300}, kPatienceAtTheEnd{3000};

enum class Found { kNothing, kSettings, kDamaged, kUnreadable };

struct Contents {
  Found found = Found::kNothing;
  SettingsDocument document;
  files::FileStamp stamp;
  std::string reason;
};

Contents ReadContents(const files::Path& path) {
  Contents contents;
  const auto failed = [&](Found found, std::string reason) {
    contents.found = found;
    contents.reason = std::move(reason);
    return contents;
  };
  auto file = files::OpenForReading(path);
  if (!file) {
    const int error = file.error().systemError;
    return error == ENOENT || error == ENOTDIR ? contents : failed(Found::kUnreadable, file.error().text);
  }
  if (file.value().size() > kLargestFile) return failed(Found::kDamaged, "too large");
  const auto bytes = files::ReadAll(file.value(), kLargestFile);
  if (!bytes) return failed(Found::kUnreadable, bytes.error().text);
  contents.stamp = file.value().stamp();
  auto document = SettingsDocument::Parse(bytes.value(), contents.reason);
  contents.found = document ? Found::kSettings : Found::kDamaged;
  if (document) contents.document = std::move(*document);
  return contents;
}

// Gives the file another name that nothing has; false when that cannot be done.
bool MoveWithoutReplacing(const files::Path& from, const files::Path& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  // Not every file system knows the flag.
  return link(from.c_str(), to.c_str()) == 0 && unlink(from.c_str()) == 0;
}

files::Path SetAside(const files::Path& path) {
  for (int i = 1; i <= kMostKeptAside; ++i) {
    const std::string number = i == 1 ? std::string() : "-" + std::to_string(i);
    files::Path name = path.parent_path() / (path.stem().native() + ".damaged" + number + path.extension().native());
    if (MoveWithoutReplacing(path, name)) return name;
    if (errno != EEXIST) break;
  }
  return {};
}

bool WaitFor(files::LockFile& lock, const files::Path& path, milliseconds patience) {
  const auto end = steady_clock::now() + patience;
  for (;;) {
    const auto acquired = lock.Acquire(path);
    if (!acquired) return false;
    if (acquired.value()) return true;
    if (steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(milliseconds(1));
  }
}

struct Change {
  std::vector<std::string> address;
  std::string value;
};

std::vector<std::string> AddressOf(std::string_view application, std::string_view section, std::string_view key) {
  return {std::string(application), std::string(section), std::string(key)};
}

}  // namespace

struct SettingsFile::Impl {
  files::Path path, stateFolder;
  Access access;
  SettingsDocument document;  // as the file was read or written last, with the pending changes
  std::optional<files::FileStamp> stamp;
  std::vector<Change> pending;  // not on the disk yet, each address once
  std::optional<Problem> problem;

  files::Path lockPath() const { return path.native() + ".lock"; }

  void Start() {
    Contents contents = ReadContents(path);
    if (contents.found == Found::kSettings) return Take(std::move(contents));
    if (contents.found == Found::kNothing || access == Access::kReadOnly) return;
    files::LockFile lock;
    files::Path keptAs;
    if (contents.found == Found::kDamaged && WaitFor(lock, lockPath(), kPatience)) {
      // Another copy may have dealt with it meanwhile.
      contents = ReadContents(path);
      if (contents.found == Found::kDamaged) keptAs = SetAside(path);
    }
    if (contents.found == Found::kSettings) return Take(std::move(contents));
    if (contents.found != Found::kNothing) problem = Problem{path, std::move(contents.reason), std::move(keptAs)};
  }

  void Take(Contents contents) {
    stamp = contents.stamp;
    document = std::move(contents.document);
    for (const Change& change : pending) document.Set(change.address, change.value);
  }

  void LookAgain() {
    const auto now = files::StampOf(path);
    if (!now || now == stamp) return;
    Contents contents = ReadContents(path);
    // What is wrong with it is the next writing's affair.
    stamp = now;
    if (contents.found == Found::kSettings) Take(std::move(contents));
  }

  void Add(std::vector<std::string> address, std::string_view value) {
    document.Set(address, value);
    std::erase_if(pending, [&](const Change& change) { return change.address == address; });
    pending.push_back({std::move(address), std::string(value)});
  }

  bool Write(milliseconds patience) {
    if (pending.empty()) return true;
    if (access == Access::kReadOnly) return false;
    files::LockFile lock;
    if (!WaitFor(lock, lockPath(), patience)) return false;
    constexpr int kTries = 3;  // other programs do not ask for the lock
    for (int i = 0; i < kTries; ++i)
      if (WriteLocked()) return true;
    return false;
  }

  bool WriteLocked() {
    Contents contents = ReadContents(path);
    if (contents.found == Found::kUnreadable) return false;
    if (contents.found == Found::kDamaged) {
      const files::Path keptAs = SetAside(path);
      if (keptAs.empty()) return false;
      problem = Problem{path, contents.reason, keptAs};
    }
    // A file that has gone comes back with all that is known.
    SettingsDocument next = contents.found == Found::kSettings ? std::move(contents.document) : document;
    for (const Change& change : pending) next.Set(change.address, change.value);
    const std::string text = next.Text();
    if (static_cast<int64_t>(text.size()) > kLargestFile) return false;
    const auto saved =
        files::SaveAtomically(path, stateFolder, [&](const files::ByteSink& sink) { return sink(text); });
    if (!saved) return false;
    stamp = saved.value();
    document = std::move(next);
    pending.clear();
    return true;
  }
};

SettingsFile::SettingsFile(files::Path path, files::Path stateFolder, Access access)
    : impl_(std::make_unique<Impl>(Impl{std::move(path), std::move(stateFolder), access, {}, {}, {}, {}})) {
  impl_->Start();
}

SettingsFile::~SettingsFile() {
  try {
    static_cast<void>(Flush(kPatienceAtTheEnd));
  } catch (const std::exception&) {
    // Out of memory at the very end: the values are as they were.
  }
}

std::optional<std::string> SettingsFile::Find(std::string_view application, std::string_view section,
                                              std::string_view key) const {
  impl_->LookAgain();
  return impl_->document.Find(AddressOf(application, section, key));
}

services::SettingsStore::Pairs SettingsFile::GetAllSettings(std::string_view application,
                                                            std::string_view section) const {
  impl_->LookAgain();
  const std::vector<std::string> address = {std::string(application), std::string(section)};
  return impl_->document.GetAll(address);
}

std::optional<std::string> SettingsFile::FindRootValue(std::string_view name) const {
  impl_->LookAgain();
  return impl_->document.Find(std::vector<std::string>{std::string(name)});
}

void SettingsFile::SaveSettings(std::string_view application, std::string_view section, const Pairs& pairs) {
  for (const auto& [key, value] : pairs) impl_->Add(AddressOf(application, section, key), value);
  impl_->Write(kPatience);
}

void SettingsFile::SaveRootValue(std::string_view name, std::string_view value) {
  impl_->Add({std::string(name)}, value);
  impl_->Write(kPatience);
}

bool SettingsFile::Flush(milliseconds patience) {
  return impl_->Write(patience);
}

std::optional<SettingsFile::Problem> SettingsFile::TakeProblem() {
  return std::exchange(impl_->problem, std::nullopt);
}

}  // namespace shell
