// Random operations on the tree with the real engine against a plain model of the disk.
#include "tests/program/TreeFilesTest.h"
#include "ui/desktop/operations/DesktopFileOperations.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <set>

namespace {

using ui::Answer;
using ui::Buttons;
using ui::Icon;

class RandomTree : public TreeFilesTest {
 protected:
  enum Kind { kFile, kFolder, kLink, kLinkOutside };

  RandomTree() {
    program().SetFileOperations(std::make_unique<ui::DesktopFileOperations>(skipping));
    MakeFolders({"drive", "outside"});
    Put("outside/kept", "kept");
    desktop.volumes = {drive};
    EXPECT_TRUE(Directory().Change(drive));
  }

  int Chance(int below) { return static_cast<int>(chance() % static_cast<unsigned>(below)); }
  std::string NewName() {
    static const char* const kNames[] = {"a",    "b b",  "\u05D0\u05D1", "stray\xFF", "line\nbreak",
                                         "&<b>", "Case", "case",         ".hidden"};
    return kNames[Chance(9)] + (Chance(2) ? std::to_string(Chance(30)) : std::string());
  }
  static std::string Parent(const std::string& path) { return path.substr(0, path.rfind('/')); }
  static std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }
  static bool IsIn(const std::string& path, const std::string& above) {
    return path == above || path.starts_with(above + "/");
  }
  // All nodes, the root first.
  std::vector<std::string> NodeKeys() {
    std::vector<std::string> keys;
    Walk(foldertree::NodeTable::kRoot, [&](ui::TreePlace node) { keys.push_back(Tree().Nodes().Key(node)); });
    return keys;
  }
  template <class Call>
  void Walk(ui::TreePlace node, Call call) {
    call(node);
    const ui::TreeList below = Tree().Nodes().ListBelow(node);
    for (int row = 0; row < Tree().Nodes().Count(below); ++row) Walk({below, row}, call);
  }
  // None that is seen by way of a link.
  std::string AnyNode() {
    auto keys = NodeKeys();
    std::erase_if(keys, [this](const std::string& key) { return key != drive && !model.contains(key); });
    return keys[static_cast<size_t>(Chance(static_cast<int>(keys.size())))];
  }
  std::string AnyFolder() {
    for (;;)
      if (const std::string key = AnyNode(); key == drive || model.at(key) == kFolder) return key;
  }

  void Forget(const std::string& path) {
    std::erase_if(model, [&](const auto& entry) { return IsIn(entry.first, path); });
  }
  void Take(const std::string& from, const std::string& to) {
    std::map<std::string, Kind> taken;
    for (const auto& [path, kind] : model)
      if (IsIn(path, from)) taken[to + path.substr(from.size())] = kind;
    model.merge(taken);
  }
  void Make(const std::string& path, Kind kind) {
    model[path] = kind;
    if (kind == kFolder) std::filesystem::create_directory(path);
    if (kind == kFile) std::ofstream(path) << path;
    if (kind == kLink) std::filesystem::create_symlink(Chance(2) ? "nowhere" : Key("outside/kept"), path);
    if (kind == kLinkOutside) std::filesystem::create_symlink(Key("outside"), path);
  }

  void Step() {
    switch (Chance(11)) {
      case 0:
      case 1: {  // what another program makes, seen after a refresh
        const std::string above = AnyFolder(), path = above + "/" + NewName();
        if (model.contains(path)) return;
        Make(path, std::array{kFile, kFile, kFolder, kFolder, kLink, kLinkOutside}[static_cast<size_t>(Chance(6))]);
        Tree().Select(above);
        if (Tree().ImageOf(above) == ui::TreeImage::kClosed) Tree().ToggleFolderNode(above);
        return Tree().RefreshFolderNode(above);
      }
      case 2: {
        const std::string node = AnyNode();
        const std::string above = node == drive || model.at(node) == kFolder ? node : Parent(node);
        if (node != drive && model.at(node) == kLinkOutside) return;
        std::string path = above + "/New Folder";
        for (int i = 1; model.contains(path); ++i) path = above + "/New Folder" + std::to_string(i);
        model[path] = kFolder;
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
        return Tree().ToggleFolderNode(AnyNode());
      case 8:
      case 9:
        return ChangeBehindTheTree();
      default:
        static_cast<void>(Directory().Change(AnyFolder()));
        return Tree().mnuTreeSync_Click();
    }
  }
  void Rename(const std::string& key) {
    if (key == drive) return;
    const std::string name = Chance(3) ? "renamed " + std::to_string(Chance(1000)) : "a", to = Parent(key) + "/" + name;
    if (to == key) return;
    if (model.contains(to)) {
      ExpectError(Error(Parent(key), "File exists"));
    } else {
      Take(key, to);
      Forget(key);
    }
    Tree().Select(key);
    View().StartLabelEdit();
    EnterName(QString::fromStdString(name));
  }
  // Anything, taken names and folders with what is in them too; in the order of the index.
  std::vector<std::string> CheckSome() {
    Tree().mnuTreeClearSelections_Click();
    for (int i = Chance(3); i >= 0; --i)
      if (const std::string key = AnyNode(); key != drive) Tree().Check(key);
    const std::string above = AnyNode();
    if (above != drive && Chance(2)) {
      Tree().Check(above);
      for (const std::string& key : NodeKeys())
        if (model.contains(key) && Parent(key) == above) Tree().Check(key);
    }
    return Tree().Nodes().CheckedKeys();
  }
  static bool IsBelowAnother(const std::string& path, const std::vector<std::string>& keys) {
    return std::ranges::any_of(keys, [&](const auto& key) { return key != path && IsIn(path, key); });
  }
  void Transfer(bool move) {
    const std::string target = AnyFolder();
    const std::vector<std::string> keys = CheckSome();
    bool intoItself = false;
    for (const std::string& key : keys) {
      const std::string to = target + "/" + NameOf(key);
      if (move && IsBelowAnother(key, keys)) continue;
      if (model.at(key) == kFolder && IsIn(target, key)) {
        intoItself = true;
      } else if (!model.contains(to)) {
        Take(key, to);
        if (move) Forget(key);
      }
    }
    if (intoItself) dialogs.Message("5", Buttons::kOk, Icon::kNone, Answer::kOk);
    Q_EMIT View().FilesDropped({target, keys, move, true});
  }
  void Delete() {
    if (Chance(3) != 0) return;  // things should come to be
    const std::vector<std::string> keys = CheckSome();
    if (keys.empty()) return;
    for (const std::string& key : keys) Forget(key);
    Files().DeleteTreeItems(false);
  }
  // Something goes, or becomes something else, and the tree only learns of it by using it.
  void ChangeBehindTheTree() {
    const std::string key = AnyNode(), above = Parent(key);
    if (key == drive || IsBelowCurrent(key)) return;
    const ui::TreeImage image = Tree().ImageOf(key);
    const std::string renamed = above + "/renamed";
    std::filesystem::remove_all(key);
    Forget(key);
    const bool exists = Chance(2), folder = exists && Chance(2);
    if (exists) Make(key, folder ? kFolder : kFile);
    const auto cannotResolve = [&] {
      ExpectCannotResolve(std::filesystem::path(key).lexically_relative(this->folder()).native(),
                          exists ? "Not a directory" : "No such file or directory");
    };
    Tree().Select(key);
    switch (Chance(4)) {
      case 0:
        if (image == ui::TreeImage::kClosed && !folder) cannotResolve();
        Tree().ToggleFolderNode(key);
        break;
      case 1:
        if (!exists) dialogs.Message("53", Buttons::kOk, Icon::kNone, Answer::kOk);
        Files().mnuRCTreeDelete_Click();
        Forget(key);
        break;
      case 2:
        if (renamed == key) break;
        if (!exists || model.contains(renamed))
          ExpectError(Error(above, exists ? "File exists" : "No such file or directory"));
        else
          Take(key, renamed), Forget(key);
        View().StartLabelEdit();
        EnterName("renamed");
        break;
      default:
        if (image == ui::TreeImage::kOpen && exists && !folder) cannotResolve();
        Tree().mnuTreeRefresh_Click();
    }
    Tree().RefreshFolderNode(above);
  }
  bool IsBelowCurrent(const std::string& key) { return IsIn(Directory().path().native(), key); }

  std::map<std::string, Kind> OnDisk() {
    std::map<std::string, Kind> disk;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(drive)) {
      const bool link = entry.is_symlink();
      disk[entry.path().native()] = link && entry.is_directory() ? kLinkOutside
                                    : link                       ? kLink
                                    : entry.is_directory()       ? kFolder
                                                                 : kFile;
    }
    return disk;
  }
  void Compare() {
    ASSERT_EQ(OnDisk(), model);
    ASSERT_EQ(Bytes(At("outside/kept")), "kept") << "a link was followed";
    const foldertree::NodeTable& nodes = Tree().Nodes();
    Walk(foldertree::NodeTable::kRoot, [&](ui::TreePlace node) {
      const std::string key = nodes.Key(node);
      if (key != drive && !model.contains(key)) return;  // by way of a link
      std::set<std::string> shown, expected;
      for (int row = 0; row < nodes.Count(nodes.ListBelow(node)); ++row)
        shown.insert(nodes.Key({nodes.ListBelow(node), row}));
      const bool open = nodes.Image(node) == ui::TreeImage::kOpen || nodes.Image(node) == ui::TreeImage::kRoot;
      for (const auto& [path, kind] : model)
        if (open && Parent(path) == key && path[key.size() + 1] != '.') expected.insert(path);
      const Kind kind = key == drive ? kFolder : model.at(key);
      if (open && kind == kLinkOutside) expected.insert(key + "/kept");
      EXPECT_EQ(shown, expected) << key;
      EXPECT_EQ(nodes.Image(node) != ui::TreeImage::kLeaf, kind == kFolder || kind == kLinkOutside) << key;
    });
  }

  const std::string drive = At("drive").native();
  SkippingDialogs skipping;
  std::mt19937 chance;
  std::map<std::string, Kind> model;
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
