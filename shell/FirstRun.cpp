#include "shell/FirstRun.h"

#include "files/Attributes.h"
#include "files/saving/AtomicSave.h"
#include "project/ProjectFile.h"

#include <unistd.h>
#include <utility>

namespace shell {
namespace {

constexpr const char* kRecord = ".first-run";
constexpr const char* kTemplates = "Templates";
constexpr const char* kWelcomeProject = "Welcome.prj";
constexpr const char* kReadme = "Quillmark readme.txt";
constexpr const char* kWelcome = "Welcome.rtf";
constexpr int64_t kLongestRecord = 1 << 16;

// The settings that name a file of the folder of templates.
constexpr std::pair<const char*, const char*> kDataFiles[] = {{"QuoteFile", "Quotes.txt"},
                                                              {"NotesFile", "Notes.txt"},
                                                              {"TextBlocks", "Often Used Text Blocks.txt"},
                                                              {"AutoTagFile", "AutoComplete.txt"}};

// Folders end with the separator.
std::string AsFolder(const files::Path& folder) {
  return (folder / "").native();
}

std::string RecordOf(const files::Path& folder) {
  return AsFolder(folder) + "\n";
}

// Where the record is kept of a folder that may not be written.
files::Path RecordInstead(const ApplicationFolder& application) {
  return application.settings.parent_path() / kRecord;
}

std::string ReadRecord(const files::Path& path) {
  auto file = files::OpenForReading(path);
  if (!file) return {};
  auto bytes = files::ReadAll(file.value(), kLongestRecord);
  return bytes ? std::move(bytes).value() : std::string();
}

class Setup {
 public:
  Setup(const ApplicationFolder& application, const files::Path& stateFolder, files::CurrentDirectory& directory,
        services::SettingsStore& store, std::string recorded)
      : application_(application), stateFolder_(stateFolder), directory_(directory), store_(store) {
    // The folder that was set up before, with the separator; it has been moved since.
    if (recorded.ends_with("/\n")) movedFrom_ = recorded.substr(0, recorded.size() - 1);
  }

  void Run() {
    // Without all the files there is no record, so the next start tries again; but not where it never could.
    const bool filled = FillApplicationFolder(application_, stateFolder_);
    if (!(filled && Write(application_.path / kRecord, Record())) && !MayBeWritten()) WriteRecordInstead();
    const files::CurrentDirectory remembered = directory_;
    const files::Path& folder = application_.path;
    const files::Path templates = folder / kTemplates;
    MakeCurrent(folder);
    WriteProject(kWelcomeProject, [](const files::Path& at) {
      return std::vector{AsFolder(at), AsFolder(at / kTemplates), (at / "Quillmark on the Web!.url.lnk").native(),
                         (at / kReadme).native(), (at / kWelcome).native()};
    });
    MakeCurrent(templates);
    WriteProject(files::Path(kTemplates) / "Templates.prj", [](const files::Path& at) {
      const files::Path own = at / kTemplates;
      return std::vector{AsFolder(own), (own / "HTMTemplate.htm").native(), (own / "LetterTemplate.rtf").native()};
    });
    SetPaths(templates);
    directory_ = remembered;
  }

 private:
  // A folder that could not be made leaves the directory as it is; so does the next one.
  void MakeCurrent(const files::Path& folder) { static_cast<void>(directory_.Change(folder)); }

  std::string Record() const { return RecordOf(application_.path); }
  bool MayBeWritten() const { return access(application_.path.c_str(), W_OK | X_OK) == 0; }
  void WriteRecordInstead() {
    const files::Path path = RecordInstead(application_);
    if (files::MakeFolder(path.parent_path())) Write(path, Record());
  }

  // Errors are ignored, but there is never half a file.
  bool Write(const files::Path& path, std::string_view bytes) {
    return static_cast<bool>(
        files::SaveAtomically(path, stateFolder_, [&](const files::ByteSink& sink) { return sink(bytes); }));
  }

  // What the user made of a project stays.
  template <class Entries>
  void WriteProject(const files::Path& name, const Entries& entriesOf) {
    const std::vector<std::string> entries = entriesOf(application_.path);
    // A line break would end the entry early.
    for (const std::string& entry : entries)
      if (entry.find_first_of("\r\n") != std::string::npos) return;
    const files::Path path = application_.path / name;
    if (const auto there = files::GetAttributes(path); there || there.error().number != files::kFileNotFound) {
      const std::string before = ReadRecord(path);
      if (movedFrom_.empty() || before != project::FormatProjectFile(entriesOf(FolderBefore()))) return;
    }
    Write(path, project::FormatProjectFile(entries));
  }
  files::Path FolderBefore() const { return files::Path(movedFrom_).parent_path(); }

  void SetPaths(const files::Path& templates) {
    services::SettingsStore::Pairs pairs;
    for (const auto& [key, name] : kDataFiles) {
      const auto stored = store_.Find(services::kApplicationName, services::kGeneral, key);
      const bool moved = stored && !movedFrom_.empty() && stored->starts_with(movedFrom_);
      if (!stored || moved) pairs.emplace_back(key, (templates / name).native());
    }
    if (!pairs.empty()) store_.SaveSettings(services::kApplicationName, services::kGeneral, pairs);
  }

  const ApplicationFolder& application_;
  const files::Path& stateFolder_;
  files::CurrentDirectory& directory_;
  services::SettingsStore& store_;
  std::string movedFrom_;
};

}  // namespace

bool FirstRunSetup(const ApplicationFolder& application, const files::Path& stateFolder,
                   files::CurrentDirectory& directory, services::SettingsStore& store) {
  std::string recorded = ReadRecord(application.path / kRecord);
  if (recorded.empty()) recorded = ReadRecord(RecordInstead(application));
  if (recorded == RecordOf(application.path)) return false;
  Setup(application, stateFolder, directory, store, std::move(recorded)).Run();
  return true;
}

files::Path WelcomeProject(const ApplicationFolder& application) {
  return application.path / kWelcomeProject;
}

}  // namespace shell
