#include "files/Folders.h"
#include "shell/CommandLine.h"
#include "shell/Convert.h"
#include "shell/frmMyMDI.h"
#include "ui/desktop/EndRequests.h"
#include "ui/desktop/Program.h"
#include "ui/dialogs/QtDialogs.h"

#include <clocale>
#include <cstdio>

namespace {

using shell::CommandLine;

void Say(const std::string& text) {
  std::fprintf(stderr, "quillmark: %s\n", shell::OneLine(text).c_str());
}

int Fail(const std::string& text) {
  Say(text);
  return 1;
}

int RunWindow(const CommandLine& line, shell::Place place) {
  ui::Program program("Quillmark", QUILLMARK_VERSION);
  ui::QtDialogs dialogs;
  ui::DesktopShell desktop;
  const bool picture = line.action == CommandLine::Action::kScreenshot;
  place.onlyLooking = picture;
  place.offersRecovered = !picture;
  shell::frmMyMDI mainWindow(dialogs, desktop, std::move(place));
  const ui::EndRequests endRequests([&] { static_cast<void>(mainWindow.KeepTexts()); },
                                    [&] { mainWindow.forms().Guarded([&] { mainWindow.EndSession(); }); });
  mainWindow.SetQuit([&] { program.Quit(); });
  mainWindow.Start(line.paths, [&] {
    if (!picture) return;
    program.AfterPainting([&] {
      const auto saved = mainWindow.SavePicture(line.picture);
      program.Quit(saved ? 0 : Fail(line.picture.native() + ": " + saved.error().text));
    });
  });
  return program.Run();
}

int Run(const CommandLine& line, const files::CurrentDirectory& directory) {
  using Action = CommandLine::Action;
  if (line.action == Action::kHelp) return std::fputs(shell::HelpText(), stdout) < 0;
  if (line.action == Action::kVersion) return std::printf("Quillmark %s\n", QUILLMARK_VERSION) < 0;
  if (line.action == Action::kWrong) return Fail(line.error);
  const auto folders = files::FindUserFolders();
  if (!folders) return Fail(folders.error().text);
  if (line.action != Action::kConvert) return RunWindow(line, shell::FindPlace(folders.value(), directory));
  const shell::Converted done = shell::Convert(line.paths[0], line.paths[1], folders.value().recovery());
  if (!done.error.empty()) return Fail(done.error);
  if (!done.note.empty()) Say(done.note);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  const files::CurrentDirectory directory = files::CurrentDirectory::OfProcess();
  const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  const int status = Run(shell::ParseCommandLine(arguments, directory), directory);
  // What was printed is part of the result.
  return std::fflush(stdout) == 0 ? status : 1;
}
