#include "bench/AgreeingDialogs.h"
#include "search/frmYesNoAll.h"
#include "tests/program/FolderTreeTest.h"
#include "tests/support/ScriptedFileOperations.h"
#include "ui/desktop/DesktopFileOperations.h"

#include <QClipboard>
#include <QDeadlineTimer>
#include <QLineEdit>
#include <QMimeData>
#include <QThread>
#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <set>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using ui::Answer;
using ui::Buttons;
using ui::Icon;

class TreeFilesTest : public FolderTreeTest {
 protected:
  TreeFilesTest() {
    auto scripted = std::make_unique<support::ScriptedFileOperations>();
    operations = scripted.get();
    program().SetFileOperations(std::move(scripted));
  }

  foldertree::TreeFiles& Files() { return program().treeFiles(); }
  void Check(std::initializer_list<const char*> names) {
    for (const char* name : names) Tree().Check(Key(name));
  }
  void Select(const std::string& name) { Tree().Select(Key(name)); }
  static QString Clipboard() { return QApplication::clipboard()->text(); }
  // Of the selected node; those that were closed go later.
  QLineEdit* Editor() { return qobject_cast<QLineEdit*>(View().indexWidget(View().currentIndex())); }
  // Waits until the name can be changed, and changes it.
  void EnterName(const QString& text, int key = Qt::Key_Return) {
    for (const QDeadlineTimer end(10000); !Editor() && !end.hasExpired(); QThread::msleep(2)) Settle();
    ASSERT_TRUE(Editor());
    Editor()->setText(text);
    Press(*Editor(), key);
  }
  void Drop(const std::string& target, std::vector<std::string> files, bool move, bool own) {
    Q_EMIT View().FilesDropped({Key(target), std::move(files), move, own});
    Settle();
  }

  support::ScriptedFileOperations* operations;
};

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
  operations->acts = [this](const auto& paths, const auto&) {
    std::filesystem::remove_all(paths[0]);
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
  operations->acts = [](const auto& paths, const std::string& folder) {
    for (const std::string& path : paths)
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

// --- Random operations with the real engine against a plain model of the folder

class RandomTree : public TreeFilesTest {
 protected:
  RandomTree() {
    program().SetFileOperations(std::make_unique<ui::DesktopFileOperations>(agreeing));
    std::filesystem::create_directory(drive);
    desktop.volumes = {drive};
    EXPECT_TRUE(Directory().Change(drive));
  }

  int Chance(int below) { return static_cast<int>(chance() % static_cast<unsigned>(below)); }
  std::string NewName() {
    static const char* const kNames[] = {"a",    "b b",  "\u05D0\u05D1", "stray\xFF", "line\nbreak",
                                         "&<b>", "Case", "case",         ".hidden"};
    return kNames[Chance(9)] + (Chance(2) ? std::to_string(Chance(30)) : std::string());
  }
  std::string Parent(const std::string& path) { return path.substr(0, path.rfind('/')); }
  static bool IsIn(const std::string& path, const std::string& folder) {
    return path == folder || path.starts_with(folder + "/");
  }
  // All nodes, the root first.
  std::vector<std::string> NodeKeys() {
    std::vector<std::string> keys;
    Walk(foldertree::NodeTable::kRoot, [&](ui::TreePlace place) { keys.push_back(Tree().Nodes().Key(place)); });
    return keys;
  }
  template <class Call>
  void Walk(ui::TreePlace place, Call call) {
    call(place);
    const ui::TreeList below = Tree().Nodes().ListBelow(place);
    for (int row = 0; row < Tree().Nodes().Count(below); ++row) Walk({below, row}, call);
  }
  std::string AnyNode() {
    const auto keys = NodeKeys();
    return keys[static_cast<size_t>(Chance(static_cast<int>(keys.size())))];
  }
  std::string AnyFolder() {
    for (;;)
      if (const std::string key = AnyNode(); Tree().IsFolder(key)) return key;
  }

  // The model: paths with true for folders.
  void Forget(const std::string& path) {
    std::erase_if(model, [&](const auto& entry) { return IsIn(entry.first, path); });
  }
  void Take(const std::string& from, const std::string& to) {
    std::map<std::string, bool> taken;
    for (const auto& [path, folder] : model)
      if (IsIn(path, from)) taken[to + path.substr(from.size())] = folder;
    model.merge(taken);
  }

  void Step() {
    switch (Chance(9)) {
      case 0:
      case 1: {  // a file or folder that another program makes, seen after a refresh
        const std::string folder = AnyFolder(), path = folder + "/" + NewName();
        if (model.contains(path)) return;
        model[path] = Chance(3) == 0;
        if (model[path]) {
          std::filesystem::create_directory(path);
        } else {
          std::ofstream(path) << path;
        }
        Tree().Select(folder);
        if (Tree().ImageOf(folder) == ui::TreeImage::kClosed) Tree().ToggleFolderNode(folder);
        return Tree().RefreshFolderNode(folder);
      }
      case 2: {
        const std::string node = AnyNode(), folder = Tree().FolderOf(node);
        std::string path = folder + "/New Folder";
        for (int i = 1; model.contains(path); ++i) path = folder + "/New Folder" + std::to_string(i);
        model[path] = true;
        Tree().Select(node);
        Files().mnuTreeCreateFolder_Click();
        return EnterName("", Qt::Key_Escape);
      }
      case 3:
        return Rename(AnyNode());
      case 4:
      case 5:
        return Transfer(Chance(2) == 0);
      case 6:
        return Delete();
      case 7:
        return Tree().ToggleFolderNode(AnyFolder());
      default:
        static_cast<void>(Directory().Change(AnyFolder()));
        return Tree().mnuTreeSync_Click();
    }
  }
  void Rename(const std::string& key) {
    if (key == drive) return;
    const std::string name = "renamed " + std::to_string(Chance(1000)), to = Parent(key) + "/" + name;
    if (model.contains(to)) return;
    Take(key, to);
    Forget(key);
    Tree().Select(key);
    View().StartLabelEdit();
    EnterName(QString::fromStdString(name));
  }
  // Some nodes whose names are free in the folder, which is none of them; each name once.
  std::vector<std::string> CheckSome(const std::string& target) {
    std::set<std::string> names;
    for (int i = Chance(3); i >= 0; --i) {
      const std::string key = AnyNode();
      const std::string to = target + key.substr(key.rfind('/'));
      if (key == drive || IsIn(target, key) || model.contains(to) || !names.insert(to).second) continue;
      Tree().Check(key);
    }
    // One inside another would go with it.
    std::vector<std::string> keys = Tree().Nodes().CheckedKeys();
    for (const std::string& a : keys)
      for (const std::string& b : keys)
        if (a != b && IsIn(b, a)) return {};
    return keys;
  }
  void Transfer(bool move) {
    Tree().mnuTreeClearSelections_Click();
    const std::string target = AnyFolder();
    const std::vector<std::string> keys = CheckSome(target);
    if (keys.empty()) return;
    for (const std::string& key : keys) {
      Take(key, target + key.substr(key.rfind('/')));
      if (move) Forget(key);
    }
    Q_EMIT View().FilesDropped({target, keys, move, true});
  }
  void Delete() {
    Tree().mnuTreeClearSelections_Click();
    if (Chance(3) != 0) return;  // things should come to be
    const std::vector<std::string> keys = CheckSome("/nowhere");
    if (keys.empty()) return;
    for (const std::string& key : keys) Forget(key);
    Files().DeleteTreeItems(false);
  }

  void Compare() {
    std::map<std::string, bool> disk;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(drive))
      disk[entry.path().native()] = entry.is_directory();
    ASSERT_EQ(disk, model);
    const foldertree::NodeTable& nodes = Tree().Nodes();
    Walk(foldertree::NodeTable::kRoot, [&](ui::TreePlace place) {
      const std::string key = nodes.Key(place);
      std::set<std::string> shown, expected;
      for (int row = 0; row < nodes.Count(nodes.ListBelow(place)); ++row)
        shown.insert(nodes.Key({nodes.ListBelow(place), row}));
      const bool open = nodes.Image(place) == ui::TreeImage::kOpen || nodes.Image(place) == ui::TreeImage::kRoot;
      for (const auto& [path, isFolder] : model)
        if (open && Parent(path) == key && path[key.size() + 1] != '.') expected.insert(path);
      EXPECT_EQ(shown, expected) << key;
      EXPECT_EQ(nodes.Image(place) != ui::TreeImage::kLeaf, key == drive || model.at(key)) << key;
    });
  }

  const std::string drive = At("drive").native();
  bench::AgreeingDialogs agreeing;
  std::mt19937 chance;
  std::map<std::string, bool> model;
};

TEST_F(RandomTree, TreeAndDiskStayEqual) {
  const unsigned seed =
      std::getenv("QUILLMARK_SEED") ? std::stoul(std::getenv("QUILLMARK_SEED")) : std::random_device()();
  SCOPED_TRACE("QUILLMARK_SEED=" + std::to_string(seed));
  chance.seed(seed);
  Sync();
  for (int step = 0; step < 2000 && !HasFailure(); ++step) {
    SCOPED_TRACE(step);
    Step();
    Settle();
    Compare();
  }
}

}  // namespace
