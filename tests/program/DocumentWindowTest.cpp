// A document window from its making to its end.
#include "files/Attributes.h"
#include "tests/program/ProgramTest.h"
#include "ui/frame/StatusBar.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMimeData>

namespace {

using documents::frmText;
using ui::Answer;
using ui::WindowState;

class DocumentWindowTest : public ProgramTest {
 protected:
  void CloseUnsaved(frmText& document) {
    ExpectClosePrompt(document.caption(), Answer::kNo);
    EXPECT_TRUE(document.Close());
    Settle();
  }
};

TEST_F(DocumentWindowTest, NumbersAreTheLowestFreeSlots) {
  frmText& first = New();
  frmText& second = New();
  frmText& third = New();
  EXPECT_EQ(first.caption(), "Untitled:1");
  EXPECT_EQ(second.caption(), "Untitled:2");
  EXPECT_EQ(third.caption(), "Untitled:3");
  EXPECT_EQ(third.Tag(), "3");
  CloseUnsaved(second);
  EXPECT_TRUE(table().DocInfo(2).Free);
  EXPECT_EQ(New().caption(), "Untitled:2");
  EXPECT_EQ(table().UpperBound(), 3);
  EXPECT_FALSE(table().DocInfo(2).Free);
}

TEST_F(DocumentWindowTest, ANewDocumentIsChangedEvenWhenEmpty) {
  frmText& document = New();
  EXPECT_TRUE(Changed(document));
  EXPECT_EQ(document.RichTextBox1().SelFontName(), QString("Courier New"));
  EXPECT_EQ(document.RichTextBox1().SelFontSize(), 10.0);
  EXPECT_EQ(document.RichTextBox1().SelAlignment(), 0);
  EXPECT_FALSE(document.RichTextBox1().CanUndo());
  ExpectClosePrompt("Untitled:1", Answer::kCancel);
  EXPECT_FALSE(document.Close());
  EXPECT_TRUE(table().AnyDocumentOpen());
  CloseUnsaved(document);
  EXPECT_FALSE(table().AnyDocumentOpen());
}

TEST_F(DocumentWindowTest, APathThatIsOpenIsBroughtForward) {
  const files::Path path = Put("a.txt", "one");
  frmText* document = Open(path);
  ASSERT_TRUE(document);
  document->SetWindowState(WindowState::kMinimized);
  New();
  EXPECT_NE(table().Active(), document);
  Put("a.txt", "two");
  std::string other = At("A.TXT").native();
  program().OpenDocument(other);
  EXPECT_EQ(table().Active(), document);
  EXPECT_EQ(document->windowState(), WindowState::kNormal);
  EXPECT_EQ(document->RichTextBox1().Text(), "one") << "nothing is read again";
  EXPECT_EQ(table().UpperBound(), 2);
}

TEST_F(DocumentWindowTest, ANameThatIsNotUtf8IsOpenedAndSaved) {
  const files::Path path = Put("caf\xE9 & [*].txt", "bytes");
  frmText* document = Open(path);
  ASSERT_TRUE(document);
  EXPECT_EQ(document->RichTextBox1().Text(), "bytes");
  Type(*document, "more ");
  document->mnuSaveFile_Click();
  EXPECT_EQ(Bytes(path), "more bytes");
  EXPECT_TRUE(document->widget()->windowTitle().endsWith(QString("caf\uFFFD & [*][*].txt")));
  document->SetWindowState(WindowState::kMinimized);
  EXPECT_EQ(document->widget()->windowTitle(), "caf\uFFFD & [*][*].txt") << "there is no room for the path";
  document->SetWindowState(WindowState::kNormal);
  EXPECT_TRUE(document->widget()->windowTitle().startsWith('/'));
}

TEST_F(DocumentWindowTest, TheNextWindowOpensInTheStateOfTheLastClosed) {
  for (const WindowState state : {WindowState::kMaximized, WindowState::kMinimized, WindowState::kNormal}) {
    frmText* document = Open(Put("a.txt", ""));
    document->SetWindowState(state);
    EXPECT_TRUE(document->Close());
    EXPECT_EQ(table().LastDocWindowState, static_cast<int>(state));
    frmText* next = Open(Put("b.txt", ""));
    EXPECT_EQ(next->windowState(), state);
    EXPECT_EQ(table().LastDocWindowState, -1) << "used once";
    next->SetWindowState(WindowState::kNormal);
    EXPECT_TRUE(next->Close());
    table().LastDocWindowState = -1;
  }
}

TEST_F(DocumentWindowTest, WhatRemainsFillsTheAreaWhereTheClosedOneDid) {
  for (const WindowState state : {WindowState::kMaximized, WindowState::kNormal}) {
    frmText* rest = Open(Put("a.txt", ""));
    frmText* closed = Open(Put("b.txt", ""));
    closed->SetWindowState(state);
    EXPECT_TRUE(closed->Close());
    EXPECT_EQ(table().Active(), rest);
    EXPECT_EQ(rest->windowState(), state);
    EXPECT_TRUE(rest->Close());
    table().LastDocWindowState = -1;
  }
}

TEST_F(DocumentWindowTest, AnIconStaysOneWhenAnotherCloses) {
  for (const WindowState state : {WindowState::kMaximized, WindowState::kNormal}) {
    frmText* open = Open(Put("a.txt", ""));
    frmText* icon = Open(Put("b.txt", ""));
    icon->SetWindowState(WindowState::kMinimized);
    frmText* closed = Open(Put("c.txt", ""));
    closed->SetWindowState(state);
    EXPECT_TRUE(closed->Close());
    EXPECT_EQ(table().Active(), open);
    EXPECT_EQ(open->windowState(), state);
    EXPECT_EQ(icon->windowState(), WindowState::kMinimized);
    EXPECT_TRUE(open->Close());
    EXPECT_EQ(table().Active(), icon);
    EXPECT_EQ(icon->windowState(), WindowState::kMinimized);
    EXPECT_TRUE(icon->Close());
    table().LastDocWindowState = -1;
  }
}

TEST_F(DocumentWindowTest, ClosingTheLastClearsTheFontPanelAndTheDocumentMenus) {
  ui::StatusBar& status = program().frame().statusBar();
  frmText* a = Open(Put("a.txt", "a"));
  frmText* b = Open(Put("b.txt", "b"));
  ASSERT_TRUE(a && b);
  EXPECT_EQ(status.text(ui::Panel::stsFont), "Courier New, 10");
  EXPECT_TRUE(b->Close());
  EXPECT_EQ(status.text(ui::Panel::stsFont), "Courier New, 10");
  EXPECT_EQ(table().Active(), a);
  EXPECT_TRUE(a->Close());
  EXPECT_EQ(status.text(ui::Panel::stsFont), "");
  EXPECT_EQ(table().Active(), nullptr);
}

TEST_F(DocumentWindowTest, TheEndOfTheProgramAsksEveryDocumentBeforeTheFirstGoes) {
  New();
  New();
  const auto isShown = [this](int slot) {
    return [this, slot] { EXPECT_EQ(table().Active(), table().Document(slot)) << "the one asked about is in front"; };
  };
  table().Document(1)->Activate();
  ExpectClosePrompt("Untitled:2", Answer::kNo, isShown(2));
  ExpectClosePrompt("Untitled:1", Answer::kCancel, isShown(1));
  EXPECT_FALSE(program().frame().RequestClose());
  EXPECT_TRUE(table().Document(1) && table().Document(2)) << "a Cancel leaves all of them open";
  ExpectClosePrompt("Untitled:2", Answer::kNo);
  ExpectClosePrompt("Untitled:1", Answer::kNo);
  EXPECT_TRUE(program().frame().RequestClose());
  EXPECT_FALSE(table().AnyDocumentOpen());
}

TEST_F(DocumentWindowTest, CloseAllGoesBackwardsAndPassesOverACancel) {
  New();
  Open(Put("a.txt", ""));
  New();
  ExpectClosePrompt("Untitled:3", Answer::kCancel);
  ExpectClosePrompt("Untitled:1", Answer::kNo);
  program().commands().mnuCloseAll_Click();
  EXPECT_TRUE(Showing("Untitled:3"));
  EXPECT_EQ(program().forms().count(), 2u);
  ExpectClosePrompt("Untitled:3", Answer::kNo);
  program().commands().mnuCloseAll_Click();
  Settle();
  EXPECT_EQ(program().frame().widget()->focusWidget(), &program().frame().leftPane().List1()) << "keys work on";
}

TEST_F(DocumentWindowTest, AFormatIsTurnedOnWhenMixedAndAllEmphasisGoesInOneStep) {
  frmText* document = Open(Put("a.rtf", "{\\rtf1 plain {\\b bold}}"));
  ui::RichTextBox& box = document->RichTextBox1();
  document->mnuSelAll_Click();
  EXPECT_EQ(box.SelBold(), std::nullopt);
  document->mnuBold_Click();
  EXPECT_EQ(box.SelBold(), true);
  document->mnuItalic_Click();
  document->mnuUnderline_Click();
  document->mnuStrikeThru_Click();
  document->mnuEmphasisRemove_Click();
  for (const bool on : {false, true}) {
    EXPECT_TRUE(box.SelBold() == on && box.SelItalic() == on && box.SelUnderline() == on && box.SelStrikeThru() == on);
    document->mnuUndoItem_Click();
  }
}

TEST_F(DocumentWindowTest, TheFontDialogChangesWhatTheUserChanged) {
  frmText* document = Open(Put("a.txt", "text"));
  ui::RichTextBox& box = document->RichTextBox1();
  document->mnuSelAll_Click();
  dialogs.Font([](const ui::FontChoice& choice) {
    EXPECT_EQ(choice, (ui::FontChoice{"Courier New", 10, false, false, false, false, -1}));
    return std::nullopt;
  });
  document->mnuFont_Click();
  EXPECT_FALSE(Changed(*document)) << "cancelled";
  dialogs.Font([](ui::FontChoice choice) {
    choice.points = 14;
    choice.color = 0x0000FF;
    return choice;
  });
  document->mnuFont_Click();
  EXPECT_EQ(box.SelFontSize(), 14.0);
  EXPECT_EQ(box.SelColor(), 0x0000FF);
  EXPECT_EQ(box.SelFontName(), QString("Courier New"));
  EXPECT_EQ(program().frame().statusBar().text(ui::Panel::stsFont), "Courier New, 14");
  document->mnuUndoItem_Click();
  EXPECT_EQ(box.SelFontSize(), 10.0);
  EXPECT_FALSE(Changed(*document)) << "one command is one step";
}

TEST_F(DocumentWindowTest, TheFontDialogOfAMixedSelectionEndsSilently) {
  frmText* document = Open(Put("a.rtf", "{\\rtf1 {\\fs20 small} {\\fs40 large}}"));
  document->mnuSelAll_Click();
  document->mnuFont_Click();
  EXPECT_FALSE(Changed(*document));
}

TEST_F(DocumentWindowTest, RefreshEndsTheSelection) {
  frmText* document = Open(Put("a.txt", "some text"));
  document->mnuSelAll_Click();
  EXPECT_EQ(document->RichTextBox1().SelLength(), 9);
  document->mnuRefresh_Click();
  EXPECT_EQ(document->RichTextBox1().SelLength(), 0);
}

// --- Names as they come: in the title, in the prompts, on the clipboard, on the disk

class NamesTest : public ProgramTest, public ::testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(NamesTest, AreShownPlainlyAndKeptExactly) {
  const auto [name, shown] = GetParam();
  const files::Path path = Put(name, "old");
  frmText* document = Open(path);
  ASSERT_TRUE(document);
  const QString shownPath = QString::fromStdString(folder().native()) + "/" + shown;
  Type(*document, "x");
  dialogs.Message("The text in [" + shownPath + "] has changed.\r\nDo you want to save the changes?",
                  ui::Buttons::kYesNoCancel, ui::Icon::kExclamation, Answer::kCancel);
  EXPECT_FALSE(document->Close());
  document->mnuCopyPath_Click();
  EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->data("text/plain").toStdString(), path.native());
  EXPECT_FALSE(QGuiApplication::clipboard()->mimeData()->hasUrls());
  const auto readOnly = files::SetReadOnly(path, true);
  ASSERT_TRUE(readOnly);
  dialogs.Message(
      "File: " + shownPath +
          "\r\nis a Read-only file.  Its Read-only attribute must be removed before it can be replaced.  Do "
          "you want to remove it?",
      ui::Buttons::kYesNo, ui::Icon::kInformation, Answer::kYes);
  EXPECT_EQ(document->mnuSaveFile_Click(), documents::SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(path), "xold");
  EXPECT_EQ(document->caption(), path.native());
}

INSTANTIATE_TEST_SUITE_P(
    Names, NamesTest,
    ::testing::Values(std::pair("two words.txt", "two words.txt"), std::pair("line\nbreak.txt", "line\uFFFDbreak.txt"),
                      std::pair("<b>bold<.txt", "<b>bold<.txt"), std::pair("a & b.txt", "a & b.txt"),
                      std::pair("[*].txt", "[*].txt"), std::pair("%1 %2.txt", "%1 %2.txt"),
                      std::pair("caf\xE9.txt", "caf\uFFFD.txt"), std::pair("\xD7\xA2\xD7\x91.txt", "\u05E2\u05D1.txt"),
                      std::pair("tab\tbed", "tab\uFFFDbed"), std::pair("trailing blank ", "trailing blank "),
                      std::pair("Untitled:7", "Untitled:7")),
    [](const auto& tested) { return "Row" + std::to_string(tested.index); });

// --- Whose turn it is

TEST_F(DocumentWindowTest, TheFocusComesBackToTheControlThatHadIt) {
  frmText* a = Open(Put("a.txt", "a"));
  frmText* b = Open(Put("b.txt", "b"));
  ASSERT_TRUE(a && b);
  // A second control in the window, as the find engine's or a tool's would be.
  auto* other = new QLineEdit(a->widget());
  other->show();
  a->Activate();
  other->setFocus();
  ASSERT_EQ(QApplication::focusWidget(), other);
  b->Activate();
  Settle();
  EXPECT_EQ(QApplication::focusWidget(), &b->RichTextBox1());
  a->Activate();
  Settle();
  EXPECT_EQ(QApplication::focusWidget(), other);
  delete other;
  b->Activate();
  a->Activate();
  Settle();
  EXPECT_EQ(QApplication::focusWidget(), &a->RichTextBox1()) << "what had it has gone";
}

TEST_F(DocumentWindowTest, ClosingOneGivesTheFocusToTheOneBefore) {
  frmText* a = Open(Put("a.txt", "a"));
  Open(Put("b.txt", "b"));
  frmText* c = Open(Put("c.txt", "c"));
  a->Activate();
  c->Activate();
  EXPECT_TRUE(c->Close());
  Settle();
  EXPECT_EQ(table().Active(), a);
  EXPECT_EQ(QApplication::focusWidget(), &a->RichTextBox1());
}

TEST_F(DocumentWindowTest, ALoadThatFailsTouchesNoStateOfTheNextWindow) {
  frmText* document = Open(Put("a.txt", "a"));
  document->SetWindowState(WindowState::kMaximized);
  EXPECT_TRUE(document->Close());
  ExpectError(Error(folder(), "Is a directory"));
  EXPECT_FALSE(Open(folder()));
  EXPECT_EQ(table().LastDocWindowState, static_cast<int>(WindowState::kMaximized));
  EXPECT_EQ(New().windowState(), WindowState::kMaximized);
}

struct LinkCase {
  const char* target;
  bool known;
  Answer answer;
};

TEST_F(DocumentWindowTest, ALinkOpensAfterItsTargetWasShown) {
  frmText& document = New();
  for (const LinkCase& c : {LinkCase{"https://quillmark.example/a?b", true, Answer::kYes},
                            {"HTTP://quillmark.example", true, Answer::kNo},
                            {"mailto:a@quillmark.example", true, Answer::kYes},
                            {"file:///etc/passwd", false, Answer::kOk},
                            {"javascript:alert(1)", false, Answer::kOk},
                            {"https://quillmark.example/ x", false, Answer::kOk},
                            {"\\\\host\\share", false, Answer::kOk}}) {
    desktop.asked.clear();
    const QString target = QString::fromUtf8(c.target);
    if (c.known) {
      dialogs.Message("Open this address?\r\n\r\n" + target, ui::Buttons::kYesNo, ui::Icon::kQuestion, c.answer);
    } else {
      dialogs.Message(
          "This link is not opened:\r\n\r\n" + target + "\r\n\r\nOnly http, https and mailto addresses are.",
          ui::Buttons::kOk, ui::Icon::kInformation, c.answer);
    }
    Q_EMIT document.RichTextBox1().LinkActivated(target);
    const bool opened = c.known && c.answer == Answer::kYes;
    EXPECT_EQ(desktop.asked,
              opened ? std::vector<std::string>{"open " + std::string(c.target)} : std::vector<std::string>{});
  }
}

}  // namespace
