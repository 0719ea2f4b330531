#include "project/ProjectFile.h"
#include "search/frmYesNoAll.h"
#include "tests/program/ProgramTest.h"
#include "ui/PathText.h"

#include <QApplication>
#include <QClipboard>
#include <gmock/gmock.h>

#include <sys/stat.h>

namespace {

using testing::ElementsAre;
using ui::Answer;

class ProjectTest : public ProgramTest {
 protected:
  project::Project& Model() { return program().project(); }
  project::ProjectList& List() { return program().projectList(); }
  ui::ListBox& List1() { return program().frame().leftPane().List1(); }

  std::vector<std::string> Shown() {
    std::vector<std::string> lines;
    for (int i = 1; i < List1().count(); ++i) lines.push_back(List1().line(i).text);
    return lines;
  }
  std::vector<std::string> Entries() {
    std::vector<std::string> entries;
    for (size_t i = 1; i <= Model().ProjectItems().Highest(); ++i) entries.push_back(Model().ProjectItems()[i]);
    return entries;
  }
  files::Path PutProject(const std::string& name, const std::vector<std::string>& entries) {
    return Put(name, project::FormatProjectFile(entries));
  }
  void Load(const files::Path& path) {
    Model().ProjectFile = path.native();
    Model().LoadProject();
  }
  void ExpectChanged(const std::string& file, Answer answer) {
    dialogs.Message(
        "Project " + ui::DisplayText(file) + " has been changed.\r\nDo you want to save the changes before continuing?",
        ui::Buttons::kYesNoCancel, ui::Icon::kExclamation, answer);
  }
  // Answers the question for one item of a batch by pressing a button, the box for all ticked first or not.
  void ExpectItem(const QString& question, int answer, bool all = false) {
    dialogs.Modal([=](ui::ModalForm& form) {
      auto& asked = dynamic_cast<search::frmYesNoAll&>(form);
      EXPECT_EQ(asked.Label1().text(), QString(question).replace("\r\n", "\n"));
      EXPECT_TRUE(asked.Tag.empty());
      if (all) asked.chkAll().SetValue(true);
      if (answer == 6) asked.Command1_Click();
      if (answer == 7) asked.Command2_Click();
      if (answer != 2) return;
      asked.show();
      asked.close();
    });
  }
  QString RemoveQuestion(const std::string& entry) {
    return "Remove " + ui::DisplayText(entry) + "\r\nfrom the project?";
  }
};

TEST_F(ProjectTest, LoadsShowsAndSavesEveryKindOfEntryVerbatim) {
  const std::vector<std::string> entries = {"/home/me/texts/",   At("a.txt").native(), "notes.txt",
                                            "/d/manual.pdf.lnk", "C:\\Work\\b.txt",    "/x/<b>&\n\xFF"};
  const auto path = Put("odd & <b>.prj", "\r\n" + entries[0] + "\r\n\r\n" + entries[1] + "\r" + entries[2] + "\r\n" +
                                             entries[3] + "\r\n" + entries[4] + "\r\n" + entries[5]);
  Load(path);
  EXPECT_EQ(Entries(), entries);
  EXPECT_EQ(List1().line(0).text, "_Open new document");
  EXPECT_THAT(Shown(), ElementsAre("/home/me/texts/", "a.txt", "notes.txt", "manual.pdf.lnk", "b.txt", "<b>&\n\xFF"));
  EXPECT_EQ(program().frame().caption(), "Quillmark - " + path.native());
  EXPECT_THAT(List1().SelectedLines(), ElementsAre(0));
  EXPECT_EQ(List().ToolTipOf(0), "Select this line to open a new document");
  EXPECT_EQ(List().ToolTipOf(1), "/home/me/texts/ [Folder shortcut]");
  EXPECT_EQ(List().ToolTipOf(3), "notes.txt");
  EXPECT_EQ(List().ToolTipOf(4), "/d/manual.pdf.lnk [Read only shortcut]");
  List().mnuListSort_Click();
  EXPECT_TRUE(Model().ProjectSaved);
  Model().mnuSaveProject_Click();
  EXPECT_EQ(Bytes(path), project::FormatProjectFile(entries)) << "the order before sorting";
}

TEST_F(ProjectTest, AFileThatIsMissingIsAnEmptyProjectAndOneThatCannotBeReadIsReported) {
  Load(At("new.prj"));
  EXPECT_EQ(List1().count(), 1);
  EXPECT_EQ(program().frame().caption(), "Quillmark - " + At("new.prj").native());
  EXPECT_FALSE(Exists(At("new.prj")));
  EXPECT_THAT(program().recentFiles(), ElementsAre(At("new.prj").native()));
  std::filesystem::create_directory(At("folder.prj"));
  ExpectError(Error(At("folder.prj"), "Is a directory"));
  Load(At("folder.prj"));
  EXPECT_EQ(List1().count(), 1);
  EXPECT_THAT(program().recentFiles(), ElementsAre(At("folder.prj").native(), At("new.prj").native()));
}

TEST_F(ProjectTest, AddsAPathOnceAndSelectsItsLine) {
  Load(At("p.prj"));
  for (const char* path : {"/no/A.txt", "/no/b.txt", "/no/a.TXT"}) Model().AddNewDocOrLink(path);
  EXPECT_THAT(Entries(), ElementsAre("/no/A.txt", "/no/b.txt"));
  EXPECT_TRUE(List1().Selected(1));
  EXPECT_FALSE(Model().ProjectSaved);
  ExpectError(File("/no/c\rd", "A project cannot hold a name with a carriage return."));
  Model().AddNewDocOrLink("/no/c\rd");
  EXPECT_EQ(Entries().size(), 2u);
}

TEST_F(ProjectTest, AsksBeforeChangesAreLost) {
  Model().AddNewDocOrLink("/no/a");
  ExpectChanged("", Answer::kCancel);
  program().commands().mnuNewProject_Click();
  EXPECT_EQ(Entries().size(), 1u);
  ExpectChanged("", Answer::kYes);  // unnamed: where to?
  dialogs.File(At("named.prj"));
  dialogs.File(std::nullopt);  // which project to open
  program().commands().mnuOpen_Click();
  EXPECT_EQ(Bytes(At("named.prj")), "/no/a\r\n\r\n");
  EXPECT_TRUE(Model().ProjectSaved);
  Model().AddNewDocOrLink("/no/b");
  ExpectChanged(At("named.prj"), Answer::kNo);
  program().commands().mnuNewProject_Click();
  EXPECT_EQ(List1().count(), 1);
  EXPECT_EQ(Bytes(At("named.prj")), "/no/a\r\n\r\n");
  EXPECT_TRUE(program().fncconfirm("Project"));
}

TEST_F(ProjectTest, AProjectThatCouldNeitherBeSavedNorKeptStays) {
  Put("state", "a file where the folder should be");
  Model().AddNewDocOrLink("/no/a");
  Model().ProjectFile = At("missing/p.prj").native();
  const auto expectErrors = [this] {
    ExpectChanged(At("missing/p.prj"), Answer::kYes);
    ExpectError(Error(At("missing/p.prj"), "No such file or directory"));
    ExpectError(Error(At("missing/p.prj"), "Not a directory"));
  };
  expectErrors();
  program().commands().mnuNewProject_Click();
  EXPECT_THAT(Entries(), ElementsAre("/no/a"));
  EXPECT_EQ(Model().ProjectFile, At("missing/p.prj"));
  expectErrors();
  EXPECT_FALSE(program().frame().Close());
  Model().ProjectSaved = true;
}

TEST_F(ProjectTest, WhatAnotherProgramWroteIsNotReplacedUnasked) {
  Load(PutProject("p.prj", {"/no/a"}));
  Model().AddNewDocOrLink("/no/b");
  PutProject("p.prj", {"/no/somebody else's"});
  const QString question = "has been changed by another program since it was opened.  Do you want to replace it?";
  dialogs.Message(File(At("p.prj"), question), ui::Buttons::kYesNo, ui::Icon::kQuestion, Answer::kNo);
  dialogs.File(std::nullopt);  // another name, then
  Model().mnuSaveProject_Click();
  EXPECT_FALSE(Model().ProjectSaved);
  ExpectChanged(At("p.prj"), Answer::kYes);
  dialogs.Message(File(At("p.prj"), question), ui::Buttons::kYesNo, ui::Icon::kQuestion, Answer::kNo);
  dialogs.File(At("q.prj"));
  program().commands().mnuNewProject_Click();
  EXPECT_EQ(Bytes(At("p.prj")), "/no/somebody else's\r\n\r\n");
  EXPECT_EQ(Bytes(At("q.prj")), "/no/a\r\n/no/b\r\n\r\n");
}

TEST_F(ProjectTest, AFileThatCouldNotBeReadIsNotReplacedUnasked) {
  {
    const auto path = PutProject("p.prj", {"/no/secret"});
    const Unprivileged user;
    chmod(path.c_str(), 0);
    ExpectError(Error(path, "Permission denied"));
    Load(path);
    chmod(path.c_str(), 0600);
  }
  Model().AddNewDocOrLink("/no/a");
  dialogs.Message(File(At("p.prj"), "could not be read when it was opened.  Do you want to replace it?"),
                  ui::Buttons::kYesNo, ui::Icon::kQuestion, Answer::kNo);
  dialogs.File(std::nullopt);
  Model().mnuSaveProject_Click();
  EXPECT_EQ(Bytes(At("p.prj")), "/no/secret\r\n\r\n");
  Model().ProjectSaved = true;
}

TEST_F(ProjectTest, AnEntryOfMegabytesIsShownShortAndKeptWhole) {
  const std::string entry = "/no/" + std::string(4 << 20, 'x');
  Load(PutProject("p.prj", {entry}));
  EXPECT_LE(List().ToolTipOf(1).size(), 1001);
  EXPECT_LE(List1().model()->index(1, 0).data().toString().size(), 1001);
  Model().mnuSaveProject_Click();
  EXPECT_EQ(Bytes(At("p.prj")), entry + "\r\n\r\n");
}

TEST_F(ProjectTest, EditingAProjectWithoutANameSavesItFirst) {
  dialogs.File(std::nullopt);
  List().mnuListEditPrj_Click();
  EXPECT_FALSE(table().AnyDocumentOpen());
  dialogs.File(At("p.prj"));
  List().mnuListEditPrj_Click();
  EXPECT_NE(Showing(At("p.prj").native()), nullptr);
}

TEST_F(ProjectTest, RecentFilesKeepTheOrderInWhichTheyWereEntered) {
  EXPECT_TRUE(program().recentFiles().empty());
  for (const char* name : {"A.prj", "B.prj", "C.prj", "B.prj", "c.PRJ"}) Load(At(name));
  EXPECT_THAT(program().recentFiles(), ElementsAre(At("C.prj").native(), At("B.prj").native(), At("A.prj").native()));
  for (const char* name : {"D.prj", "E.prj", "F.prj"}) Load(At(name));
  EXPECT_EQ(program().recentFiles().size(), 5u);
  EXPECT_EQ(program().recentFiles().front(), At("F.prj"));
  EXPECT_EQ(program().recentFiles().back(), At("B.prj"));
  Model().AddNewDocOrLink("/no/x");
  ExpectChanged(At("F.prj"), Answer::kCancel);
  program().commands().mnuRecentFile_Click(4);
  EXPECT_EQ(Model().ProjectFile, At("F.prj"));
  ExpectChanged(At("F.prj"), Answer::kNo);
  program().commands().mnuRecentFile_Click(4);
  EXPECT_EQ(Model().ProjectFile, At("B.prj"));
  Restart();
  EXPECT_EQ(program().recentFiles().size(), 5u);
}

TEST_F(ProjectTest, OpensWhatIsSelectedEachInItsWay) {
  const auto text = Put("a.txt", "text");
  std::filesystem::create_directory(At("work"));
  Load(PutProject("p.prj", {text.native(), (At("work") / "").native(), "/d/manual.pdf.lnk", "/d/other.lnk"}));
  List().mnuSelectAll_Click();
  desktop.opens = [](const std::string& path) {
    return path.ends_with(".lnk") ? ui::Shell::kNotFound : ui::Shell::kStarted;
  };
  ExpectItem("Linked item: /d/manual.pdf.lnk\r\n\r\nShould I open this item in its external application?", 6);
  ExpectItem("Linked item: /d/other.lnk\r\n\r\nShould I open this item in its external application?", 7);
  List().mnuOpenFromList_Click();
  EXPECT_NE(Showing(text.native()), nullptr);
  EXPECT_EQ(program().MakeAbsolute("x"), At("work") / "x");
  EXPECT_THAT(desktop.asked, ElementsAre("open /d/manual.pdf.lnk", "open /d/manual.pdf"));
  EXPECT_EQ(table().UpperBound(), 1) << "a shortcut never becomes a window";
  table().Document(1)->Unload();
  Load(PutProject("q.prj", {"/d/other.lnk", text.native()}));
  List().mnuSelectAll_Click();
  ExpectItem("Linked item: /d/other.lnk\r\n\r\nShould I open this item in its external application?", 2);
  List().mnuOpenFromList_Click();
  EXPECT_FALSE(table().AnyDocumentOpen()) << "Cancel ends it";
}

TEST_F(ProjectTest, AnEntryThatCannotBeOpenedMayBePointedAtItsNewPlace) {
  const auto first = Put("1.txt", ""), third = Put("3.txt", ""), moved = Put("moved.txt", ""),
             odd = Put("new\rplace.txt", "");
  Load(PutProject("p.prj", {first.native(), At("2.txt").native(), third.native()}));
  for (const auto& chosen : {odd, moved}) {
    List().mnuSelectAll_Click();
    ExpectError(Error(At("2.txt"), "No such file or directory"));
    dialogs.File(chosen, [](const ui::FileRequest& request) { EXPECT_EQ(request.title, "Select a document to open"); });
    if (chosen == odd) ExpectError(File(odd, "A project cannot hold a name with a carriage return."));
    List().mnuOpenFromList_Click();
    EXPECT_NE(Showing(chosen.native()), nullptr);
    EXPECT_EQ(Model().ProjectSaved, chosen == odd);
  }
  EXPECT_NE(Showing(first.native()), nullptr);
  EXPECT_EQ(Showing(third.native()), nullptr);
  EXPECT_THAT(Entries(), ElementsAre(first.native(), moved.native(), third.native()));
  EXPECT_EQ(List1().line(2).text, "moved.txt");
}

TEST_F(ProjectTest, AProgramThatIsBrowsedForKeepsTheBytesOfItsName) {
  desktop.opens = [](const std::string&) { return ui::Shell::kNoApplication; };
  const auto viewer = Put("view\xFF", "");
  dialogs.Modal([&](ui::ModalForm& form) {
    dialogs.File(viewer);
    form.findChild<ui::Button*>("Command1(2)")->click();
    form.findChild<ui::Button*>("Command1(0)")->click();
  });
  std::string path = "/d/letter.lnk";
  // The program asks again until it is told to stop, which is announced when it has run once.
  desktop.runs = [&] { dialogs.Modal([](ui::ModalForm& form) { form.close(); }); };
  program().OpenDocument(path);
  EXPECT_EQ(desktop.asked.back(), "run " + viewer.native() + " [/d/letter]");
}

TEST_F(ProjectTest, TheFirstLineOffersAnyDocumentAndChangesNoEntry) {
  Load(PutProject("p.prj", {"/no/a"}));
  dialogs.File(Put("b.txt", ""));
  List().mnuOpenFromList_Click();
  EXPECT_NE(Showing(At("b.txt").native()), nullptr);
  EXPECT_THAT(Entries(), ElementsAre("/no/a"));
  EXPECT_TRUE(Model().ProjectSaved);
}

TEST_F(ProjectTest, AShortcutWithoutAnyApplicationAsksForAProgramUntilCancelled) {
  desktop.opens = [](const std::string&) { return ui::Shell::kNoApplication; };
  for (const char* program : {"Wordpad.exe", "viewer"}) {
    dialogs.Modal([program](ui::ModalForm& form) {
      auto* text = form.findChild<ui::TextBox*>("Text2");
      EXPECT_EQ(text->Text(), "Wordpad.exe");
      text->SetText(program);
      form.findChild<ui::Button*>("Command1(0)")->click();
    });
  }
  dialogs.Modal([](ui::ModalForm& form) {
    EXPECT_EQ(form.findChild<ui::TextBox*>("Text2")->Text(), "viewer");
    form.close();
  });
  std::string path = "/d/letter.RTF.lnk";
  program().OpenDocument(path);
  EXPECT_EQ(path, "/d/letter.RTF");
  EXPECT_THAT(desktop.asked, ElementsAre("open /d/letter.RTF.lnk", "open /d/letter.RTF",
                                         "run Wordpad.exe [/d/letter.RTF]", "run viewer [/d/letter.RTF]"));
  EXPECT_EQ(desktop.ranIn, program().MakeAbsolute("."));
  path = "/x/unlnk";
  dialogs.Modal([](ui::ModalForm& form) { form.close(); });
  program().OpenDocument(path);
}

TEST_F(ProjectTest, RemovesWhatIsAgreedTo) {
  const struct {
    std::vector<std::pair<int, bool>> answers;  // to the questions that are asked, with the box for all ticked
    std::vector<std::string> left;
  } kRows[] = {
      {{{6, false}, {7, false}, {6, false}}, {"/no/b"}},
      {{{6, false}, {2, false}}, {"/no/b", "/no/c"}},
      {{{7, true}}, {"/no/a", "/no/b", "/no/c"}},
      {{{6, true}}, {}},
  };
  for (const auto& row : kRows) {
    Load(PutProject("p.prj", {"/no/a", "/no/b", "/no/c"}));
    List().mnuListSort_Click();
    List().mnuSelectAll_Click();
    const char* const names[] = {"/no/a", "/no/b", "/no/c"};
    for (size_t i = 0; i < row.answers.size(); ++i)
      ExpectItem(RemoveQuestion(names[i]), row.answers[i].first, row.answers[i].second);
    List().mnuRemoveFile_Click();
    EXPECT_EQ(Entries(), row.left);
    EXPECT_EQ(Shown().size(), row.left.size());
    EXPECT_FALSE(Model().ProjectSaved);
    Model().ProjectSaved = true;
  }
  Load(PutProject("p.prj", {"/no/a"}));
  List1().Select(1, true);
  List().mnuRemoveFile_Click();
  EXPECT_EQ(Entries().size(), 1u) << "the focus is on the first line";
  List1().SetListIndex(1);
  Q_EMIT List1().Deleted(true);
  EXPECT_TRUE(Entries().empty()) << "with Shift nothing is asked";
}

TEST_F(ProjectTest, CopiesPathsAddsDocumentsAndShortcuts) {
  Load(PutProject("p.prj", {"/no/a", "/no/b", "/no/c"}));
  List1().SelectOnly(3);
  List1().Select(1, true);
  List().mnuCopyListPath_Click();
  EXPECT_EQ(QApplication::clipboard()->text(), "/no/a\r\n/no/c");

  for (const char* name : {"d.txt", "e.txt"}) Open(Put(name, ""));
  program().commands().mnuAddAll_Click();
  EXPECT_THAT(Shown(), ElementsAre("a", "b", "c", "d.txt", "e.txt"));

  const auto manual = Put("manual.pdf", "");
  for (const Answer answer : {Answer::kNo, Answer::kYes, Answer::kYes}) {
    dialogs.File(manual, [](const ui::FileRequest& request) { EXPECT_TRUE(request.keepLinks); });
    dialogs.Message("Add a read-only shortcut to the project for\r\n" + ui::DisplayText(manual.native()) + ".lnk ?",
                    ui::Buttons::kYesNo, ui::Icon::kInformation, answer);
    List().mnuLinkAdd_Click();
    EXPECT_EQ(Shown().size(), answer == Answer::kNo ? 5u : 6u);
  }
  dialogs.File(std::nullopt);
  List().mnuLinkAdd_Click();
  EXPECT_EQ(Entries().back(), manual.native() + ".lnk");
}

TEST_F(ProjectTest, TakesDroppedFilesAndFolders) {
  std::filesystem::create_directory(At("folder"));
  Q_EMIT List1().FilesDropped({At("folder").native(), "/no/a b\xFF", "/no/A B\xFF"});
  EXPECT_THAT(Entries(), ElementsAre((At("folder") / "").native(), "/no/a b\xFF"));
}

TEST_F(ProjectTest, ManyDroppedAtOnceAreAsIfAddedOneAfterTheOther) {
  const std::vector<std::string> drops[] = {{"/no/new", "/no/NEW", "/no/b", "/no/newer"},
                                            {"/no/new", "/no/c", "/no/A", "/no/a"},
                                            {"/no/c", "/no/d"},
                                            {"/no/e", "/no/a", "/no/E", "/no/b"}};
  for (const std::vector<std::string>& dropped : drops) {
    const auto leaves = [&](const std::function<void()>& add) {
      Load(PutProject("p.prj", {"/no/d", "/no/c", "/no/a", "/no/b", "/no/c"}));
      List().mnuListSort_Click();
      add();
      return std::tuple(Entries(), Shown(), List1().SelectedLines(), List1().ListIndex(), Model().ProjectSaved);
    };
    const auto one = leaves([&] {
      for (const std::string& path : dropped) Model().AddNewDocOrLink(path);
    });
    EXPECT_EQ(leaves([&] { Q_EMIT List1().FilesDropped(dropped); }), one) << testing::PrintToString(dropped);
  }
}

TEST_F(ProjectTest, TheFocusLineIsSelectedWhileTheListIsUsed) {
  Load(PutProject("p.prj", {"/no/a", "/no/b"}));
  Q_EMIT List1().FocusLost();
  EXPECT_EQ(List1().SelCount(), 0);
  Q_EMIT List1().FocusGained();
  EXPECT_THAT(List1().SelectedLines(), ElementsAre(0));
  List().mnuSelectAll_Click();
  Q_EMIT List1().FocusLost();
  EXPECT_EQ(List1().SelCount(), 2) << "several stay";
}

TEST_F(ProjectTest, TheEndAsksAboutTheProjectAndRemembersIt) {
  Load(At("A.prj"));
  Load(At("B.prj"));
  Model().AddNewDocOrLink("/no/a");
  ExpectChanged(At("B.prj"), Answer::kCancel);
  EXPECT_FALSE(program().frame().Close());
  ExpectChanged(At("B.prj"), Answer::kNo);
  EXPECT_TRUE(program().frame().Close());
  EXPECT_EQ(program().settings().MostRecent, 1);
}

}  // namespace
