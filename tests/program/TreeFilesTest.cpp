#include "tests/program/TreeFilesTest.h"

#include "search/frmYesNoAll.h"

#include <QMimeData>
#include <gmock/gmock.h>

#include <fstream>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using ui::Answer;
using ui::Buttons;
using ui::Icon;

TEST_F(TreeFilesTest, OpensTheCheckedFilesThenTheCheckedFolders) {
  MakeFolders({"b"});
  for (const char* name : {"z.txt", "a.txt", "b/c.txt"}) Put(name, name);
  Sync();
  Check({"z.txt", "b", "a.txt"});
  Files().mnuTreeOpen_Click();
  EXPECT_TRUE(Showing(Key("z.txt")) && Showing(Key("a.txt")));
  EXPECT_EQ(Shown(), "a.txt* b*-(c.txt*) z.txt*");
  Tree().mnuTreeClearSelections_Click();
  Select("b/c.txt");
  Files().mnuTreeOpen_Click();
  EXPECT_TRUE(Showing(Key("b/c.txt")));
  EXPECT_THAT(Tree().Nodes().CheckedKeys(), ElementsAre(Key("b/c.txt")));
  Tree().mnuTreeClearSelections_Click();
  Select("b");
  ExpectError("Please checkmark the items you want to open");
  Files().mnuTreeOpen_Click();
}

TEST_F(TreeFilesTest, AProjectFileIsAskedAbout) {
  Put("p.PRJ", "/x/a.txt\r\n\r\n");
  Sync();
  Select("p.PRJ");
  const auto asked = [this](Answer answer) {
    dialogs.Message(
        "File: p.PRJ\r\nIf you want to open it as a project, press 'Yes'; as a document, press 'No'.  Press "
        "'Cancel' to skip.",
        Buttons::kYesNoCancel, Icon::kInformation, answer);
    Files().mnuRCTreeOpen_Click();
  };
  asked(Answer::kCancel);
  EXPECT_EQ(table().Active(), nullptr);
  asked(Answer::kNo);
  EXPECT_TRUE(Showing(Key("p.PRJ")));
  asked(Answer::kYes);
  EXPECT_EQ(program().project().ProjectFile, Key("p.PRJ"));
  EXPECT_EQ(program().frame().leftPane().List1().line(1).text, "a.txt");
}

TEST_F(TreeFilesTest, OpensOutsideWhatIsAgreedTo) {
  for (const char* name : {"a", "b", "c", "d"}) Put(name, "");
  Sync();
  Check({"a", "b", "c", "d"});
  const std::vector<std::string> keys = Tree().Nodes().CheckedKeys();
  const auto answer = [this](const std::string& key, int code) {
    dialogs.Modal([=](ui::ModalForm& form) {
      auto& asked = dynamic_cast<search::frmYesNoAll&>(form);
      EXPECT_EQ(asked.Label1().text().toStdString(),
                "Item: " + key + "\n\nShould I open this item in its external application?");
      if (code == 6) asked.Command1_Click();
      if (code == 7) asked.Command2_Click();
      if (code == 2) asked.show(), asked.close();
    });
  };
  answer(keys[0], 6);
  answer(keys[1], 7);
  answer(keys[2], 2);
  Files().mnuTreeOpenExt_Click();
  EXPECT_THAT(desktop.asked, ElementsAre("open " + keys[0]));
}

TEST_F(TreeFilesTest, AddsAndCopiesPathsInTheOrderOfTheIndex) {
  MakeFolders({"b"});
  for (const char* name : {"a.txt", "b/\xFF", "b/c"}) Put(name, "");
  Sync();
  Select("b");
  Files().mnuTreeCopyPath_Click();
  EXPECT_EQ(Clipboard().toStdString(), Key("b"));
  EXPECT_EQ(Shown(), "a.txt b*+");
  Check({"a.txt"});
  Files().mnuTreeAdd2List_Click();
  std::vector<std::string> entries;
  auto& items = program().project().ProjectItems();
  for (size_t i = 1; i <= items.Highest(); ++i) entries.push_back(items[i]);
  EXPECT_THAT(entries, testing::UnorderedElementsAre(Key("a.txt"), Key("b/")));
  Tree().mnuTreeClearSelections_Click();
  Toggle("b");
  Check({"b/\xFF"});
  Files().mnuTreeCopyPath_Click();
  EXPECT_EQ(QApplication::clipboard()->mimeData()->data("text/plain").toStdString(), Key("b/\xFF"));
}

TEST_F(TreeFilesTest, CreatesFoldersUnderFreeNamesAndNamesThem) {
  MakeFolders({"a"});
  Put("a/file", "");
  Sync();
  Select("a");
  Files().mnuTreeCreateFolder_Click();
  EXPECT_EQ(Selected(), "a/New Folder");
  EnterName("", Qt::Key_Escape);
  Select("a/file");
  Files().mnuTreeCreateFolder_Click();
  EXPECT_EQ(Selected(), "a/New Folder1");
  ExpectError("You must enter a value, or hit Escape to cancel.");
  EnterName("");
  EnterName("\u05E2 &<b>");
  EXPECT_EQ(Shown(), "a-(file New Folder+ \u05E2 &<b>+)");
  EXPECT_EQ(Selected(), "a/\u05E2 &<b>");
  for (int i = 1; i <= 50; ++i) std::filesystem::create_directory(At("a/New Folder" + std::to_string(i)));
  ExpectError(Error(At("a/New Folder50"), "File exists"));
  Select("a");
  Files().mnuTreeCreateFolder_Click();
}

TEST_F(TreeFilesTest, RenamesExactlyAndNeverReplaces) {
  MakeFolders({"a"});
  for (const char* name : {"a/b\xFF\n.txt", "a/taken"}) Put(name, name);
  Sync();
  ExpectError("Cannot rename the drive from this application.");
  Files().mnuTreeRename_Click();
  Toggle("a");
  const struct {
    const char* from;
    QString edited;
    const char* to;
    const char* error;
  } kRows[] = {
      {"b\xFF\n.txt", "x b\uFFFD\uFFFD.rtf", "x b\xFF\n.rtf", ""},
      {"x b\xFF\n.rtf", "\uFFFD.rtf", "\n.rtf", ""},
      {"\n.rtf", "\uFFFD.rtf", "\n.rtf", ""},
      {"\n.rtf", "taken", "\n.rtf", "File exists"},
      {"\n.rtf", "../out", "\n.rtf", "Invalid argument"},
      {"\n.rtf", "..", "\n.rtf", "Invalid argument"},
      {"\n.rtf", QString(300, 'x'), "\n.rtf", "File name too long"},
      {"\n.rtf", "Taken", "Taken", ""},
  };
  // Keys that the field for the name passes on do nothing in the tree.
  Select("a/taken");
  View().StartLabelEdit();
  Press(*Editor(), Qt::Key_Delete);
  Press(*Editor(), Qt::Key_Escape);
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.edited.toStdString());
    Select("a/" + std::string(row.from));
    if (*row.error) ExpectError(Error(At("a"), row.error));
    Files().mnuTreeRename_Click();
    EnterName(row.edited);
    EXPECT_EQ(Selected(), "a/" + std::string(row.to));
    EXPECT_EQ(Bytes(At("a") / row.to), "a/b\xFF\n.txt");
    EXPECT_EQ(Bytes(At("a/taken")), "a/taken");
    EXPECT_EQ(Files().RenameOldText, "");
  }
  Files().mnuTreeRename_Click();
  EnterName("not this", Qt::Key_Escape);
  EXPECT_EQ(Files().RenameOldText, "");
  EXPECT_TRUE(Exists(At("a/Taken")));
  EXPECT_THAT(operations->asked, IsEmpty());
}

TEST_F(TreeFilesTest, DeletesWhatIsCheckedAndTakesOutWhatHasGone) {
  MakeFolders({"a", "b"});
  for (const char* name : {"a/1", "a/2", "c"}) Put(name, "");
  Sync();
  Check({""});  // the drive itself is never among them
  ExpectError("Please checkmark the items you want to delete");
  Files().mnuTreeDelete_Click();
  Tree().mnuTreeClearSelections_Click();
  Check({"a", "c"});
  operations->acts = [](const auto& gone, const auto&) {
    std::filesystem::remove_all(gone[0]);
    return ui::FileOperations::Result{7, true};
  };
  const std::vector<std::string> keys = Tree().Nodes().CheckedKeys();
  Files().DeleteTreeItems(true);
  EXPECT_FALSE(Tree().Exists(keys[0]));
  EXPECT_TRUE(Tree().Exists(keys[1]));
  operations->acts = [](const auto&, const auto&) { return ui::FileOperations::Result{70, false}; };
  dialogs.Message("70", Buttons::kOk, Icon::kNone, Answer::kOk);
  Files().DeleteTreeItems(false);
  program().settings().TreeDelMethod = true;
  Tree().mnuTreeClearSelections_Click();
  operations->acts = {};
  Select("b");
  Files().mnuTreeDelete_Click();
  Files().mnuRCTreeDelete_Click();
  EXPECT_THAT(operations->asked, ElementsAre("trash [" + keys[0] + "] [" + keys[1] + "]", "delete [" + keys[1] + "]",
                                             "delete [" + Key("b") + "]", "delete [" + Key("b") + "]"));
}

TEST_F(TreeFilesTest, DropsGoToTheFolderAndAskWhenItIsAFiles) {
  MakeFolders({"to", "other/deep"});
  Put("to/file", "");
  Sync();
  Toggle("to");
  operations->acts = [](const auto& dropped, const std::string& folder) {
    for (const std::string& path : dropped)
      std::ofstream(std::filesystem::path(folder) / std::filesystem::path(path).filename());
    return ui::FileOperations::Result{};
  };
  Drop("to", {"/x/1"}, false, false);
  EXPECT_EQ(Shown(), "other+ to-(1 file)");
  Drop("other", {"/x/2"}, true, false);
  EXPECT_EQ(Shown(), "other-(2 deep+) to-(1 file)");
  const auto asked = [this](Answer answer) {
    dialogs.Message("Folder: to\r\n\r\nDo you want to copy to the above folder?", Buttons::kYesNo, Icon::kInformation,
                    answer);
  };
  asked(Answer::kNo);
  Drop("to/file", {"/x/3"}, false, false);
  asked(Answer::kYes);
  Drop("to/file", {"/x/4"}, true, true);
  operations->acts = [](const auto&, const auto&) { return ui::FileOperations::Result{61, false}; };
  dialogs.Message("61", Buttons::kOk, Icon::kNone, Answer::kOk);
  Drop("to", {"/x/5"}, false, true);
  Drop("gone", {"/x/6"}, false, true);
  EXPECT_THAT(operations->asked,
              ElementsAre("copy [/x/1] to " + Key("to"), "copy then delete [/x/2] to " + Key("other"),
                          "move [/x/4] to " + Key("to"), "copy [/x/5] to " + Key("to")));
}

}  // namespace
