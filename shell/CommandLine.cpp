#include "shell/CommandLine.h"

#include "files/Attributes.h"
#include "files/FileUrl.h"

#include <algorithm>

namespace shell {
namespace {

files::Path ToPath(std::string argument, const files::CurrentDirectory& directory) {
  const bool quoted = argument.find('"') != std::string::npos;
  if (quoted && !files::GetAttributes(directory.MakeAbsolute(argument))) std::erase(argument, '"');
  if (files::IsFileUrl(argument))
    if (const auto path = files::PathFromFileUrl(argument)) return *path;
  return directory.MakeAbsolute(argument);
}

CommandLine Wrong(std::string error) {
  CommandLine line;
  line.action = CommandLine::Action::kWrong;
  line.error = std::move(error);
  return line;
}

struct Option {
  const char* name;
  const char* shortName;
  CommandLine::Action action;
};

constexpr Option kOptions[] = {
    {"--help", "-h", CommandLine::Action::kHelp},
    {"--version", "-v", CommandLine::Action::kVersion},
    {"--convert", "", CommandLine::Action::kConvert},
    {"--screenshot", "", CommandLine::Action::kScreenshot},
};

const Option* FindOption(const std::string& argument) {
  const auto* found = std::ranges::find_if(
      kOptions, [&](const Option& option) { return argument == option.name || argument == option.shortName; });
  return found == std::end(kOptions) ? nullptr : found;
}

CommandLine Check(CommandLine line) {
  using Action = CommandLine::Action;
  if (line.action == Action::kConvert && line.paths.size() != 2)
    return Wrong("--convert needs two files, the one to read and the one to write");
  if (line.action == Action::kScreenshot) {
    if (line.paths.empty()) return Wrong("--screenshot needs the name of the picture");
    if (line.paths.size() > 2) return Wrong("--screenshot takes a picture and at most one file");
    line.picture = line.paths.front();
    line.paths.erase(line.paths.begin());
  }
  return line;
}

}  // namespace

CommandLine ParseCommandLine(std::span<const std::string> arguments, const files::CurrentDirectory& directory) {
  CommandLine line;
  bool options = true;
  for (const std::string& argument : arguments) {
    if (argument.empty()) continue;
    if (options && argument == "--") {
      options = false;
    } else if (options && argument.size() > 1 && argument.front() == '-') {
      const Option* option = FindOption(argument);
      if (!option) return Wrong("unknown option " + argument + " (try --help)");
      if (line.action != CommandLine::Action::kRun) return Wrong("only one option can be used at a time");
      line.action = option->action;
    } else {
      line.paths.push_back(ToPath(argument, directory));
    }
  }
  return Check(std::move(line));
}

const char* HelpText() {
  return "Usage: quillmark [FILE]...\n"
         "       quillmark --convert IN OUT\n"
         "       quillmark --screenshot OUT.png [FILE]\n"
         "\n"
         "Edits plain text, HTML and rich text (RTF). Files are opened in their order; one that does not exist is "
         "made\n"
         "when it is saved. file: URLs are understood.\n"
         "\n"
         "  --convert IN OUT      convert .txt, .html and .rtf, also to .pdf, without a window\n"
         "  --screenshot OUT.png  open as usual, save a picture of the window and end; changes no setting\n"
         "  --help, -h            this text\n"
         "  --version, -v         the version\n"
         "  --                    everything behind it is a file\n"
         "\n"
         "Settings are in ~/.config/quillmark/settings.json, the files made for you in ~/.local/share/quillmark. "
         "With a file\n"
         "called \"portable\" in the folder \"application\" beside the program, all of it is kept in that folder.\n";
}

}  // namespace shell
