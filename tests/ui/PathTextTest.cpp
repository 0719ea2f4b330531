// Paths as bytes behind what is drawn of them.
#include "ui/PathText.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <random>

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
      {"a\xE2\x80\xA8"
       "b\xE2\x80\xAEtxt.c",
       QString("a") + QChar(0xFFFD) + "b" + QChar(0xFFFD) + "txt.c"},
      {"\u05D0\u200F.txt", QString::fromUtf8("\u05D0\u200F.txt")},
      {"<b>a & b</b>", "<b>a & b</b>"},
  };
  for (const DisplayCase& c : cases) EXPECT_EQ(ui::DisplayText(c.bytes), c.shown);
  EXPECT_EQ(ui::DoubleAmpersands("a & b && c"), "a && b &&&& c");
}

TEST(PathText, ToolTips) {
  const QString longText(101, 'x');
  const std::pair<QString, QString> rows[] = {
      {"a & b", "a & b"},
      {"<b>a</b>", "<p style='white-space:pre'>&lt;b&gt;a&lt;/b&gt;</p>"},
      {longText, "<p style='white-space:pre-wrap'>" + longText + "</p>"},
  };
  for (const auto& [text, shown] : rows) EXPECT_EQ(ui::PlainToolTip(text), shown);
}

// What was typed before or behind a name leaves its bytes alone, whatever they are.
TEST(PathText, EditedNames) {
  const unsigned seed =
      std::getenv("QUILLMARK_SEED") ? std::stoul(std::getenv("QUILLMARK_SEED")) : std::random_device()();
  SCOPED_TRACE("QUILLMARK_SEED=" + std::to_string(seed));
  std::mt19937 chance(seed);
  constexpr std::string_view kBytes =
      "a\n\xEF\xBB\xBF\xBD\xC3\xA9\xE2\x80\xAE\x82\xAC\xF0\x9F\x98\x80\xED\xA0\xF4\x90\xC0\xFF";
  for (int i = 0; i < 5000 && !::testing::Test::HasFailure(); ++i) {
    std::string name;
    for (size_t size = 1 + chance() % 9; name.size() < size;) name += kBytes[chance() % kBytes.size()];
    const QString shown = ui::DisplayText(name);
    SCOPED_TRACE(::testing::PrintToString(name));
    EXPECT_EQ(ui::EditedName(name, shown), name);
    EXPECT_EQ(ui::EditedName(name, "x" + shown), "x" + name);
    EXPECT_EQ(ui::EditedName(name, shown + "x"), name + "x");
  }
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
