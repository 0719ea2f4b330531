// The settings on the disk: what becomes of them when the file, the disk or another copy of the program is in the way.
#include "shell/settings/SettingsEscape.h"
#include "shell/settings/SettingsFile.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using shell::SettingsFile;
using namespace std::chrono_literals;

namespace {

constexpr const char* kName = "Quillmark";
constexpr const char* kGeneral = "General";
using Pairs = services::SettingsStore::Pairs;

class SettingsFileTest : public ::testing::Test {
 protected:
  SettingsFileTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillmark-settings-XXXXXX").native();
    folder_ = mkdtemp(pattern.data());
    path_ = folder_ / "config" / "settings.json";
  }
  ~SettingsFileTest() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  SettingsFile Open(SettingsFile::Access access = SettingsFile::Access::kReadWrite) {
    return SettingsFile(path_, folder_ / "state", access);
  }
  void Put(std::string_view bytes) {
    std::filesystem::create_directories(path_.parent_path());
    std::ofstream(path_, std::ios::binary | std::ios::trunc) << bytes;
  }
  static std::string Bytes(const files::Path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  // Ends the child at once, without what a test program does at its end.
  template <class Call>
  static pid_t Child(Call call) {
    const pid_t child = fork();
    if (child == 0) {
      call();
      _exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    return child;
  }
  static int Wait(pid_t child) {
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
  }

  files::Path folder_, path_;
};

TEST_F(SettingsFileTest, KeepsValuesInTheOrderOfTheirCreation) {
  const Pairs pairs = {{"RecentFile1", "/a"}, {"Another", ""}, {"RecentFile2", "/\xC3\xA9 \"\\\n\x01"}};
  {
    SettingsFile file = Open();
    EXPECT_EQ(file.GetAllSettings(kName, "Recent Files"), Pairs());
    EXPECT_EQ(file.GetSetting(kName, kGeneral, "Font", "default"), "default");
    file.SaveSettings(kName, "Recent Files", pairs);
    file.SaveSetting(kName, kGeneral, "Font", "Arial,12.5");
    file.SaveRootValue("Quillmark Toolbar1", "layout");
    EXPECT_EQ(file.GetAllSettings(kName, "Recent Files"), pairs);
  }
  SettingsFile again = Open();
  EXPECT_EQ(again.GetAllSettings(kName, "Recent Files"), pairs);
  EXPECT_EQ(again.Find(kName, kGeneral, "Font"), "Arial,12.5");
  EXPECT_EQ(again.FindRootValue("Quillmark Toolbar1"), "layout");
  again.SaveSetting(kName, "Recent Files", "RecentFile1", "/b");
  EXPECT_EQ(Open().GetAllSettings(kName, "Recent Files"), (Pairs{{"RecentFile1", "/b"}, {"Another", ""}, pairs[2]}));
  EXPECT_FALSE(again.TakeProblem());
}

TEST_F(SettingsFileTest, IsReadableByHand) {
  SettingsFile file = Open();
  file.SaveSettings(kName, kGeneral, {{"Font", "Courier New,10"}, {"NotesFile", "/home/\xC3\xA9/\xFF.txt"}});
  file.SaveRootValue("Quillmark Toolbar1", "x");
  EXPECT_EQ(Bytes(path_),
            "{\n  \"Quillmark\": {\n    \"General\": {\n      \"Font\": \"Courier New,10\",\n"
            "      \"NotesFile\": \"/home/\xC3\xA9/\\\\xFF.txt\"\n    }\n  },\n  \"Quillmark Toolbar1\": \"x\"\n}\n");
  struct stat status;
  ASSERT_EQ(stat(path_.parent_path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u) << "paths of files are nobody else's business";
}

TEST_F(SettingsFileTest, AnyBytesComeBack) {
  std::vector<std::string> texts = {"", "\\x41", "\\\\x41", "\xC0\x80", "\xF4\x90\x80\x80", std::string("a\0b", 3)};
  for (int i = 0; i < 256; ++i) texts.push_back(std::string(1, static_cast<char>(i)));
  const unsigned seed = std::random_device()();
  std::mt19937 random(seed);
  constexpr std::string_view kAlphabet = "\\x5CAaF\xFF\xC3\xA9\xED\xA0";
  for (int i = 0; i < 2000; ++i) {
    std::string text;
    for (unsigned left = random() % 12; left; --left) text += kAlphabet[random() % kAlphabet.size()];
    texts.push_back(std::move(text));
  }
  Pairs pairs;
  for (const std::string& text : texts) {
    EXPECT_EQ(shell::UnescapeBytes(shell::EscapeBytes(text)), text) << "seed " << seed;
    pairs.emplace_back("key" + std::to_string(pairs.size()), text);
  }
  pairs.emplace_back("\xFF key", "odd");
  Open().SaveSettings(kName, kGeneral, pairs);
  EXPECT_EQ(Open().GetAllSettings(kName, kGeneral), pairs) << "seed " << seed;
}

TEST_F(SettingsFileTest, KeepsWhatSomebodyElseWrote) {
  Put(R"({"note": [1, {"a": null}], "Quillmark": {"extra": 3, "General": {"ListFontSize": 8.25, "AutoCopy": true,
          "odd": {"x": 1}, "none": null, "Tabs": "720"}}})");
  {
    SettingsFile file = Open();
    EXPECT_EQ(file.Find(kName, kGeneral, "ListFontSize"), "8.25");
    EXPECT_EQ(file.Find(kName, kGeneral, "AutoCopy"), "True");
    EXPECT_EQ(file.Find(kName, kGeneral, "odd"), std::nullopt);
    EXPECT_EQ(file.Find(kName, kGeneral, "none"), std::nullopt);
    EXPECT_EQ(file.Find(kName, "extra", "Tabs"), std::nullopt);
    EXPECT_EQ(file.Find("note", "0", "a"), std::nullopt);
    file.SaveSetting(kName, kGeneral, "Tabs", "1440");
    EXPECT_FALSE(file.TakeProblem());
  }
  std::string bytes = Bytes(path_);
  std::erase_if(bytes, [](char c) { return c == ' ' || c == '\n'; });
  EXPECT_EQ(bytes, R"({"note":[1,{"a":null}],"Quillmark":{"extra":3,"General":{"ListFontSize":8.25,"AutoCopy":true,)"
                   R"("odd":{"x":1},"none":null,"Tabs":"1440"}}})");
}

std::string Nested(size_t depth) {
  return "{\"a\":" + std::string(depth, '[') + std::string(depth, ']') + "}";
}

TEST_F(SettingsFileTest, ADamagedFileIsSetAside) {
  const std::string whole = R"({"Quillmark": {"General": {"Tabs": "720"}}})";
  const std::string damaged[] = {"",
                                 whole.substr(0, 20),
                                 whole + "}",
                                 std::string(1000, '\0'),
                                 "\xFF\xFEgarbage",
                                 "[]",
                                 R"({"Quillmark": 5})",
                                 R"({"Quillmark": {"General": ["Tabs"]}})",
                                 R"({"Quillmark": {"General": {"Tabs": "1", "Tabs": "2"}}})",
                                 R"({"x": [{"y": 1, "y": 2}]})",
                                 "{\"a\": \"\xFF\"}",
                                 "{\"a\": 1} // note",
                                 Nested(40),
                                 Nested(1000000),
                                 std::string(5 << 20, ' ') + "{}"};
  std::vector<files::Path> kept;
  for (const std::string& bytes : damaged) {
    SCOPED_TRACE(bytes.substr(0, 50));
    Put(bytes);
    {
      SettingsFile looking = Open(SettingsFile::Access::kReadOnly);
      EXPECT_EQ(looking.Find(kName, kGeneral, "Tabs"), std::nullopt);
      EXPECT_FALSE(looking.TakeProblem());
      EXPECT_EQ(Bytes(path_), bytes);
    }
    SettingsFile file = Open();
    EXPECT_EQ(file.Find(kName, kGeneral, "Tabs"), std::nullopt);
    const auto problem = file.TakeProblem();
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->path, path_);
    EXPECT_FALSE(problem->reason.empty());
    EXPECT_FALSE(file.TakeProblem()) << "told once";
    EXPECT_EQ(Bytes(problem->keptAs), bytes);
    kept.push_back(problem->keptAs);
    file.SaveSetting(kName, kGeneral, "Tabs", "new");
    EXPECT_EQ(Open().Find(kName, kGeneral, "Tabs"), "new");
    EXPECT_FALSE(Open().TakeProblem());
  }
  for (size_t i = 0; i < kept.size(); ++i) EXPECT_EQ(Bytes(kept[i]), damaged[i]) << "each under a name of its own";
}

TEST_F(SettingsFileTest, AFileDamagedMeanwhileIsSetAsideAndWrittenAnew) {
  SettingsFile file = Open();
  file.SaveSettings(kName, kGeneral, {{"Tabs", "720"}, {"Font", "Arial,9"}});
  Put("{\"cut");
  EXPECT_EQ(file.Find(kName, kGeneral, "Tabs"), "720");
  file.SaveSetting(kName, kGeneral, "Font", "Arial,10");
  const auto problem = file.TakeProblem();
  ASSERT_TRUE(problem);
  EXPECT_EQ(Bytes(problem->keptAs), "{\"cut");
  EXPECT_EQ(Open().GetAllSettings(kName, kGeneral), (Pairs{{"Tabs", "720"}, {"Font", "Arial,10"}}));
}

TEST_F(SettingsFileTest, AFileThatHasGoneComesBackWhole) {
  SettingsFile file = Open();
  file.SaveSetting(kName, kGeneral, "Tabs", "720");
  std::filesystem::remove_all(path_.parent_path());
  file.SaveSetting(kName, kGeneral, "Font", "Arial,10");
  EXPECT_EQ(Open().GetAllSettings(kName, kGeneral), (Pairs{{"Tabs", "720"}, {"Font", "Arial,10"}}));
}

TEST_F(SettingsFileTest, ALinkAndAModeStay) {
  std::filesystem::create_directories(folder_ / "dotfiles");
  const files::Path target = folder_ / "dotfiles" / "mine.json";
  std::ofstream(target) << "{}";
  chmod(target.c_str(), 0600);
  std::filesystem::create_directories(path_.parent_path());
  std::filesystem::create_symlink(target, path_);
  Open().SaveSetting(kName, kGeneral, "Tabs", "720");
  EXPECT_TRUE(std::filesystem::is_symlink(path_));
  EXPECT_NE(Bytes(target).find("720"), std::string::npos);
  struct stat status;
  ASSERT_EQ(stat(target.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(SettingsFileTest, WhatCannotBeWrittenIsKeptAndTriedAgain) {
  Put(R"({"Quillmark": {"General": {"Tabs": "720"}}})");
  chmod(folder_.c_str(), 0755);
  ASSERT_EQ(chown(path_.parent_path().c_str(), 65534, 65534) | chown(path_.c_str(), 65534, 65534), 0);
  const pid_t child = Child([&] {
    ASSERT_EQ(setgid(65534) | setuid(65534), 0);
    SettingsFile file = Open();
    ASSERT_EQ(chmod(path_.parent_path().c_str(), 0500), 0);
    file.SaveSetting(kName, kGeneral, "Font", "Arial,10");
    file.SaveSetting(kName, kGeneral, "Font", "Arial,11");
    EXPECT_EQ(file.Find(kName, kGeneral, "Font"), "Arial,11");
    EXPECT_EQ(Open().Find(kName, kGeneral, "Font"), std::nullopt);
    EXPECT_FALSE(file.Flush(10ms));
    EXPECT_FALSE(file.TakeProblem());
    ASSERT_EQ(chmod(path_.parent_path().c_str(), 0700), 0);
    file.SaveSetting(kName, kGeneral, "Tabs", "1440");
    EXPECT_TRUE(file.Flush(10ms));
    EXPECT_EQ(Open().GetAllSettings(kName, kGeneral), (Pairs{{"Tabs", "1440"}, {"Font", "Arial,11"}}));

    ASSERT_EQ(chmod(path_.c_str(), 0), 0);
    SettingsFile unreadable = Open();
    const auto problem = unreadable.TakeProblem();
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->reason, "Permission denied");
    EXPECT_TRUE(problem->keptAs.empty());
    unreadable.SaveSetting(kName, kGeneral, "Tabs", "lost?");
    ASSERT_EQ(chmod(path_.c_str(), 0600), 0);
    EXPECT_EQ(Open().Find(kName, kGeneral, "Tabs"), "1440") << "what cannot be read is not replaced";
    EXPECT_TRUE(unreadable.Flush(10ms));
    EXPECT_EQ(Open().GetAllSettings(kName, kGeneral), (Pairs{{"Tabs", "lost?"}, {"Font", "Arial,11"}}));
  });
  EXPECT_EQ(Wait(child), 0);
}

TEST_F(SettingsFileTest, AFolderInItsPlaceIsLeftAlone) {
  std::filesystem::create_directories(path_);
  SettingsFile file = Open();
  EXPECT_TRUE(file.TakeProblem());
  file.SaveSetting(kName, kGeneral, "Tabs", "720");
  EXPECT_EQ(file.Find(kName, kGeneral, "Tabs"), "720");
  EXPECT_TRUE(std::filesystem::is_directory(path_));
}

TEST_F(SettingsFileTest, TwoCopiesDoNotLoseEachOthersKeys) {
  constexpr int kWrites = 150;  // of two kinds
  const auto write = [&](const std::string& who) {
    SettingsFile file = Open();
    for (int i = 0; i < kWrites; ++i) {
      file.SaveSetting(kName, kGeneral, who + std::to_string(i), std::to_string(i));
      file.SaveSetting(kName, kGeneral, "shared", who);
    }
  };
  const pid_t first = Child([&] { write("a"); }), second = Child([&] { write("b"); });
  EXPECT_EQ(Wait(first), 0);
  EXPECT_EQ(Wait(second), 0);
  SettingsFile file = Open();
  EXPECT_FALSE(file.TakeProblem());
  for (const char* who : {"a", "b"})
    for (int i = 0; i < kWrites; ++i)
      ASSERT_EQ(file.Find(kName, kGeneral, who + std::to_string(i)), std::to_string(i)) << who << i;
  EXPECT_EQ(file.GetAllSettings(kName, kGeneral).size(), 2u * kWrites + 1);
}

TEST_F(SettingsFileTest, ACopySeesWhatAnotherWrote) {
  SettingsFile first = Open(), second = Open();
  first.SaveSetting(kName, "Recent Files", "RecentFile1", "/a");
  EXPECT_EQ(second.GetAllSettings(kName, "Recent Files"), (Pairs{{"RecentFile1", "/a"}}));
  second.SaveSetting(kName, "Recent Files", "RecentFile2", "/b");
  EXPECT_EQ(first.GetAllSettings(kName, "Recent Files"), (Pairs{{"RecentFile1", "/a"}, {"RecentFile2", "/b"}}));
}

TEST_F(SettingsFileTest, KilledWhileWriting) {
  Open().SaveSetting(kName, kGeneral, "before", "here");
  const unsigned seed = std::random_device()();
  std::mt19937 random(seed);
  for (int round = 0; round < 30; ++round) {
    const pid_t child = Child([&] {
      SettingsFile file = Open();
      for (int i = 0;; ++i)
        file.SaveSettings(kName, kGeneral, {{"one", std::to_string(i)}, {"two", std::to_string(i)}});
    });
    usleep(1000 + random() % 20000);
    kill(child, SIGKILL);
    Wait(child);
    SettingsFile file = Open();
    EXPECT_FALSE(file.TakeProblem()) << "seed " << seed;
    EXPECT_EQ(file.Find(kName, kGeneral, "before"), "here") << "seed " << seed;
    EXPECT_EQ(file.Find(kName, kGeneral, "one"), file.Find(kName, kGeneral, "two")) << "seed " << seed;
    file.SaveSetting(kName, kGeneral, "round", std::to_string(round));
    EXPECT_EQ(Open().Find(kName, kGeneral, "round"), std::to_string(round)) << "a stale lock";
  }
}

TEST_F(SettingsFileTest, OnlyLookingWritesNothing) {
  SettingsFile file = Open(SettingsFile::Access::kReadOnly);
  file.SaveSetting(kName, kGeneral, "Tabs", "720");
  EXPECT_EQ(file.Find(kName, kGeneral, "Tabs"), "720");
  EXPECT_FALSE(file.Flush(10ms));
  EXPECT_FALSE(std::filesystem::exists(path_.parent_path()));
}

}  // namespace
