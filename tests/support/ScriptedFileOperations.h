// File operations of a test: notes what was asked for, lets the test do it and gives back what the test says.
#pragma once

#include "ui/desktop/operations/FileOperations.h"

#include <functional>
#include <string>
#include <vector>

namespace support {

class ScriptedFileOperations final : public ui::FileOperations {
 public:
  using Paths = std::vector<std::string>;

  Result Delete(ui::Form*, const Paths& paths, bool toTrash) override {
    return Note(toTrash ? "trash" : "delete", paths, "");
  }
  Result Copy(ui::Form*, const Paths& paths, const std::string& folder) override { return Note("copy", paths, folder); }
  Result Move(ui::Form*, const Paths& paths, const std::string& folder) override { return Note("move", paths, folder); }
  Result CopyThenDelete(ui::Form*, const Paths& paths, const std::string& folder) override {
    return Note("copy then delete", paths, folder);
  }

  std::vector<std::string> asked;  // "copy [/a] [/b] to /c"
  std::function<Result(const Paths& paths, const std::string& folder)> acts;

 private:
  Result Note(std::string call, const Paths& paths, const std::string& folder) {
    for (const std::string& path : paths) call += " [" + path + "]";
    if (!folder.empty()) call += " to " + folder;
    asked.push_back(call);
    return acts ? acts(paths, folder) : Result{};
  }
};

}  // namespace support
