// Where the program's own files are, and what the first run makes of them.
#include "shell/FirstRun.h"
#include "shell/settings/SettingsFile.h"
#include "tests/program/ProgramTest.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using shell::ApplicationFolder;

namespace {

class FirstRunTest : public ProgramTest {
 protected:
  FirstRunTest() {
    for (const char* name : {"share/quillmark/Templates", "bin", "work"}) fs::create_directories(At(name));
    Put("share/quillmark/Welcome.rtf", "{\\rtf1 welcome}");
    Put("share/quillmark/Quillmark readme.txt", "readme");
    Put("share/quillmark/UM.chm", "help");
    Put("share/quillmark/Templates/Notes.txt", "notes");
    Put("share/quillmark/Templates/Quotes.txt", "quotes");
    Put("bin/quillmark", "");
    folders_ = {At("home/config"), At("home/data/quillmark"), At("home/state"), At("home/runtime")};
  }
  ApplicationFolder Find() const { return shell::FindApplicationFolder(folders_, At("bin/quillmark")); }
  bool SetUp(const ApplicationFolder& application) {
    shell::SettingsFile store(application.settings, At("home/state"));
    files::CurrentDirectory directory(At("work"));
    const bool first = shell::FirstRunSetup(application, At("home/state"), directory, store);
    EXPECT_EQ(directory.path(), At("work"));
    return first;
  }
  static std::string Setting(const ApplicationFolder& application, const char* key) {
    return shell::SettingsFile(application.settings, {}, shell::SettingsFile::Access::kReadOnly)
        .GetSetting("Quillmark", "General", key, "missing");
  }

  files::UserFolders folders_;
};

TEST_F(FirstRunTest, TheApplicationFolder) {
  const files::Path data = At("share/quillmark"), beside = At("bin/application"), user = At("home/data/quillmark");
  const auto expect = [&](const files::Path& path, const files::Path& installed, const files::Path& settings) {
    const ApplicationFolder found = Find();
    EXPECT_EQ(found.path, path);
    EXPECT_EQ(found.installedData, installed);
    EXPECT_EQ(found.settings, settings);
  };
  const files::Path userSettings = At("home/config/settings.json");
  expect(user, data, userSettings);
  fs::create_directories(beside);
  expect(user, beside, userSettings);
  Put("bin/application/portable", "");
  expect(beside, beside, beside / "settings.json");
  fs::remove_all(beside);
  Put("share/quillmark/portable", "");
  expect(data, data, data / "settings.json");
  fs::remove_all(data);
  expect(user, {}, userSettings);
  EXPECT_EQ(shell::FindApplicationFolder(folders_, {}).path, user);
  EXPECT_EQ(shell::ProgramPath().filename(), "test_program");
}

TEST_F(FirstRunTest, APortableFolderThatMayNotBeWrittenIsOnlyInstalledData) {
  Put("share/quillmark/portable", "");
  chmod(folder().c_str(), 0755);
  const pid_t child = fork();
  if (child == 0) _exit(setuid(65534) == 0 && Find().path == At("home/data/quillmark") ? 0 : 1);
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST_F(FirstRunTest, AFreshOne) {
  const ApplicationFolder application = Find();
  const std::string path = application.path.native(), templates = path + "/Templates";
  EXPECT_TRUE(SetUp(application));
  EXPECT_EQ(Bytes(application.path / "Welcome.rtf"), "{\\rtf1 welcome}");
  EXPECT_EQ(Bytes(application.path / "Templates/Notes.txt"), "notes");
  EXPECT_FALSE(Exists(application.path / "UM.chm"));
  EXPECT_EQ(Bytes(application.path / "Welcome.prj"), path + "/\r\n" + templates + "/\r\n" + path +
                                                         "/Quillmark on the Web!.url.lnk\r\n" + path +
                                                         "/Quillmark readme.txt\r\n" + path + "/Welcome.rtf\r\n\r\n");
  EXPECT_EQ(Bytes(application.path / "Templates/Templates.prj"),
            templates + "/\r\n" + templates + "/HTMTemplate.htm\r\n" + templates + "/LetterTemplate.rtf\r\n\r\n");
  const std::pair<const char*, const char*> kStored[] = {{"QuoteFile", "/Quotes.txt"},
                                                         {"NotesFile", "/Notes.txt"},
                                                         {"TextBlocks", "/Often Used Text Blocks.txt"},
                                                         {"AutoTagFile", "/AutoComplete.txt"}};
  for (const auto& [key, name] : kStored) EXPECT_EQ(Setting(application, key), templates + name);
}

TEST_F(FirstRunTest, TheSecondTimeNothingHappens) {
  const ApplicationFolder application = Find();
  EXPECT_TRUE(SetUp(application));
  fs::remove(application.path / "Welcome.prj");
  fs::remove(application.path / "Templates/Notes.txt");
  shell::SettingsFile(application.settings, At("home/state")).SaveSetting("Quillmark", "General", "QuoteFile", "/mine");
  EXPECT_FALSE(SetUp(application));
  EXPECT_FALSE(Exists(application.path / "Welcome.prj"));
  EXPECT_FALSE(Exists(application.path / "Templates/Notes.txt"));
  EXPECT_EQ(Setting(application, "QuoteFile"), "/mine");
}

TEST_F(FirstRunTest, TheUsersOwnFilesStay) {
  const ApplicationFolder application = Find();
  fs::create_directories(application.path / "Templates");
  Put("home/data/quillmark/Templates/Notes.txt", "mine");
  fs::create_symlink("nowhere", application.path / "Templates/Quotes.txt");
  EXPECT_TRUE(SetUp(application));
  EXPECT_EQ(Bytes(application.path / "Templates/Notes.txt"), "mine");
  EXPECT_EQ(fs::read_symlink(application.path / "Templates/Quotes.txt"), "nowhere");
  EXPECT_FALSE(Exists(application.path / "Templates/nowhere"));
  EXPECT_EQ(Bytes(application.path / "Welcome.rtf"), "{\\rtf1 welcome}");
}

TEST_F(FirstRunTest, LinksAndModesOfTheInstalledData) {
  chmod(At("share/quillmark/Welcome.rtf").c_str(), 0444);
  fs::create_symlink("Welcome.rtf", At("share/quillmark/Quillmark on the Web!.url"));
  fs::create_directory_symlink("..", At("share/quillmark/Templates/round"));
  const ApplicationFolder application = Find();
  SetUp(application);
  struct stat status;
  ASSERT_EQ(stat((application.path / "Welcome.rtf").c_str(), &status), 0);
  EXPECT_TRUE(status.st_mode & S_IWUSR);
  ASSERT_EQ(lstat((application.path / "Quillmark on the Web!.url").c_str(), &status), 0);
  EXPECT_TRUE(S_ISREG(status.st_mode)) << "a link into the installed data would not be the user's own";
}

TEST_F(FirstRunTest, APortableFolderIsSetUpWhereItIs) {
  Put("share/quillmark/portable", "");
  EXPECT_TRUE(SetUp(Find()));
  EXPECT_FALSE(SetUp(Find()));
  EXPECT_FALSE(Exists(At("home")));
  EXPECT_EQ(Setting(Find(), "NotesFile"), At("share/quillmark/Templates/Notes.txt").native());
  // Carried elsewhere, its paths are others.
  fs::rename(At("share"), At("stick"));
  const ApplicationFolder moved{At("stick/quillmark"), At("stick/quillmark"), At("stick/quillmark/settings.json")};
  EXPECT_TRUE(SetUp(moved));
  EXPECT_EQ(Setting(moved, "NotesFile"), At("stick/quillmark/Templates/Notes.txt").native());
  EXPECT_EQ(Bytes(moved.path / "Templates/Templates.prj").find(At("share").native()), std::string::npos);
}

TEST_F(FirstRunTest, AFolderThatCannotBeWrittenIsNoError) {
  chmod(folder().c_str(), 0755);
  fs::create_directories(At("home"));
  const pid_t child = fork();
  if (child == 0) {
    if (setgid(65534) != 0 || setuid(65534) != 0) _exit(2);
    const ApplicationFolder application = Find();
    shell::SettingsFile store(application.settings, At("home/state"));
    files::CurrentDirectory directory(At("work"));
    const bool first = shell::FirstRunSetup(application, At("home/state"), directory, store);
    const bool kept =
        store.Find("Quillmark", "General", "NotesFile") == (application.path / "Templates/Notes.txt").native();
    _exit(first && kept && directory.path() == At("work") ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(fs::is_empty(At("home")));
}

TEST_F(FirstRunTest, AFolderThatCannotBeWrittenIsSetUpOnce) {
  chmod(folder().c_str(), 0755);
  fs::create_directories(At("home/data/quillmark"));
  for (const char* name : {"home/config", "home/state"}) {
    fs::create_directories(At(name));
    ASSERT_EQ(chown(At(name).c_str(), 65534, 65534), 0);
  }
  const pid_t child = fork();
  if (child == 0) {
    if (setgid(65534) != 0 || setuid(65534) != 0) _exit(2);
    if (!SetUp(Find())) _exit(3);
    shell::SettingsFile(Find().settings, At("home/state")).SaveSetting("Quillmark", "General", "QuoteFile", "/mine");
    if (SetUp(Find())) _exit(4);
    if (Setting(Find(), "QuoteFile") != "/mine") _exit(5);
    // The record is of this folder only.
    folders_.data = At("home/elsewhere");
    _exit(SetUp(Find()) ? 0 : 6);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_TRUE(fs::is_empty(At("home/data/quillmark")));
}

TEST_F(FirstRunTest, ARepeatedOneLeavesWhatTheUserHas) {
  const ApplicationFolder application = Find();
  EXPECT_TRUE(SetUp(application));
  fs::remove(application.path / ".first-run");
  fs::remove(application.path / "Templates/Templates.prj");
  Put("home/data/quillmark/Welcome.prj", "mine");
  shell::SettingsFile(application.settings, At("home/state")).SaveSetting("Quillmark", "General", "QuoteFile", "/mine");
  EXPECT_TRUE(SetUp(application));
  EXPECT_EQ(Bytes(application.path / "Welcome.prj"), "mine");
  EXPECT_TRUE(Exists(application.path / "Templates/Templates.prj"));
  EXPECT_EQ(Setting(application, "QuoteFile"), "/mine");
  EXPECT_EQ(Setting(application, "NotesFile"), (application.path / "Templates/Notes.txt").native());
}

TEST_F(FirstRunTest, WhatCouldNotBeCopiedIsTriedAtTheNextStart) {
  const ApplicationFolder application = Find();
  Put("share/quillmark/Templates.keep", "");
  fs::rename(At("share/quillmark/Templates"), At("share/quillmark/aside"));
  fs::create_symlink("Templates", At("share/quillmark/Templates"));  // leads nowhere
  EXPECT_TRUE(SetUp(application));
  fs::remove(At("share/quillmark/Templates"));
  fs::rename(At("share/quillmark/aside"), At("share/quillmark/Templates"));
  EXPECT_TRUE(SetUp(application));
  EXPECT_EQ(Bytes(application.path / "Templates/Notes.txt"), "notes");
  EXPECT_FALSE(SetUp(application));
}

TEST_F(FirstRunTest, ANameWithALineBreakMakesNoProject) {
  folders_.data = At("home/line\nbreak");
  const ApplicationFolder application = Find();
  EXPECT_TRUE(SetUp(application));
  EXPECT_FALSE(Exists(application.path / "Welcome.prj"));
  EXPECT_FALSE(SetUp(application));
  EXPECT_EQ(Setting(application, "NotesFile"), (application.path / "Templates/Notes.txt").native());
}

TEST_F(FirstRunTest, OpensReadmeAndTour) {
  place.application = Find();
  Restart();
  EXPECT_NE(Showing((place.application.path / "Quillmark readme.txt").native()), nullptr);
  EXPECT_NE(Showing((place.application.path / "Welcome.rtf").native()), nullptr);
  EXPECT_EQ(table().UpperBound(), 2);
  EXPECT_EQ(program().commonDialogs().currentDirectory().path(), folder());
  Restart();
  EXPECT_FALSE(table().AnyDocumentOpen());
}

TEST_F(FirstRunTest, WithoutATourNothingIsAskedFor) {
  place.application = Find();
  fs::create_directories(place.application.path);
  Put("home/data/quillmark/Welcome.prj", "");
  Restart();
  EXPECT_FALSE(table().AnyDocumentOpen());
}

TEST_F(FirstRunTest, ACommandLineComesBeforeTheTour) {
  place.application = Find();
  paths = {Put("a.txt", "")};
  Restart();
  EXPECT_NE(Showing(At("a.txt").native()), nullptr);
  EXPECT_EQ(table().UpperBound(), 1);
}

TEST_F(FirstRunTest, APictureDisturbsNothing) {
  place.application = Find();
  place.onlyLooking = true;
  Restart();
  EXPECT_FALSE(table().AnyDocumentOpen());
  EXPECT_FALSE(Exists(place.application.path));
  EXPECT_FALSE(Exists(place.application.settings));
}

}  // namespace
