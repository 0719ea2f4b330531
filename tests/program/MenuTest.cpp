// The menu bar as the user finds it.
#include "tests/program/ProgramTest.h"
#include "ui/desktop/Clipboard.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QMenuBar>

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
  QStringList TopLevel() {
    QStringList texts;
    for (const QAction* action : program().frame().menuBar().actions())
      if (action->isVisible()) texts += action->text();
    return texts;
  }
  // Captions that are given, so that their letters cannot be others.
  static bool IsGiven(const std::string& a, const std::string& b) {
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
    std::map<QKeySequence, std::string> keys;
    // The letters of each open menu, the bar's first.
    std::vector<std::map<QChar, QString>> mnemonics(1);
    for (size_t i = 0; i < Bar().rowCount(); ++i) {
      if (Bar().row(i).kind == ui::MenuRowKind::kEnd) mnemonics.pop_back();
      const QAction* action = Bar().action(i);
      if (!action || action->isSeparator()) continue;
      if (Bar().row(i).kind == ui::MenuRowKind::kMenu && action->isVisible()) ExpectTidy(Bar().row(i).name);
      const bool menu = Bar().row(i).kind == ui::MenuRowKind::kMenu;
      if (!action->isVisible()) {
        if (menu) mnemonics.emplace_back();
        continue;
      }
      if (!action->shortcut().isEmpty()) {
        EXPECT_TRUE(keys.emplace(action->shortcut(), Bar().row(i).name).second)
            << action->shortcut().toString().toStdString() << " twice: " << Bar().row(i).name;
      }
      const qsizetype at = action->text().indexOf('&');
      ASSERT_GE(at, 0) << Bar().row(i).name << " has no mnemonic";
      const QChar letter = action->text()[at + 1].toLower();
      const auto [other, unique] = mnemonics.back().emplace(letter, Bar().row(i).name);
      EXPECT_TRUE(unique || IsGiven(other->second.toStdString(), Bar().row(i).name))
          << Bar().row(i).name << " and " << other->second.toStdString();
      if (menu) mnemonics.emplace_back();
    }
  }
};

TEST_F(MenuTest, WithoutADocument) {
  EXPECT_EQ(TopLevel(), (QStringList{"&File", "Project &list", "&Tree view", "&Quotes", "&Internet", "&Options",
                                     "&Window", "&Help"}));
  EXPECT_EQ(Shown("mnuFile"),
            (QStringList{"&New project", "&Open a project...", "Save &project file", "Save project file &as...", "-",
                         "&New document", "Open a &document...", "Save a&ll", "-", "Load &Auto-Complete file...",
                         "Load Often Used &Text Blocks...", "Load &Notes...", "Save &Notes", "-", "E&xit"}));
  EXPECT_TRUE(Action("mnuSaveFile").shortcut().isEmpty());
  EXPECT_EQ(Action("mnuNew").shortcut(), QKeySequence("Ctrl+N"));
  EXPECT_EQ(Action("mnuNextPane").text(), "&Next window\tCtrl+F6") << "shown though it does nothing";
  ExpectRules();
}

TEST_F(MenuTest, WithADocument) {
  New();
  EXPECT_EQ(TopLevel(), (QStringList{"&File", "&Edit", "For&mat", "&Strip", "Project &list", "&Tree view", "&Quotes",
                                     "&Internet", "&Options", "&Window", "&Help"}));
  EXPECT_TRUE(Shown("mnuFile").contains("&Save document"));
  EXPECT_EQ(Action("mnuSaveFile").shortcut(), QKeySequence("Ctrl+S"));
  EXPECT_EQ(Action("mnuBold").shortcut(), QKeySequence("Ctrl+B"));
  EXPECT_TRUE(Action("mnuCut").shortcut().isEmpty()) << "the key belongs to the editor";
  EXPECT_EQ(Action("mnuCut").text(), "Cu&t\tCtrl+X");
  EXPECT_EQ(Action("mnuExit").text(), "E&xit\tAlt+F4");
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

TEST_F(MenuTest, EditCommandsReachTheActiveDocument) {
  frmText& document = New();
  Type(document, "one two");
  Choose("mnuSelAll");
  Choose("mnuCopy");
  EXPECT_EQ(ui::ClipboardText(), "one two");
  Choose("mnuDelete");
  EXPECT_EQ(document.RichTextBox1().Text(), "");
  Choose("mnuPaste");
  Choose("mnuPasteAsText");
  EXPECT_EQ(document.RichTextBox1().Text(), "one twoone two");
  Choose("mnuUndoItem");
  EXPECT_EQ(document.RichTextBox1().Text(), "one two");
  Choose("mnuRedoItem");
  EXPECT_EQ(document.RichTextBox1().Text(), "one twoone two");
  Choose("mnuCopyPath");
  EXPECT_EQ(ui::ClipboardText(), "Untitled:1");
}

TEST_F(MenuTest, MinimizeAndRestoreAll) {
  frmText& a = New();
  frmText& b = New();
  Choose("mnuMinRest");
  EXPECT_EQ(a.windowState(), ui::WindowState::kMinimized);
  EXPECT_EQ(b.windowState(), ui::WindowState::kMinimized);
  EXPECT_NE(program().frame().windowState(), ui::WindowState::kMinimized);
  Choose("mnuMinRest");
  EXPECT_EQ(a.windowState(), ui::WindowState::kNormal);
  EXPECT_EQ(b.windowState(), ui::WindowState::kNormal);
}

TEST_F(MenuTest, NextWindowVisitsAllAndSendToBackActivatesTheNextInFront) {
  for (int i = 0; i < 3; ++i) New();
  std::set<std::string> seen;
  for (int i = 0; i < 3; ++i) {
    Choose("mnuNextPane");
    seen.insert(table().Active()->caption());
  }
  EXPECT_EQ(seen.size(), 3u);
  Choose("mnuWindowSendBack");
  EXPECT_EQ(table().Active()->caption(), "Untitled:2");
  Choose("mnuWindowSendBack");
  EXPECT_EQ(table().Active()->caption(), "Untitled:1");
}

TEST_F(MenuTest, TilesFillTheAreaWithoutGapsOrOverlaps) {
  std::vector<frmText*> documents;
  for (int i = 0; i < 3; ++i) documents.push_back(&New());
  documents[2]->SetWindowState(ui::WindowState::kMaximized);
  for (const bool rows : {true, false}) {
    Choose(rows ? "mnuWindowTileHoriz" : "mnuWindowTileVertical");
    EXPECT_EQ(program().settings().SaveArrange, rows ? 1 : 2);
    const QSize area = program().frame().area().viewport()->size();
    int next = 0;
    for (frmText* document : documents) {
      const QRect window = document->widget()->geometry();
      EXPECT_EQ(rows ? window.top() : window.left(), next);
      EXPECT_EQ(rows ? window.width() : window.height(), rows ? area.width() : area.height());
      next = rows ? window.bottom() + 1 : window.right() + 1;
    }
    EXPECT_EQ(next, rows ? area.height() : area.width());
  }
  Choose("mnuWindowCascade");
  EXPECT_EQ(program().settings().SaveArrange, 0);
  EXPECT_LT(documents[0]->widget()->y(), documents[1]->widget()->y());
  EXPECT_LT(documents[1]->widget()->x(), documents[2]->widget()->x());
}

TEST_F(MenuTest, ArrangeIconsStandsThemAtTheBottom) {
  frmText& a = New();
  frmText& b = New();
  a.SetWindowState(ui::WindowState::kMinimized);
  b.SetWindowState(ui::WindowState::kMinimized);
  a.widget()->move(200, 100);
  Choose("mnuWindowArrange");
  const int bottom = program().frame().area().viewport()->height();
  EXPECT_EQ(a.widget()->geometry().bottom() + 1, bottom);
  EXPECT_EQ(a.widget()->x(), 0);
  EXPECT_EQ(b.widget()->geometry().left(), a.widget()->geometry().right() + 1);
}

}  // namespace
