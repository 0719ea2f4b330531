// Paths as bytes behind what is drawn of them.
#include "ui/PathText.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace {

struct DisplayCase {
  std::string bytes;
  QString shown;
};

TEST(PathText, Display) {
  const DisplayCase cases[] = {
      {"/home/me/a.txt", "/home/me/a.txt"},
      {"gr\xC3\xBC\xC3\x9F", QString::fromUtf8("gr\xC3\xBC\xC3\x9F")},
      {"caf\xE9", QString("caf") + QChar(0xFFFD)},
      {"a\nb\tc", QString("a") + QChar(0xFFFD) + "b" + QChar(0xFFFD) + "c"},
      {"<b>a & b</b>", "<b>a & b</b>"},
  };
  for (const DisplayCase& c : cases) EXPECT_EQ(ui::DisplayText(c.bytes), c.shown);
  EXPECT_EQ(ui::DoubleAmpersands("a & b && c"), "a && b &&&& c");
}

class PathOfChosen : public ::testing::Test {
 protected:
  PathOfChosen() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillmark-ui-XXXXXX").native();
    folder_ = mkdtemp(pattern.data());
  }
  ~PathOfChosen() override { std::filesystem::remove_all(folder_); }
  files::Path Put(const std::string& name) {
    std::ofstream(folder_ / name) << "x";
    return folder_ / name;
  }
  QString Shown(const std::string& name) { return ui::DisplayText((folder_ / name).native()); }

  files::Path folder_;
};

TEST_F(PathOfChosen, TheProposedNameComesBackWithItsBytes) {
  const files::Path proposed = folder_ / "n\xE9w";
  EXPECT_EQ(ui::PathOfChosen(ui::DisplayText(proposed.native()), proposed), proposed);
}

TEST_F(PathOfChosen, AnUndecodableNameIsFoundInItsFolder) {
  std::filesystem::create_directory(folder_ / "d\xFF");
  std::ofstream(folder_ / "d\xFF" / "caf\xE9.txt") << "x";
  EXPECT_EQ(ui::PathOfChosen(Shown("d\xFF") + "/" + ui::DisplayText("caf\xE9.txt")), folder_ / "d\xFF" / "caf\xE9.txt");
}

TEST_F(PathOfChosen, TwoNamesThatLookAlikeAreNotGuessed) {
  Put("a\xE9");
  Put("a\xEA");
  EXPECT_EQ(ui::PathOfChosen(Shown("a\xE9")).native(), folder_.native() + "/a\xEF\xBF\xBD");
}

}  // namespace
