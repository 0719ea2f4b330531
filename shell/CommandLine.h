// What the program was asked for when it was started.
#pragma once

#include "files/CurrentDirectory.h"

#include <span>
#include <string>
#include <vector>

namespace shell {

struct CommandLine {
  enum class Action { kRun, kHelp, kVersion, kConvert, kScreenshot, kWrong };
  Action action = Action::kRun;
  std::vector<files::Path> paths;  // absolute; to open, or IN and OUT
  files::Path picture;             // of --screenshot
  std::string error;               // of kWrong, one line
};

// `arguments` without the program's name. Arguments that are no options are paths: quotes are removed unless a file of
// that very name exists, file: URLs decoded.
CommandLine ParseCommandLine(std::span<const std::string> arguments, const files::CurrentDirectory& directory);

const char* HelpText();

}  // namespace shell
