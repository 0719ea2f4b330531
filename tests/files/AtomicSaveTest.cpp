// Saving where all goes well, and what is refused before anything is written.
#include "FilesTest.h"
#include "files/Attributes.h"
#include "files/saving/Recovery.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace files {
namespace {

using Names = std::vector<std::string>;

class AtomicSaveTest : public testing::Test {
 protected:
  ScratchFolder scratch;
  Path state = scratch / "state";
  Path folder = scratch / "folder";
  Path file = folder / "file.txt";
  void SetUp() override {
    ASSERT_TRUE(std::filesystem::create_directory(folder));
    chmod(folder.c_str(), 0755);
  }
  // Nothing is left over in the state folder.
  void TearDown() override { EXPECT_EQ(Names(), NamesIn(state)); }
};

TEST_F(AtomicSaveTest, ClearsAwayWhatKilledSavesLeft) {
  const struct {
    const char* name;
    int hours;
    uid_t owner;
    bool stays;
  } kRows[] = {
      {".quillmark-0123456789abcdef", 25, geteuid(), false},
      {".quillmark-fedcba9876543210", 25, geteuid(), false},
      {".quillmark-0000000000000001", 23, geteuid(), true},
      {".quillmark-0000000000000002", 25, 65533, true},
      {".quillmark-0000000000000002x", 25, geteuid(), true},
      {".quillmark-000000000000000X", 25, geteuid(), true},
      {".quillmark-notes", 25, geteuid(), true},
      {"quillmark-0123456789abcdef", 25, geteuid(), true},
  };
  Names expected = {"file.txt", ".quillmark-0000000000000003", ".quillmark-0000000000000004"};
  for (const auto& row : kRows) {
    const Path path = folder / row.name;
    Put(path, "text");
    const timespec then = {time(nullptr) - row.hours * 3600, 0};
    const timespec times[] = {then, then};
    ASSERT_EQ(0, utimensat(AT_FDCWD, path.c_str(), times, 0));
    const bool mayNot = row.owner != geteuid() && chown(path.c_str(), row.owner, row.owner) != 0;
    if (row.stays && !mayNot) expected.push_back(row.name);
  }
  std::filesystem::create_directory(folder / ".quillmark-0000000000000003");
  std::filesystem::create_symlink(scratch.path(), folder / ".quillmark-0000000000000004");
  for (const char* name : {".quillmark-0000000000000003", ".quillmark-0000000000000004"}) {
    const timespec times[] = {{0, 0}, {0, 0}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, (folder / name).c_str(), times, AT_SYMLINK_NOFOLLOW));
  }
  EXPECT_EQ("", Outcome(Save(file, state, "new")));
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(expected, NamesIn(folder));
}

TEST_F(AtomicSaveTest, WritesAllSizesInAllPieces) {
  constexpr size_t kMega = 1 << 20;
  for (const size_t size : {size_t{0}, size_t{1}, kMega - 1, kMega, kMega + 1, 17 * kMega + 3}) {
    const std::string bytes = Pattern(size);
    for (const size_t piece : {size_t{1}, size_t{4096}, size_t{700001}, 3 * kMega, size + 1}) {
      if (size / piece > 2 * kMega) continue;
      SCOPED_TRACE(testing::Message() << size << " bytes in pieces of " << piece);
      for (const bool inPlace : {false, true}) {
        Put(file, "old");
        if (inPlace) std::filesystem::create_hard_link(file, folder / "other");
        const auto saved = SaveAtomically(file, state, [&](const ByteSink& sink) {
          for (size_t at = 0; at < size; at += piece) {
            if (!sink(std::string_view(bytes).substr(at, piece))) return false;
          }
          return true;
        });
        ASSERT_TRUE(saved) << saved.error().text;
        EXPECT_TRUE(Get(file) == bytes);
        EXPECT_EQ(*StampOf(file), saved.value());
        EXPECT_EQ(inPlace ? Names({"file.txt", "other"}) : Names({"file.txt"}), NamesIn(folder));
        std::filesystem::remove(folder / "other");
      }
    }
  }
}

TEST_F(AtomicSaveTest, KeepsNamesAsBytes) {
  const std::string rows[] = {"line\nbreak", "carriage\rreturn",    "\xff\xfe\x80", "caf\xc3\xa9", " ", "-rf", "a\\b",
                              "%41",         std::string(255, 'n'), "\xd0\x9f"};
  for (const std::string& name : rows) {
    SCOPED_TRACE(name);
    for (const char* bytes : {"new", "replaced"}) {
      EXPECT_EQ("", Outcome(Save(folder / name, state, bytes)));
      EXPECT_EQ(Names({name}), NamesIn(folder));
      EXPECT_EQ(bytes, Get(folder / name));
    }
    std::filesystem::remove(folder / name);
  }
}

TEST_F(AtomicSaveTest, RelativePath) {
  EXPECT_CHILD(InChild([&] {
    Checks check;
    check.Equal("chdir", 0, chdir(folder.c_str()));
    check.Equal("outcome", "", Outcome(Save("file.txt", state, "bytes")));
    return check.text();
  }));
  EXPECT_EQ("bytes", Get(file));
}

void MakeSocket(const Path& path) {
  const int socketFile = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.native().copy(address.sun_path, sizeof address.sun_path - 1);
  EXPECT_EQ(0, bind(socketFile, reinterpret_cast<sockaddr*>(&address), sizeof address));
  close(socketFile);
}

TEST_F(AtomicSaveTest, RefusesWhatIsNotAFile) {
  ASSERT_EQ(0, mkfifo((folder / "fifo").c_str(), 0666));
  MakeSocket(folder / "socket");
  std::filesystem::create_symlink("fifo", folder / "link to fifo");
  std::filesystem::create_symlink("/dev/null", folder / "link to device");
  std::filesystem::create_symlink("loop", folder / "loop");
  std::filesystem::create_symlink("gone/file", folder / "link into nothing");
  std::filesystem::create_directory(folder / "folder");
  Put(folder / "plain", "plain");
  const Names before = NamesIn(folder);

  const struct {
    Path path;
    int saving, reading;  // the error's number; -1: not looked at
    const char* text;
  } kRows[] = {
      {folder / "fifo", 70, 70, "Not a regular file"},
      {folder / "socket", 70, 70, "Not a regular file"},
      {folder / "link to fifo", 70, 70, "Not a regular file"},
      {folder / "link to device", 70, 70, "Not a regular file"},
      {"/dev/null", 70, 70, "Not a regular file"},
      {"/dev/zero", 70, 70, "Not a regular file"},
      {folder / "folder", 75, 70, "Is a directory"},
      {folder / "folder/", 75, 70, "Is a directory"},
      {folder / "folder/.", 75, 70, "Is a directory"},
      {"/", 75, 70, "Is a directory"},
      {folder / "gone/file", 76, 76, "No such file or directory"},
      {folder / "link into nothing", 76, 53, "No such file or directory"},
      {folder / "gone", -1, 53, "No such file or directory"},
      {folder / "plain/file", 76, 76, "Not a directory"},
      {folder / "loop", 5, 5, "Too many levels of symbolic links"},
      {folder / std::string(256, 'n'), 52, 52, "File name too long"},
      {"", 53, 53, "No such file or directory"},
      {Path(std::string("plain\0x", 7)), 5, 5, "Invalid argument"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.path);
    const auto opened = OpenForReading(row.path);
    ASSERT_FALSE(opened);
    EXPECT_EQ(std::to_string(row.reading) + " " + row.text, Outcome(Status(opened.error())));
    EXPECT_EQ(row.path, opened.error().path);
    if (row.saving < 0) continue;
    AtomicSave save(row.path, state);
    EXPECT_EQ(std::to_string(row.saving) + " " + row.text, Outcome(save.Open()));
    EXPECT_FALSE(save.Write("bytes"));
    const Status committed = save.Commit();
    ASSERT_FALSE(committed);
    EXPECT_EQ(row.path, committed.error().path);
    EXPECT_EQ(before, NamesIn(folder));
  }
  EXPECT_EQ("plain", Get(folder / "plain"));
}

TEST_F(AtomicSaveTest, RefusesAReadOnlyFileAlsoForRoot) {
  Put(file, "old");
  for (const mode_t mode : {0444, 0555, 0466}) {
    chmod(file.c_str(), mode);
    EXPECT_EQ("70 Permission denied", Outcome(Save(file, state, "new"))) << mode;
    EXPECT_EQ("old", Get(file));
    EXPECT_EQ(Names({"file.txt"}), NamesIn(folder));
  }
  ASSERT_TRUE(SetReadOnly(file, false));
  EXPECT_EQ("", Outcome(Save(file, state, "new")));
  EXPECT_EQ("new", Get(file));
  EXPECT_EQ(mode_t{0666}, StatusOf(file).st_mode & 07777);
}

TEST_F(AtomicSaveTest, WithoutRootsRights) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root to make files of others";
  const struct {
    const char* what;
    uid_t folderOwner;
    mode_t folderMode;
    uid_t fileOwner;  // 1: there is no file
    mode_t fileMode;
    const char* outcome;
    bool inPlace;
  } kRows[] = {
      {"own file, own folder", 65534, 0755, 65534, 0644, "", false},
      {"own folder that cannot be read", 65534, 0300, 65534, 0644, "", false},
      {"new file in a folder that cannot be read", 65534, 0300, 1, 0, "", false},
      {"own file, folder that cannot be written", 0, 0755, 65534, 0644, "", true},
      {"file of another that anybody may write", 65534, 0755, 0, 0666, "", true},
      {"file of another in a sticky folder", 0, 01777, 0, 0666, "", true},
      {"own file in a sticky folder", 0, 01777, 65534, 0600, "", false},
      {"file of another", 65534, 0755, 0, 0644, "70 Permission denied", false},
      {"file that may be written but not read", 65534, 0755, 0, 0622, "70 Permission denied", false},
      {"new file, folder that cannot be written", 0, 0755, 1, 0, "70 Permission denied", false},
      {"own file, folder that cannot be entered", 0, 0700, 65534, 0644, "70 Permission denied", false},
      {"own read-only file", 65534, 0755, 65534, 0444, "70 Permission denied", false},
  };
  const Path ownState = scratch / "own";
  std::filesystem::create_directory(ownState);
  ASSERT_EQ(0, chown(ownState.c_str(), 65534, 65534));
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    std::filesystem::remove(file);
    ino_t inode = 0;
    if (row.fileOwner != 1) {
      Put(file, "the old bytes");
      ASSERT_EQ(0, chown(file.c_str(), row.fileOwner, row.fileOwner));
      chmod(file.c_str(), row.fileMode);
      inode = StatusOf(file).st_ino;
    }
    ASSERT_EQ(0, chown(folder.c_str(), row.folderOwner, row.folderOwner));
    chmod(folder.c_str(), row.folderMode);
    EXPECT_CHILD(AsNobody([&] {
      AtomicSave save(file, ownState / "deep/state");
      Checks check;
      check.Equal("open", row.outcome, Outcome(save.Open()));
      if (*row.outcome) return check.text();
      check.True("write", save.Write("new bytes"));
      check.Equal("commit", "", Outcome(save.Commit()));
      return check.text();
    }));
    const bool good = !*row.outcome;
    if (row.fileOwner == 1 && !good) {
      EXPECT_EQ(Names(), NamesIn(folder));
      continue;
    }
    EXPECT_EQ(good ? "new bytes" : "the old bytes", Get(file));
    EXPECT_EQ(Names({"file.txt"}), NamesIn(folder));
    EXPECT_EQ(Names(), NamesIn(ownState / "deep/state"));
    if (row.fileOwner == 1) continue;
    const struct stat status = StatusOf(file);
    EXPECT_EQ(row.fileOwner, status.st_uid);
    EXPECT_EQ(row.fileMode, status.st_mode & 07777);
    EXPECT_EQ(row.inPlace || !good, status.st_ino == inode);
  }
  EXPECT_EQ(mode_t{0700}, StatusOf(ownState / "deep").st_mode & 0777);
}

TEST_F(AtomicSaveTest, ReadOnlyVolume) {
  EXPECT_CHILD(WithSmallVolume(folder, 1024, [&]() -> std::string {
    Put(file, "old");
    const std::string remount = "mount -o remount,ro '" + folder.native() + "' 2>/dev/null";
    if (system(remount.c_str()) != 0) return "SKIP cannot remount";
    Checks check;
    check.Equal("replacing", "75 Read-only file system", Outcome(Save(file, state, "new")));
    check.Equal("making", "75 Read-only file system", Outcome(Save(folder / "new", state, "new")));
    check.Equal("bytes", "old", Get(file));
    return check.text();
  }));
}

TEST_F(AtomicSaveTest, FollowsLinks) {
  const Path other = scratch / "other";
  std::filesystem::create_directory(other);
  const struct {
    const char* what;
    Names links;  // "name>target", the last leads to the file
    bool dangling;
  } kRows[] = {
      {"relative", {"l1>file.txt"}, false},
      {"relative through another folder", {"l1>../folder/file.txt"}, false},
      {"chain", {"l1>l2", "l2>../other/l3", "../other/l3>../folder/file.txt"}, false},
      {"absolute", {"l1>" + file.native()}, false},
      {"dangling", {"l1>file.txt"}, true},
      {"dangling chain", {"l1>" + (other / "l2").native(), "../other/l2>../folder/file.txt"}, true},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    for (const std::string& link : row.links)
      std::filesystem::create_symlink(link.substr(link.find('>') + 1), folder / link.substr(0, link.find('>')));
    if (!row.dangling) Put(file, "old");
    EXPECT_EQ("", Outcome(Save(folder / "l1", state, "new")));
    EXPECT_EQ("new", Get(file));
    EXPECT_TRUE(S_ISREG(StatusOf(file).st_mode));
    size_t inFolder = 1;
    for (const std::string& link : row.links) {
      EXPECT_TRUE(std::filesystem::is_symlink(folder / link.substr(0, link.find('>')))) << link;
      inFolder += !link.starts_with("../");
    }
    EXPECT_EQ(inFolder, NamesIn(folder).size());
    for (const std::string& link : row.links) std::filesystem::remove(folder / link.substr(0, link.find('>')));
    std::filesystem::remove(file);
  }
}

TEST_F(AtomicSaveTest, KeepsHardLinks) {
  Put(file, Pattern(3000000));
  chmod(file.c_str(), 0640);
  std::filesystem::create_hard_link(file, scratch / "other name");
  const ino_t inode = StatusOf(file).st_ino;
  for (const size_t size : {size_t{5000000}, size_t{10}, size_t{0}}) {
    const std::string bytes = Pattern(size, 2);
    EXPECT_EQ("", Outcome(Save(file, state, bytes)));
    EXPECT_TRUE(bytes == Get(scratch / "other name")) << size;
    EXPECT_EQ(inode, StatusOf(file).st_ino);
    EXPECT_EQ(mode_t{0640}, StatusOf(file).st_mode & 07777);
  }
}

TEST_F(AtomicSaveTest, KeepsModeAndOwner) {
  const bool root = geteuid() == 0;
  for (const mode_t mode : {0600, 0640, 0644, 0666, 0755, 02775}) {
    for (const uid_t owner : {geteuid(), root ? 65534 : geteuid()}) {
      SCOPED_TRACE(testing::Message() << std::oct << mode << std::dec << " of " << owner);
      Put(file, "old");
      ASSERT_EQ(0, chown(file.c_str(), owner, root ? owner : getegid()));
      chmod(file.c_str(), mode);
      const struct stat before = StatusOf(file);
      EXPECT_EQ("", Outcome(Save(file, state, "new")));
      const struct stat after = StatusOf(file);
      EXPECT_EQ(before.st_mode, after.st_mode);
      EXPECT_EQ(before.st_uid, after.st_uid);
      EXPECT_EQ(before.st_gid, after.st_gid);
      EXPECT_NE(before.st_ino, after.st_ino) << "was to be renamed";
      std::filesystem::remove(file);
    }
  }
}

TEST_F(AtomicSaveTest, HiddenFromOthersUntilComplete) {
  Put(file, "old");
  chmod(file.c_str(), 0666);
  for (const Path& target : {file, folder / "new.txt"}) {
    AtomicSave save(target, state);
    ASSERT_TRUE(save.Open());
    ASSERT_TRUE(save.Write(Pattern(2 << 20)));
    const Names names = NamesIn(folder);
    ASSERT_EQ(2u, names.size());
    EXPECT_EQ(mode_t{0600}, StatusOf(folder / names[0]).st_mode & 07777) << names[0];
  }
  EXPECT_EQ(Names({"file.txt"}), NamesIn(folder));
}

// An access control list as the kernel's attribute holds it: version 2, then {tag, permissions, id}.
std::string AclBytes(const std::vector<std::array<uint32_t, 3>>& entries) {
  std::string bytes("\2\0\0\0", 4);
  for (const auto& [tag, permissions, id] : entries) {
    for (const uint32_t half : {tag, permissions, id & 0xFFFF, id >> 16}) {
      bytes += static_cast<char>(half & 255);
      bytes += static_cast<char>(half >> 8);
    }
  }
  return bytes;
}
constexpr uint32_t kNobody = 65534, kNone = 0xFFFFFFFF;
enum : uint32_t { kUserObj = 1, kUser = 2, kGroupObj = 4, kMask = 16, kOther = 32 };

std::string Extended(const Path& path, const char* name) {
  char value[4096];
  const ssize_t size = getxattr(path.c_str(), name, value, sizeof value);
  return size < 0 ? "<none>" : std::string(value, static_cast<size_t>(size));
}

bool SetExtended(const Path& path, const char* name, const std::string& value) {
  return setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

TEST_F(AtomicSaveTest, KeepsAclAndExtendedAttributes) {
  Put(file, "old");
  const std::string acl = AclBytes(
      {{kUserObj, 6, kNone}, {kUser, 6, kNobody}, {kGroupObj, 0, kNone}, {kMask, 6, kNone}, {kOther, 4, kNone}});
  const std::string big = Pattern(2000);
  if (!SetExtended(file, "user.comment", "\xff keep") || !SetExtended(file, "user.empty", "") ||
      !SetExtended(file, "user.big", big) || !SetExtended(file, "system.posix_acl_access", acl))
    GTEST_SKIP() << "the temporary folder's volume has no attributes";
  const struct stat before = StatusOf(file);
  // Renamed first, written in place then.
  for (const char* bytes : {"renamed", "in place"}) {
    EXPECT_EQ("", Outcome(Save(file, state, bytes)));
    EXPECT_EQ(bytes, Get(file));
    EXPECT_EQ("\xff keep", Extended(file, "user.comment"));
    EXPECT_EQ("", Extended(file, "user.empty"));
    EXPECT_EQ(big, Extended(file, "user.big"));
    EXPECT_EQ(acl, Extended(file, "system.posix_acl_access"));
    EXPECT_EQ(before.st_mode, StatusOf(file).st_mode);
    if (StatusOf(file).st_nlink == 1) std::filesystem::create_hard_link(file, scratch / "other name");
  }
  EXPECT_NE(before.st_ino, StatusOf(file).st_ino);
}

TEST_F(AtomicSaveTest, FolderWithADefaultAcl) {
  Put(file, "old");  // before the folder had one
  chmod(file.c_str(), 0640);
  const std::string acl = AclBytes(
      {{kUserObj, 7, kNone}, {kUser, 6, kNobody}, {kGroupObj, 5, kNone}, {kMask, 7, kNone}, {kOther, 0, kNone}});
  if (!SetExtended(folder, "system.posix_acl_default", acl)) GTEST_SKIP() << "no access control lists here";
  EXPECT_EQ("", Outcome(Save(file, state, "new")));
  EXPECT_EQ("<none>", Extended(file, "system.posix_acl_access"));
  EXPECT_EQ(mode_t{0640}, StatusOf(file).st_mode & 07777);

  Put(folder / "plain", "made by any program");
  EXPECT_EQ("", Outcome(Save(folder / "new", state, "new")));
  EXPECT_EQ(StatusOf(folder / "plain").st_mode, StatusOf(folder / "new").st_mode);
  EXPECT_NE("<none>", Extended(folder / "new", "system.posix_acl_access"));
  EXPECT_EQ(Extended(folder / "plain", "system.posix_acl_access"), Extended(folder / "new", "system.posix_acl_access"));
}

TEST_F(AtomicSaveTest, NewFileObeysTheUmask) {
  for (const mode_t mask : {0000, 0022, 0027, 0077}) {
    EXPECT_CHILD(InChild([&] {
      umask(mask);
      Checks check;
      check.Equal("outcome", "", Outcome(Save(file, state, "new")));
      check.Equal("mode", 0666 & ~mask, StatusOf(file).st_mode & 07777);
      return check.text();
    }));
    std::filesystem::remove(file);
  }
}

TEST_F(AtomicSaveTest, NothingIsSavedWithoutCommit) {
  for (const bool linked : {false, true}) {
    Put(file, "old");
    if (linked) std::filesystem::create_hard_link(file, scratch / "other name");
    {
      AtomicSave save(file, state);
      ASSERT_TRUE(save.Open());
      ASSERT_TRUE(save.Write(Pattern(3 << 20)));
    }
    const auto cancelled = SaveAtomically(file, state, [](const ByteSink& sink) {
      EXPECT_TRUE(sink("half"));
      return false;
    });
    ASSERT_FALSE(cancelled);
    EXPECT_EQ(ECANCELED, cancelled.error().systemError);
    EXPECT_EQ("old", Get(file));
    EXPECT_EQ(Names({"file.txt"}), NamesIn(folder));
    EXPECT_EQ(Names(), NamesIn(state));
  }
}

TEST_F(AtomicSaveTest, NeverOverwritesWhatAnotherProgramDidMeanwhile) {
  const struct {
    const char* what;
    bool exists, linked;
    std::function<void(const Path&)> meanwhile;
    const char* outcome;
    const char* bytes;
  } kRows[] = {
      {"made", false, false, [](const Path& p) { Put(p, "theirs"); }, "58 File exists", "theirs"},
      {"changed", true, false, [](const Path& p) { Put(p, "theirs"); },
       "75 Another program changed the file while it was being saved", "theirs"},
      {"changed, in place", true, true, [](const Path& p) { Put(p, "theirs"); },
       "75 Another program changed the file while it was being saved", "theirs"},
      {"replaced by a folder", true, false,
       [](const Path& p) { std::filesystem::remove(p), std::filesystem::create_directory(p); },
       "75 Another program changed the file while it was being saved", "<none>"},
      {"removed", true, false, [](const Path& p) { std::filesystem::remove(p); }, "", "ours"},
      {"linked", true, false, [](const Path& p) { std::filesystem::create_hard_link(p, p.parent_path() / "z"); }, "",
       "ours"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    if (row.exists) Put(file, "old text");
    if (row.linked) std::filesystem::create_hard_link(file, folder / "y");
    AtomicSave save(file, state);
    ASSERT_TRUE(save.Open());
    EXPECT_TRUE(save.Write("ours"));
    row.meanwhile(file);
    EXPECT_EQ(row.outcome, Outcome(save.Commit()));
    EXPECT_EQ(row.bytes, std::filesystem::is_directory(file) ? "<none>" : Get(file));
    if (std::filesystem::exists(folder / "z")) {
      EXPECT_EQ("ours", Get(folder / "z"));
    }
    for (const std::string& name : NamesIn(folder)) {
      EXPECT_FALSE(name.starts_with(".")) << name;
      std::filesystem::remove(folder / name);
    }
  }
}

}  // namespace
}  // namespace files
