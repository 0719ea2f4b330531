// Events that come in the middle of a command.
#include "tests/program/ProgramTest.h"
#include "tests/support/EveryPoint.h"

#include <new>

namespace {

using documents::frmText;
using ui::Answer;

class PendingEventsTest : public ProgramTest {
 protected:
  void CloseRequests() {
    for (int slot = 1; slot <= table().UpperBound(); ++slot)
      if (table().Document(slot) && !Changed(*table().Document(slot))) table().Document(slot)->RequestClose();
  }
  void CloseOne() {
    for (int slot = table().UpperBound(); slot >= 1; --slot)
      if (table().Document(slot) && !Changed(*table().Document(slot))) return void(table().Document(slot)->Close());
  }
  // Windows, slots and forms tell the same.
  void ExpectSound() {
    size_t windows = 0;
    for (int slot = 1; slot <= table().UpperBound(); ++slot) {
      frmText* document = table().Document(slot);
      EXPECT_EQ(document == nullptr, table().DocInfo(slot).Free) << slot;
      if (!document) continue;
      ++windows;
      EXPECT_EQ(document->slot(), slot);
      EXPECT_EQ(table().Find(document->id()), document);
      EXPECT_EQ(document->windowState() == ui::WindowState::kMinimized || document->widget()->isVisible(), true)
          << slot;
    }
    EXPECT_EQ(program().forms().count(), windows + 1);
    EXPECT_EQ(table().Active() != nullptr, windows > 0);
  }
  void LoadProject() {
    program().project().ProjectFile = At("p.prj").native();
    program().project().LoadProject();
  }
  void RemoveFirst() {
    program().frame().leftPane().List1().SelectOnly(1);
    Q_EMIT program().frame().leftPane().List1().Deleted(true);
  }
  void OpenFromList() {
    ui::ListBox& List1 = program().frame().leftPane().List1();
    List1.SelectOnly(1);
    List1.Select(2, true);
    Q_EMIT List1.Opened();
  }
  // Every entry is on one line, and every line has one.
  void ExpectSoundProject() {
    ui::ListBox& List1 = program().frame().leftPane().List1();
    const project::ItemTable& items = program().project().ProjectItems();
    ASSERT_EQ(static_cast<size_t>(List1.count()), items.Highest() + 1);
    std::vector<bool> shown(items.Highest() + 1);
    for (int line = 0; line < List1.count(); ++line) shown.at(static_cast<size_t>(List1.line(line).data)) = true;
    EXPECT_EQ(std::count(shown.begin(), shown.end(), true), List1.count());
  }
  void TearDown() override {
    everyPoint.Stop();
    Settle();
  }

  support::EveryPoint everyPoint;
};

TEST_F(PendingEventsTest, ACloseRequestWaitsForTheCommandsEnd) {
  frmText* document = Open(Put("a.txt", "text"));
  bool during = true;
  {
    const ui::CommandScope command;
    EXPECT_FALSE(document->RequestClose());
    EXPECT_FALSE(document->RequestClose()) << "twice is once";
    ui::LetPendingEventsRun();
    during = Showing(At("a.txt").native()) != nullptr;
  }
  EXPECT_TRUE(during);
  Settle();
  EXPECT_FALSE(Showing(At("a.txt").native()));
}

TEST_F(PendingEventsTest, ACloseRequestForAWindowThatHasGoneIsForgotten) {
  frmText* document = Open(Put("a.txt", "text"));
  {
    const ui::CommandScope command;
    document->RequestClose();
    EXPECT_TRUE(document->Close());
  }
  Settle();
  EXPECT_FALSE(table().AnyDocumentOpen());
}

TEST_F(PendingEventsTest, TheCloseBoxInTheMiddleOfTheClosePromptAsksNoSecondTime) {
  frmText& document = New();
  ExpectClosePrompt("Untitled:1", Answer::kCancel, [&] {
    document.widget()->close();
    program().frame().widget()->close();
  });
  EXPECT_FALSE(document.Close());
  // The requests come after the command: the document is asked by its own, and then by the frame's.
  ExpectClosePrompt("Untitled:1", Answer::kCancel);
  ExpectClosePrompt("Untitled:1", Answer::kCancel);
  Settle();
  EXPECT_TRUE(table().AnyDocumentOpen());
}

TEST_F(PendingEventsTest, TextThatComesAfterItsQuestionIsAskedAboutAgain) {
  frmText& first = New();
  frmText* unchanged = Open(Put("a.txt", "text"));
  frmText& last = New();
  ExpectClosePrompt(last.caption(), Answer::kNo);
  ExpectClosePrompt(first.caption(), Answer::kNo, [&] {
    Type(last, "late");
    Type(*unchanged, "late");
  });
  ExpectClosePrompt(last.caption(), Answer::kNo);
  ExpectClosePrompt(unchanged->caption(), Answer::kCancel);
  EXPECT_FALSE(program().frame().RequestClose());
  EXPECT_EQ(Showing(At("a.txt").native()), unchanged);
}

TEST_F(PendingEventsTest, WhatIsOpenedWhileTheEndIsAskedAboutStays) {
  New();
  Put("b.txt", "text");
  ExpectClosePrompt("Untitled:1", Answer::kNo, [&] { table().LoadIntoWindow(At("b.txt").native()); });
  EXPECT_FALSE(program().frame().RequestClose());
  EXPECT_TRUE(Showing(At("b.txt").native()));
}

TEST_F(PendingEventsTest, DocumentsThatAppearWhileAllAreClosedStay) {
  for (const char* name : {"a.txt", "b.txt", "c.txt"}) Open(Put(name, ""));
  everyPoint.Start([&](int point) {
    if (point < 2) table().NewDocument();
  });
  program().commands().mnuCloseAll_Click();
  everyPoint.Stop();
  EXPECT_GT(everyPoint.points(), 0) << "nothing was injected";
  for (const char* name : {"a.txt", "b.txt", "c.txt"}) EXPECT_FALSE(Showing(At(name).native())) << name;
  int open = 0;
  for (int slot = 1; slot <= table().UpperBound(); ++slot) open += table().Document(slot) != nullptr;
  EXPECT_EQ(open, 2);
}

TEST_F(PendingEventsTest, DocumentsThatGoWhileAllAreMinimized) {
  for (const char* name : {"a.txt", "b.txt", "c.txt", "d.txt"}) Open(Put(name, ""));
  everyPoint.Start([&](int point) {
    if (frmText* document = Showing(At(point == 0 ? "c.txt" : "a.txt").native())) document->Close();
  });
  program().commands().mnuMinRest_Click();
  everyPoint.Stop();
  EXPECT_GE(everyPoint.points(), 2);
  EXPECT_FALSE(Showing(At("c.txt").native()));
  EXPECT_EQ(Showing(At("b.txt").native())->windowState(), ui::WindowState::kMinimized);
}

TEST_F(PendingEventsTest, AWindowThatGoesWhileItsFileIsRead) {
  const files::Path path = Put("a.txt", "text");
  dialogs.AfterNextWork([&] { EXPECT_TRUE(Showing(path.native())->Close()); });
  EXPECT_FALSE(Open(path));
  EXPECT_FALSE(table().AnyDocumentOpen());
  EXPECT_TRUE(table().DocInfo(1).Free);
}

TEST_F(PendingEventsTest, AWindowThatGoesWhileItIsSaved) {
  const files::Path path = Put("a.txt", "text");
  frmText* document = Open(path);
  Type(*document, "+");
  dialogs.AfterNextWork([&] {
    ExpectClosePrompt(path.native(), Answer::kNo);
    EXPECT_TRUE(document->Close());
  });
  EXPECT_EQ(document->mnuSaveFile_Click(), documents::SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(path), "+text");
  Settle();
  EXPECT_FALSE(table().AnyDocumentOpen());
}

TEST_F(PendingEventsTest, SaveAllPassesOverWindowsThatHaveGone) {
  Open(Put("a.txt", "a"));
  frmText* last = Open(Put("b.txt", "b"));
  Type(*last, "+");
  dialogs.AfterNextWork([&] { EXPECT_TRUE(Showing(At("a.txt").native())->Close()); });
  program().commands().mnuSaveAll_Click();
  EXPECT_EQ(Bytes(At("b.txt")), "+b");
}

TEST_F(PendingEventsTest, AReportThatFailsGoesNoFurther) {
  program().forms().SetFailureReport([](const QString&) { throw std::bad_alloc(); });
  EXPECT_FALSE(program().forms().Guarded([] { throw std::bad_alloc(); }));
}

TEST_F(PendingEventsTest, TheEndOfTheProgramIsRememberedToo) {
  Open(Put("a.txt", ""));
  {
    const ui::CommandScope command;
    EXPECT_FALSE(program().frame().RequestClose());
  }
  EXPECT_TRUE(table().AnyDocumentOpen());
  Settle();
  EXPECT_FALSE(table().AnyDocumentOpen());
}

// Whatever closes, opens or is made at any place where events run: the command ends soundly, and no slot is lost.
TEST_F(PendingEventsTest, AnythingAtAnyPoint) {
  const std::pair<const char*, std::function<void()>> commands[] = {
      {"new", [&] { table().NewDocument(); }},
      {"open", [&] { Open(At("b.txt")); }},
      {"open missing", [&] { Open(At("no such.txt")); }},
      {"save all", [&] { program().commands().mnuSaveAll_Click(); }},
      {"close all", [&] { program().commands().mnuCloseAll_Click(); }},
      {"minimise all", [&] { program().commands().mnuMinRest_Click(); }},
      {"remove", [&] { RemoveFirst(); }},
      {"open from list", [&] { OpenFromList(); }},
      {"load project", [&] { LoadProject(); }},
      {"end", [&] { program().frame().RequestClose(); }},
  };
  const std::pair<const char*, std::function<void()>> events[] = {
      {"close request", [&] { CloseRequests(); }},
      {"close", [&] { CloseOne(); }},
      {"load", [&] { table().LoadIntoWindow(At("c.txt").native()); }},
      {"drop",
       [&] {
         Q_EMIT program().frame().leftPane().List1().FilesDropped({At("d.txt").native(), "/no/e"});
       }},
      {"load project", [&] { LoadProject(); }},
      {"file goes", [&] { std::filesystem::remove(At("b.txt")); }},
      {"texts are kept", [&] { EXPECT_FALSE(program().KeepTexts()); }},
  };
  for (const auto& [command, run] : commands) {
    for (const auto& [event, happens] : events) {
      SCOPED_TRACE(std::string(command) + ", " + event);
      Restart();
      for (const char* name : {"a.txt", "b.txt", "c.txt"}) Open(Put(name, "text"));
      Put("p.prj", At("a.txt").native() + "\r\n" + At("c.txt").native() + "\r\n/no/z\r\n");
      LoadProject();
      everyPoint.Start([&act = happens](int point) {
        if (point < 3) act();
      });
      run();
      everyPoint.Stop();
      Settle();
      ExpectSound();
      ExpectSoundProject();
      program().project().ProjectSaved = true;
      for (int slot = 1; slot <= table().UpperBound(); ++slot)
        if (table().Document(slot)) table().Document(slot)->SetUnchanged();
      program().commands().mnuCloseAll_Click();
      Settle();
      EXPECT_FALSE(table().AnyDocumentOpen());
    }
  }
}

}  // namespace
