// The tree over real volumes that are full, read-only or gone, and what happens in the middle of its commands.
#include "tests/program/TreeFilesTest.h"
#include "tests/support/EveryPoint.h"
#include "ui/desktop/operations/DesktopFileOperations.h"

#include <gmock/gmock.h>

#include <sched.h>
#include <sys/mount.h>

namespace {

using ui::Answer;
using ui::Buttons;
using ui::Icon;

class TreeHazards : public TreeFilesTest {
 protected:
  void UseRealOperations() { program().SetFileOperations(std::make_unique<ui::DesktopFileOperations>(skipping)); }
  void ExpectCode(int code) { dialogs.Message(QString::number(code), Buttons::kOk, Icon::kNone, Answer::kOk); }
  // What is shown is what the table holds, and every key leads to its node.
  void ExpectSound(ui::TreePlace node, const QModelIndex& shown) {
    const foldertree::NodeTable& nodes = Tree().Nodes();
    EXPECT_EQ(nodes.Find(nodes.Key(node)), node) << nodes.Key(node);
    const ui::TreeList below = nodes.ListBelow(node);
    ASSERT_EQ(View().model()->rowCount(shown), nodes.Count(below)) << nodes.Key(node);
    for (int row = 0; row < nodes.Count(below); ++row) {
      const QModelIndex index = View().model()->index(row, 0, shown);
      EXPECT_EQ(index.data().toString(), ui::DisplayText(nodes.Text({below, row})));
      ExpectSound({below, row}, index);
    }
  }
  SkippingDialogs skipping;
};

// The folder "disk" is a volume of 1 MB.
class TreeVolumes : public TreeHazards {
 protected:
  void SetUp() override {
    MakeFolders({"disk", "d"});
    if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 || !Mount(0))
      GTEST_SKIP() << "mounting is not permitted: " << strerror(errno);
    UseRealOperations();
  }
  void TearDown() override { umount2(At("disk").c_str(), MNT_DETACH); }
  bool Mount(unsigned long flags) { return mount("none", At("disk").c_str(), "tmpfs", flags, "size=1024k") == 0; }
};

TEST_F(TreeVolumes, WhatDoesNotFitStaysWhereItWas) {
  Put("d/big", std::string(3 << 20, 'b'));
  Put("d/small", "s");
  Put("kept", "k");
  Sync();
  Toggle("d");
  Toggle("disk");
  Check({"d", "kept"});
  ExpectCode(61);
  Drop("disk", Tree().Nodes().CheckedKeys(), true, true);
  EXPECT_EQ(Shown(), "d*-(big small) disk-(d+ kept)");
  Toggle("disk/d");
  Tree().RefreshFolderNode(Key("d"));
  EXPECT_EQ(Shown(), "d*-(big*) disk-(d-(small) kept)");
  EXPECT_EQ(Bytes(At("d/big")).size(), size_t{3} << 20);
  EXPECT_EQ(Bytes(At("disk/d/small")) + Bytes(At("disk/kept")), "sk");
}

TEST_F(TreeVolumes, ThereAndBack) {
  MakeFolders({"d/e"});
  Put("d/e/\u05D0\n\xFF", "1");
  std::filesystem::create_symlink("nowhere", At("d/link"));
  Sync();
  const auto carry = [this](const char* from, const char* to) { Drop(to, {Key(from)}, true, true); };
  carry("d", "disk");
  EXPECT_EQ(Shown(), "d+ disk-(d+)");
  Tree().RefreshFolderNode(Key(""));
  EXPECT_EQ(Shown(), "disk+");
  Toggle("disk");
  carry("disk/d", "");
  Toggle("d");
  Toggle("d/e");
  EXPECT_EQ(Shown(), "d-(e-(\u05D0\n\xFF) link) disk+");
  EXPECT_EQ(Bytes(At("d/e/\u05D0\n\xFF")), "1");
  EXPECT_TRUE(std::filesystem::is_symlink(At("d/link")));
  EXPECT_FALSE(Exists(At("disk/d")));
}

TEST_F(TreeVolumes, ReadOnlyAndGone) {
  Put("disk/f", "1");
  Sync();
  Toggle("disk");
  ASSERT_TRUE(Mount(MS_REMOUNT | MS_RDONLY));
  Select("disk");
  ExpectError(Error(At("disk/New Folder"), "Read-only file system"));
  Files().mnuTreeCreateFolder_Click();
  Select("disk/f");
  ExpectError(Error(At("disk"), "Read-only file system"));
  Files().mnuTreeRename_Click();
  EnterName("g");
  EXPECT_EQ(Shown(), "d+ disk-(f)");
  Check({"disk/f"});
  ExpectCode(75);
  Files().DeleteTreeItems(false);
  EXPECT_EQ(Shown(), "d+ disk-(f*)");
  ASSERT_EQ(umount2(At("disk").c_str(), MNT_DETACH), 0);
  Put("disk/f2", "under the mount");
  ExpectCode(53);
  Files().DeleteTreeItems(false);
  EXPECT_EQ(Shown(), "d+ disk-()");
  Select("disk");
  Tree().mnuTreeRefresh_Click();
  EXPECT_EQ(Shown(), "d+ disk-(f2)");
}

TEST_F(TreeHazards, WhatHappensInTheMiddleOfCommands) {
  const struct {
    const char* name;
    std::function<void()> happens;
  } kEvents[] = {
      {"a folder goes", [this] { std::filesystem::remove_all(At("b")), Tree().RefreshFolderNode(Key("")); }},
      {"a closed one", [this] { std::filesystem::remove_all(At("b")), Tree().mnuTreeCollapseAll_Click(); }},
      {"the node goes",
       [this] {
         if (Tree().Exists(Key("b"))) Tree().RemoveNodes({Key("b")});
       }},
      {"another folder is gone to", [this] { static_cast<void>(Directory().Change(Key("c"))), Sync(); }},
      {"another drive is shown", [this] { desktop.volumes = {Key("c")}, Tree().ReadDrives(); }},
  };
  const struct {
    const char* name;
    std::function<void()> run;
  } kCommands[] = {
      {"sync", [this] { Go("b/deep"), Tree().mnuTreeSync_Click(); }},
      {"toggle", [this] { Tree().ToggleFolderNode(Key("b")); }},
      {"refresh", [this] { Select("b/deep"), Tree().mnuTreeRefresh_Click(); }},
      {"change directory", [this] { Select("b/f.txt"), Tree().mnuTreeDirChg_Click(); }},
      {"open",
       [this] {
         Check({"a.txt", "b"}), Files().mnuTreeOpen_Click();
       }},
      {"delete",
       [this] {
         Check({"a.txt", "b"}), Files().DeleteTreeItems(false);
       }},
      {"move", [this] { Check({"a.txt"}), Drop("b", Tree().Nodes().CheckedKeys(), true, true); }},
      {"copy beside", [this] { Drop("b/deep", {Key("a.txt")}, false, false); }},
  };
  dialogs.AnswerTheRest(Answer::kYes);  // a folder that has gone may well be told
  support::EveryPoint everyPoint;
  for (const auto& command : kCommands) {
    for (const auto& event : kEvents) {
      SCOPED_TRACE(std::string(command.name) + ", " + event.name);
      desktop.volumes = {folder()};
      Restart();
      UseRealOperations();
      MakeFolders({"b/deep", "c"});
      for (const char* name : {"a.txt", "b/f.txt"}) Put(name, "text");
      Go("");
      Sync();
      Toggle("b");
      everyPoint.Start([&](int point) {
        if (point < 3) event.happens();
      });
      command.run();
      EXPECT_GT(everyPoint.points(), 0) << "nothing happened in the middle";
      everyPoint.Stop();
      Settle();
      ExpectSound(foldertree::NodeTable::kRoot, View().model()->index(0, 0));
      Tree().RefreshFolderNode(Tree().TreeRoot);
      ExpectSound(foldertree::NodeTable::kRoot, View().model()->index(0, 0));
      const std::string drive = Tree().TreeRoot + "/b";
      EXPECT_EQ(Tree().Exists(drive), std::filesystem::exists(drive));
    }
  }
}

}  // namespace
