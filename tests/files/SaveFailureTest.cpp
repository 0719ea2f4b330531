// Saving on full disks, broken disks, and in a program that is killed.
#include "FilesTest.h"
#include "files/saving/Recovery.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace files {
namespace {

constexpr size_t kKilo = 1024, kMega = 1024 * kKilo;

class SaveFailureTest : public testing::Test {
 protected:
  ScratchFolder scratch;
  Path state = scratch / "state";
  Path folder = scratch / "work";
  Path file = folder / "file.txt";
  void SetUp() override { ASSERT_TRUE(std::filesystem::create_directory(folder)); }
};

TEST_F(SaveFailureTest, FullDisk) {
  const struct {
    const char* what;
    size_t oldSize, newSize, piece;  // no old file when 0
    bool linked;
  } kRows[] = {
      {"replacing, big pieces", 300 * kKilo, 2 * kMega, kMega, false},
      {"replacing, small pieces: only the last flush fails", 600 * kKilo, 900 * kKilo, 100, false},
      {"making", 0, 3 * kMega, 4096, false},
      {"in place", 300 * kKilo, 2 * kMega, kMega, true},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    EXPECT_CHILD(WithSmallVolume(folder, 1024, [&] {
      const std::string oldBytes = Pattern(row.oldSize), newBytes = Pattern(row.newSize, 2);
      if (row.oldSize) Put(file, oldBytes);
      if (row.linked) std::filesystem::create_hard_link(file, folder / "other");
      const auto names = NamesIn(folder);
      const auto stamp = StampOf(file);
      const auto saved = SaveAtomically(file, state, [&](const ByteSink& sink) {
        for (size_t at = 0; at < newBytes.size(); at += row.piece) {
          if (!sink(std::string_view(newBytes).substr(at, row.piece))) return false;
        }
        return true;
      });
      Checks check;
      check.Equal("outcome", "61 No space left on device", Outcome(saved));
      if (row.oldSize) check.SameBytes("old bytes", oldBytes, Get(file));
      check.True("same stamp", stamp == StampOf(file));
      check.True("nothing left over", names == NamesIn(folder));
      check.Equal("state folder", size_t{0}, NamesIn(state).size());
      return check.text();
    }));
  }
}

TEST_F(SaveFailureTest, FullStateFolderLeavesTheFileAlone) {
  std::filesystem::create_directory(state);
  EXPECT_CHILD(WithSmallVolume(state, 1024, [&] {
    Checks check;
    // The new text does not fit, then only the old one does not.
    for (const auto& [oldSize, newSize] : {std::pair{10 * kKilo, 2 * kMega}, std::pair{900 * kKilo, 500 * kKilo}}) {
      const std::string oldBytes = Pattern(oldSize);
      Put(file, oldBytes);
      std::filesystem::create_hard_link(file, folder / "other");
      check.Equal("outcome", "61 No space left on device", Outcome(Save(file, state, Pattern(newSize, 2))));
      check.SameBytes("old bytes", oldBytes, Get(file));
      check.Equal("state folder", size_t{0}, NamesIn(state).size());
      std::filesystem::remove(folder / "other");
    }
    return check.text();
  }));
}

TEST_F(SaveFailureTest, HalfWrittenInPlaceIsPutBack) {
  EXPECT_CHILD(WithSmallVolume(folder, 1024, [&] {
    // A file with a hole in it needs room for every page that is overwritten, and no reservation tells beforehand.
    const std::string oldBytes = Pattern(100 * kKilo) + std::string(2 * kMega, '\0') + "end";
    Put(file, oldBytes.substr(0, 100 * kKilo));
    const int descriptor = open(file.c_str(), O_WRONLY);
    Checks check;
    check.Equal("written", ssize_t{3}, pwrite(descriptor, "end", 3, static_cast<off_t>(oldBytes.size()) - 3));
    close(descriptor);
    std::filesystem::create_hard_link(file, folder / "other");
    const auto stamp = StampOf(file);
    check.Equal("outcome", "61 No space left on device", Outcome(Save(file, state, Pattern(oldBytes.size(), 2))));
    check.SameBytes("old bytes", oldBytes, Get(file));
    check.True("same stamp", stamp == StampOf(file));
    check.Equal("state folder", size_t{0}, NamesIn(state).size());
    return check.text();
  }));
}

TEST_F(SaveFailureTest, FileSizeLimit) {
  for (const bool linked : {false, true}) {
    Put(file, "old");
    if (linked) std::filesystem::create_hard_link(file, scratch / "other");
    EXPECT_CHILD(InChild([&] {
      const rlimit limit{kMega + 5, RLIM_INFINITY};
      Checks check;
      check.Equal("limit", 0, setrlimit(RLIMIT_FSIZE, &limit));
      check.Equal("outcome", "61 File too large", Outcome(Save(file, state, Pattern(3 * kMega))));
      check.Equal("bytes", "old", Get(file));
      check.Equal("names", size_t{1}, NamesIn(folder).size());
      check.Equal("state folder", size_t{0}, NamesIn(state).size());
      check.Equal("within the limit", "", Outcome(Save(file, state, Pattern(kMega))));
      // The signal was held back only while writing.
      sigset_t blocked, pending;
      sigprocmask(SIG_SETMASK, nullptr, &blocked);
      sigpending(&pending);
      check.Equal("blocked", 0, sigismember(&blocked, SIGXFSZ));
      check.Equal("pending", 0, sigismember(&pending, SIGXFSZ));
      return check.text();
    }));
  }
}

TEST_F(SaveFailureTest, SystemCallsThatFail) {
  const struct {
    const char* what;
    long call;
    int error;
    bool exists;
    const char* outcome;
  } kRows[] = {
      {"a disk that fills up only at the flush", SYS_fsync, ENOSPC, true, "61 No space left on device"},
      {"a broken disk", SYS_fsync, EIO, true, "57 Input/output error"},
      {"a broken disk, new file", SYS_fsync, EIO, false, "57 Input/output error"},
      {"a file that is a mount point: in place", SYS_renameat, EBUSY, true, ""},
      {"a rename that fails", SYS_renameat, EIO, true, "57 Input/output error"},
      {"a volume that cannot rename without replacing", SYS_renameat2, EINVAL, false, ""},
      {"a new file that cannot be renamed", SYS_renameat2, EPERM, false, "70 Operation not permitted"},
      {"a quota", SYS_pwrite64, EDQUOT, true, "61 Disk quota exceeded"},
      {"attributes that cannot be kept: in place", SYS_fsetxattr, EPERM, true, ""},
      {"a mode that cannot be kept: in place", SYS_fchmod, EPERM, true, ""},
      {"no early flushing", SYS_sync_file_range, ENOSYS, true, ""},
      {"no reserving", SYS_fallocate, EOPNOTSUPP, true, ""},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    const std::string newBytes = Pattern(20 * kMega);
    if (row.exists) Put(file, "old");
    setxattr(file.c_str(), "user.comment", "keep", 4, 0);
    const auto names = NamesIn(folder);
    EXPECT_CHILD(InChild([&]() -> std::string {
      // Only renames in the target's folder fail, not the state folder's; it is the first that is opened.
      const int folderNumber = dup(0);
      close(folderNumber);
      const int argument = row.call == SYS_renameat ? 0 : -1;
      AtomicSave save(file, state);
      if (!save.Open()) return "not opened";
      if (!FailCall(static_cast<int>(row.call), row.error, argument, static_cast<uint32_t>(folderNumber), true))
        return "SKIP injecting failures is not permitted";
      save.Write(newBytes);
      Checks check;
      check.Equal("outcome", row.outcome, Outcome(save.Commit()));
      return check.text();
    }));
    if (*row.outcome) {
      EXPECT_EQ(row.exists ? "old" : "<none>", Get(file));
      EXPECT_EQ(names, NamesIn(folder));
    } else {
      EXPECT_TRUE(newBytes == Get(file));
      EXPECT_EQ(std::vector<std::string>{"file.txt"}, NamesIn(folder));
    }
    EXPECT_EQ(std::vector<std::string>(), NamesIn(state));
  }
}

// A disk that breaks in the middle of writing in place: the old file is back, or the message names both texts.
TEST_F(SaveFailureTest, DiskBreaksWhileWritingInPlace) {
  const std::string oldBytes = Pattern(500 * kKilo), newBytes = Pattern(3 * kMega, 2);
  for (const bool restorable : {true, false}) {
    Put(file, oldBytes);
    std::filesystem::create_hard_link(file, folder / "other");
    EXPECT_CHILD(InChild([&]() -> std::string {
      const auto stamp = StampOf(file);
      AtomicSave save(file, state);
      Checks check;
      check.Equal("open", "", Outcome(save.Open()));
      check.True("write", save.Write(newBytes));  // passed through at once
      bool injected = FailCall(SYS_pwrite64, EIO, 3, kMega);
      if (!restorable) injected = injected && FailCall(SYS_ftruncate, EIO, 1, oldBytes.size(), true);
      if (!injected) return "SKIP injecting failures is not permitted";
      const std::string outcome = Outcome(save.Commit());
      check.True("number and text", outcome.starts_with("57 Input/output error"));
      const auto entries = ListRecovery(state);
      check.True("listed", static_cast<bool>(entries));
      if (restorable) {
        check.SameBytes("old bytes", oldBytes, Get(file));
        check.True("same stamp", stamp == StampOf(file));
        check.Equal("outcome", "57 Input/output error", outcome);
        check.Equal("entries", size_t{0}, NamesIn(state).size());
      } else {
        // This process still writes the entry, as far as the list can tell, until the save is gone.
        check.Equal("entries", size_t{1}, entries.value().size());
        const RecoveryEntry& entry = entries.value().at(0);
        check.True("names the text", outcome.find(entry.text.native()) != std::string::npos);
        check.True("has the old text", entry.previous.has_value());
        check.True("names the old text", outcome.find(entry.previous->native()) != std::string::npos);
        check.SameBytes("new copy", newBytes, Get(entry.text));
        check.SameBytes("old copy", oldBytes, Get(*entry.previous));
        check.Equal("original path", file, entry.originalPath);
      }
      return check.text();
    }));
    std::filesystem::remove(folder / "other");
  }
}

// Runs `body` in a child that is killed `microseconds` after its first sign of life and after `ready` came true.
void KillDuring(const std::function<void()>& body, const std::function<bool()>& ready, int microseconds) {
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  const pid_t child = fork();
  if (child == 0) {
    if (write(ends[1], "x", 1) != 1) _exit(1);
    body();
    _exit(0);
  }
  char sign;
  ASSERT_EQ(1, read(ends[0], &sign, 1));
  bool ended = false;
  while (!ended && !ready()) ended = waitpid(child, nullptr, WNOHANG) == child;
  usleep(static_cast<useconds_t>(microseconds));
  if (!ended) {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }
  close(ends[0]);
  close(ends[1]);
}

TEST_F(SaveFailureTest, KilledWhileWriting) {
  Put(file, "old");
  KillDuring(
      [&] {
        AtomicSave save(file, state);
        if (!save.Open()) _exit(1);
        while (save.Write(Pattern(100 * kKilo))) {
        }
      },
      [] { return true; }, 30000);
  EXPECT_EQ("old", Get(file));
  EXPECT_EQ("", Outcome(Save(file, state, "new")));
  EXPECT_EQ("new", Get(file));
}

// At whatever moment it happens: the file holds one of the two texts, or both are in the recovery list.
TEST_F(SaveFailureTest, KilledWhileWritingInPlace) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  const std::string oldBytes = Pattern(12 * kMega), newBytes = Pattern(16 * kMega, 2);
  for (int round = 0; round < 16; ++round) {
    Put(file, oldBytes);
    if (round == 0) std::filesystem::create_hard_link(file, folder / "other");
    // At any time, and in turn when the file itself is just being touched.
    const bool late = round % 2 == 1;
    const int microseconds = static_cast<int>(random() % (late ? 1500 : 80000));
    SCOPED_TRACE(testing::Message() << "killed after " << microseconds << (late ? ", late" : ""));
    const auto before = StampOf(file);
    const auto ready = [&] { return !late || StampOf(file) != before; };
    KillDuring([&] { static_cast<void>(Save(file, state, newBytes)); }, ready, microseconds);
    const auto entries = ListRecovery(state);
    ASSERT_TRUE(entries) << entries.error().text;
    const std::string found = Get(file);
    if (found != oldBytes && found != newBytes) {
      ASSERT_EQ(1u, entries.value().size());
      const RecoveryEntry& entry = entries.value()[0];
      EXPECT_TRUE(entry.complete);
      EXPECT_TRUE(newBytes == Get(entry.text));
      ASSERT_TRUE(entry.previous);
      EXPECT_TRUE(oldBytes == Get(*entry.previous));
    }
    for (const RecoveryEntry& entry : entries.value()) EXPECT_EQ("", Outcome(RemoveRecovery(entry)));
  }
}

}  // namespace
}  // namespace files
