// Copying, moving and deleting.
#include "OperationTest.h"

#include "files/operations/FreeName.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace files {

void MakeEntry(const Path& folder, const std::string& entry) {
  const size_t end = entry.find_first_of("=@|");
  const Path path = folder / entry.substr(0, end);
  if (entry.ends_with('/'))
    std::filesystem::create_directory(path);
  else if (entry[end] == '|')
    EXPECT_EQ(0, mkfifo(path.c_str(), 0600));
  else if (entry[end] == '@')
    std::filesystem::create_symlink(entry.substr(end + 1), path);
  else
    Put(path, entry.substr(end + 1));
}

void MakeTree(const Path& folder, const std::string& tree) {
  std::istringstream entries(tree);
  for (std::string entry; entries >> entry;) MakeEntry(folder, entry);
}

std::string TreeIn(const Path& folder) {
  std::vector<std::string> entries;
  for (const auto& item : std::filesystem::recursive_directory_iterator(folder)) {
    std::string entry = item.path().lexically_relative(folder);
    const auto type = item.symlink_status().type();
    if (type == std::filesystem::file_type::symlink)
      entry += "@" + std::filesystem::read_symlink(item.path()).native();
    else if (type == std::filesystem::file_type::regular)
      entry += "=" + Get(item.path());
    else
      entry += type == std::filesystem::file_type::directory ? "/" : "|";
    entries.push_back(entry);
  }
  std::sort(entries.begin(), entries.end());
  std::string tree;
  for (const std::string& entry : entries) tree += (tree.empty() ? "" : " ") + entry;
  return tree;
}

std::string Summary(const OperationOutcome& outcome, const Path& folder) {
  std::string text = std::to_string(outcome.done) + " done";
  if (outcome.skipped) text += ", " + std::to_string(outcome.skipped) + " skipped";
  for (const OperationFailure& failure : outcome.failures)
    text += "; " + std::to_string(failure.number) + " " + Path(failure.path).lexically_relative(folder).native();
  return text + (outcome.cancelled ? "; cancelled" : "");
}

namespace {

using enum OperationKind;
using enum ConflictChoice;
constexpr size_t kMega = size_t{1} << 20;

class OperationTest : public testing::Test {
 protected:
  ScratchFolder scratch;

  OperationOutcome Run(OperationKind kind, const std::string& sources, const std::string& folder, TestUser& user) {
    FileOperation operation{kind, {}, scratch / folder};
    std::istringstream names(sources);
    for (std::string name; names >> name;) operation.sources.push_back(scratch.path().native() + "/" + name);
    return RunOperation(operation, user);
  }
  void Empty() {
    std::filesystem::remove_all(scratch.path());
    std::filesystem::create_directory(scratch.path());
  }
};

TEST_F(OperationTest, WhatBecomesOfTheTree) {
  const struct {
    const char* what;
    OperationKind kind;
    const char *before, *sources, *folder;
    ConflictChoice choice;
    const char *after, *summary;
    int conflicts = 0;
  } kRows[] = {
      {"links are copied as links", kCopy, "d/ d/f=1 d/g@f d/x@none d/e/ l@d t/", "d l", "t", kCancel,
       "d/ d/e/ d/f=1 d/g@f d/x@none l@d t/ t/d/ t/d/e/ t/d/f=1 t/d/g@f t/d/x@none t/l@d", "6 done"},
      {"beside itself", kCopy, "f.txt=1 d/ d/x=1", "f.txt d", ".", kKeepBoth,
       "d(2)/ d(2)/x=1 d/ d/x=1 f(2).txt=1 f.txt=1", "3 done", 2},
      {"never over itself", kCopy, "f=1 d/ d/x=1", "f d", ".", kReplace, "d/ d/x=1 f=1", "0 done, 2 skipped", 2},
      {"over a file or a link", kCopy, "f=new g=new t/ t/f=old t/g@../f", "f g", "t", kReplace,
       "f=new g=new t/ t/f=new t/g=new", "2 done", 2},
      {"a file is no folder", kCopy, "f=1 g/ g/x=1 t/ t/f/ t/f/x=2 t/g=2", "f g", "t", kReplace,
       "f=1 g/ g/x=1 t/ t/f/ t/f/x=2 t/g=2", "0 done, 2 skipped", 2},
      {"skipping", kCopy, "f=1 g=1 t/ t/f=2", "f g", "t", kSkip, "f=1 g=1 t/ t/f=2 t/g=1", "1 done, 1 skipped", 1},
      {"cancelling", kCopy, "f=1 g=1 t/ t/f=2", "f g", "t", kCancel, "f=1 g=1 t/ t/f=2", "0 done; cancelled", 1},
      {"merging", kCopy, "d/ d/a=1 d/s/ d/s/b=1 t/ t/d/ t/d/a=2 t/d/c=2 t/d/s/", "d", "t", kReplace,
       "d/ d/a=1 d/s/ d/s/b=1 t/ t/d/ t/d/a=1 t/d/c=2 t/d/s/ t/d/s/b=1", "4 done", 3},
      {"into itself", kCopy, "d/ d/e/ d/x=1", "d", "d/e", kReplace, "d/ d/e/ d/x=1", "0 done; 5 d"},
      {"into itself through a link", kCopy, "d/ d/e/ l@d/e", "d", "l", kReplace, "d/ d/e/ l@d/e", "0 done; 5 d"},
      {"over what holds it", kCopy, "d/ d/d/ d/d/d=1", "d/d", ".", kReplace, "d/ d/d/ d/d/d=1", "0 done, 1 skipped", 1},
      {"no file to open", kCopy, "d/ d/f=1 d/p| t/", "d", "t", kCancel, "d/ d/f=1 d/p| t/ t/d/ t/d/f=1",
       "2 done; 70 d/p"},
      {"missing", kCopy, "f=1 t/", "none f", "t", kCancel, "f=1 t/ t/f=1", "1 done; 53 none"},
      {"no folder to copy to", kCopy, "f=1 t=2", "f", "t", kCancel, "f=1 t=2", "0 done; 76 t"},
      {"moving", kMove, "d/ d/f=1 d/e/ d/g@f f=2 t/", "d d/f f d", "t", kCancel, "t/ t/d/ t/d/e/ t/d/f=1 t/d/g@f t/f=2",
       nullptr},
      {"moving a link to where it leads", kMove, "d/ d/x=1 l@d", "l", "d", kCancel, "d/ d/l@d d/x=1", nullptr},
      {"moving to where it is", kMove, "f=1 d/ d/x=1", "f d", ".", kReplace, "d/ d/x=1 f=1", nullptr},
      {"moving into itself", kMove, "d/ d/e/ f=1", "d f", "d/e", kReplace, "d/ d/e/ d/e/f=1", nullptr},
      {"moving onto others", kMove, "d/ d/a=1 d/s/ d/s/b=1 f=1 t/ t/d/ t/d/a=2 t/d/s/ t/d/s/c=2 t/f=2", "d f", "t",
       kReplace, "t/ t/d/ t/d/a=1 t/d/s/ t/d/s/b=1 t/d/s/c=2 t/f=1", nullptr, 4},
      {"what was skipped stays", kMove, "d/ d/a=1 d/b=1 d/s/ t/ t/d/ t/d/a=2", "d", "t", kSkip,
       "d/ d/a=1 d/b=1 d/s/ t/ t/d/ t/d/a=2", nullptr, 1},
      {"moving beside others", kMove, "d/ d/a=1 f=1 t/ t/d/ t/f/", "d f", "t", kKeepBoth,
       "t/ t/d(2)/ t/d(2)/a=1 t/d/ t/f(2)=1 t/f/", nullptr, 2},
      {"deleting", kDelete, "d/ d/e/ d/e/f=1 d/p| d/l@../k k/ k/x=1 l@k x@none f=1", "d d/e l x", "", kCancel,
       "f=1 k/ k/x=1", "7 done"},
      {"deleting what is missing", kDelete, "f=1", "none/x f ..", "", kCancel, "", "1 done; 53 none/x; 5 .."},
  };
  for (const auto& row : kRows) {
    for (const OperationKind kind : {row.kind, row.kind == kMove ? kCopyThenDelete : row.kind}) {
      SCOPED_TRACE(testing::Message() << row.what << ", " << static_cast<int>(kind));
      Empty();
      MakeTree(scratch.path(), row.before);
      TestUser user;
      user.conflict.choice = row.choice;
      const auto outcome = Run(kind, row.sources, row.folder, user);
      std::string tree = TreeIn(scratch.path());
      for (size_t at; (at = tree.find(" (2)")) != std::string::npos;) tree.replace(at, 4, "(2)");
      EXPECT_EQ(row.after, tree);
      EXPECT_EQ(row.conflicts, user.conflicts);
      if (row.summary) {
        EXPECT_EQ(row.summary, Summary(outcome, scratch.path()));
      }
    }
  }
}

TEST_F(OperationTest, StatesAndAnswersForAll) {
  MakeTree(scratch.path(), "a=1 b=1 c=1 d/ d/p| d/q| d/f=1 e/ t/ t/a=2 t/b=2 t/e=2");
  TestUser user;
  user.conflict = {kReplace, true};
  user.failure = {FailureChoice::kSkip, true};
  const auto outcome = Run(kCopy, "a b none c d e", "t", user);
  using enum OperationOutcome::State;
  EXPECT_EQ(outcome.items, (std::vector{kDone, kDone, kFailed, kDone, kPartly, kSkipped}));
  EXPECT_EQ(user.conflicts, 2);  // the folder over the file is another question
  EXPECT_EQ(user.failures, 1);
  EXPECT_EQ(outcome.failures.size(), 3u);
  EXPECT_EQ(outcome.lastError, 70);
}

TEST_F(OperationTest, RetriesUntilItWorks) {
  MakeTree(scratch.path(), "d/ d/f=1 t/ t/d=2");
  TestUser user;
  user.conflict.choice = kSkip;
  user.failure.choice = FailureChoice::kRetry;
  user.at = [&](int) { MakeTree(scratch.path(), "later=1"); };
  EXPECT_EQ("1 done, 1 skipped", Summary(Run(kCopy, "d later", "t", user), scratch.path()));
}

TEST_F(OperationTest, KeepsAttributes) {
  MakeTree(scratch.path(), "d/ d/f=1 d/s/ d/l@f t/");
  const timespec times[2] = {{1000000000, 123456789}, {1100000000, 987654321}};
  const std::pair<const char*, mode_t> kNames[] = {{"/f", 04751}, {"/s", 0510}, {"/l", 0}, {"", 0510}};
  for (const auto& [name, mode] : kNames) {
    const std::string path = (scratch / "d").native() + name;
    if (mode) chmod(path.c_str(), mode);
    setxattr(path.c_str(), "user.comment", "one", 3, 0);
    utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
  }
  for (const OperationKind kind : {kCopy, kCopyThenDelete}) {
    TestUser user;
    user.conflict.choice = kKeepBoth;
    Run(kind, "d", "t", user);
    const std::string copy = kind == kCopy ? "t/d" : "t/d (2)";
    for (const auto& [name, mode] : kNames) {
      SCOPED_TRACE(copy + name);
      const struct stat status = StatusOf(scratch / (copy + name));
      EXPECT_EQ(mode ? mode : 0777, status.st_mode & 07777);
      EXPECT_EQ(1100000000, status.st_mtim.tv_sec);
      EXPECT_EQ(987654321, status.st_mtim.tv_nsec);
      char value[8];
      EXPECT_EQ(3, getxattr((scratch / (copy + name)).c_str(), "user.comment", value, sizeof value));
    }
  }
}

TEST_F(OperationTest, BigAndSparseFiles) {
  const std::string data = Pattern(9 * kMega + 1);
  for (const bool byHand : {false, true}) {
    Empty();
    MakeTree(scratch.path(), "t/");
    Put(scratch / "big", data);
    for (const auto& [name, size] : {std::pair{"end", size_t{0}}, std::pair{"hole", 5 * kMega}}) {
      Put(scratch / name, "");
      const int file = open((scratch / name).c_str(), O_WRONLY);
      EXPECT_EQ(3, pwrite(file, "abc", 3, 20 * kMega));
      EXPECT_EQ(0, ftruncate(file, static_cast<off_t>(20 * kMega + 3 + size)));
      close(file);
    }
    EXPECT_CHILD(InChild([&]() -> std::string {
      if (byHand && !FailCall(SYS_copy_file_range, EXDEV)) return "SKIP injecting failures is not permitted";
      TestUser user;
      Checks check;
      check.Equal("outcome", "3 done", Summary(Run(kCopy, "big end hole", "t", user), scratch.path()));
      for (const char* name : {"big", "end", "hole"})
        check.SameBytes(name, Get(scratch / name), Get(scratch / "t" / name));
      check.True("sparse", StatusOf(scratch / "t/hole").st_blocks * 512 < static_cast<off_t>(kMega));
      return check.text();
    }));
  }
}

TEST_F(OperationTest, FullDisk) {
  MakeTree(scratch.path(), "d/ d/a=small t/");
  Put(scratch / "d/big", Pattern(3 * kMega));
  EXPECT_CHILD(WithSmallVolume(scratch / "t", 1024, [&] {
    Checks check;
    for (const OperationKind kind : {kCopy, kMove}) {
      TestUser user;
      user.conflict.choice = kReplace;
      check.Equal("outcome", "2 done; 61 d/big", Summary(Run(kind, "d", "t", user), scratch.path()));
      check.Equal("copied", "d/ d/a=small", TreeIn(scratch / "t"));
      check.Equal("left", kind == kCopy ? size_t{2} : size_t{1}, NamesIn(scratch / "d").size());
    }
    // A replacement that does not fit.
    Put(scratch / "t/d/big", "old");
    TestUser user;
    user.conflict.choice = kReplace;
    Run(kCopy, "d", "t", user);
    check.Equal("replaced", "d/ d/a=small d/big=old", TreeIn(scratch / "t"));
    return check.text();
  }));
}

TEST_F(OperationTest, AcrossVolumes) {
  const std::string tree = "d/ d/e/ d/e/f=1 d/l@e d/x=2 k=3";
  MakeTree(scratch.path(), tree + " t/ outside/ outside/m/");
  EXPECT_CHILD(WithSmallVolume(scratch / "t", 1024, [&] {
    Checks check;
    TestUser there, back, mounted;
    check.Equal("there", "6 done", Summary(Run(kMove, "d k", "t", there), scratch.path()));
    check.Equal("in the volume", tree, TreeIn(scratch / "t"));
    check.True("left", NamesIn(scratch.path()) == std::vector<std::string>{"outside", "t"});
    check.Equal("back", "6 done", Summary(Run(kMove, "t/d t/k", ".", back), scratch.path()));
    // What is mounted somewhere below is neither deleted nor moved, and nothing in it.
    Put(scratch / "t/precious", "1");
    mount((scratch / "t").c_str(), (scratch / "outside/m").c_str(), nullptr, MS_BIND, nullptr);
    check.Equal("deleting", "0 done; 5 outside/m", Summary(Run(kDelete, "outside", "", mounted), scratch.path()));
    check.Equal("moving", "1 done; 5 outside/m",
                Summary(Run(kCopyThenDelete, "outside", "d", mounted), scratch.path()));
    check.Equal("untouched", "precious=1", TreeIn(scratch / "outside/m"));
    // The target, seen once more by way of the mount.
    MakeTree(scratch.path(), "t/x/");
    check.Equal("into itself", "4 done; 5 outside/m/x/outside",
                Summary(Run(kCopy, "outside", "t/x", mounted), scratch.path()));
    return check.text();
  }));
}

}  // namespace
}  // namespace files
