// Operations on trees that change meanwhile, in programs that are killed, without rights, and where recursion would
// end.
#include "OperationTest.h"
#include "files/operations/FreeName.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace files {
namespace {

using enum OperationKind;
constexpr size_t kMega = size_t{1} << 20;

class OperationHazardsTest : public testing::Test {
 protected:
  ScratchFolder scratch{ScratchFolder::Place::kMemory};

  OperationOutcome Run(OperationKind kind, const std::string& source, const std::string& folder, TestUser& user) {
    return RunOperation({kind, {scratch / source}, scratch / folder}, user);
  }
  void Begin(const std::string& tree) {
    std::filesystem::remove_all(scratch.path());
    std::filesystem::create_directory(scratch.path());
    MakeTree(scratch.path(), tree);
  }
};

// At every moment in turn a folder of the tree becomes a link to somewhere else, and the folder itself goes there.
TEST_F(OperationHazardsTest, FolderExchangedForALink) {
  for (const OperationKind kind : {kDelete, kCopyThenDelete}) {
    for (const char* folder : {"d", "d/e", "d/e/g"}) {
      int moments = 1;
      for (int moment = 0; moment < moments; ++moment) {
        SCOPED_TRACE(testing::Message() << folder << " at moment " << moment << ", " << static_cast<int>(kind));
        Begin(
            "d/ d/e/ d/e/f=1 d/e/g/ d/e/g/h=1 d/x=1 t/ other/ other/f=2 other/h=2 other/g/ other/g/h=2 other/e/ "
            "other/e/f=2 other/x=2");
        TestUser user;
        user.failure.choice = FailureChoice::kSkip;
        user.at = [&](int now) {
          if (now != moment) return;
          if (rename((scratch / folder).c_str(), (scratch / "moved").c_str()) == 0)
            std::filesystem::create_symlink(scratch / "other", scratch / folder);
        };
        Run(kind, "d", "t", user);
        moments = user.moments;
        EXPECT_EQ("e/ e/f=2 f=2 g/ g/h=2 h=2 x=2", TreeIn(scratch / "other"));
      }
      EXPECT_GT(moments, 5);
    }
  }
}

TEST_F(OperationHazardsTest, ChangedWhileItWasMoved) {
  const struct {
    const char* what;
    void (*change)(const Path& folder);
    const char *left, *summary;
  } kRows[] = {
      {"written", [](const Path& d) { Put(d / "a", "longer"); }, "d/ d/a=longer", "3 done; 75 d/a"},
      {"replaced", [](const Path& d) { Put(d / "n", "1"), std::filesystem::rename(d / "n", d / "a"); }, "d/ d/a=1",
       "3 done; 75 d/a"},
      {"added", [](const Path& d) { Put(d / "new", "2"); }, "d/ d/new=2", "3 done; 5 d"},
      {"removed", [](const Path& d) { std::filesystem::remove(d / "a"); }, "", "3 done"},
      {"gone", [](const Path& d) { std::filesystem::remove_all(d); }, "", "3 done; 53 d"},
      {"another folder",
       [](const Path& d) { std::filesystem::rename(d, d.parent_path() / "x"), MakeTree(d.parent_path(), "d/ d/a=1"); },
       "d/ d/a=1 x/ x/a=1 x/b=1", "3 done; 75 d"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    Begin("d/ d/a=1 d/b=1 t/");
    TestUser user;
    bool changed = false;
    user.at = [&](int) {
      if (changed || NamesIn(scratch / "t/d") != std::vector<std::string>{"a", "b"}) return;
      changed = true;
      row.change(scratch / "d");
    };
    const auto outcome = Run(kCopyThenDelete, "d", "t", user);
    EXPECT_EQ(row.summary, Summary(outcome, scratch.path()));
    EXPECT_EQ("d/ d/a=1 d/b=1", TreeIn(scratch / "t"));
    std::filesystem::remove_all(scratch / "t");
    EXPECT_EQ(row.left, TreeIn(scratch.path()));
  }
}

TEST_F(OperationHazardsTest, NothingIsDeletedThatIsNotOnTheDisk) {
  Begin("d/ d/a=1 t/");
  EXPECT_CHILD(InChild([&]() -> std::string {
    if (!FailCall(SYS_syncfs, EIO)) return "SKIP injecting failures is not permitted";
    TestUser user;
    Checks check;
    check.Equal("outcome", "2 done; 57 t", Summary(Run(kCopyThenDelete, "d", "t", user), scratch.path()));
    return check.text();
  }));
  EXPECT_EQ("d/ d/a=1 t/ t/d/ t/d/a=1", TreeIn(scratch.path()));
}

TEST_F(OperationHazardsTest, CancellingWhileSourcesAreDeletedKeepsTheOthers) {
  Begin("a=1 b=2 c=3 t/");
  TestUser user;
  user.failure.choice = FailureChoice::kCancel;
  user.at = [&](int) {
    if (NamesIn(scratch / "t") == std::vector<std::string>{"a", "b"}) Put(scratch / "a", "longer");
  };
  const auto outcome =
      RunOperation({kCopyThenDelete, {scratch / "a", scratch / "b", scratch / "c"}, scratch / "t"}, user);
  EXPECT_EQ("3 done; 75 a; cancelled", Summary(outcome, scratch.path()));
  EXPECT_EQ("a=longer b=2 c=3 t/ t/a=1 t/b=2 t/c=3", TreeIn(scratch.path()));
}

TEST_F(OperationHazardsTest, ANameThatIsTakenAndNotThere) {
  Begin("a=1 t/");
  EXPECT_CHILD(InChild([&]() -> std::string {
    if (!FailCall(SYS_renameat2, EEXIST)) return "SKIP injecting failures is not permitted";
    TestUser user;
    Checks check;
    check.Equal("outcome", "0 done; 58 a", Summary(Run(kMove, "a", "t", user), scratch.path()));
    return check.text();
  }));
  EXPECT_EQ("a=1 t/", TreeIn(scratch.path()));
}

// Whatever the moment: every file is whole wherever it is, an old one too, and there is no other.
TEST_F(OperationHazardsTest, CancelledAtEveryMoment) {
  const std::string big = Pattern(5 * kMega), old = "old";
  for (const OperationKind kind : {kCopy, kMove, kCopyThenDelete, kDelete}) {
    int moments = 1;
    for (int moment = 0; moment < moments; ++moment) {
      SCOPED_TRACE(testing::Message() << "moment " << moment << ", " << static_cast<int>(kind));
      Begin("d/ d/a=1 d/s/ t/ t/d/ t/d/s/ t/d/s/big=old");
      Put(scratch / "d/s/big", big);
      TestUser user;
      user.conflict.choice = ConflictChoice::kReplace;
      user.cancelAt = moment;
      const auto outcome = Run(kind, "d", "t", user);
      moments = user.cancelAt < user.moments ? moments + 1 : moment;
      EXPECT_EQ(moments > moment, outcome.cancelled);
      for (const char* folder : {"d", "t/d"}) {
        for (const std::string& name : NamesIn(scratch / folder)) EXPECT_TRUE(name == "a" || name == "s") << name;
      }
      const std::string source = Get(scratch / "d/s/big"), target = Get(scratch / "t/d/s/big");
      EXPECT_TRUE(source == big || source == "<none>");
      EXPECT_TRUE(target == big || target == old);
      EXPECT_TRUE(kind == kDelete || source == big || target == big);
      EXPECT_LE(NamesIn(scratch / "t/d/s").size(), 1u);
    }
    EXPECT_GT(moments, 4);
  }
}

// Killed, all it may leave is a hidden file that the next save in the folder clears away in time.
TEST_F(OperationHazardsTest, Killed) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  const std::string big = Pattern(6 * kMega);
  for (int round = 0; round < 10; ++round) {
    Begin("d/ t/ t/d/ t/d/a=old");
    for (const char* name : {"a", "b", "c"}) Put(scratch / "d" / name, big);
    const pid_t child = fork();
    if (child == 0) {
      TestUser user;
      user.conflict.choice = ConflictChoice::kReplace;
      Run(round % 2 ? kCopy : kCopyThenDelete, "d", "t", user);
      _exit(0);
    }
    usleep(static_cast<useconds_t>(random() % 20000));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    for (const char* name : {"a", "b", "c"}) {
      const std::string source = Get(scratch / "d" / name), target = Get(scratch / "t/d" / name);
      EXPECT_TRUE(source == big || source == "<none>");
      EXPECT_TRUE(target == big || target == (*name == 'a' ? "old" : "<none>")) << name;
      EXPECT_TRUE(source == big || target == big);
    }
    for (const std::string& name : NamesIn(scratch / "t/d"))
      EXPECT_TRUE(name.size() == 1 || name.starts_with(".quillmark-")) << name;
  }
}

TEST_F(OperationHazardsTest, WithoutRights) {
  Begin("d/ d/closed/ d/closed/x=1 d/empty/ d/fixed/ d/fixed/y=1 d/secret=1 d/z=1 t/");
  for (const char* name : {"", "d", "d/closed", "d/empty", "d/fixed", "d/fixed/y", "d/secret", "d/z", "t"})
    ASSERT_EQ(0, geteuid() == 0 ? chown((scratch / name).c_str(), 65534, 65534) : 0);
  for (const auto& [name, mode] : {std::pair{"d/closed", 0}, {"d/empty", 0}, {"d/fixed", 0555}, {"d/secret", 0}})
    chmod((scratch / name).c_str(), static_cast<mode_t>(mode));
  EXPECT_CHILD(AsNobody([&] {
    Checks check;
    TestUser copy, move, remove;
    const auto sorted = [&](OperationOutcome outcome) {
      std::sort(outcome.failures.begin(), outcome.failures.end(),
                [](const auto& a, const auto& b) { return a.path < b.path; });
      return Summary(outcome, scratch.path());
    };
    check.Equal("copy", "4 done; 70 d/closed; 70 d/empty; 70 d/secret", sorted(Run(kCopy, "d", "t", copy)));
    chmod((scratch / "t/d/fixed").c_str(), 0755);
    check.Equal("copied", "d/ d/fixed/ d/fixed/y=1 d/z=1", TreeIn(scratch / "t"));
    check.Equal("move", "4 done; 70 d/closed; 70 d/empty; 70 d/fixed/y; 70 d/secret", [&] {
      copy.conflict.choice = ConflictChoice::kReplace;
      return sorted(Run(kCopyThenDelete, "d", "t", copy));
    }());
    check.Equal("delete", "2 done; 70 d/closed; 70 d/fixed/y", sorted(Run(kDelete, "d", "", remove)));
    return check.text();
  }));
}

// Folders in folders, each name as long as may be: no path is short enough for one call, and the stack is small.
TEST_F(OperationHazardsTest, DeepTree) {
  constexpr int kDepth = 20000;
  Begin("t/ d/");
  int folder = open((scratch / "d").c_str(), O_PATH);
  for (int i = 0; i < kDepth; ++i) {
    const std::string name = i % 100 ? "x" : std::string(251, 'n') + "\xFF\n& ";
    ASSERT_EQ(0, mkdirat(folder, name.c_str(), 0700));
    const int next = openat(folder, name.c_str(), O_PATH);
    close(std::exchange(folder, next));
  }
  close(openat(folder, "file", O_CREAT | O_WRONLY, 0600));
  ASSERT_EQ(0, close(folder));
  const auto run = [&](OperationKind kind, const char* source) {
    TestUser user;
    const auto outcome = Run(kind, source, "t", user);
    EXPECT_EQ(std::to_string(kDepth + 2) + " done", Summary(outcome, scratch.path()));
  };
  struct Call {
    std::function<void()> work;
  } call{[&] {
    run(kCopyThenDelete, "d");
    run(kDelete, "t/d");
  }};
  pthread_attr_t small;
  pthread_attr_init(&small);
  ASSERT_EQ(0, pthread_attr_setstacksize(&small, 256 * 1024));
  pthread_t thread;
  ASSERT_EQ(0, pthread_create(
                   &thread, &small,
                   [](void* given) -> void* {
                     static_cast<Call*>(given)->work();
                     return nullptr;
                   },
                   &call));
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&small);
  EXPECT_EQ("t/", TreeIn(scratch.path()));
}

TEST(NumberedNamesTest, StayWithinANameAndCutNoCharacter) {
  const std::string e = "\xC3\xA9";  // two bytes
  std::string many, more;
  for (int i = 0; i < 127; ++i) many += e;
  for (int i = 0; i < 123; ++i) more += e;
  const struct {
    std::string name;
    bool folder;
    std::string first, second;
  } kRows[] = {
      {"name.txt", false, "name (2).txt", "name (3).txt"},
      {"a.tar", true, "a.tar (2)", "a.tar (3)"},
      {"a (9).b", false, "a (10).b", "a (11).b"},
      {".hidden", false, ".hidden (2)", ".hidden (3)"},
      {"a (x)", false, "a (x) (2)", "a (x) (3)"},
      {" (2)", false, " (2) (2)", " (2) (3)"},
      {"a (99999999999999999999)", true, "a (99999999999999999999) (2)", "a (99999999999999999999) (3)"},
      {many + "x", false, many.substr(0, 250) + " (2)", many.substr(0, 250) + " (3)"},
      {"x" + more + ".text", false, "x" + more.substr(0, 244) + " (2).text", "x" + more.substr(0, 244) + " (3).text"},
      {std::string(255, '\xBF'), false, std::string(251, '\xBF') + " (2)", std::string(251, '\xBF') + " (3)"},
      {"v." + std::string(200, 'x'), false, "v." + std::string(200, 'x') + " (2)",
       "v." + std::string(200, 'x') + " (3)"},
  };
  for (const auto& row : kRows) {
    NumberedNames names(row.name, row.folder);
    EXPECT_EQ(row.first, names.Next());
    EXPECT_EQ(row.second, names.Next());
  }
}

}  // namespace
}  // namespace files
