// The desktop of a test: notes what it was asked to open and run, and gives back what the test says.
#pragma once

#include "ui/desktop/Shell.h"

#include <functional>
#include <string>
#include <vector>

namespace support {

class ScriptedShell final : public ui::Shell {
 public:
  int Open(const std::string& pathOrAddress) override {
    asked.push_back("open " + pathOrAddress);
    return opens ? opens(pathOrAddress) : kStarted;
  }
  int OpenCopy(const files::Path& file, std::string&) override {
    asked.push_back("copy " + file.native());
    return opens ? opens(file.native()) : kStarted;
  }
  int Run(const std::string& program, const std::vector<std::string>& arguments,
          const files::Path& directory) override {
    std::string call = "run " + program;
    for (const std::string& argument : arguments) call += " [" + argument + "]";
    asked.push_back(call);
    ranIn = directory;
    if (runs) runs();
    return starts ? starts(program) : kStarted;
  }

  std::vector<files::Path> Volumes() override { return volumes; }

  std::vector<files::Path> volumes;
  std::vector<std::string> asked;
  files::Path ranIn;  // where the last program was started
  std::function<int(const std::string&)> opens;
  std::function<int(const std::string&)> starts;
  std::function<void()> runs;
};

}  // namespace support
