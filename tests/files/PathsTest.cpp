// Error numbers, attributes, comparing, folders, the current directory, URLs, reading.
#include "FilesTest.h"
#include "files/Attributes.h"
#include "files/CurrentDirectory.h"
#include "files/FileUrl.h"
#include "files/Folders.h"

#include <cerrno>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace files {
namespace {

TEST(ErrorNumberTest, Table) {
  const std::pair<int, int> kRows[] = {
      {ENOENT, 53}, {ENOTDIR, 76}, {EROFS, 75}, {EISDIR, 70}, {EACCES, 70}, {EPERM, 70},
      {ENOSPC, 61}, {EDQUOT, 61},  {EFBIG, 61}, {EIO, 57},    {EEXIST, 58}, {ENAMETOOLONG, 52},
      {ELOOP, 5},   {EMFILE, 5},   {EBUSY, 5},  {ETXTBSY, 5}, {EINVAL, 5},  {ENOMEM, 5},
  };
  for (const auto& [systemError, number] : kRows) {
    EXPECT_EQ(number, ErrorNumber(systemError)) << systemError;
    const Error error = SystemError(systemError, "/");
    EXPECT_EQ(systemError, error.systemError);
    EXPECT_EQ(number, error.number);
    EXPECT_FALSE(error.text.empty());
  }
  const ScratchFolder scratch;
  for (const auto& [path, number] : {std::pair{scratch / "x", 53},
                                     {scratch / "x/", 53},
                                     {Path("no such name here"), 53},
                                     {scratch / "x/y", 76},
                                     {Path("no such folder here/y"), 76}})
    EXPECT_EQ(number, SystemError(ENOENT, path).number) << path;
}

TEST(AttributesTest, Table) {
  const ScratchFolder scratch;
  Put(scratch / "plain", "");
  Put(scratch / ".hidden", "");
  Put(scratch / "readonly", "");
  chmod((scratch / "readonly").c_str(), 0466);  // others' write bits do not count
  std::filesystem::create_directory(scratch / ".folder");
  std::filesystem::create_directory(scratch / "closed");
  chmod((scratch / "closed").c_str(), 0555);
  ASSERT_EQ(0, mkfifo((scratch / ".fifo").c_str(), 0644));
  std::filesystem::create_symlink("closed", scratch / "link to folder");
  std::filesystem::create_symlink("readonly", scratch / ".link");
  std::filesystem::create_symlink("nowhere", scratch / "dangling");
  std::filesystem::create_symlink("self", scratch / "self");
  const struct {
    Path path;
    int attributes;
  } kRows[] = {
      {scratch / "plain", 0},
      {scratch / ".hidden", kHidden},
      {scratch / "readonly", kReadOnly},
      {scratch / ".folder", kHidden | kDirectory},
      {scratch / ".folder/", kHidden | kDirectory},
      {scratch / "closed", kDirectory | kReadOnly},
      {scratch / "closed/.", kDirectory | kReadOnly},
      {scratch / ".fifo", kHidden | kSystem},
      {scratch / "link to folder", kDirectory | kReadOnly},
      {scratch / ".link", kHidden | kReadOnly},
      {scratch / "dangling", 0},
      {scratch / "self", 0},
      {"/dev/null", kSystem},
  };
  for (const auto& row : kRows) {
    const auto found = GetAttributes(row.path);
    ASSERT_TRUE(found) << row.path;
    EXPECT_EQ(row.attributes, found.value()) << row.path;
  }
  EXPECT_EQ(kDirectory, GetAttributes("/").value() & ~kReadOnly);
  EXPECT_EQ(53, GetAttributes(scratch / "missing").error().number);
  EXPECT_EQ(76, GetAttributes(scratch / "missing/x").error().number);
  EXPECT_EQ(76, GetAttributes(scratch / "plain/x").error().number);
  EXPECT_EQ(53, GetAttributes("").error().number);
}

TEST(AttributesTest, SetReadOnly) {
  const ScratchFolder scratch;
  Put(scratch / "file", "");
  const struct {
    mode_t before;
    bool readOnly;
    mode_t after;
  } kRows[] = {{0666, true, 0444},  {0755, true, 0555},  {0444, false, 0644}, {0555, false, 0755},
               {0466, false, 0666}, {0644, false, 0644}, {0444, true, 0444},  {0220, true, 0}};
  for (const auto& row : kRows) {
    chmod((scratch / "file").c_str(), row.before);
    EXPECT_EQ("", Outcome(SetReadOnly(scratch / "file", row.readOnly)));
    EXPECT_EQ(row.after, StatusOf(scratch / "file").st_mode & 07777) << std::oct << row.before;
  }
  EXPECT_EQ("53 No such file or directory", Outcome(SetReadOnly(scratch / "missing", true)));
  if (geteuid() == 0) {
    EXPECT_CHILD(AsNobody([&] {
      Checks check;
      check.Equal("file of another", "70 Operation not permitted", Outcome(SetReadOnly(scratch / "file", false)));
      return check.text();
    }));
  }
}

TEST(SamePathTest, Table) {
  const ScratchFolder scratch;
  for (const char* name : {"Two", "two", "one", "ÉTÉ", "été", "target"}) Put(scratch / name, "");
  std::filesystem::create_hard_link(scratch / "one", scratch / "hard");
  std::filesystem::create_hard_link(scratch / "target", scratch / "HARD2");
  std::filesystem::create_hard_link(scratch / "target", scratch / "hard2");
  std::filesystem::create_symlink("target", scratch / "Link");
  std::filesystem::create_symlink("target", scratch / "link");
  std::filesystem::create_symlink("nowhere", scratch / "Lost");
  std::filesystem::create_symlink("nowhere", scratch / "lost");
  const struct {
    const char *a, *b;
    bool same;
  } kRows[] = {
      {"one", "ONE", true},    // only one of them exists
      {"none", "NONE", true},  // neither exists
      {"Two", "two", false},   // two files
      {"ÉTÉ", "été", false},
      {"HARD2", "hard2", true},  // two names of one file that differ by case alone
      {"one", "hard", false},    // nothing but case is looked through
      {"Link", "link", true},
      {"Lost", "lost", false},
      {"one", "./one", false},
      {"ΣΊΣΥΦΟΣ", "σίσυφος", true},
      {"\U00010400", "\U00010428", true},  // beyond the basic plane
      {"\xC4", "\xE4", false},             // not UTF-8: bytes
      {"\xC3", "\xC3\x84", false},
      {"kelvin", "\u212Aelvin", false},
      {"\u0130", "i", false},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(testing::Message() << row.a << " and " << row.b);
    const Path a = scratch / row.a, b = scratch / row.b;
    EXPECT_EQ(row.same, SamePath(a, b));
    EXPECT_EQ(row.same, SamePath(b, a));
    if (row.same) {
      EXPECT_EQ(PathKey(a), PathKey(b));
    }
  }
  // Two folders that differ by case.
  std::filesystem::create_directory(scratch / "Sub");
  std::filesystem::create_directory(scratch / "sub");
  Put(scratch / "Sub/file", "");
  EXPECT_TRUE(SamePath(scratch / "Sub/file", scratch / "sub/file"));
  Put(scratch / "sub/file", "");
  EXPECT_FALSE(SamePath(scratch / "Sub/file", scratch / "sub/file"));
}

// The key is a fold: applying it twice changes nothing, and bytes that are no characters pass through.
TEST(SamePathTest, KeysOfAllBytePairs) {
  for (int first = 1; first < 256; ++first) {
    for (int second = 1; second < 256; ++second) {
      const std::string name{static_cast<char>(first), static_cast<char>(second)};
      const std::string key = PathKey(name);
      ASSERT_EQ(key, PathKey(key)) << first << " " << second;
      const bool stray = first >= 0x80 && (second < 0x80 || second > 0xBF);
      ASSERT_TRUE(!stray || key[0] == name[0]) << first << " " << second;
    }
  }
}

TEST(CurrentDirectoryTest, MakeAbsolute) {
  const ScratchFolder scratch;
  std::filesystem::create_directories(scratch / "a/b");
  std::filesystem::create_directories(scratch / "far/inside");
  std::filesystem::create_symlink("../far/inside", scratch / "a/link");
  const CurrentDirectory current(scratch / "a");
  const struct {
    const char *path, *expected;  // without a leading "/": in the scratch folder
  } kRows[] = {
      {"x", "a/x"},
      {"b//x", "a/b/x"},
      {"../x", "x"},
      {"b/../x", "a/x"},
      {"link/../x", "a/link/../x"},
      {"gone/../x", "a/gone/../x"},
      {".", "a"},
      {"..", ""},
      {"line\nbreak \xff", "a/line\nbreak \xff"},
      {"/x", "/x"},
      {"/", "/"},
      {"/../../x/", "/x/"},
      {"file:x", "a/file:x"},
      {"~", "a/~"},
  };
  for (const auto& row : kRows) {
    const Path expected = row.expected[0] == '/' ? Path(row.expected)
                          : row.expected[0]      ? scratch / row.expected
                                                 : scratch.path();
    EXPECT_EQ(expected.native(), current.MakeAbsolute(row.path).native()) << row.path;
  }
  EXPECT_EQ("", current.MakeAbsolute("").native());
}

TEST(CurrentDirectoryTest, Change) {
  const ScratchFolder scratch;
  std::filesystem::create_directories(scratch / "a/b");
  std::filesystem::create_symlink("a/b", scratch / "link");
  Put(scratch / "file", "");
  CurrentDirectory current(scratch.path());
  EXPECT_EQ("", Outcome(current.Change("link/")));
  EXPECT_EQ(scratch / "link", current.path()) << "kept as it was entered";
  EXPECT_EQ("53 No such file or directory", Outcome(current.Change("gone")));
  EXPECT_EQ("76 Not a directory", Outcome(current.Change(scratch / "file")));
  EXPECT_EQ(scratch / "link", current.path());
  EXPECT_EQ("", Outcome(current.Change("/")));
  EXPECT_EQ("/", current.path());
  EXPECT_EQ("/x", current.MakeAbsolute("x").native());
}

TEST(CurrentDirectoryTest, EachDriveHasItsOwn) {
  const ScratchFolder scratch;
  std::filesystem::create_directories(scratch / "usb/a/b");
  std::filesystem::create_directories(scratch / "usb2");
  CurrentDirectory current(scratch.path());
  current.SetDrives({"/", scratch / "usb", "relative", scratch / "usb/a", scratch / "usb"});
  EXPECT_EQ(current.drives().size(), 3u);
  EXPECT_EQ(current.DriveOf(scratch / "usb2"), "/");
  EXPECT_EQ(current.DriveOf(scratch / "usb/a"), scratch / "usb/a");
  EXPECT_EQ(current.DriveOf(scratch / "usb/ax"), scratch / "usb");
  const auto goTo = [&](const Path& drive) { return Outcome(current.ChangeDrive(drive)) + current.path().native(); };
  EXPECT_EQ(goTo(scratch / "usb/a"), (scratch / "usb/a").native()) << "its root at first";
  EXPECT_EQ("", Outcome(current.Change("b")));
  EXPECT_EQ(goTo("/"), scratch.path().native());
  EXPECT_EQ(goTo(scratch / "usb/a"), (scratch / "usb/a/b").native());
  EXPECT_EQ(goTo("/"), scratch.path().native());
  std::filesystem::remove(scratch / "usb/a/b");
  EXPECT_EQ(goTo(scratch / "usb/a"), (scratch / "usb/a").native()) << "what was remembered has gone";
  std::filesystem::remove_all(scratch / "usb");
  EXPECT_EQ(goTo("/"), scratch.path().native());
  EXPECT_EQ(goTo(scratch / "usb"), "53 No such file or directory" + scratch.path().native());
}

TEST(CurrentDirectoryTest, OfProcess) {
  const ScratchFolder scratch;
  std::filesystem::create_directory(scratch / "real");
  std::filesystem::create_symlink("real", scratch / "link");
  const Path real = std::filesystem::canonical(scratch / "real");
  const struct {
    const char* spelled;
    Path expected;
  } kRows[] = {{"link", scratch / "link"}, {"wrong", real}, {"", real}};
  for (const auto& row : kRows) {
    EXPECT_CHILD(InChild([&] {
      Checks check;
      check.Equal("chdir", 0, chdir(real.c_str()));
      setenv("PWD", (scratch / row.spelled).c_str(), 1);
      check.Equal("path", row.expected, CurrentDirectory::OfProcess().path());
      return check.text();
    }));
  }
}

TEST(FileUrlTest, Decode) {
  const struct {
    const char *url, *path;  // nullptr: refused
  } kRows[] = {
      {"file:///home/me/a.txt", "/home/me/a.txt"},
      {"file:/home/me/a.txt", "/home/me/a.txt"},
      {"FILE://LocalHost/a", "/a"},
      {"file:///a%20b%0Ac%FF%fe", "/a b\nc\xff\xfe"},
      {"file:///a#b?c", "/a#b?c"},
      {"file:///a%2Fb", "/a/b"},
      {"file:///caf\xc3\xa9", "/caf\xc3\xa9"},
      {"file://elsewhere.example/a", nullptr},
      {"file:", nullptr},
      {"file:///a%", nullptr},
      {"file:///a%G1", nullptr},
      {"file:///a%00b", nullptr},
      {"http://localhost/a", nullptr},
      {"", nullptr},
  };
  for (const auto& row : kRows) {
    const auto path = PathFromFileUrl(row.url);
    EXPECT_EQ(row.path ? row.path : "<none>", path ? path->native() : "<none>") << row.url;
  }
}

TEST(FileUrlTest, EveryByteThereAndBack) {
  std::string path = "/";
  for (int byte = 1; byte < 256; ++byte) path += static_cast<char>(byte);
  const std::string url = FileUrlFromPath(path);
  for (const char c : url) EXPECT_TRUE(c > ' ' && c < '\x7f') << static_cast<int>(c);
  EXPECT_EQ(path, PathFromFileUrl(url)->native());
  EXPECT_EQ("file:///a%20b/%25%23%C3%A9-._~", FileUrlFromPath("/a b/%#é-._~"));
}

TEST(FoldersTest, Fallbacks) {
  const ScratchFolder scratch;
  const std::string open = scratch.path().native(), closed = (scratch / "private").native();
  std::filesystem::create_directory(closed);
  chmod(closed.c_str(), 0700);
  const std::string config = "/h/.config", data = "/h/.local/share", state = "/h/.local/state";
  const struct {
    std::map<std::string, std::string> variables;  // besides HOME
    std::string config, data, state, runtime;
  } kRows[] = {
      {{}, config, data, state, state + "/quillmark/runtime"},
      {{{"XDG_CONFIG_HOME", "/c"}, {"XDG_DATA_HOME", "/d"}, {"XDG_STATE_HOME", "/s"}},
       "/c",
       "/d",
       "/s",
       "/s/quillmark/runtime"},
      {{{"XDG_CONFIG_HOME", "relative"}, {"XDG_STATE_HOME", ""}}, config, data, state, state + "/quillmark/runtime"},
      {{{"XDG_RUNTIME_DIR", closed}}, config, data, state, closed + "/quillmark"},
      // Others may enter it, or it does not exist.
      {{{"XDG_RUNTIME_DIR", open}}, config, data, state, state + "/quillmark/runtime"},
      {{{"XDG_RUNTIME_DIR", "/does/not/exist"}}, config, data, state, state + "/quillmark/runtime"},
  };
  for (const auto& row : kRows) {
    const auto found = FindUserFolders([&](const char* name) -> std::optional<std::string> {
      if (name == std::string_view("HOME")) return "/h";
      const auto variable = row.variables.find(name);
      if (variable == row.variables.end()) return std::nullopt;
      return variable->second;
    });
    ASSERT_TRUE(found);
    EXPECT_EQ(Path(row.config) / "quillmark", found.value().config);
    EXPECT_EQ(Path(row.data) / "quillmark", found.value().data);
    EXPECT_EQ(Path(row.state) / "quillmark", found.value().state);
    EXPECT_EQ(Path(row.runtime), found.value().runtime);
    EXPECT_EQ(Path(row.state) / "quillmark/recovery", found.value().recovery());
  }
  const auto account = FindUserFolders([](const char*) { return std::nullopt; });
  ASSERT_TRUE(account);
  EXPECT_TRUE(account.value().config.is_absolute());
}

TEST(FoldersTest, MakeFolder) {
  const ScratchFolder scratch;
  EXPECT_EQ("", Outcome(MakeFolder(scratch / "a/b/c/")));
  for (const char* name : {"a", "a/b", "a/b/c"})
    EXPECT_EQ(mode_t{0700}, StatusOf(scratch / name).st_mode & 0777) << name;
  EXPECT_EQ(mode_t{0755}, StatusOf(scratch.path()).st_mode & 0777);
  EXPECT_EQ("", Outcome(MakeFolder(scratch / "a/b")));
  Put(scratch / "file", "");
  std::filesystem::create_symlink("nowhere", scratch / "dangling");
  EXPECT_EQ("76 Not a directory", Outcome(MakeFolder(scratch / "file")));
  EXPECT_EQ("76 Not a directory", Outcome(MakeFolder(scratch / "file/x")));
  EXPECT_EQ("76 Not a directory", Outcome(MakeFolder(scratch / "dangling")));
  EXPECT_EQ("52 File name too long", Outcome(MakeFolder(scratch / std::string(300, 'x') / "y")));
  if (geteuid() == 0) {
    EXPECT_CHILD(AsNobody([&] {
      Checks check;
      check.Equal("unwritable", "70 Permission denied", Outcome(MakeFolder(scratch / "new")));
      return check.text();
    }));
  }
}

TEST(OpenFileTest, ReadAll) {
  const ScratchFolder scratch;
  for (const size_t size : {size_t{0}, size_t{1}, size_t{100000}, size_t{3} << 20}) {
    const std::string bytes = Pattern(size);
    Put(scratch / "file", bytes);
    auto file = OpenForReading(scratch / "file");
    ASSERT_TRUE(file);
    EXPECT_EQ(static_cast<int64_t>(size), file.value().size());
    EXPECT_EQ(StampOf(scratch / "file"), file.value().stamp());
    InputFile moved(std::move(file.value()));
    EXPECT_TRUE(bytes == ReadAll(moved).value());
    EXPECT_TRUE(bytes == ReadAll(moved, static_cast<int64_t>(size)).value()) << "the limit itself is allowed";
    const auto cut = ReadAll(moved, static_cast<int64_t>(size) - 1);
    EXPECT_EQ(EFBIG, cut ? 0 : cut.error().systemError);
  }
}

TEST(OpenFileTest, SizesThatAreNotTrue) {
  // The kernel says 0 for these.
  auto status = OpenForReading("/proc/self/status");
  ASSERT_TRUE(status);
  EXPECT_EQ(0, status.value().size());
  EXPECT_NE(std::string::npos, ReadAll(status.value()).value().find("Umask"));
  auto limited = OpenForReading("/proc/self/status");
  EXPECT_EQ(EFBIG, ReadAll(limited.value(), 10).error().systemError);

  const ScratchFolder scratch;
  Put(scratch / "growing", "begin");
  auto growing = OpenForReading(scratch / "growing");
  Put(scratch / "growing", "begin and much more");
  EXPECT_EQ("begin and much more", ReadAll(growing.value()).value());
  EXPECT_NE(StampOf(scratch / "growing"), growing.value().stamp());

  // Far more than there is memory.
  Put(scratch / "huge", "");
  if (truncate((scratch / "huge").c_str(), int64_t{1} << 43) != 0) GTEST_SKIP() << "no sparse files of this size here";
  auto huge = OpenForReading(scratch / "huge");
  EXPECT_EQ(EFBIG, ReadAll(huge.value(), 1 << 30).error().systemError);
}

TEST(OpenFileTest, NotAllowed) {
  const ScratchFolder scratch;
  Put(scratch / "secret", "x");
  chmod((scratch / "secret").c_str(), 0);
  EXPECT_CHILD(AsNobody([&] {
    const auto opened = OpenForReading(scratch / "secret");
    return opened ? std::string("opened") : opened.error().number == 70 ? "" : opened.error().text;
  }));
}

TEST(OpenFileTest, Stamps) {
  const ScratchFolder scratch;
  const Path path = scratch / "file";
  EXPECT_FALSE(StampOf(path));
  Put(path, "one");
  const FileStamp first = *StampOf(path);
  EXPECT_EQ(first, *StampOf(path));
  EXPECT_EQ("", Outcome(Save(path, scratch / "state", "two")));  // as long as before
  EXPECT_NE(first, *StampOf(path));
}

}  // namespace
}  // namespace files
