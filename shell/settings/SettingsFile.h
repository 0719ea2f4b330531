// The settings in one JSON file: application, section, key, each value a text; values beside the applications are of
// the toolbar's layout. What somebody else wrote into it stays there.
#pragma once

#include "files/OpenFile.h"
#include "services/Settings.h"

#include <chrono>
#include <memory>
#include <optional>

namespace shell {

class SettingsFile final : public services::SettingsStore {
 public:
  enum class Access { kReadOnly, kReadWrite };

  // Reads the file. A damaged one is moved aside, under a name that no file has; see TakeProblem. `stateFolder` as for
  // files::AtomicSave.
  SettingsFile(files::Path path, files::Path stateFolder, Access access = Access::kReadWrite);
  // Tries once more to write what could not be written.
  ~SettingsFile() override;

  // Reading looks at the file again when another copy of the program has changed it.
  std::optional<std::string> Find(std::string_view application, std::string_view section,
                                  std::string_view key) const override;
  Pairs GetAllSettings(std::string_view application, std::string_view section) const override;
  std::optional<std::string> FindRootValue(std::string_view name) const override;

  // Under a lock the file is read again, changed and replaced as a whole, so that nothing is lost that another copy
  // wrote. What fails is kept in memory and tried again with the next call.
  void SaveSettings(std::string_view application, std::string_view section, const Pairs& pairs) override;
  void SaveRootValue(std::string_view name, std::string_view value) override;
  // False when something is still not on the disk.
  bool Flush(std::chrono::milliseconds patience);

  // What the user should hear of: a file that could not be read, and where it is now.
  struct Problem {
    files::Path path;
    std::string reason;
    files::Path keptAs;  // empty when it stayed where it is
  };
  std::optional<Problem> TakeProblem();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace shell
