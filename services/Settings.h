// The settings: the store that keeps texts from one run to the next, its table of keys, and the values in memory.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace services {

constexpr std::string_view kApplicationName = "Quillmark";
constexpr std::string_view kGeneral = "General";
constexpr std::string_view kRecentFiles = "Recent Files";

// Addressed by application name, section and key. Every value is text, as bytes. Reading never fails: what is not there
// is missing. Writing reports nothing; it is tried again with the next write and at the end.
class SettingsStore {
 public:
  using Pairs = std::vector<std::pair<std::string, std::string>>;

  virtual ~SettingsStore() = default;

  // Nothing when the key or its section is missing.
  virtual std::optional<std::string> Find(std::string_view application, std::string_view section,
                                          std::string_view key) const = 0;
  virtual void SaveSetting(std::string_view application, std::string_view section, std::string_view key,
                           std::string_view value) = 0;
  // In the order in which the keys were first created; nothing when there is no such section.
  virtual Pairs GetAllSettings(std::string_view application, std::string_view section) const = 0;
  // A value beside the applications.
  virtual std::optional<std::string> FindRootValue(std::string_view name) const = 0;
  virtual void SaveRootValue(std::string_view name, std::string_view value) = 0;

  std::string GetSetting(std::string_view application, std::string_view section, std::string_view key,
                         std::string_view fallback) const {
    return Find(application, section, key).value_or(std::string(fallback));
  }
};

}  // namespace services
