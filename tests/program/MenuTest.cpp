// The menu bar as the user finds it.
#include "tests/program/ProgramTest.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>

#include <map>
#include <set>

namespace {

using documents::frmText;

class MenuTest : public ProgramTest {
 protected:
  ui::MenuBar& Bar() { return program().menus().bar(); }
  size_t Row(const std::string& name) {
    for (size_t i = 0; i < Bar().rowCount(); ++i)
      if (name == Bar().row(i).name) return i;
    ADD_FAILURE() << "no row " << name;
    return 0;
  }
  const QAction& Action(const std::string& name) { return *Bar().action(Row(name)); }
  void Choose(const std::string& name) { const_cast<QAction&>(Action(name)).trigger(); }
  // What a menu shows, "-" for a separator, "v " before a check.
  QStringList Shown(const std::string& menu) {
    program().menus().Fill();
    QStringList texts;
    for (const QAction* action : Bar().menu(Row(menu))->actions()) {
      if (!action->isVisible()) continue;
      const QString check = action->isChecked() ? "v " : "";
      texts += action->isSeparator() ? QString("-") : check + action->text().section('\t', 0, 0);
    }
    return texts;
  }
  // Pairs that share a letter: captions like these are what users look for.
  static bool Clash(const std::string& a, const std::string& b) {
    static const std::set<std::pair<std::string, std::string>> kClashes = {
        {"mnuNewProject", "mnuNew"},
        {"mnuSaveProjectAs", "mnuSaveFileAs"},
        {"mnuSaveProject", "mnuPrint"},
        {"mnuSaveProject", "mnuCopyPath"},
        {"mnuAddFile", "mnuAddAll"},
        {"mnuAddFile", "mnuSelectAll"},
        {"mnuAddAll", "mnuSelectAll"},
        {"mnuSaveProjectAs", "mnuOpenAutoComplete"},
        {"mnuSelAll", "mnuAutoComplete"},
        {"mnuDelete", "mnuTime"},
        {"mnuIntFTP", "mnuVelloraFTP"},
        {"mnuLinkAdd", "mnuRemoveFile"},
        {"mnuNewProject", "mnuNotesOpen"},
        {"mnuNewProject", "mnuNotesSave"},
        {"mnuTreeSync", "mnuTreeClearSelections"},
        {"mnuTreeAdd2List", "mnuTreeSync"},
        {"mnuTreeAdd2List", "mnuTreeClearSelections"},
        {"mnuTreeDirChg", "mnuTreeDelete"},
        {"mnuTreeRename", "mnuTreeRefresh"},
    };
    return kClashes.contains({a, b});
  }
  void ExpectTidy(const std::string& menu) {
    const QStringList shown = Shown(menu);
    ASSERT_FALSE(shown.isEmpty()) << menu;
    EXPECT_NE(shown.front(), "-") << menu;
    EXPECT_NE(shown.back(), "-") << menu;
    for (qsizetype i = 1; i < shown.size(); ++i) EXPECT_FALSE(shown[i] == "-" && shown[i - 1] == "-") << menu;
  }
  void ExpectRules() {
    // The letters of each open menu, the bar's first.
    std::vector<std::map<QChar, QString>> mnemonics(1);
    for (size_t i = 0; i < Bar().rowCount(); ++i) {
      if (Bar().row(i).kind == ui::MenuRowKind::kEnd) mnemonics.pop_back();
      const QAction* action = Bar().action(i);
      if (!action || action->isSeparator()) continue;
      const bool menu = Bar().row(i).kind == ui::MenuRowKind::kMenu;
      if (action->isVisible()) {
        if (menu) ExpectTidy(Bar().row(i).name);
        const qsizetype at = action->text().indexOf('&');
        ASSERT_GE(at, 0) << Bar().row(i).name << " has no mnemonic";
        const QChar letter = action->text()[at + 1].toLower();
        const auto [other, unique] = mnemonics.back().emplace(letter, Bar().row(i).name);
        EXPECT_TRUE(unique || Clash(other->second.toStdString(), Bar().row(i).name))
            << Bar().row(i).name << " and " << other->second.toStdString();
      }
      if (menu) mnemonics.emplace_back();
    }
  }
};

TEST_F(MenuTest, SeparatorsPartItemsAndLettersNameOne) {
  ExpectRules();
  New();
  ExpectRules();
}

TEST_F(MenuTest, FromAPaneNoKeyEditsTheDocument) {
  New();
  const char* const kEditing[] = {"mnuBold",    "mnuItalic",       "mnuUnderline", "mnuEmphasisRemove",
                                  "mnuRefresh", "mnuAutoComplete", "mnuFindNext"};
  program().frame().leftPane().List1().setFocus();
  for (const char* row : kEditing) EXPECT_TRUE(Action(row).shortcut().isEmpty()) << row;
  EXPECT_EQ(Action("mnuSaveFile").shortcut(), QKeySequence("Ctrl+S"));
  table().Active()->Activate();
  for (const char* row : kEditing) EXPECT_FALSE(Action(row).shortcut().isEmpty()) << row;
}

TEST_F(MenuTest, ChecksFollowTheSelection) {
  New();
  EXPECT_EQ(Shown("mnuAlign"), (QStringList{"v &left", "&center", "&right"}));
  Choose("mnuAlignCenter");
  EXPECT_EQ(Shown("mnuAlign"), (QStringList{"&left", "v &center", "&right"}));
  Choose("mnuAlignCenter");
  EXPECT_EQ(Shown("mnuAlign"), (QStringList{"&left", "v &center", "&right"})) << "a click alone changes no check mark";
  Choose("mnuBold");
  EXPECT_EQ(Shown("mnuEmphasis").front(), "v &Bold");
  Choose("mnuBold");
  EXPECT_EQ(Shown("mnuEmphasis").front(), "&Bold");
}

TEST_F(MenuTest, OpenDocumentsAreListedInSlotOrder) {
  Open(Put("a & b.txt", ""));
  New();
  Open(Put("c.txt", ""));
  const QString folderText = QString::fromStdString(folder().native());
  EXPECT_EQ(Shown("mnuWindow").mid(Shown("mnuWindow").lastIndexOf("-") + 1),
            (QStringList{"&1 " + folderText + "/a && b.txt", "&2 Untitled:2", "v &3 " + folderText + "/c.txt"}));
  for (int i = 0; i < 7; ++i) New();
  EXPECT_EQ(Shown("mnuWindow").mid(Shown("mnuWindow").size() - 2), (QStringList{"&9 Untitled:9", "v Untitled:10"}));
  for (QAction* action : Bar().menu(Row("mnuWindow"))->actions())
    if (action->text() == "&2 Untitled:2") action->trigger();
  EXPECT_EQ(table().Active()->caption(), "Untitled:2");
}

TEST_F(MenuTest, ThePasteFormsAreEnabledByWhatTheClipboardHolds) {
  New();
  QGuiApplication::clipboard()->setText(QStringLiteral("text"));
  Q_EMIT Bar().AboutToShow(Row("mnuEdit"));
  EXPECT_TRUE(Action("mnuPasteAsText").isEnabled());
  EXPECT_FALSE(Action("mnuPasteAsRTF").isEnabled());
}

}  // namespace
