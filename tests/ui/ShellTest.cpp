// Launching for real, with applications of the test's own in a data folder of its own. The desktop's library looks at
// its folders once, so every case runs in a process of its own.
#include "ui/desktop/Shell.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

void Put(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

class ShellTest : public ::testing::Test {
 protected:
  ShellTest() : folder_(fs::temp_directory_path() / ("quillmark-shell-" + std::to_string(std::random_device{}()))) {
    const fs::path recorder = At("bin/recorder");
    Put(recorder, "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done > \"" + At("part").native() +
                      "\"\npwd >> \"" + At("part").native() + "\"\nmv \"" + At("part").native() + "\" \"" +
                      At("ran").native() + "\"\n");
    fs::permissions(recorder, fs::perms::owner_all);
    Put(At("data/applications/viewer.desktop"),
        "[Desktop Entry]\nType=Application\nName=Viewer\nExec=" + recorder.native() +
            " viewer %u\nMimeType=application/pdf;text/plain;"
            "x-scheme-handler/https;x-scheme-handler/mailto;\n");
    fs::create_directory(At("system"));
    fs::create_directory_symlink("/usr/share/mime", At("system/mime"));  // types, but nobody else's applications
    Put(At("config/mimeapps.list"),
        "[Default Applications]\napplication/pdf=viewer.desktop\ntext/plain=viewer.desktop\n"
        "x-scheme-handler/https=viewer.desktop\nx-scheme-handler/mailto=viewer.desktop\n");
  }
  ~ShellTest() override { fs::remove_all(folder_); }

  fs::path At(const std::string& name) const { return folder_ / name; }

  // What the call gives back, in a process that knows only this test's applications.
  int InChild(const std::function<int(ui::Shell&)>& call) const {
    const pid_t child = fork();
    if (child == 0) {
      setenv("XDG_DATA_HOME", At("data").c_str(), 1);
      setenv("XDG_DATA_DIRS", At("system").c_str(), 1);
      setenv("XDG_CONFIG_HOME", At("config").c_str(), 1);
      setenv("PATH", (At("bin").native() + ":/usr/bin:/bin").c_str(), 1);
      ui::DesktopShell shell;
      _exit(call(shell));
    }
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  // What the started program was given, a line each, and at the end its folder; empty when none was started in time.
  std::string Ran() const {
    for (int i = 0; i < 500 && !fs::exists(At("ran")); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::ostringstream text;
    if (std::ifstream file(At("ran")); file) text << file.rdbuf();
    fs::remove(At("ran"));
    return text.str();
  }

  const fs::path folder_;
};

TEST_F(ShellTest, OpensFilesAndAddressesWithTheirApplications) {
  const fs::path odd = At("a b & <i>\n\xFF.pdf");
  Put(odd, "%PDF-1.4\n");
  Put(At("site.url"), "[InternetShortcut]\r\nURL=https://quillmark.example/\r\n");
  const struct {
    std::string what;
    std::string given;
  } kRows[] = {
      {odd.native(), odd.native()},
      {"https://quillmark.example/a;b", "https://quillmark.example/a;b"},
      {"MAILTO:", "MAILTO:"},
      {At("site.url").native(), "https://quillmark.example/"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(InChild([&](ui::Shell& shell) { return shell.Open(row.what); }), ui::Shell::kStarted) << row.what;
    const std::string ran = Ran();
    EXPECT_TRUE(ran.starts_with("viewer\n")) << ran;
    EXPECT_NE(ran.find(row.given + "\n"), std::string::npos) << ran;
  }
}

TEST_F(ShellTest, FailuresHaveTheirCodes) {
  Put(At("picture.xyz"), "\x01\x02\x03");
  Put(At("evil.url"), "[InternetShortcut]\r\nURL=file:///bin/sh\r\n");
  Put(At("script"), "#!/bin/sh\ntouch \"" + At("ran").native() + "\"\n");
  fs::permissions(At("script"), fs::perms::owner_all);
  Put(At("not executable"), "x");
  const struct {
    const char* what;
    std::function<int(ui::Shell&)> call;
    int code;
  } kRows[] = {
      {"missing", [&](ui::Shell& s) { return s.Open(At("missing.pdf").native()); }, ui::Shell::kNotFound},
      {"empty", [](ui::Shell& s) { return s.Open(""); }, ui::Shell::kNotFound},
      {"NUL", [](ui::Shell& s) { return s.Open(std::string("/tmp\0x", 6)); }, ui::Shell::kNotFound},
      {"no handler", [](ui::Shell& s) { return s.Open("gopher://x"); }, ui::Shell::kNoApplication},
      {"no type", [&](ui::Shell& s) { return s.Open(At("picture.xyz").native()); }, ui::Shell::kNoApplication},
      {"no program", [](ui::Shell& s) { return s.Run("no-such-program.exe", {}, {}); }, ui::Shell::kNotFound},
      {"no x bit", [&](ui::Shell& s) { return s.Run(At("not executable").native(), {}, {}); }, ui::Shell::kNotFound},
  };
  for (const auto& row : kRows) EXPECT_EQ(InChild(row.call), row.code) << row.what;
  // A link to something that is no page is not followed, and an executable is shown, not run.
  for (const char* name : {"evil.url", "script"}) {
    const int code = InChild([&](ui::Shell& shell) { return shell.Open(At(name).native()); });
    if (code == ui::Shell::kStarted) {
      EXPECT_TRUE(Ran().starts_with("viewer\n")) << name;
    } else {
      EXPECT_EQ(code, ui::Shell::kNoApplication) << name;
    }
  }
}

TEST_F(ShellTest, OfWhatCameOutOfADocumentNoProgramIsOpenedAndNoLinkFollowed) {
  const auto open = [&](const std::string& name, const std::string& bytes) {
    Put(At(name), bytes);
    fs::permissions(At(name), fs::perms::owner_all);
    return InChild([&](ui::Shell& shell) {
      std::string program;
      const int result = shell.OpenCopy(At(name), program);
      return result == ui::Shell::kStarted && program != "recorder" ? -1 : result;
    });
  };
  const std::string elf(
      "\x7F"
      "ELF\2\1\1\0\0\0\0\0\0\0\0\0\2\0\x3E\0\1\0\0\0",
      24);
  const std::string link = "[Desktop Entry]\nType=Link\nURL=https://quillmark.example/\nExec=/bin/true\n";
  for (const auto& [name, bytes] :
       std::vector<std::pair<std::string, std::string>>{{"a.desktop", link},
                                                        {"A.DESKTOP", link},
                                                        {"b.url", "[InternetShortcut]\nURL=https://x.example/\n"},
                                                        {"program", elf},
                                                        {"setup.exe", "MZ"},
                                                        {"x.jar", "PK"},
                                                        {"x.AppImage", elf}})
    EXPECT_EQ(open(name, bytes), ui::Shell::kAccessDenied) << name;
  EXPECT_EQ(open("a.odt", "x"), ui::Shell::kNoApplication);
  std::string program;
  EXPECT_EQ(InChild([&](ui::Shell& shell) { return shell.OpenCopy(At("missing"), program); }), ui::Shell::kNotFound);
  EXPECT_FALSE(fs::exists(At("ran")));
  // What would run them stands ready, but an application for plain text gets them.
  Put(At("data/applications/runner.desktop"),
      "[Desktop Entry]\nType=Application\nName=Runner\nExec=" + At("bin/recorder").native() + " runner %u\n");
  std::ofstream defaults(At("config/mimeapps.list"), std::ios::app);
  for (const char* type : {"application/x-shellscript", "application/javascript", "text/javascript", "text/x-python",
                           "text/x-python3", "application/x-perl", "text/x-ms-regedit", "text/vbscript"})
    defaults << type << "=runner.desktop\n";
  defaults.close();
  for (const char* name : {"script.txt", "a.sh", "b.js", "c.py", "d.pl", "e.reg", "f.vbs"}) {
    EXPECT_EQ(open(name, "#!/bin/sh\n"), ui::Shell::kStarted) << name;
    EXPECT_TRUE(Ran().starts_with("viewer\n")) << name;
  }
}

TEST_F(ShellTest, RunsWhatIsNamedWithItsArgumentsAsTheyAre) {
  for (const char* program : {"recorder", "recorder.exe", "RECORDER_PATH"}) {
    const std::string named = program == std::string("RECORDER_PATH") ? At("bin/recorder").native() : program;
    const auto run = [&](ui::Shell& shell) { return shell.Run(named, {"one two", "$HOME;`x`", "\"q\""}, At("bin")); };
    EXPECT_EQ(InChild(run), ui::Shell::kStarted) << named;
    EXPECT_EQ(Ran(), "one two\n$HOME;`x`\n\"q\"\n" + At("bin").native() + "\n");
  }
  // Rich text is shown by what shows plain text when there is nothing better.
  for (const char* program : {"Notepad.exe", "WORDPAD.EXE"}) {
    EXPECT_EQ(InChild([&](ui::Shell& shell) { return shell.Run(program, {At("x y").native()}, {}); }),
              ui::Shell::kStarted);
    EXPECT_TRUE(Ran().starts_with("viewer\n" + At("x y").native() + "\n"));
  }
}

TEST(Links, OnlyPagesAndMailAreAddresses) {
  const struct {
    const char* link;
    const char* address;
  } kRows[] = {
      {"[InternetShortcut]\r\nURL=http://a/\r\n", "http://a/"},
      {"\xEF\xBB\xBF[internetshortcut]\nIconIndex=0\nurl=HTTPS://a/?b=c ", "HTTPS://a/?b=c"},
      {"[Desktop Entry]\nType=Link\nURL=mailto:a@b.example\n", "mailto:a@b.example"},
      {"[Other]\nURL=http://a/\n", ""},
      {"[InternetShortcut]\nURL=javascript:alert(1)\n", ""},
      {"[InternetShortcut]\nURL=/etc/passwd\n", ""},
      {"[InternetShortcut]\nURL=\n", ""},
      {"", ""},
  };
  for (const auto& row : kRows) EXPECT_EQ(ui::AddressOfLink(row.link), row.address) << row.link;
  EXPECT_TRUE(ui::HasScheme("news://x"));
  EXPECT_FALSE(ui::HasScheme("C:\\x"));
  EXPECT_FALSE(ui::HasScheme("a b:c"));
  EXPECT_FALSE(ui::HasScheme("1a:c"));
}

}  // namespace
