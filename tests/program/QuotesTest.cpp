// The quotes: their file, their commands, and their pane by keys and mouse.
#include "tests/program/ProgramTest.h"
#include "ui/desktop/Clipboard.h"
#include "ui/frame/ChildArea.h"
#include "ui/frame/ToolBar.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QThread>
#include <QTimer>

namespace {

class QuotesTest : public ProgramTest {
 protected:
  panes::Quotes& Quotes() { return program().panes().quotes(); }
  ui::ChoiceList& List() { return Quotes().pane()->List1(); }
  commands::Commands& Do() { return program().commands(); }
  void Load(std::string_view bytes) {
    Quotes().LoadQuotesFile(Put("quotes.txt", bytes));
    Settle();
  }
  std::string Lines() {
    std::string lines;
    for (int i = 0; i < List().count(); ++i) lines += (i ? "|" : "") + List().line(i).text;
    return lines;
  }
  // Which of the menu's rows and of the button's entries can be used.
  std::string Usable() {
    std::string names;
    const ui::MenuBar& bar = program().menus().bar();
    for (const char* name : {"mnuLoadQuotes", "mnuFindQuote", "mnuFindNextQuote", "mnuRandom", "mnuCopyQuote"})
      for (size_t i = 0; i < bar.rowCount(); ++i)
        if (std::string_view(bar.row(i).name) == name) names += bar.action(i)->isEnabled() ? name[3] : '-';
    const ui::ToolBar& toolbar = program().frame().toolbar();
    const size_t button = toolbar.Find("Quotes").value();
    for (size_t i = 0; i < 5; ++i) names += toolbar.isMenuEnabled(button, i) ? *toolbar.row(button).menu[i].key : '-';
    return names;
  }
  static void Press(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = {}) {
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(&widget, &press);
    Settle();
  }
  void Click(int line, Qt::MouseButton button = Qt::LeftButton) {
    const QPoint at = List().visualRect(List().model()->index(line, 0)).center();
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
      QMouseEvent event(type, at, List().viewport()->mapToGlobal(at), button, button, {});
      QApplication::sendEvent(List().viewport(), &event);
    }
    if (button != Qt::RightButton) return;
    QTimer::singleShot(0, [] {
      if (QWidget* menu = QApplication::activePopupWidget()) menu->close();
    });
    QContextMenuEvent menu(QContextMenuEvent::Mouse, at, List().viewport()->mapToGlobal(at));
    QApplication::sendEvent(List().viewport(), &menu);
  }
  void Settings(services::SettingsStore::Pairs pairs) {
    shell::SettingsFile(place.application.settings, place.recovery)
        .SaveSettings(services::kApplicationName, services::kGeneral, pairs);
  }
};

TEST_F(QuotesTest, AFileIsChosenLoadedAndReplaced) {
  EXPECT_EQ(Usable(), "L----L----");
  const files::Path first = Put("a \xFF.txt", "one\n\ntwo"), gone = At("gone.txt");
  dialogs.File(first, [](const ui::FileRequest& request) {
    EXPECT_EQ(request.title, "Select a quotes or tagline file");
    EXPECT_TRUE(request.name.empty());
  });
  Do().mnuLoadQuotes_Click();
  EXPECT_EQ(Lines(), "one|two");
  EXPECT_EQ(Quotes().pane()->caption(), first.native());
  EXPECT_EQ(Usable(), "LFFRCLFNRC");
  dialogs.File(std::nullopt, [&](const ui::FileRequest& request) { EXPECT_EQ(request.name, first.filename()); });
  Do().mnuLoadQuotes_Click();
  Quotes().LoadQuotesFile(gone);
  EXPECT_EQ(Lines(), "Error: " + gone.native() + " : 53");
  EXPECT_EQ(Usable(), "L----L----");
  Press(List(), Qt::Key_F, Qt::ControlModifier);  // asks nothing
  Quotes().LoadQuotesFile(first);
  EXPECT_TRUE(Quotes().pane()->RequestClose());
  EXPECT_EQ(Usable(), "L----L----") << "nothing is loaded any more";
}

TEST_F(QuotesTest, WhatCannotBeReadIsAnEntry) {
  const files::Path large = Put("large.txt", "");
  std::filesystem::resize_file(large, 65 << 20);
  const struct {
    files::Path path;
    const char *number, *usable;
  } kFiles[] = {{"/proc/self/mem", "57", "LFFRCLFNRC"}, {large, "61", "L----L----"}, {folder(), "70", "L----L----"}};
  for (const auto& row : kFiles) {
    Quotes().LoadQuotesFile(row.path);
    EXPECT_EQ(Lines(), "Error: " + row.path.native() + " : " + row.number);
    EXPECT_EQ(Usable(), row.usable) << row.path;
  }
  dialogs.CancelNextWork();
  Quotes().LoadQuotesFile(Put("quotes.txt", "quote"));
  EXPECT_EQ(Quotes().pane()->caption(), folder().native()) << "cancelled";
}

TEST_F(QuotesTest, FindGoesOnBehindTheQuoteItExaminedLast) {
  Load("a war\nWar and peace\nwarm\npeace\n\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D");
  const struct {
    std::optional<QString> ask;  // else Find next
    int chosen;
  } kSteps[] = {{QString("WAR"), 0},
                {{}, 1},
                {{}, 2},
                {{}, 2},
                {{}, 0},
                {QString("peace"), 1},
                {{}, 3},
                {QString("none"), 3},
                {{}, 3},
                {QString(""), 3},
                {QString(QChar(0x05DC)), 4}};
  QString before;
  for (const auto& step : kSteps) {
    if (step.ask) {
      dialogs.Text("Input the search string", before, step.ask->isEmpty() ? std::nullopt : step.ask);
      if (!step.ask->isEmpty()) before = *step.ask;
      Do().mnuFindQuote_Click();
    } else {
      Do().mnuFindNextQuote_Click();
    }
    EXPECT_EQ(List().Choice(), step.chosen) << before.toStdString();
  }
  Load("one");
  Do().mnuFindNextQuote_Click();
  EXPECT_EQ(List().Choice(), -1) << "of another file nothing is taken for found";
  Do().mnuRandom_Click();
  EXPECT_EQ(List().Choice(), 0);
}

TEST_F(QuotesTest, CopyingByKeysMouseAndSelection) {
  const std::string stray = "\xFF\t\xC3\xA9\xC3\xA9\xC3\xA9";
  Load("one\ntwo\n" + stray);
  QApplication::clipboard()->setText("before");
  Do().mnuCopyQuote_Click();
  EXPECT_EQ(ui::ClipboardText(), "before") << "no quote is selected";
  Press(List(), Qt::Key_Down);
  Press(List(), Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(ui::ClipboardText(), "one") << "the first one, by the first key";
  Press(List(), Qt::Key_Down);
  Press(List(), Qt::Key_Return);
  EXPECT_EQ(ui::ClipboardText(), "two");
  program().settings().AutoCopy = true;
  Click(0);
  EXPECT_EQ(ui::ClipboardText(), "one");
  Click(1, Qt::RightButton);
  EXPECT_EQ(List().Choice(), 1);
  EXPECT_EQ(ui::ClipboardText(), "one") << "the right button copies nothing";
  Click(1);
  EXPECT_EQ(ui::ClipboardText(), "two");
  List().Choose(2);
  EXPECT_EQ(QApplication::clipboard()->mimeData()->data("text/plain").toStdString(), stray);
  EXPECT_EQ(List().model()->index(2, 0).data().toString(), QString::fromUtf8("\uFFFD \u00E9\u00E9\u00E9"));
}

TEST_F(QuotesTest, InThePaneKeysMeanTheQuotes) {
  New();
  Load("one\ntwo");
  for (const auto& [key, modifiers] : {std::pair{Qt::Key_F, Qt::ControlModifier}, {Qt::Key_F3, Qt::NoModifier}}) {
    dialogs.Text("Input the search string", "", std::nullopt);
    Press(List(), key, modifiers);
  }
  EXPECT_EQ(program().find().dialog(), nullptr);
  Press(List(), Qt::Key_B, Qt::ControlModifier);
  EXPECT_EQ(table().Active()->RichTextBox1().SelBold(), false) << "nothing in the document is edited from a pane";
  Press(List(), Qt::Key_N, Qt::ControlModifier);
  EXPECT_EQ(table().UpperBound(), 2) << "other keys are the main window's";
}

TEST_F(QuotesTest, StatesAreRememberedFromOneRunToTheNext) {
  const files::Path file = Put("quotes.txt", "one");
  Settings({{"QuoteFile", file.native()}, {"SaveWindowState", "True"}, {"QuotesState", "2"}});
  Restart();
  ASSERT_NE(Quotes().pane(), nullptr);
  EXPECT_EQ(Quotes().pane()->windowState(), ui::WindowState::kMaximized);
  EXPECT_EQ(program().settings().QuotesState, -1);
  program().frame().RequestClose();
  const auto stored = [&] {
    return shell::SettingsFile(place.application.settings, place.recovery)
        .GetSetting(services::kApplicationName, services::kGeneral, "QuotesState", "");
  };
  EXPECT_EQ(stored(), "2");
  files::LockFile other;
  place.lock = At("lock");
  ASSERT_TRUE(other.Acquire(place.lock).value());
  Restart();
  EXPECT_EQ(Quotes().pane(), nullptr) << "another copy has it";
}

TEST_F(QuotesTest, ItStandsInTheCornerOfTheDocuments) {
  Load("one");
  const QRect area = program().documentArea().OnScreen();
  for (const QSize size : {QSize(300, 200), QSize(200, 250)}) {
    Quotes().pane()->widget()->resize(size);
    const auto inPlace = [&] { return Quotes().pane()->widget()->frameGeometry().bottomRight() == area.bottomRight(); };
    for (int i = 0; i < 100 && !inPlace(); ++i) QThread::msleep(5), Settle();
    EXPECT_TRUE(inPlace());
  }
}

}  // namespace
