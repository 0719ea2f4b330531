// The notes pad and the text blocks: their bytes, what is asked, what is kept, what is remembered.
#include "tests/program/ProgramTest.h"
#include "ui/desktop/Clipboard.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMimeData>
#include <gmock/gmock.h>

#include <tuple>

namespace {

using ui::Answer;

constexpr const char* kClosing = "Notes file has changed.\r\nDo you want to save the changes before continuing?";

class NotesTest : public ProgramTest {
 protected:
  panes::Notes& Notes() { return program().panes().notes(); }
  panes::frmMyPad* Pad() { return Notes().pad(); }
  panes::frmTextBlocks* Blocks() { return program().panes().textBlocks().pane(); }
  files::Path Load(const std::string& name, std::string_view bytes) {
    Notes().MyShow(Put(name, bytes));
    return At(name);
  }
  void TypeNotes(const QString& text) { Pad()->Text1().SetSelText(text); }
  void Ask(const QString& text, Answer answer, ui::Buttons buttons = ui::Buttons::kYesNoCancel) {
    dialogs.Message(text, buttons, ui::Icon::kExclamation, answer);
  }
  static void Press(QWidget& widget, int key, Qt::KeyboardModifiers modifiers) {
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(&widget, &press);
    Settle();
  }
  bool CanSaveNotes() {
    const ui::MenuBar& bar = program().menus().bar();
    for (size_t i = 0; i < bar.rowCount(); ++i)
      if (std::string_view(bar.row(i).name) == "mnuNotesSave") return bar.action(i)->isEnabled();
    return false;
  }
  services::SettingsStore::Pairs Stored() {
    return shell::SettingsFile(place.application.settings, place.recovery)
        .GetAllSettings(services::kApplicationName, services::kGeneral);
  }
  void Store(const services::SettingsStore::Pairs& pairs) {
    shell::SettingsFile(place.application.settings, place.recovery)
        .SaveSettings(services::kApplicationName, services::kGeneral, pairs);
  }
};

TEST_F(NotesTest, EveryByteComesBack) {
  const struct {
    std::string bytes, edited;  // "x" typed at the beginning
  } kRows[] = {
      {"", "x"},
      {"a\r\nb\nc\rd", "xa\r\nb\nc\rd"},
      {std::string("n\0l\x1A", 4), std::string("xn\0l\x1A", 5)},
      {"\xEF\xBB\xBF\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D", "\xEF\xBB\xBFx\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D"},
      {"caf\xE9", "xcaf\xE9"},
      {std::string("\xFF\xFE\xE9\0", 4), std::string("\xFF\xFEx\0\xE9\0", 6)},
  };
  for (const auto& row : kRows) {
    const files::Path path = Load("n Notes: \xFF.txt", row.bytes);
    EXPECT_EQ(Pad()->caption(), "Notes: " + path.native());
    EXPECT_TRUE(Pad()->SaveText1());
    EXPECT_EQ(Bytes(path), row.bytes);
    TypeNotes("x");
    EXPECT_TRUE(Pad()->NotesChanged());
    Press(Pad()->Text1(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_FALSE(Pad()->NotesChanged());
    EXPECT_EQ(Bytes(path), row.edited);
  }
}

TEST_F(NotesTest, ChangedNotesAreAskedAboutBeforeAnotherFile) {
  const files::Path first = Load("first.txt", "1"), second = Put("second.txt", "2");
  const QString question =
      QString::fromStdString(first.native()) + " has changed.\r\nDo you want to save the changes before continuing?";
  for (const auto& [answer, file, shown, saved] : {std::tuple{Answer::kCancel, first, "a1", "1"},
                                                   {Answer::kNo, second, "2", "1"},
                                                   {Answer::kYes, second, "2", "a1"}}) {
    Notes().MyShow(first);
    TypeNotes("a");
    Ask(question, answer);
    Notes().MyShow(second);
    EXPECT_EQ(Pad()->path(), file);
    EXPECT_EQ(Pad()->Text1().Text().toStdString(), shown);
    EXPECT_EQ(Bytes(first), saved);
    if (answer == Answer::kCancel) Pad()->Text1().document().SetSaved();
  }
}

TEST_F(NotesTest, AMessageIsSavedOnlyAsNotesAndAfterAQuestion) {
  const files::Path gone = At("new.txt");
  EXPECT_FALSE(CanSaveNotes());
  Notes().MyShow(gone);
  EXPECT_TRUE(CanSaveNotes());
  EXPECT_EQ(Pad()->Text1().Text().toStdString(), "Error: " + gone.native() + "\r\n53");
  EXPECT_FALSE(Pad()->SaveText1());
  EXPECT_FALSE(Exists(gone));
  TypeNotes("mine");
  const QString question = File(gone, "does not exist.  Do you want to create it and save the notes there?");
  Ask(question, Answer::kNo, ui::Buttons::kYesNo);
  EXPECT_FALSE(Pad()->SaveText1());
  EXPECT_FALSE(Exists(gone));
  Ask(question, Answer::kYes, ui::Buttons::kYesNo);
  EXPECT_TRUE(Pad()->SaveText1());
  EXPECT_EQ(Bytes(gone), "mine") << "the message was selected, so that it was typed over";
  Put("new.txt", "another program's");
  Ask(File(gone, "has been changed by another program since it was opened.  Do you want to replace it?"), Answer::kNo,
      ui::Buttons::kYesNo);
  EXPECT_FALSE(Pad()->SaveText1());
  EXPECT_EQ(Bytes(gone), "another program's");
  EXPECT_TRUE(Pad()->RequestClose());
  EXPECT_FALSE(CanSaveNotes());
}

TEST_F(NotesTest, CharactersThatTheEncodingDoesNotHaveAreAskedAbout) {
  const files::Path path = Load("old.txt", "caf\xE9");
  TypeNotes(QChar(0x05D0));
  const QString question = File(path, "contains characters that its encoding cannot hold.  Save as UTF-8?");
  Ask(question, Answer::kNo, ui::Buttons::kYesNo);
  EXPECT_FALSE(Pad()->SaveText1());
  Ask(question, Answer::kYes, ui::Buttons::kYesNo);
  EXPECT_TRUE(Pad()->SaveText1());
  EXPECT_EQ(Bytes(path),
            "\xD7\x90"
            "caf\xC3\xA9");
}

TEST_F(NotesTest, WhatCannotBeSavedStaysChangedAndIsKeptAtTheEnd) {
  const files::Path path = Load("notes.txt", "old");
  std::filesystem::permissions(path, std::filesystem::perms::owner_read);
  TypeNotes("new ");
  EXPECT_FALSE(Pad()->SaveText1()) << "without a message";
  EXPECT_TRUE(Pad()->NotesChanged());
  Ask(kClosing, Answer::kCancel);
  EXPECT_FALSE(program().frame().RequestClose());
  ASSERT_NE(Pad(), nullptr);
  Ask(kClosing, Answer::kYes);
  EXPECT_TRUE(program().frame().RequestClose());
  EXPECT_EQ(Bytes(path), "old");
  place.offersRecovered = true;
  dialogs.Message(
      "The text of [" + QString::fromStdString(path.native()) +
          "] was not saved when its window was closed.\r\nDo you want to open it now?  No deletes it, Cancel "
          "leaves it for the next start.",
      ui::Buttons::kYesNoCancel, ui::Icon::kQuestion, Answer::kYes);
  Restart();
  ASSERT_NE(Showing(path.native()), nullptr);
  EXPECT_EQ(Showing(path.native())->RichTextBox1().Text(), "new old");
}

TEST_F(NotesTest, ALoadThatIsCancelledOrFailsChangesNothing) {
  // Large enough for a Cancel while it is read.
  constexpr int64_t kSize = 40 << 20;
  const files::Path first = Put("first.txt", ""), second = Put("second.txt", "");
  std::filesystem::resize_file(first, kSize);
  std::filesystem::resize_file(second, kSize + 1);
  for (const bool fails : {false, true}) {
    const auto spoil = [&] { fails ? dialogs.FailNextWork() : dialogs.CancelNextWork(); };
    const auto show = [&](const files::Path& path) {
      spoil();
      EXPECT_EQ(program().forms().Guarded([&] { Notes().MyShow(path); }), !fails);
    };
    if (fails) ExpectError("Error: std::bad_alloc");
    show(first);
    EXPECT_EQ(Pad(), nullptr);
    EXPECT_FALSE(CanSaveNotes());
    Notes().MyShow(first);
    if (fails) ExpectError("Error: std::bad_alloc");
    show(second);
    EXPECT_EQ(Pad()->path(), first);
    EXPECT_EQ(Pad()->Text1().document().content().sums().bytes.value(), kSize);
    EXPECT_TRUE(Pad()->RequestClose());
  }
}

TEST_F(NotesTest, APaneThatCannotBeOpenedDoesNotHinderTheStart) {
  Store({{"TextBlocks", Put("b.txt", "").native()},
         {"QuoteFile", Put("q.txt", "quote").native()},
         {"NotesFile", Put("n.txt", "notes").native()}});
  dialogs.FailNextWork();
  ExpectError("Error: std::bad_alloc");
  paths = {Put("a.txt", "a")};
  Restart();
  EXPECT_EQ(Blocks(), nullptr);
  ASSERT_TRUE(Pad() && program().panes().quotes().pane());
  EXPECT_EQ(Pad()->Text1().Text(), "notes");
  EXPECT_NE(Showing(At("a.txt").native()), nullptr);
}

TEST_F(NotesTest, WhatShouldBeSavedButCannotBeIsKeptOrStays) {
  const files::Path path = Load("notes.txt", "old"), second = Put("second.txt", "2");
  std::filesystem::permissions(path, std::filesystem::perms::owner_read);
  TypeNotes("new ");
  Ask(QString::fromStdString(path.native()) + " has changed.\r\nDo you want to save the changes before continuing?",
      Answer::kYes);
  Notes().MyShow(second);
  EXPECT_EQ(Pad()->path(), second);
  const auto kept = files::ListRecovery(place.recovery);
  ASSERT_EQ(kept.value().size(), 1u);
  EXPECT_EQ(Bytes(kept.value()[0].text), "new old");
  // And now not even there.
  std::filesystem::remove_all(place.recovery);
  Put(place.recovery.filename(), "in the way");
  std::filesystem::permissions(second, std::filesystem::perms::owner_read);
  TypeNotes("more ");
  Ask(kClosing, Answer::kYes);
  ExpectError(Error(second, "Not a directory"));
  EXPECT_FALSE(Pad()->RequestClose());
  EXPECT_EQ(Pad()->Text1().Text(), "more 2");
  std::filesystem::remove(place.recovery);
}

TEST_F(NotesTest, WhatWasKeptGoesWhenItIsUndone) {
  Load("notes.txt", "old");
  const auto entries = [&] {
    std::error_code none;
    return std::distance(std::filesystem::directory_iterator(place.recovery, none), {});
  };
  TypeNotes("new ");
  for (int i = 0; i < 2; ++i) {
    EXPECT_FALSE(program().KeepTexts());
    EXPECT_EQ(entries(), 1);
  }
  Pad()->Text1().Undo();
  EXPECT_FALSE(program().KeepTexts());
  EXPECT_EQ(entries(), 0);
}

TEST_F(NotesTest, AFileThatCouldNotBeReadIsNotReplacedUnasked) {
  std::filesystem::create_directory(At("folder"));
  for (const auto& [path, number] : {std::pair{At("folder"), "70"}, {files::Path("/proc/self/mem"), "57"}}) {
    Notes().MyShow(path);
    EXPECT_EQ(Pad()->Text1().Text().toStdString(), "Error: " + path.native() + "\r\n" + number);
    TypeNotes("mine");
    Ask(File(path, "could not be read when it was opened.  Do you want to save what is in the pad there?"), Answer::kNo,
        ui::Buttons::kYesNo);
    EXPECT_FALSE(Pad()->SaveText1());
    Pad()->Text1().document().SetSaved();
  }
}

TEST_F(NotesTest, AnEndNobodyIsAskedAboutKeepsThem) {
  const files::Path path = Load("notes.txt", "old");
  TypeNotes("new ");
  program().EndSession();
  auto kept = files::ListRecovery(place.recovery);
  ASSERT_TRUE(kept);
  EXPECT_TRUE(kept.value().empty()) << "still claimed";
  Restart();
  kept = files::ListRecovery(place.recovery);
  ASSERT_EQ(kept.value().size(), 1u);
  EXPECT_EQ(Bytes(kept.value()[0].text), "new old");
  EXPECT_EQ(kept.value()[0].originalPath, path);
}

TEST_F(NotesTest, SizesAndStatesAreRememberedFromOneRunToTheNext) {
  const files::Path notes = Put("n.txt", ""), blocks = Put("b.txt", "");
  Store({{"SaveWindowState", "True"},
         {"NotesFile", notes.native()},
         {"TextBlocks", blocks.native()},
         {"MyPadSize", "4507,3009"},
         {"TextBlocksState", "2"}});
  Restart();
  ASSERT_TRUE(Pad() && Blocks());
  EXPECT_EQ(Pad()->widget()->size(), QSize(200, 300));
  EXPECT_EQ(Blocks()->windowState(), ui::WindowState::kMaximized);
  program().frame().RequestClose();
  EXPECT_THAT(Stored(), testing::IsSupersetOf({std::pair<std::string, std::string>{"MyPadSize", "4507,3009"},
                                               {"MyPadState", "0"},
                                               {"TextBlocksState", "2"}}))
      << "not rounded to pixels";
  Restart();
  Pad()->widget()->resize(220, 300);
  program().commands().mnuMinRest_Click();
  program().frame().RequestClose();
  EXPECT_THAT(Stored(), testing::IsSupersetOf({std::pair<std::string, std::string>{"MyPadSize", "4500,3300"},
                                               {"MyPadState", "1"},
                                               {"TextBlocksState", "1"}}));
}

TEST_F(NotesTest, TextBlocksAreCopiedAndNeverWritten) {
  const std::string text = "block\r\ntwo \xFF \xC3\xA9\xC3\xA9\xC3\xA9";
  const files::Path first = Put("one.txt", text), second = Put("two.txt", "other");
  panes::TextBlocks& blocks = program().panes().textBlocks();
  dialogs.File(first, [](const ui::FileRequest& request) { EXPECT_EQ(request.title, "Select a text blocks file"); });
  blocks.mnuTextBlocksOpen_Click();
  EXPECT_EQ(Blocks()->caption(), "Text blocks: " + first.native());
  Blocks()->Text1().SelectAll();
  Press(Blocks()->Text1(), Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(ui::ClipboardText(), QString::fromUtf8("block\ntwo \uFFFD \u00E9\u00E9\u00E9"));
  EXPECT_EQ(QApplication::clipboard()->mimeData()->formats(), QStringList{"text/plain"});
  New().RichTextBox1().Paste();
  EXPECT_EQ(table().Active()->RichTextBox1().document().content().ByteString(
                table().Active()->RichTextBox1().document().content().all()),
            text);
  Blocks()->Text1().SetSelStart(0);
  Press(Blocks()->Text1(), Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(ui::ClipboardText(), "");
  Blocks()->Text1().SetSelText("typed");
  dialogs.File(second, [&](const ui::FileRequest& request) { EXPECT_EQ(request.name, first.filename()); });
  blocks.mnuTextBlocksOpen_Click();
  EXPECT_EQ(Blocks()->Text1().Text(), "other");
  Blocks()->Text1().SetSelText("typed");
  EXPECT_TRUE(Blocks()->RequestClose());
  EXPECT_EQ(Bytes(first) + Bytes(second), text + "other");
  blocks.MyShow(At("gone.txt"));
  EXPECT_EQ(Blocks()->Text1().Text().toStdString(), "Error: " + At("gone.txt").native() + "\r\n53");
}

}  // namespace
