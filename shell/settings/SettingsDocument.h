// The settings as JSON.
#pragma once

#include "services/Settings.h"

#include <memory>
#include <span>

namespace shell {

class SettingsDocument {
 public:
  // Names from the root down to a value: application, section and key, or one of a value beside the applications.
  using Address = std::span<const std::string>;

  SettingsDocument();  // empty
  SettingsDocument(const SettingsDocument& other);
  SettingsDocument& operator=(const SettingsDocument& other);
  SettingsDocument(SettingsDocument&& other) noexcept;
  SettingsDocument& operator=(SettingsDocument&& other) noexcept;
  ~SettingsDocument();

  // Nothing, with the reason, when the text is no JSON or not of the settings' shape: objects within objects, no name
  // twice, no deep nesting.
  static std::optional<SettingsDocument> Parse(std::string_view text, std::string& reason);
  std::string Text() const;  // with indents, and a line end behind it

  // What somebody wrote as a number or a truth value is read as its text; other things are missing.
  std::optional<std::string> Find(Address address) const;
  services::SettingsStore::Pairs GetAll(Address section) const;
  void Set(Address address, std::string_view value);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace shell
