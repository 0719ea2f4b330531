#include "shell/FirstRun.h"

#include "files/AtomicSave.h"
#include "files/Attributes.h"
#include "project/ProjectFile.h"

namespace shell {
namespace {

constexpr const char* kRecord = ".first-run";
constexpr const char* kTemplates = "Templates";
constexpr const char* kWelcomeProject = "Welcome.prj";
constexpr const char* kReadme = "Quillmark readme.txt";
constexpr const char* kWelcome = "Welcome.rtf";
constexpr int64_t kLongestRecord = 1 << 16;

// Folders end with the separator.
std::string AsFolder(const files::Path& folder) {
  return (folder / "").native();
}

std::string RecordOf(const ApplicationFolder& application) {
  return AsFolder(application.path) + "\n";
}

bool HasRecord(const ApplicationFolder& application) {
  auto file = files::OpenForReading(application.path / kRecord);
  if (!file) return false;
  const auto bytes = files::ReadAll(file.value(), kLongestRecord);
  return bytes && bytes.value() == RecordOf(application);
}

class Setup {
 public:
  Setup(const ApplicationFolder& application, const files::Path& stateFolder, files::CurrentDirectory& directory,
        services::SettingsStore& store)
      : application_(application), stateFolder_(stateFolder), directory_(directory), store_(store) {}

  void Run() {
    // Without all the files there is no record, so the next start tries again.
    if (FillApplicationFolder(application_, stateFolder_)) Write(kRecord, RecordOf(application_));
    const files::CurrentDirectory remembered = directory_;
    const files::Path& folder = application_.path;
    const files::Path templates = folder / kTemplates;
    MakeCurrent(folder);
    WriteProject(kWelcomeProject, {AsFolder(folder), AsFolder(templates), folder / "Quillmark on the Web!.url.lnk",
                                 folder / kReadme, folder / kWelcome});
    MakeCurrent(templates);
    WriteProject(files::Path(kTemplates) / "Templates.prj",
                 {AsFolder(templates), templates / "HTMTemplate.htm", templates / "LetterTemplate.rtf"});
    store_.SaveSettings(services::kApplicationName, services::kGeneral,
                        {{"QuoteFile", (templates / "Quotes.txt").native()},
                         {"NotesFile", (templates / "Notes.txt").native()},
                         {"TextBlocks", (templates / "Often Used Text Blocks.txt").native()},
                         {"AutoTagFile", (templates / "AutoComplete.txt").native()}});
    directory_ = remembered;
  }

 private:
  // A folder that could not be made leaves the directory as it is; so does the next one.
  void MakeCurrent(const files::Path& folder) { static_cast<void>(directory_.Change(folder)); }

  // Errors are ignored, but there is never half a file.
  void Write(const files::Path& name, std::string_view bytes) {
    static_cast<void>(files::SaveAtomically(application_.path / name, stateFolder_,
                                            [&](const files::ByteSink& sink) { return sink(bytes); }));
  }

  void WriteProject(const files::Path& name, const std::vector<std::string>& entries) {
    // A line break would end the entry early.
    for (const std::string& entry : entries)
      if (entry.find_first_of("\r\n") != std::string::npos) return;
    Write(name, project::FormatProjectFile(entries));
  }

  const ApplicationFolder& application_;
  const files::Path& stateFolder_;
  files::CurrentDirectory& directory_;
  services::SettingsStore& store_;
};

}  // namespace

bool FirstRunSetup(const ApplicationFolder& application, const files::Path& stateFolder,
                   files::CurrentDirectory& directory, services::SettingsStore& store) {
  if (HasRecord(application)) return false;
  Setup(application, stateFolder, directory, store).Run();
  return true;
}

files::Path WelcomeProject(const ApplicationFolder& application) {
  return application.path / kWelcomeProject;
}

}  // namespace shell
