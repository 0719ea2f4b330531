// The last five project files, kept in the settings and shown at the end of the File menu.
#pragma once

#include "services/Settings.h"

#include <functional>
#include <string>
#include <vector>

namespace shell {

class RecentFiles {
 public:
  static constexpr size_t kMost = 5;

  // `changed` is called when the menus must show other entries.
  RecentFiles(services::SettingsStore& store, std::function<void()> changed)
      : store_(store), changed_(std::move(changed)) {}

  // What the menu items 1 .. show, as bytes. Entries are only ever added to it.
  const std::vector<std::string>& shown() const { return shown_; }

  void LoadRecentFiles();
  bool IsRecentFile(const std::string& path) const;
  void AddToRecentFiles(const std::string& path);
  // The position (from 1) of the project file, for the next start; nothing when it is not shown.
  std::optional<int> PositionOf(const std::string& path) const;

 private:
  void WriteRecentFile(const std::string& path);

  services::SettingsStore& store_;
  std::function<void()> changed_;
  std::vector<std::string> shown_;
};

}  // namespace shell
