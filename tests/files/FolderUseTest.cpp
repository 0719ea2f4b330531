// What is known of other programs that have to do with a folder, and folders that go only when nothing else is in them.
#include "files/FolderUse.h"
#include "files/PrivateFolder.h"
#include "tests/files/FilesTest.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace files {
namespace {

// Of a folder with the file "x", while another process lives that began by doing that.
FolderUse UseWhile(const std::function<void(const Path&)>& begin, const char* program = "") {
  const auto parent = std::filesystem::temp_directory_path() / ("quillmark-use-" + std::to_string(getpid()));
  const auto folder = PrivateFolder::Make(parent);
  EXPECT_TRUE(folder && folder.value().Write("x", "bytes"));
  int ready[2];
  EXPECT_EQ(pipe2(ready, O_CLOEXEC), 0);
  const pid_t child = fork();
  if (child == 0) {
    begin(folder.value().path() / "x");
    close(ready[1]);
    for (;;) pause();
  }
  close(ready[1]);
  char byte;
  EXPECT_EQ(read(ready[0], &byte, 1), 0);  // it has begun, or become another program
  close(ready[0]);
  const FolderUse use = UseOfFolder(folder.value().path(), program);
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  EXPECT_EQ(UseOfFolder(folder.value().path()), FolderUse::kNone);
  EXPECT_TRUE(folder.value().RemoveWith({"x"}).empty());
  std::filesystem::remove(parent);
  return use;
}

TEST(FolderUse, IsFoundByDescriptorsArgumentsAndNames) {
  EXPECT_EQ(UseWhile([](const Path&) {}), FolderUse::kNone);
  EXPECT_EQ(UseWhile([](const Path& x) { open(x.c_str(), O_RDONLY); }), FolderUse::kOpen);
  EXPECT_EQ(UseWhile([](const Path& x) { open(x.c_str(), O_RDWR); }), FolderUse::kWritten);
  EXPECT_EQ(UseWhile([](const Path& x) { execlp("sleep", ("file://" + x.native()).c_str(), "100", nullptr); }),
            FolderUse::kPerhaps);
  const auto named = [](const Path&) { execlp("sleep", "/some/where/writer-of-this-test", "100", nullptr); };
  EXPECT_EQ(UseWhile(named, "writer-of-this-test"), FolderUse::kPerhaps);
  EXPECT_EQ(UseWhile(named, "writer"), FolderUse::kNone);
}

TEST(PrivateFolder, IsRemovedOnlyWithWhatIsNamed) {
  const auto parent = std::filesystem::temp_directory_path() / ("quillmark-private-" + std::to_string(getpid()));
  const auto made = PrivateFolder::Make(parent);
  ASSERT_TRUE(made);
  const PrivateFolder& folder = made.value();
  ASSERT_TRUE(folder.Write("a", "longer") && folder.Write("b", ""));
  std::filesystem::create_directory(folder.path() / "c");
  const auto others = folder.RemoveWith({"a", "c"});
  EXPECT_EQ(others.size(), 2u) << "a folder is never named";
  EXPECT_TRUE(std::ranges::count(others, folder.path() / "b") == 1 && std::filesystem::exists(folder.path() / "a"));
  const auto stamp = folder.Overwrite("a", "short");
  ASSERT_TRUE(stamp);
  EXPECT_EQ(stamp.value().size, 5);
  EXPECT_EQ(StampOf(folder.path() / "a"), stamp.value());
  EXPECT_FALSE(folder.Overwrite("missing", "x"));
  std::filesystem::remove(folder.path() / "c");
  EXPECT_TRUE(folder.RemoveWith({"a", "b", "never there"}).empty());
  EXPECT_FALSE(std::filesystem::exists(folder.path()));
  std::filesystem::remove(parent);
}

}  // namespace
}  // namespace files
