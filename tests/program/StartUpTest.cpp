// The start and the end of the program: what is read, opened, written, and in which order.
#include "tests/program/ProgramTest.h"
#include "ui/frame/ChildArea.h"
#include "ui/frame/LeftPane.h"
#include "ui/frame/ToolBar.h"

#include <QMainWindow>

namespace {

constexpr const char* kName = "Quillmark";
constexpr const char* kGeneral = "General";
constexpr const char* kNoWordFile = "No Auto-Complete file has been loaded.  Please click 'Help' for more information";
using Pairs = services::SettingsStore::Pairs;

class StartUpTest : public ProgramTest {
 protected:
  void Store(const Pairs& pairs) {
    shell::SettingsFile(place.application.settings, place.recovery).SaveSettings(kName, kGeneral, pairs);
  }
  Pairs Stored() const {
    return shell::SettingsFile(place.application.settings, place.recovery, shell::SettingsFile::Access::kReadOnly)
        .GetAllSettings(kName, kGeneral);
  }
  std::string Stored(const std::string& key) const {
    for (const auto& [name, value] : Stored())
      if (name == key) return value;
    return "missing";
  }
  bool End() {
    const bool ended = program().frame().RequestClose();
    Settle();
    return ended;
  }
};

TEST_F(StartUpTest, AnEmptyStoreGivesTheDefaults) {
  std::filesystem::remove_all(place.application.settings.parent_path());
  ExpectError(kNoWordFile);
  Restart();
  for (const services::SettingRow& row : services::SettingTable()) {
    if (row.key == "Extensions") {
      EXPECT_EQ(services::ToText(row, program().settings()), ".txt,.htm*,.js,.css,.xml,.rtf") << "none means these";
      continue;
    }
    if (row.key == "QuoteFile" || row.key == "NotesFile" || row.key == "TextBlocks" || row.key == "AutoTagFile")
      continue;  // set by the first run
    EXPECT_EQ(services::ToText(row, program().settings()), row.fallback) << row.key;
  }
}

TEST_F(StartUpTest, SettingsTakeEffect) {
  Store({{"Extensions", ".abc,.rtf"},
         {"Font", "DejaVu Sans,12.5"},
         {"Tabs", "720,1440"},
         {"rtbBackColor", "255"},
         {"ListFontSize", "14"},
         {"ToolBarStyle", "0"}});
  Restart();
  EXPECT_EQ(program().documentFilter(), ".abc|*.abc|.rtf|*.rtf|All Files|*.*");
  EXPECT_EQ(program().frame().leftPane().List1().fontSize(), 14);
  EXPECT_EQ(program().frame().toolbar().style(), 0);
  ui::RichTextBox& box = New().RichTextBox1();
  EXPECT_EQ(box.SelFontName(), "DejaVu Sans");
  EXPECT_EQ(box.SelFontSize(), 12.5);
  EXPECT_EQ(box.grab().toImage().pixelColor(box.width() / 2, box.height() / 2), QColor(255, 0, 0));
  program().settings().DocBackColor = services::kSystemWindowColour;
  program().InitDocProperties(table().Active()->slot());
  EXPECT_EQ(box.grab().toImage().pixelColor(box.width() / 2, box.height() / 2), box.palette().color(QPalette::Base));
}

TEST_F(StartUpTest, TheEndWritesItsKeysInTheirOrder) {
  std::filesystem::remove_all(place.application.settings.parent_path());
  ExpectError(kNoWordFile);
  Restart();
  const size_t before = Stored().size();
  ASSERT_TRUE(End());
  Pairs stored = Stored();
  stored.erase(stored.begin(), stored.begin() + static_cast<ptrdiff_t>(before));
  EXPECT_EQ(stored, (Pairs{{"WindowSize", "0"},
                           {"SaveArrange", "-1"},
                           {"QuotesState", "-1"},
                           {"TextState", "-1"},
                           {"TextBlocksState", "-1"},
                           {"MyPadState", "-1"},
                           {"ToolBarStyle", "1"},
                           {"ListFontSize", "10"},
                           {"PlusImage", "14"},
                           {"MyPadSize", "6780,4230"}}));
}

TEST_F(StartUpTest, ValuesOfOtherFeaturesComeBackUnchanged) {
  const Pairs pairs = {{"SaveWindowState", "True"}, {"WindowSize", "0"},      {"SaveArrange", "2"},
                       {"TextState", "2"},          {"ToolBarStyle", "0"},    {"ListFontSize", "8.25"},
                       {"PlusImage", "12"},         {"MyPadSize", "500,300"}, {"Most Recent", "3"},
                       {"AutoCopy", "1"},           {"EmailApp", "m\xFF"},    {"Unknown", "kept"}};
  Store(pairs);
  Restart();
  EXPECT_EQ(program().settings().MyPadSize, (services::PadSize{500, 300}));
  ASSERT_TRUE(End());
  for (const auto& [key, value] : pairs) EXPECT_EQ(Stored(key), value) << key;
}

TEST_F(StartUpTest, ClosedBeforeItWasPaintedItChangesNoValue) {
  const Pairs pairs = {{"ToolBarStyle", "0"}, {"PlusImage", "12"}, {"ListFontSize", "14"}};
  Store(pairs);
  shell::frmMyMDI hasty(dialogs, desktop, place);
  hasty.Start({At("never opened.txt")});
  EXPECT_TRUE(hasty.frame().RequestClose());
  for (const auto& [key, value] : pairs) EXPECT_EQ(Stored(key), value) << key;
  Settle();
  EXPECT_FALSE(hasty.documents().AnyDocumentOpen());
}

TEST_F(StartUpTest, StatesAreWrittenThoughTheyAreNotRead) {
  Store({{"SaveWindowState", "False"},
         {"WindowSize", "2"},
         {"TextState", "2"},
         {"SaveArrange", "1"},
         {"MyPadSize", "5000,3000"}});
  Restart();
  EXPECT_EQ(program().frame().windowState(), ui::WindowState::kNormal);
  EXPECT_EQ(table().LastDocWindowState, -1);
  EXPECT_EQ(program().settings().MyPadSize, services::PadSize());
  ASSERT_TRUE(End());
  EXPECT_EQ(Stored("MyPadSize"), "6780,4230");
  EXPECT_EQ(Stored("TextState"), "-1");
  EXPECT_EQ(Stored("WindowSize"), "0");
}

TEST_F(StartUpTest, TheWindowsState) {
  const struct {
    const char* stored;
    ui::WindowState shown;
  } rows[] = {{"2", ui::WindowState::kMaximized},
              {"0", ui::WindowState::kNormal},
              {"1", ui::WindowState::kNormal},
              {"7", ui::WindowState::kNormal},
              {"abc", ui::WindowState::kNormal}};
  for (const auto& row : rows) {
    Store({{"SaveWindowState", "True"}, {"WindowSize", row.stored}});
    Restart();
    EXPECT_EQ(program().frame().windowState(), row.shown) << row.stored;
    EXPECT_TRUE(program().frame().widget()->isVisible());
  }
}

TEST_F(StartUpTest, MinimisedItKeepsTheSizeOfBefore) {
  Store({{"SaveWindowState", "True"}, {"WindowSize", "2"}});
  Restart();
  program().frame().SetWindowState(ui::WindowState::kMinimized);
  Settle();
  ASSERT_TRUE(End());
  EXPECT_EQ(Stored("WindowSize"), "2");
  EXPECT_EQ(Stored("MyPadSize"), "6780,4230");
}

TEST_F(StartUpTest, DocumentsComeBackInTheStateOfTheLastOne) {
  Store({{"SaveWindowState", "True"}});
  Restart();
  New().SetWindowState(ui::WindowState::kMaximized);
  ExpectClosePrompt("Untitled:1", ui::Answer::kNo);
  ASSERT_TRUE(End());
  EXPECT_EQ(Stored("TextState"), "2");
  Restart();
  EXPECT_EQ(New().windowState(), ui::WindowState::kMaximized);
  EXPECT_EQ(table().LastDocWindowState, -1);
}

TEST_F(StartUpTest, TheArrangementChosenLast) {
  program().commands().mnuWindowTileVertical_Click();
  ASSERT_TRUE(End());
  EXPECT_EQ(Stored("SaveArrange"), "2");
}

TEST_F(StartUpTest, ACancelledEndWritesNothing) {
  New();
  const Pairs before = Stored();
  ExpectClosePrompt("Untitled:1", ui::Answer::kCancel);
  EXPECT_FALSE(End());
  EXPECT_EQ(Stored(), before);
  EXPECT_TRUE(program().frame().widget()->isVisible());
}

TEST_F(StartUpTest, PathsAreOpenedInTheirOrder) {
  Store({{"AutoLoadProject", "True"}, {"Most Recent", "1"}});
  paths = {Put("b.txt", "b"), At("missing.txt"), folder(), Put("a.txt", "a"), At("b.txt")};
  ExpectError(Error(folder(), "Is a directory"));
  Restart();
  ASSERT_EQ(table().UpperBound(), 3);
  EXPECT_EQ(table().Document(1)->caption(), At("b.txt").native());
  EXPECT_EQ(table().Document(2)->caption(), At("missing.txt").native());
  EXPECT_EQ(table().Document(3)->caption(), At("a.txt").native());
  EXPECT_EQ(table().Active(), table().Document(1)) << "asked for again at the end";
  EXPECT_TRUE(program().settings().AutoLoadProject);
}

TEST_F(StartUpTest, ASecondCopyWorksButIsNotTheFirst) {
  EXPECT_FALSE(program().otherInstanceRuns());
  {
    shell::frmMyMDI second(dialogs, desktop, place);
    second.Start({Put("a.txt", "a")});
    Settle();
    EXPECT_TRUE(second.otherInstanceRuns());
    EXPECT_TRUE(second.documents().AnyDocumentOpen());
  }
  Restart();
  EXPECT_FALSE(program().otherInstanceRuns());
}

TEST_F(StartUpTest, ADamagedStoreIsToldOfOnceTheWindowIsThere) {
  Put("config/settings.json", "{\"cut");
  const files::Path kept = At("config/settings.damaged.json");
  bool shown = false;
  const QString reason =
      "The settings could not be read and are the usual ones now.\r\nparse error at line 1, column 6: syntax error "
      "while "
      "parsing object key - invalid string: missing closing quote; last read: '\"cut'; expected string literal";
  ExpectError(kNoWordFile);
  dialogs.Message(File(At("config/settings.json"), reason + "\r\nThe file is kept as\r\n" + kept.c_str()),
                  ui::Buttons::kOk, ui::Icon::kExclamation, ui::Answer::kOk,
                  [&] { shown = program().frame().widget()->isVisible(); });
  Restart();
  EXPECT_TRUE(shown);
  EXPECT_EQ(Bytes(kept), "{\"cut");
}

TEST_F(StartUpTest, AStoreThatIsDamagedMeanwhileIsWrittenAnew) {
  Put("config/settings.json", "{\"cut");
  const files::Path kept = At("config/settings.damaged.json");
  const QString reason =
      "The file was damaged while the program ran, and has been written anew.\r\nparse error at line 1, column 6: "
      "syntax error while parsing object key - invalid string: missing closing quote; last read: '\"cut'; expected "
      "string literal";
  ExpectError(File(At("config/settings.json"), reason + "\r\nThe file is kept as\r\n" + kept.c_str()));
  EXPECT_TRUE(End());
  EXPECT_EQ(Stored("WindowSize"), "0");
}

TEST_F(StartUpTest, TheToolbarsLayoutComesBack) {
  ui::ToolBar& toolbar = program().frame().toolbar();
  ASSERT_GT(toolbar.count(), 2u);
  const std::vector<ui::ToolBarPlace> atFirst = toolbar.places();
  std::vector<ui::ToolBarPlace> places = atFirst;
  std::swap(places.front(), places.back());
  toolbar.Arrange(places);
  const std::string layout = toolbar.Layout();
  shell::SettingsFile stored(place.application.settings, {}, shell::SettingsFile::Access::kReadOnly);
  EXPECT_EQ(stored.FindRootValue("Quillmark Toolbar1"), layout);
  Restart();
  EXPECT_EQ(program().frame().toolbar().Layout(), layout);
  program().settingsStore().SaveRootValue("Quillmark Toolbar1", "no layout");
  Restart();
  EXPECT_EQ(program().frame().toolbar().places(), atFirst);
}

}  // namespace
