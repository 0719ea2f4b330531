#include "tests/program/FolderTreeTest.h"

#include "files/FolderEntries.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace {

using testing::ElementsAre;

TEST_F(FolderTreeTest, IsEmptyUntilItIsAskedFor) {
  EXPECT_TRUE(Tree().Nodes().empty());
  EXPECT_EQ(Drive1().drive(), "/");
  dialogs.Message("no Selection to enumerate", ui::Buttons::kOk, ui::Icon::kNone, ui::Answer::kOk);
  Tree().ToggleFolderNode(std::nullopt);
  dialogs.Message("Please enter the directory to CD", ui::Buttons::kOk, ui::Icon::kNone, ui::Answer::kOk);
  Tree().ChangeDirectory("");
  Tree().mnuTreeRefresh_Click();
  Tree().mnuTreeDirChg_Click();
  Tree().mnuTreeClearSelections_Click();
  Tree().mnuTreeExplore_Click();
  EXPECT_TRUE(desktop.asked.empty());
}

TEST_F(FolderTreeTest, ListsFoldersAndFilesTogetherByNameWithoutHiddenAndSystemOnes) {
  MakeFolders({"b", ".hidden"});
  for (const char* name : {"C.txt", "a.txt", ".dot", "\xFF stray", "line\nbreak", "\u05D0.txt"}) Put(name, "");
  ASSERT_EQ(mkfifo(At("fifo").c_str(), 0600), 0);
  std::filesystem::create_symlink("b", At("link"));
  std::filesystem::create_symlink("nowhere", At("dangling"));
  std::filesystem::create_symlink("loop", At("loop"));
  Sync();
  EXPECT_EQ(Tree().TreeRoot, folder().native());
  EXPECT_EQ(Shown(), "a.txt b+ C.txt dangling line\nbreak link+ loop \u05D0.txt \xFF stray");
  EXPECT_EQ(Selected(), ".");
  Put("b/inside", "");
  Toggle("b");
  EXPECT_EQ(Shown("b"), "inside");
  EXPECT_EQ(Directory().path(), At("b"));
  Toggle("b");
  Put("b/later", "");
  EXPECT_EQ(Shown("b"), "");
  Toggle("b");
  EXPECT_EQ(Shown("b"), "inside later");
}

TEST_F(FolderTreeTest, FilesTakeTheCheckMarkOfTheirFolder) {
  MakeFolders({"a/sub"});
  Put("a/file", "");
  Sync();
  Tree().Check(Key("a"));
  Toggle("a");
  EXPECT_EQ(Shown(), "a*-(file* sub+)");
  EXPECT_THAT(Tree().Nodes().CheckedKeys(), ElementsAre(Key("a"), Key("a/file")));
  Tree().mnuTreeClearSelections_Click();
  EXPECT_EQ(Shown(), "a-(file sub+)");
}

TEST_F(FolderTreeTest, SynchronisesByOpeningEachFolderOnTheWay) {
  MakeFolders({"A/B/C", "A/.hidden/x", "other"});
  Sync();
  const struct {
    const char *directory, *shown, *selected;
  } kRows[] = {
      {"A/B/C", "A-(B-(C-())) other+", "A/B/C"},
      {"A/B", "A-(B-(C+)) other+", "A/B/C"},
      {"other", "A-(B-(C+)) other-()", "other"},
      {"A/.hidden/x", "A-(B+) other-()", "A"},
      {"", "A+ other+", "."},
  };
  for (const auto& row : kRows) {
    Go(row.directory);
    Sync();
    EXPECT_EQ(Shown(), row.shown) << row.directory;
    EXPECT_EQ(Selected(), row.selected) << row.directory;
    EXPECT_EQ(Directory().path(), Key(row.directory));
  }
  ShowWindow();
  View().clearFocus();
  Tree().mnuTreeSync_Click();
  EXPECT_TRUE(View().hasFocus());
}

TEST_F(FolderTreeTest, LoadsTheOtherDriveFirst) {
  MakeFolders({"usb/x/y", "home/z"});
  desktop.volumes = {folder(), At("usb")};
  Go("home/z");
  Tree().mnuTreeSync_Click();
  EXPECT_EQ(Shown(), "home-(z-()) usb+");
  Go("usb/x/y");
  Tree().mnuTreeSync_Click();
  EXPECT_EQ(Tree().TreeRoot, Key("usb"));
  EXPECT_EQ(Drive1().drive(), Key("usb"));
  EXPECT_EQ(Shown("usb"), "x-(y-())");
  // Each drive has its own current directory.
  Drive1().Choose(Key(""));
  Tree().Drive1_Change();
  EXPECT_EQ(Directory().path(), At("home/z"));
  EXPECT_EQ(Shown(), "home+ usb+");
  program().settings().TreeSync = true;
  Drive1().Choose(Key("usb"));
  Tree().Drive1_Change();
  EXPECT_EQ(Directory().path(), At("usb/x/y"));
  EXPECT_EQ(Shown("usb"), "x-(y-())");
}

TEST_F(FolderTreeTest, FallsBackToTheRootWhenADriveIsGone) {
  MakeFolders({"usb/x"});
  desktop.volumes = {At("usb")};
  Tree().ReadDrives();
  std::filesystem::remove_all(At("usb"));
  ExpectError("No such file or directory");
  Drive1().Choose(Key("usb"));
  Tree().Drive1_Change();
  EXPECT_EQ(Tree().TreeRoot, "/");
  EXPECT_EQ(Drive1().drive(), "/");
  EXPECT_TRUE(Tree().Exists("/tmp"));
  EXPECT_EQ(Directory().path(), folder());
}

TEST_F(FolderTreeTest, AVolumeThatGoesWhileItIsShownEndsAtTheRoot) {
  MakeFolders({"usb/x"});
  desktop.volumes = {At("usb")};
  Go("usb/x");
  Sync();
  std::filesystem::remove_all(At("usb"));
  desktop.volumes = {};
  Tree().ReadDrives();
  EXPECT_EQ(Drive1().drive(), Key("usb")) << "what the tree shows";
  ExpectCannotResolve("usb", "No such file or directory");
  ExpectError("No such file or directory");
  ExpectCannotResolve("usb/x", "No such file or directory");
  Tree().mnuTreeCollapseAll_Click();
  EXPECT_EQ(Tree().TreeRoot, "/");
  EXPECT_EQ(Drive1().drive(), "/");
  Tree().Select("/");
  Tree().mnuTreeRefresh_Click();
  EXPECT_TRUE(Tree().Exists("/tmp"));
}

TEST_F(FolderTreeTest, WhatIsCancelledWhileItIsReadIsClosedOrEmptyAndTheDirectoryStays) {
  MakeFolders({"a/b"});
  Go("a");
  dialogs.CancelNextWork();
  Sync();
  EXPECT_EQ(Shown(), "");
  EXPECT_EQ(Directory().path(), At("a"));
  Sync();
  Toggle("a/b");
  Tree().Select(Key("a/b"));
  dialogs.CancelNextWork();
  Toggle("a");
  Toggle("a");
  EXPECT_EQ(Shown(), "a+");
  EXPECT_EQ(Selected(), "a");
}

TEST_F(FolderTreeTest, RefreshesTheNearestOpenFolderThatIsThere) {
  MakeFolders({"a/b/c"});
  Put("a/file", "");
  Go("a/b/c");
  Tree().mnuTreeSync_Click();
  Put("a/new", "");
  Tree().Select(Key("a/file"));
  Tree().mnuTreeRefresh_Click();
  EXPECT_EQ(Shown(), "a-(b+ file new)");
  EXPECT_EQ(Selected(), "a/file") << "it is still there";
  Toggle("a/b");
  Toggle("a/b/c");
  Tree().Select(Key("a/b/c"));
  std::filesystem::remove_all(At("a/b"));
  Tree().mnuTreeRefresh_Click();
  EXPECT_EQ(Shown(), "a-(file new)");
  EXPECT_EQ(Selected(), "a") << "the nearest one above that is there";
  std::filesystem::remove_all(At("a"));
  Put("a", "now a file");
  Tree().Select(Key("a/file"));
  ExpectCannotResolve("a", "Not a directory");
  Tree().mnuTreeRefresh_Click();
  EXPECT_EQ(Shown(), "a+");
}

TEST_F(FolderTreeTest, SaysWhatCannotBeEntered) {
  MakeFolders({"gone", "closed", "listed/below"});
  Sync();
  std::filesystem::remove(At("gone"));
  ExpectCannotResolve("gone", "No such file or directory");
  Toggle("gone");
  EXPECT_EQ(Shown(), "closed+ gone+ listed+");
  ASSERT_EQ(chmod(At("closed").c_str(), 0111), 0);
  ASSERT_EQ(chmod(At("listed").c_str(), 0444), 0);
  ASSERT_EQ(chmod(folder().c_str(), 0755), 0);
  const Unprivileged user;
  ExpectCannotResolve("closed", "Permission denied");  // entered, but not listed
  Toggle("closed");
  ExpectCannotResolve("listed", "Permission denied");  // listed, but not entered
  Toggle("listed");
  EXPECT_EQ(Shown(), "closed+ gone+ listed-(below+)");
}

TEST_F(FolderTreeTest, WarnsOfMoreEntriesThanTheLimit) {
  MakeFolders({"many"});
  for (int i = 0; i < 32767; ++i) ASSERT_EQ(mknod(At("many/" + std::to_string(i)).c_str(), S_IFREG | 0600, 0), 0);
  Sync();
  Toggle("many");
  Toggle("many");
  Put("many/one more", "");
  ExpectError(
      "Treeview Warning: The Microsoft limit of 32,767 folders and files that can be shown at one time, has been "
      "exceeded.\r\nThe Tree view behavior is unpredictable when this limit is exceeded.\r\nTo recover: Click "
      "'Collapse All', then open only the folder(s) you need.");
  Toggle("many");
  EXPECT_EQ(Tree().Nodes().Count(Tree().Nodes().ListBelow(*Tree().Nodes().Find(Key("many")))), 32768);
}

TEST_F(FolderTreeTest, CommandsActOnTheFolderOfTheSelectedNode) {
  MakeFolders({"a/b"});
  Put("a/file", "");
  Sync();
  Toggle("a");
  Tree().Select(Key("a/file"));
  Tree().mnuTreeExplore_Click();
  Go("");
  Tree().mnuTreeDirChg_Click();
  EXPECT_EQ(Directory().path(), At("a"));
  Tree().Select(Key("a/b"));
  Tree().mnuTreeExplore_Click();
  EXPECT_THAT(desktop.asked, ElementsAre("open " + Key("a"), "open " + Key("a/b")));
  Tree().mnuTreeDirChg_Click();
  EXPECT_EQ(Directory().path(), At("a/b"));
  Tree().mnuTreeCollapseAll_Click();
  EXPECT_EQ(Shown(), "a+");
  EXPECT_EQ(Directory().path(), At("a/b"));
}

TEST_F(FolderTreeTest, ArrowKeysOpenAndCloseAndSpaceChecks) {
  MakeFolders({"a/b"});
  Put("a/c", "");
  Sync();
  Tree().Select(Key("a"));
  const struct {
    int key;
    const char *shown, *selected;
  } kRows[] = {
      {Qt::Key_Right, "a-(b+ c)", "a"},   {Qt::Key_Right, "a-(b+ c)", "a/b"},  {Qt::Key_Down, "a-(b+ c)", "a/c"},
      {Qt::Key_Right, "a-(b+ c)", "a/c"}, {Qt::Key_Space, "a-(b+ c*)", "a/c"}, {Qt::Key_Left, "a-(b+ c*)", "a"},
      {Qt::Key_Minus, "a+", "a"},         {Qt::Key_Left, "a+", "."},           {Qt::Key_Left, "a+", "."},
  };
  for (const auto& row : kRows) {
    Press(View(), row.key);
    EXPECT_EQ(Shown(), row.shown) << row.key;
    EXPECT_EQ(Selected(), row.selected) << row.key;
  }
}

TEST_F(FolderTreeTest, FollowsDocumentsProjectsAndFolderEntries) {
  MakeFolders({"docs", "saved", "projects", "entry"});
  Put("docs/a.txt", "text");
  program().settings().TreeSync = true;
  dialogs.File(At("docs/a.txt"));
  program().opening().mnuOpenFile_Click();
  dialogs.File(At("docs/a.txt"));  // the drive was only loaded the first time
  program().opening().mnuOpenFile_Click();
  EXPECT_EQ(Selected(), "docs");
  dialogs.File(At("saved/b.txt"));
  static_cast<void>(table().Active()->mnuSaveFileAs_Click());
  EXPECT_EQ(Selected(), "saved");
  dialogs.File(At("projects/p.prj"));
  program().project().mnuSaveProjectAs_Click();
  EXPECT_EQ(Selected(), "projects");
  program().settings().TreeSync = false;
  program().project().AddNewDocOrLink(Key("entry/"));
  program().projectList().mnuOpenFromList_Click();
  EXPECT_EQ(Selected(), "entry");
  EXPECT_EQ(Directory().path(), At("entry"));
}

}  // namespace
