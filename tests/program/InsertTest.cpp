// What the Edit menu inserts.
#include "documents/DateTimeText.h"
#include "documents/ObjectCopies.h"
#include "tests/program/ProgramTest.h"
#include "text/rtfsyntax/RtfPackage.h"
#include "ui/desktop/ObjectTypes.h"
#include "ui/dialogs/InsertObjectForm.h"

#include <QAction>
#include <QRegularExpression>
#include <QThread>

#include <fstream>
#include <sys/stat.h>

namespace {

using documents::DateTimeForm;
using documents::DateTimeText;
using documents::frmText;

struct DateCase {
  DateTimeForm form;
  const char *locale, *when, *text;
};

class DateTime : public testing::TestWithParam<DateCase> {};

TEST_P(DateTime, IsWrittenSo) {
  const auto& [form, locale, when, text] = GetParam();
  const QDateTime moment = QDateTime::fromString(QLatin1String(when), Qt::ISODate);
  EXPECT_EQ(DateTimeText(form, moment, QLocale(QLatin1String(locale))).toStdString(), text);
}

using F = DateTimeForm;
constexpr const char *kEvening = "2026-11-16T20:20:33", *kMorning = "2026-03-06T00:05:09",
                     *kMidnight = "2026-03-06T00:00:00";
INSTANTIATE_TEST_SUITE_P(Insert, DateTime,
                         testing::Values(DateCase{F::kDateMed, "en_US", kEvening, "16-Nov-26"},
                                         DateCase{F::kDateMed, "de_DE", kMorning, "06-Mar-26"},
                                         DateCase{F::kTimeMed, "en_US", kEvening, "08:20 PM"},
                                         DateCase{F::kTimeMed, "de_DE", kMorning, "12:05 AM"},
                                         DateCase{F::kTimeShort, "en_US", kEvening, "20:20"},
                                         DateCase{F::kTimeShort, "ar_EG", kMorning, "00:05"},
                                         DateCase{F::kTimeLong, "en_US", kEvening, "8:20:33 PM"},
                                         DateCase{F::kTimeLong, "de_DE", kEvening, "20:20:33"},
                                         DateCase{F::kDateLong, "en_US", kEvening, "Monday, November 16, 2026"},
                                         DateCase{F::kDateShort, "de_DE", kEvening, "16.11.26"},
                                         DateCase{F::kDateGeneral, "de_DE", kEvening, "16.11.26 20:20:33"},
                                         DateCase{F::kDateGeneral, "de_DE", kMidnight, "06.03.26"}));

class InsertTest : public ProgramTest {
 protected:
  const QAction& Row(const std::string& name) {
    ui::MenuBar& bar = program().menus().bar();
    size_t row = 0;
    while (name != bar.row(row).name) ++row;
    return *bar.action(row);
  }
  void Choose(const std::string& name) { const_cast<QAction&>(Row(name)).trigger(); }
  void OpenEditMenu() {
    size_t row = 0;
    while (std::string("mnuEdit") != program().menus().bar().row(row).name) ++row;
    Q_EMIT program().menus().bar().AboutToShow(row);
  }
};

TEST_F(InsertTest, DatesAreShownAndInsertedAsOneStep) {
  frmText& document = New();
  Type(document, "on XX it was");
  OpenEditMenu();
  for (const char* row : {"mnuDateGeneral", "mnuDateLong", "mnuDateMed", "mnuDateShort", "mnuTimeLong", "mnuTimeMed"}) {
    EXPECT_TRUE(Row(row).text().contains(QRegularExpression("[0-9]"))) << row << Row(row).text().toStdString();
    document.RichTextBox1().SetSelStart(3);
    document.RichTextBox1().SetSelLength(2);
    Choose(row);
    const QString text = document.RichTextBox1().Text();
    EXPECT_TRUE(text.startsWith("on ") && text.endsWith(" it was") && !text.contains("XX")) << text.toStdString();
    document.mnuUndoItem_Click();
    EXPECT_EQ(document.RichTextBox1().Text(), "on XX it was");
  }
}

TEST_F(InsertTest, NothingGoesIntoProtectedText) {
  frmText& document = New();
  Type(document, "protected");
  document.RichTextBox1().SelectAll();
  document.mnuProtect_Click();
  Choose("mnuDateLong");
  EXPECT_EQ(document.RichTextBox1().Text(), "protected");
}

// --- Objects

class ObjectTest : public InsertTest {
 protected:
  // A document "one|two" with the file between.
  frmText& WithObject(const std::string& name, std::string_view bytes) {
    frmText& document = *Open(Put("a.rtf", ""));
    Type(document, "onetwo");
    document.RichTextBox1().SetSelStart(3);
    Q_EMIT document.RichTextBox1().FilesDropped({Put(name, bytes).native()});
    Settle();
    EXPECT_EQ(document.RichTextBox1().Text(), QString("one") + kObject + "two");
    return document;
  }
  static const text::EmbeddedObject& ObjectOf(frmText& document, int64_t place = 3) {
    const text::Content& content = document.RichTextBox1().document().content();
    return content.formats()[content.formats()[content.CharFormatAt(text::Units(place))].object];
  }
  static std::string BytesOf(frmText& document, int64_t place = 3) {
    const auto package = text::rtf::ReadPackage(ObjectOf(document, place).rtf.bytes);
    return package ? package->bytes : "no package";
  }
  // Opens it and gives the copy's path.
  files::Path OpenObject(frmText& document) {
    document.RichTextBox1().SetSelStart(4);
    document.mnuRCObjOpen_Click();
    const std::string asked = desktop.asked.empty() ? "" : desktop.asked.back();
    return asked.starts_with("copy ") ? asked.substr(5) : "";
  }
  static void Write(const files::Path& path, std::string_view bytes) { std::ofstream(path, std::ios::binary) << bytes; }
  static int ModeOf(const files::Path& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
  }
  void ExpectKept(frmText& document, const files::Path& copy, const QString& reason) {
    ExpectError(QString("The changes to [%1] could not be taken back into [%2]:\r\n%3\r\n\r\nThe changed file is "
                        "kept here:\r\n%4")
                    .arg(QString::fromStdString(copy.filename().native()), QString::fromStdString(document.caption()),
                         reason, QString::fromStdString(copy.native())));
  }
  files::Path copies() const { return place.recovery.parent_path() / "objects"; }
  static constexpr QChar kObject{0xFFFC};
};

TEST_F(ObjectTest, FilesBecomeObjectsInOneStepAndSurviveASave) {
  frmText& document = WithObject("a & b.bin", std::string("\0{\\\xFF", 4));
  EXPECT_EQ(ObjectOf(document).name, "a & b.bin");
  EXPECT_EQ(document.mnuSaveFile_Click(), documents::SaveOutcome::kSaved);
  document.mnuUndoItem_Click();
  EXPECT_EQ(document.RichTextBox1().Text(), "onetwo");
  document.mnuRedoItem_Click();
  EXPECT_TRUE(document.Close());
  frmText& again = *Open(At("a.rtf"));
  EXPECT_EQ(BytesOf(again), std::string("\0{\\\xFF", 4));
  Q_EMIT again.RichTextBox1().FilesDropped({Put("b", "B").native(), Put("c", "C").native()});
  Settle();
  EXPECT_EQ(again.RichTextBox1().Text().count(kObject), 3);
  again.mnuUndoItem_Click();
  EXPECT_EQ(again.RichTextBox1().Text().count(kObject), 1);
}

TEST_F(ObjectTest, WhatCannotBeReadIsToldAndTheRestGoesIn) {
  frmText& document = *Open(Put("a.rtf", ""));
  std::filesystem::create_directory(At("folder"));
  Put("big", "");
  std::filesystem::resize_file(At("big"), int64_t{1} << 30);
  ExpectError(Error(At("missing"), "No such file or directory") + "\r\n\r\n" + Error(At("folder"), "Is a directory") +
              "\r\n\r\n" + Error(At("big"), "is larger than 64 MB, the most that a document takes in."));
  Q_EMIT document.RichTextBox1().FilesDropped(
      {At("missing").native(), At("folder").native(), At("big").native(), Put("good", "x").native()});
  Settle();
  EXPECT_EQ(BytesOf(document, 0), "x");
  dialogs.CancelNextWork();
  Q_EMIT document.RichTextBox1().FilesDropped({At("good").native()});
  Settle();
  EXPECT_EQ(document.RichTextBox1().Text().count(kObject), 1);
}

TEST_F(ObjectTest, ChangesOfACopyComeBackAsOneStepEach) {
  frmText& document = WithObject("note.txt", "old");
  const files::Path copy = OpenObject(document);
  EXPECT_EQ(copy.filename(), "note.txt");
  EXPECT_EQ(Bytes(copy), "old");
  EXPECT_EQ(ModeOf(copy), 0600);
  EXPECT_EQ(ModeOf(copy.parent_path()), 0700);
  document.RichTextBox1().SetSelStart(0);
  Type(document, "zero ");
  document.RichTextBox1().SetSelStart(9);
  document.mnuRCObjOpen_Click();
  EXPECT_EQ(desktop.asked.back(), "copy " + copy.native()) << "the same copy";
  Write(copy, "first");
  table().copies().TakeBack(document.id());
  EXPECT_EQ(BytesOf(document, 8), "first");
  Write(At("other"), "second, of another inode");
  std::filesystem::rename(At("other"), copy);
  EXPECT_EQ(document.mnuSaveFile_Click(), documents::SaveOutcome::kSaved);
  EXPECT_EQ(BytesOf(document, 8), "second, of another inode") << "before it is saved";
  EXPECT_EQ(document.RichTextBox1().SelStart(), 9);
  document.mnuUndoItem_Click();
  EXPECT_EQ(BytesOf(document, 8), "first");
  document.mnuUndoItem_Click();
  EXPECT_EQ(BytesOf(document, 8), "old");
  Write(copy, "third");
  table().copies().TakeBack(document.id());
  EXPECT_EQ(BytesOf(document, 8), "third") << "an earlier state is the same object";
  std::filesystem::remove(copy);
  table().copies().TakeBack(document.id());
  EXPECT_EQ(BytesOf(document, 8), "third") << "a copy that is gone changes nothing";
}

TEST_F(ObjectTest, TheWatchedCopyComesBackByItself) {
  frmText& document = WithObject("note.txt", "old");
  const files::Path copy = OpenObject(document);
  Write(copy, "new");
  for (int i = 0; i < 500 && BytesOf(document) == "old"; ++i) QThread::msleep(10), Settle();
  EXPECT_EQ(BytesOf(document), "new");
  EXPECT_TRUE(Changed(document));
}

TEST_F(ObjectTest, WhatCannotComeBackIsKeptAndTold) {
  frmText& document = WithObject("note.txt", "old");
  const files::Path copy = OpenObject(document);
  Write(copy, "");
  std::filesystem::resize_file(copy, int64_t{1} << 30);
  ExpectKept(document, copy, "is larger than 64 MB, the most that a document takes in.");
  table().copies().TakeBack(document.id());
  table().copies().TakeBack(document.id());
  Write(copy, "small again");
  table().copies().TakeBack(document.id());
  EXPECT_EQ(BytesOf(document), "small again");
  document.RichTextBox1().SelectAll();
  document.mnuProtect_Click();
  Write(copy, "while it is protected");
  ExpectKept(document, copy, "the object is protected there.");
  table().copies().TakeBack(document.id());
  document.mnuProtect_Click();
  document.mnuDelete_Click();
  Write(copy, "after it was deleted");
  ExpectKept(document, copy, "the object is no longer in the document.");
  table().copies().TakeBack(document.id());
  const ui::FormId id = document.id();
  const QString caption = QString::fromStdString(document.caption());
  ExpectClosePrompt(document.caption(), ui::Answer::kNo);
  EXPECT_TRUE(document.Close());
  Write(copy, "after the document was closed");
  ExpectError(QString("The changes to [note.txt] could not be taken back into [%1]:\r\nthe document has been "
                      "closed.\r\n\r\nThe changed file is kept here:\r\n%2")
                  .arg(caption, QString::fromStdString(copy.native())));
  table().copies().TakeBack(id);
  Restart();
  EXPECT_EQ(Bytes(copy), "after the document was closed");
}

TEST_F(ObjectTest, CopiesGoWithTheProgram) {
  frmText& document = WithObject("note.txt", "old");
  const files::Path copy = OpenObject(document);
  Write(copy, "changed");
  ExpectClosePrompt(document.caption(), ui::Answer::kNo);
  EXPECT_TRUE(document.Close());
  EXPECT_TRUE(Exists(copy)) << "its application may still have it";
  Restart();
  EXPECT_FALSE(Exists(copy.parent_path()));
}

TEST_F(ObjectTest, LeftoversAreClearedOrTold) {
  const auto leave = [&](const std::string& name, const std::string& about) {
    std::filesystem::create_directories(copies() / name);
    Write(copies() / name / "x.txt", "12345");
    if (!about.empty()) Write(copies() / name / ".about", about);
  };
  leave("changed", "4 1 1\nx.txt");
  leave("told", "");
  std::filesystem::create_directories(copies() / "empty");
  Write(copies() / "empty" / ".about", "4 1 1\nx.txt");
  ExpectError(
      QString("The program ended while files out of documents were being edited.  What was changed in them since "
              "is not in the documents.  These files are kept:\r\n%1")
          .arg(QString::fromStdString((copies() / "changed" / "x.txt").native())));
  table().copies().SweepLeftovers();
  table().copies().SweepLeftovers();
  EXPECT_TRUE(Exists(copies() / "changed" / "x.txt") && Exists(copies() / "told" / "x.txt"));
  EXPECT_FALSE(Exists(copies() / "empty"));
}

TEST_F(ObjectTest, WhatIsNotOpenedSaysWhy) {
  frmText& document = WithObject("run.desktop", "[Desktop Entry]\nExec=x\n");
  desktop.opens = [](const std::string&) { return ui::Shell::kAccessDenied; };
  ExpectError(
      "File: run.desktop\r\nis a program or a link and is not opened.  A program inside a document may do harm.");
  const files::Path copy = OpenObject(document);
  EXPECT_FALSE(Exists(copy.parent_path()));
  desktop.opens = [](const std::string&) { return ui::Shell::kNoApplication; };
  ExpectError("File: run.desktop\r\ncannot be opened: no application is installed for this type of file.");
  EXPECT_FALSE(Exists(OpenObject(document)));
  document.RichTextBox1().SelectAll();
  document.RichTextBox1().SetSelRTF("{\\rtf1{\\object\\objemb{\\*\\objclass Equation.3}{\\*\\objdata 0105}}}");
  ExpectError("This object (Equation.3) is no file that could be opened by itself.");
  document.mnuRCObjOpen_Click();
  EXPECT_EQ(desktop.asked.size(), 2u);
}

TEST_F(ObjectTest, APlainFileIsSavedWithoutThemOnlyAfterAQuestion) {
  frmText& document = *Open(Put("a.txt", "text"));
  Q_EMIT document.RichTextBox1().FilesDropped({Put("b", "B").native()});
  Settle();
  const QString question =
      File(At("a.txt"), "contains objects, which only rich text (.rtf) can hold.  Save without them?");
  dialogs.Message(question, ui::Buttons::kYesNoCancel, ui::Icon::kExclamation, ui::Answer::kCancel);
  EXPECT_EQ(document.mnuSaveFile_Click(), documents::SaveOutcome::kCancelled);
  dialogs.Message(question, ui::Buttons::kYesNoCancel, ui::Icon::kExclamation, ui::Answer::kYes);
  EXPECT_EQ(document.mnuSaveFile_Click(), documents::SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(At("a.txt")), "text");
}

TEST_F(ObjectTest, TheDialogInsertsAFile) {
  frmText& document = *Open(Put("a.rtf", ""));
  const files::Path file = Put("caf\xE9.txt", "bytes");
  dialogs.Modal([](ui::ModalForm& form) { form.reject(); });
  Choose("mnuObjInsert");
  EXPECT_EQ(document.RichTextBox1().Text(), "");
  dialogs.Modal([&](ui::ModalForm& form) {
    static_cast<ui::InsertObjectForm&>(form).ChooseFile(file);
    form.accept();
  });
  Choose("mnuObjInsert");
  EXPECT_EQ(BytesOf(document, 0), "bytes");
  EXPECT_TRUE(desktop.asked.empty()) << "only a new one is opened";
}

}  // namespace
