#include "shell/RecentFiles.h"

#include "files/Attributes.h"

#include <algorithm>

namespace shell {
namespace {

std::string KeyOf(size_t number) {
  return "RecentFile" + std::to_string(number);
}

}  // namespace

void RecentFiles::LoadRecentFiles() {
  const auto newest = store_.Find(services::kApplicationName, services::kRecentFiles, KeyOf(1));
  if (!newest || newest->empty()) return;
  size_t item = 0;
  for (const auto& [key, value] : store_.GetAllSettings(services::kApplicationName, services::kRecentFiles)) {
    if (item == kMost) break;
    if (item == shown_.size()) shown_.emplace_back();
    shown_[item++] = value;
  }
  changed_();
}

std::optional<int> RecentFiles::PositionOf(const std::string& path) const {
  const auto found =
      std::ranges::find_if(shown_, [&](const std::string& entry) { return files::SamePath(entry, path); });
  if (found == shown_.end()) return std::nullopt;
  return static_cast<int>(found - shown_.begin()) + 1;
}

bool RecentFiles::IsRecentFile(const std::string& path) const {
  return PositionOf(path).has_value();
}

void RecentFiles::WriteRecentFile(const std::string& path) {
  for (size_t i = kMost - 1; i >= 1; --i) {
    const std::string entry = store_.GetSetting(services::kApplicationName, services::kRecentFiles, KeyOf(i), {});
    if (!entry.empty()) store_.SaveSetting(services::kApplicationName, services::kRecentFiles, KeyOf(i + 1), entry);
  }
  store_.SaveSetting(services::kApplicationName, services::kRecentFiles, KeyOf(1), path);
}

void RecentFiles::AddToRecentFiles(const std::string& path) {
  if (!IsRecentFile(path)) WriteRecentFile(path);
  LoadRecentFiles();
}

}  // namespace shell
