#include "FilesTest.h"
#include "files/LockFile.h"
#include "files/saving/Recovery.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace files {
namespace {

using Names = std::vector<std::string>;

ByteProducer Producing(const std::string& bytes) {
  return [&bytes](const ByteSink& sink) { return sink(bytes); };
}

TEST(RecoveryTest, RoundTrip) {
  const ScratchFolder scratch;
  const Path folder = scratch / "state/recovery";
  const struct {
    std::string path, kind, bytes;
  } kRows[] = {
      {"/home/me/letter.rtf", "rtf", "{\\rtf1 text}"},
      {"Untitled3", "text", ""},
      {"", "", "no name"},
      {"/home/me/line\nbreak \xff\xfe.txt", "text", Pattern(3 << 20)},
      {"\n\n", "two words", std::string("\0\n\r", 3)},
  };
  for (const auto& row : kRows) {
    const auto written = WriteRecovery(folder, row.path, row.kind, Producing(row.bytes));
    ASSERT_TRUE(written) << written.error().text;
    EXPECT_EQ(row.bytes.size(), static_cast<size_t>(written.value().stamp.size));
  }
  EXPECT_EQ(mode_t{0700}, StatusOf(folder).st_mode & 0777);
  const auto listed = ListRecovery(folder);
  ASSERT_TRUE(listed);
  ASSERT_EQ(std::size(kRows), listed.value().size());
  for (const auto& row : kRows) {
    const auto found = std::find_if(listed.value().begin(), listed.value().end(),
                                    [&](const RecoveryEntry& entry) { return entry.originalPath == row.path; });
    ASSERT_NE(listed.value().end(), found) << row.path;
    EXPECT_EQ(row.kind, found->kind);
    EXPECT_TRUE(row.bytes == Get(found->text));
    EXPECT_TRUE(found->complete);
    EXPECT_FALSE(found->previous);
    EXPECT_EQ(StampOf(found->text), found->stamp);
    EXPECT_EQ(mode_t{0700}, StatusOf(found->folder).st_mode & 0777);
    for (const std::string& name : NamesIn(found->folder))
      EXPECT_EQ(mode_t{0600}, StatusOf(found->folder / name).st_mode & 0777) << name;
    EXPECT_EQ("", Outcome(RemoveRecovery(*found)));
    EXPECT_EQ("53 No such file or directory", Outcome(RemoveRecovery(*found)));
  }
  EXPECT_EQ(Names(), NamesIn(folder));
  EXPECT_EQ(0u, ListRecovery(folder).value().size());
  EXPECT_EQ(0u, ListRecovery(scratch / "never made").value().size());
}

TEST(RecoveryTest, OldestFirst) {
  const ScratchFolder scratch;
  for (const int hour : {3, 1, 2}) {
    const auto written = WriteRecovery(scratch.path(), std::to_string(hour), "", Producing("text"));
    ASSERT_TRUE(written);
    const timespec times[] = {{hour * 3600, 0}, {hour * 3600, 0}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, written.value().text.c_str(), times, 0));
  }
  std::string order;
  for (const RecoveryEntry& entry : ListRecovery(scratch.path()).value()) order += entry.originalPath.native();
  EXPECT_EQ("123", order);
}

TEST(RecoveryTest, FailureLeavesNothing) {
  const ScratchFolder scratch;
  const Path folder = scratch / "recovery";
  const auto cancelled = WriteRecovery(folder, "x", "", [](const ByteSink& sink) { return sink("half") && false; });
  ASSERT_FALSE(cancelled);
  EXPECT_EQ(ECANCELED, cancelled.error().systemError);
  EXPECT_EQ(Names(), NamesIn(folder));
  Put(scratch / "file", "in the way");
  const auto impossible = WriteRecovery(scratch / "file", "x", "", Producing("text"));
  ASSERT_FALSE(impossible);
  EXPECT_EQ(76, impossible.error().number);
  EXPECT_CHILD(WithSmallVolume(folder, 512, [&] {
    Checks check;
    const auto full = WriteRecovery(folder, "x", "", Producing(Pattern(1 << 20)));
    check.Equal("number", 61, full ? 0 : full.error().number);
    check.Equal("names", size_t{0}, NamesIn(folder).size());
    return check.text();
  }));
}

// A child that writes an entry and stays in the middle of it until it is killed.
TEST(RecoveryTest, EntriesOfRunningAndOfKilledPrograms) {
  const ScratchFolder scratch;
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  const std::string beginning = Pattern(2 << 20);
  const pid_t child = fork();
  if (child == 0) {
    static_cast<void>(WriteRecovery(scratch.path(), "/the/path", "rtf", [&](const ByteSink& sink) {
      if (!sink(beginning) || write(ends[1], "x", 1) != 1) _exit(1);
      pause();
      return true;
    }));
    _exit(1);
  }
  char sign;
  ASSERT_EQ(1, read(ends[0], &sign, 1));
  EXPECT_EQ(0u, ListRecovery(scratch.path()).value().size()) << "somebody is still writing it";
  EXPECT_EQ(1u, NamesIn(scratch.path()).size());
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  close(ends[0]);
  close(ends[1]);
  const auto listed = ListRecovery(scratch.path());
  ASSERT_EQ(1u, listed.value().size());
  const RecoveryEntry& entry = listed.value()[0];
  EXPECT_FALSE(entry.complete);
  EXPECT_EQ("/the/path", entry.originalPath);
  EXPECT_EQ("rtf", entry.kind);
  EXPECT_TRUE(beginning == Get(entry.text));
  EXPECT_EQ("", Outcome(RemoveRecovery(entry)));
}

TEST(RecoveryTest, AnEntryBelongsToOneAtATime) {
  const ScratchFolder scratch;
  const auto listed = [&] { return ListRecovery(scratch.path()).value(); };
  auto written = WriteRecovery(scratch.path(), "/a", "text", Producing("text"));
  ASSERT_TRUE(written);
  EXPECT_EQ(0u, listed().size()) << "who wrote it has it";
  written.value().claim.reset();
  auto first = listed(), second = listed();
  ASSERT_EQ(1u, first.size());
  EXPECT_TRUE(ClaimRecovery(first[0]));
  EXPECT_TRUE(ClaimRecovery(first[0])) << "twice is once";
  EXPECT_EQ("", InChild([&] { return ClaimRecovery(second[0]) ? "claimed by two" : ""; }));
  EXPECT_EQ(0u, listed().size());
  first[0].claim.reset();
  EXPECT_EQ(1u, listed().size());
  EXPECT_EQ("", Outcome(RemoveRecovery(first[0])));
  EXPECT_FALSE(ClaimRecovery(second[0])) << "it has gone";
}

TEST(RecoveryTest, DamagedEntries) {
  const ScratchFolder scratch;
  const struct {
    const char* what;
    const char* about;  // nullptr: no such file
    const char* text;
    bool old;
    size_t listed;
    bool stays;
  } kRows[] = {
      {"description damaged: the text is offered all the same", "garbage", "text", false, 1, true},
      {"description cut", "quillmark-recovery 1\nrtf", "text", false, 1, true},
      {"no description", nullptr, "text", false, 1, true},
      {"no text, perhaps just being begun", "quillmark-recovery 1\n\n/x", nullptr, false, 0, true},
      {"no text, and old", "quillmark-recovery 1\n\n/x", nullptr, true, 0, false},
      {"empty and old", nullptr, nullptr, true, 0, false},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    const Path entry = scratch / "entry-1";
    std::filesystem::create_directory(entry);
    if (row.about) Put(entry / "about", row.about);
    if (row.text) Put(entry / "text", row.text);
    const timespec times[] = {{1000, 0}, {1000, 0}};
    if (row.old) utimensat(AT_FDCWD, entry.c_str(), times, 0);
    const auto listed = ListRecovery(scratch.path());
    ASSERT_TRUE(listed);
    ASSERT_EQ(row.listed, listed.value().size());
    for (const RecoveryEntry& found : listed.value()) {
      EXPECT_EQ("", found.originalPath);
      EXPECT_EQ("text", Get(found.text));
    }
    EXPECT_EQ(row.stays, std::filesystem::exists(entry));
    std::filesystem::remove_all(entry);
  }
  // What is not ours is never touched.
  std::filesystem::create_directory(scratch / "entry-2");
  Put(scratch / "entry-2/foreign", "x");
  const timespec times[] = {{1000, 0}, {1000, 0}};
  utimensat(AT_FDCWD, (scratch / "entry-2").c_str(), times, 0);
  EXPECT_EQ(0u, ListRecovery(scratch.path()).value().size());
  EXPECT_EQ("x", Get(scratch / "entry-2/foreign"));
}

TEST(LockFileTest, OneHolderAtATime) {
  const ScratchFolder scratch;
  const Path path = scratch / "run/lock";
  LockFile first, second;
  ASSERT_TRUE(first.Acquire(path));
  EXPECT_TRUE(first.held());
  EXPECT_TRUE(first.Acquire(path).value()) << "asking again changes nothing";
  EXPECT_FALSE(second.Acquire(path).value());
  EXPECT_FALSE(second.held());
  EXPECT_CHILD(InChild([&] { return LockFile().Acquire(path).value() ? "a second copy got it" : ""; }));
  first.Release();
  EXPECT_TRUE(second.Acquire(path).value());
  EXPECT_EQ(mode_t{0600}, StatusOf(path).st_mode & 0777);
  EXPECT_EQ(mode_t{0700}, StatusOf(path.parent_path()).st_mode & 0777);
}

TEST(LockFileTest, FreeAfterAKill) {
  const ScratchFolder scratch;
  const Path path = scratch / "lock";
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  const pid_t child = fork();
  if (child == 0) {
    LockFile lock;
    const bool got = lock.Acquire(path).value();
    if (write(ends[1], got ? "y" : "n", 1) != 1) _exit(1);
    pause();
    _exit(0);
  }
  char sign = 0;
  ASSERT_EQ(1, read(ends[0], &sign, 1));
  EXPECT_EQ('y', sign);
  LockFile lock;
  EXPECT_FALSE(lock.Acquire(path).value());
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  EXPECT_TRUE(lock.Acquire(path).value());
  close(ends[0]);
  close(ends[1]);
}

TEST(LockFileTest, NotInheritedByStartedPrograms) {
  const ScratchFolder scratch;
  LockFile lock;
  ASSERT_TRUE(lock.Acquire(scratch / "lock").value());
  const pid_t child = fork();
  if (child == 0) {
    execlp("sleep", "sleep", "60", nullptr);
    _exit(1);
  }
  // Until the child has become the other program it is a copy of this one and holds the lock too.
  lock.Release();
  bool got = false;
  for (int i = 0; i < 1000 && !got; ++i) {
    got = lock.Acquire(scratch / "lock").value();
    if (!got) usleep(10000);
  }
  EXPECT_TRUE(got);
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
}

TEST(LockFileTest, Errors) {
  const ScratchFolder scratch;
  Put(scratch / "file", "");
  std::filesystem::create_symlink("file", scratch / "link");
  EXPECT_EQ(76, LockFile().Acquire(scratch / "file/lock").error().number);
  EXPECT_EQ(ELOOP, LockFile().Acquire(scratch / "link").error().systemError);
  EXPECT_EQ(70, LockFile().Acquire(scratch.path()).error().number);
}

}  // namespace
}  // namespace files
