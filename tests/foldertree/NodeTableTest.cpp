#include "files/Attributes.h"
#include "foldertree/NodeTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using foldertree::NodeTable;
using testing::ElementsAre;

class NodeTableTest : public testing::Test {
 protected:
  NodeTableTest() { nodes.SetRoot("/"); }

  // Names that end in "/" are folders.
  void List(const std::string& folder, std::vector<std::string> names) {
    std::vector<int> attributes;
    for (std::string& name : names) {
      attributes.push_back(name.ends_with('/') ? files::kDirectory : 0);
      if (name.ends_with('/')) name.pop_back();
    }
    const ui::TreePlace place = *nodes.Find(folder);
    nodes.SetChildren(place, nodes.Sort(names, attributes, nodes.Checked(place)));
  }
  void Check(const std::string& key) { nodes.SetChecked(*nodes.Find(key), true); }
  std::vector<std::string> Texts(const std::string& folder) {
    const ui::TreeList list = nodes.ListBelow(*nodes.Find(folder));
    std::vector<std::string> texts;
    for (int row = 0; row < nodes.Count(list); ++row) texts.emplace_back(nodes.Text({list, row}));
    return texts;
  }

  NodeTable nodes;
};

TEST_F(NodeTableTest, SortsWithoutRegardToCaseAndFindsEachKey) {
  List("/", {"b", "\u00C4", "A/", "a", "\xFF", "B", "A b", "a", "z\nz", "\u00E4x"});
  EXPECT_THAT(Texts("/"), ElementsAre("A", "a", "A b", "B", "b", "z\nz", "\u00C4", "\u00E4x", "\xFF"));
  List("/A", {"x/"});
  List("/A/x", {"y"});
  for (const char* key : {"/", "/a", "/A", "/B", "/A/x", "/A/x/y", "/\xFF", "/z\nz"}) {
    ASSERT_TRUE(nodes.Find(key)) << key;
    EXPECT_EQ(nodes.Key(*nodes.Find(key)), key);
  }
  EXPECT_EQ(nodes.Key(*nodes.Find("/A/X")), "/A/x") << "no such file on the disk, so letter case does not count";
  for (const char* key : {"", "a", "/c", "/a/x", "/A/x/y/z", "//"}) EXPECT_FALSE(nodes.Find(key)) << key;
}

TEST_F(NodeTableTest, KeepsTheOrderOfAddingAndThePlacesOfWhatMoves) {
  List("/", {"z", "m/", "a"});
  List("/m", {"2", "1"});
  for (const char* key : {"/a", "/m/1", "/z", "/m/2", "/m"}) Check(key);
  nodes.AddFolder(NodeTable::kRoot, nodes.RowFor(NodeTable::kRoot, "New Folder"), "New Folder");
  nodes.AddFolder(NodeTable::kRoot, nodes.RowFor(NodeTable::kRoot, "0"), "0");
  EXPECT_THAT(Texts("/"), ElementsAre("0", "a", "m", "New Folder", "z"));
  Check("/0");
  Check("/New Folder");
  EXPECT_THAT(nodes.CheckedKeys(), ElementsAre("/z", "/m", "/a", "/m/2", "/m/1", "/New Folder", "/0"));
  EXPECT_EQ(nodes.Key(nodes.PlaceOf(nodes.ListBelow(*nodes.Find("/m")))), "/m");
  const auto remove = [&](const std::string& key) { nodes.Remove(nodes.Find(key)->list, {nodes.Find(key)->row}); };
  remove("/a");
  EXPECT_EQ(nodes.Key(*nodes.Find("/m/1")), "/m/1");
  EXPECT_EQ(nodes.count(), 7u);
  remove("/m");
  EXPECT_THAT(nodes.CheckedKeys(), ElementsAre("/z", "/New Folder", "/0"));
  nodes.RemoveChildren(NodeTable::kRoot);
  EXPECT_EQ(nodes.count(), 1u);
}

TEST(NodeTable, ARootThatIsNoSeparator) {
  NodeTable nodes;
  EXPECT_FALSE(nodes.Find("/media/usb"));
  nodes.SetRoot("/media/usb");
  nodes.SetChildren(NodeTable::kRoot, nodes.Sort({"a"}, {0}, true));
  EXPECT_EQ(nodes.Key(*nodes.Find("/media/usb/a")), "/media/usb/a");
  EXPECT_THAT(nodes.CheckedKeys(), ElementsAre("/media/usb/a"));
  for (const char* key : {"/media", "/media/usb2", "/media/usb2/a"}) EXPECT_FALSE(nodes.Find(key)) << key;
}

}  // namespace
