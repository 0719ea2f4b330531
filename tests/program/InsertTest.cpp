// What the Edit menu inserts.
#include "documents/DateTimeText.h"
#include "documents/ObjectCopies.h"
#include "files/FolderUse.h"
#include "tests/program/ProgramTest.h"
#include "text/ObjectAt.h"
#include "text/rtfsyntax/RtfPackage.h"
#include "ui/desktop/ObjectTypes.h"
#include "ui/dialogs/InsertObjectForm.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <future>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

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
  const std::pair<const char*, DateTimeForm> kRows[] = {
      {"mnuDateGeneral", F::kDateGeneral}, {"mnuDateLong", F::kDateLong}, {"mnuDateMed", F::kDateMed},
      {"mnuDateShort", F::kDateShort},     {"mnuTimeLong", F::kTimeLong}, {"mnuTimeMed", F::kTimeMed},
      {"mnuTimeShort", F::kTimeShort}};
  for (const auto& [row, form] : kRows) {
    // Of another day; opening the menu brings it up to date.
    const_cast<QAction&>(Row(row)).setText("old");
    document.RichTextBox1().SetSelStart(3);
    document.RichTextBox1().SetSelLength(2);
    std::vector<QString> captions{DateTimeText(form)};
    OpenEditMenu();
    Choose(row);
    captions.push_back(DateTimeText(form));  // the clock may have moved on
    EXPECT_EQ(std::ranges::count(captions, QString(Row(row).text()).remove('&')) > 0, true)
        << row << " " << Row(row).text().toStdString();
    const QString text = document.RichTextBox1().Text();
    EXPECT_EQ(std::ranges::count(captions, text.mid(3, text.size() - 10)) > 0, true) << text.toStdString();
    EXPECT_TRUE(text.startsWith("on ") && text.endsWith(" it was")) << text.toStdString();
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
    return *text::ObjectAt(document.RichTextBox1().document().content(), text::Units(place));
  }
  static std::string BytesOf(frmText& document, int64_t place = 3) {
    const auto package = text::rtf::ReadPackage(ObjectOf(document, place).rtf.bytes);
    return package ? package->bytes : "no package";
  }
  // Opens it and gives the copy's path.
  files::Path OpenObject(frmText& document, int64_t at = 3) {
    document.RichTextBox1().SetSelStart(at);
    document.RichTextBox1().SetSelLength(1);
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
  const QString caption = QString::fromStdString(document.caption());
  ExpectClosePrompt(document.caption(), ui::Answer::kNo);
  EXPECT_TRUE(document.Close());
  Write(copy, "after the document was closed");
  ExpectError(QString("The changes to [note.txt] could not be taken back into [%1]:\r\nthe document has been "
                      "closed.\r\n\r\nThe changed file is kept here:\r\n%2")
                  .arg(caption, QString::fromStdString(copy.native())));
  for (int i = 0; i < 500 && dialogs.left() > 0; ++i) QThread::msleep(10), Settle();
  Restart();
  EXPECT_EQ(Bytes(copy), "after the document was closed");
}

// --- What is never deleted

// Another program that has to do with a file.
class Holder {
 public:
  explicit Holder(const files::Path& file) {
    const std::string path = file.native();
    child_ = fork();
    if (child_ == 0) {
      execlp("sleep", path.c_str(), "1000", nullptr);
      _exit(1);
    }
    // It is known by its arguments.
    while (files::UseOfFolder(file.parent_path()) == files::FolderUse::kNone) QThread::msleep(1);
  }
  ~Holder() { End(); }
  void End() {
    if (child_ > 0) kill(child_, SIGKILL), waitpid(child_, nullptr, 0);
    child_ = 0;
  }

 private:
  pid_t child_ = 0;
};

TEST_F(ObjectTest, AnUnchangedCopyGoesWithItsDocument) {
  frmText& document = WithObject("note.txt", "old");
  const files::Path copy = OpenObject(document);
  Write(copy, "changed");
  Write(copy.parent_path() / ".~lock.note.txt#", "of an office program");
  ExpectClosePrompt(document.caption(), ui::Answer::kNo);
  EXPECT_TRUE(document.Close());
  EXPECT_FALSE(Exists(copy.parent_path())) << "given up with the document";
}

TEST_F(ObjectTest, WhatAnApplicationMayHaveOpenStaysAndIsToldAtTheEndAndAtTheStart) {
  frmText& document = WithObject("note.txt", "old");
  const files::Path copy = OpenObject(document);
  Holder application(copy);
  ExpectClosePrompt(document.caption(), ui::Answer::kNo);
  EXPECT_TRUE(document.Close());
  EXPECT_TRUE(Exists(copy));
  const QString path = QString::fromStdString(copy.native());
  ExpectError(
      "These files out of documents may still be open in other programs.  What is saved in them from now on "
      "does not come into the documents, but stays here:\r\n" +
      path);
  table().copies().TellAtEnd();
  Restart();
  const QString open =
      "These files out of documents may still be open in other programs.  What is saved in them does not come into "
      "the documents, but stays here:\r\n" +
      path;
  ExpectError(open);
  table().copies().SweepLeftovers();
  EXPECT_TRUE(Exists(copy));
  application.End();
  table().copies().SweepLeftovers();
  EXPECT_FALSE(Exists(copy.parent_path())) << "nobody has it, and nothing was changed";
}

TEST_F(ObjectTest, OtherFilesBesideACopyStayAndAreTold) {
  frmText& document = WithObject("note.txt", "old");
  const files::Path copy = OpenObject(document), report = copy.parent_path() / "report.pdf";
  Write(report, "exported there");
  const QString caption = QString::fromStdString(document.caption());
  ExpectClosePrompt(document.caption(), ui::Answer::kNo);
  ExpectError("Beside [note.txt] out of [" + caption + "] other files have been saved.  They are kept here:\r\n" +
              QString::fromStdString(report.native()));
  EXPECT_TRUE(document.Close());
  Restart();
  table().copies().SweepLeftovers();
  EXPECT_EQ(Bytes(report), "exported there");
}

// As if the program was killed at that moment: what it would find at the next start.
TEST_F(ObjectTest, WhatWasTakenBackIsSafeOnlyOnceTheDocumentIsSaved) {
  frmText& document = WithObject("note.txt", "old");
  document.mnuSaveFile_Click();
  const files::Path copy = OpenObject(document), about = copy.parent_path() / ".about";
  const auto isSafe = [&] {
    const auto stamp = files::StampOf(copy);
    return Bytes(about).starts_with(std::to_string(stamp->size) + " " + std::to_string(stamp->modifiedSeconds) + " " +
                                    std::to_string(stamp->modifiedNanoseconds) + "\n");
  };
  EXPECT_TRUE(isSafe());
  Write(copy, "hours of work");
  table().copies().TakeBack(document.id());
  EXPECT_EQ(BytesOf(document), "hours of work");
  EXPECT_FALSE(isSafe());
  document.mnuSaveFile_Click();
  EXPECT_TRUE(isSafe());
  Write(copy, "more");
  table().copies().TakeBack(document.id());
  EXPECT_FALSE(document.KeepText());
  EXPECT_TRUE(isSafe()) << "the recovery folder has it";
  document.mnuUndoItem_Click();
  Type(document, "x");
  document.mnuSaveFile_Click();
  Write(copy, "");  // as at the beginning of a writing
  EXPECT_FALSE(document.KeepText());
  EXPECT_FALSE(isSafe()) << "nobody waits at the end of a session, and nothing is given up";
}

TEST_F(ObjectTest, AFileThatIsBeingWrittenIsWaitedForBeforeASave) {
  frmText& document = WithObject("note.txt", "old");
  const files::Path copy = OpenObject(document);
  Write(copy, "");
  const auto slow = std::async(std::launch::async, [&] {
    QThread::msleep(700);
    Write(copy, "whole");
  });
  EXPECT_EQ(document.mnuSaveFile_Click(), documents::SaveOutcome::kSaved);
  EXPECT_EQ(BytesOf(document), "whole");
}

TEST_F(ObjectTest, LeftoversAreClearedOrTold) {
  const auto leave = [&](const std::string& name, const std::string& about) {
    std::filesystem::create_directories(copies() / name);
    Write(copies() / name / "x.txt", "12345");
    if (!about.empty()) Write(copies() / name / ".about", about);
  };
  leave("changed", "4 1 1\nx.txt\nboot\n");
  leave("never safe", "-\nx.txt\nboot\n");
  leave("told", "");
  leave("beside", "");
  const auto stamp = files::StampOf(copies() / "beside" / "x.txt");
  Write(copies() / "beside" / ".about", std::to_string(stamp->size) + " " + std::to_string(stamp->modifiedSeconds) +
                                            " " + std::to_string(stamp->modifiedNanoseconds) + "\nx.txt\nboot\n");
  Write(copies() / "beside" / "other", "a");
  std::filesystem::create_directories(copies() / "empty");
  Write(copies() / "empty" / ".about", "4 1 1\nx.txt\nboot\n");
  const std::string files[] = {"changed/x.txt", "never safe/x.txt", "beside/other"};
  dialogs.AnyMessage([&](const ui::Message& shown) {
    EXPECT_TRUE(
        shown.text.startsWith("The program ended while files out of documents were being edited.  What was "
                              "changed in them since is not in the documents.  These files are kept:\r\n"));
    for (const std::string& file : files)
      EXPECT_TRUE(shown.text.contains(QString::fromStdString((copies() / file).native()))) << file;
    EXPECT_EQ(shown.text.count("\r\n"), 3);
    return ui::Answer::kOk;
  });
  table().copies().SweepLeftovers();
  table().copies().SweepLeftovers();
  for (const std::string& file : files) EXPECT_TRUE(Exists(copies() / file)) << file;
  EXPECT_TRUE(Exists(copies() / "told" / "x.txt") && Exists(copies() / "beside" / "x.txt"));
  EXPECT_FALSE(Exists(copies() / "empty"));
}

// --- The same object at two places

TEST_F(ObjectTest, OfTwoEqualOnesTheOneThatWasOpenedIsChanged) {
  frmText& document = WithObject("note.txt", "old");
  ui::RichTextBox& box = document.RichTextBox1();
  box.SetSelStart(3);
  box.SetSelLength(1);
  box.Copy();
  box.SetSelStart(7);
  box.Paste();
  ASSERT_EQ(box.Text(), QString("one") + kObject + "two" + kObject);
  const files::Path first = OpenObject(document, 3), second = OpenObject(document, 7);
  EXPECT_NE(first, second);
  Write(second, "second");
  table().copies().TakeBack(document.id());
  EXPECT_EQ(BytesOf(document, 3), "old");
  EXPECT_EQ(BytesOf(document, 7), "second");
  box.SetSelStart(3);
  box.SetSelLength(1);
  box.Copy();
  box.SetSelStart(8);
  box.Paste();  // old, two, second, old
  box.SetSelStart(3);
  box.SetSelLength(1);
  box.DeleteSelection();
  Write(first, "of the deleted one");
  ExpectKept(document, first, "the object is no longer in the document.");
  table().copies().TakeBack(document.id());
  EXPECT_EQ(BytesOf(document, 7), "old") << "another one, however equal";
}

TEST_F(ObjectTest, AnOpenedOneIsFollowedThroughWhatIsDoneAroundIt) {
  const struct {
    const char* what;
    std::function<void(ui::RichTextBox&)> change;  // of "one", an object that is open, "two", an equal one
    std::optional<int> place;
  } kRows[] = {
      {"an equal one before it", [](ui::RichTextBox& box) { box.SetSelStart(3), box.Paste(); }, 4},
      {"a letter before it", [](ui::RichTextBox& box) { box.SetSelStart(3), box.SetSelText("x"); }, 4},
      {"the letter before it",
       [](ui::RichTextBox& box) { box.SetSelStart(2), box.SetSelLength(1), box.SetSelText("xyz"); }, 5},
      {"an equal one behind it, and itself gone",
       [](ui::RichTextBox& box) {
         box.SetSelStart(4), box.Paste();
         box.SetSelStart(3), box.SetSelLength(1), box.DeleteSelection();
       },
       std::nullopt},
  };
  int number = 0;
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    frmText& document = WithObject("note" + std::to_string(++number) + ".txt", "old");
    ui::RichTextBox& box = document.RichTextBox1();
    box.SetSelStart(3), box.SetSelLength(1);
    box.Copy();
    box.SetSelStart(7), box.Paste();
    const files::Path copy = OpenObject(document, 3);
    row.change(box);
    Write(copy, "new");
    if (!row.place) ExpectKept(document, copy, "the object is no longer in the document.");
    table().copies().TakeBack(document.id());
    for (int at = 0; at < box.Text().size(); ++at)
      if (box.Text()[at] == kObject) {
        EXPECT_EQ(BytesOf(document, at), at == row.place ? "new" : "old") << at;
      }
    document.SetUnchanged();
    document.Close();
  }
}

TEST_F(ObjectTest, OpenedAgainAfterAnUndoTheSameCopyHoldsTheEarlierState) {
  frmText& document = WithObject("note.txt", "old");
  const files::Path copy = OpenObject(document);
  Write(copy, "new");
  table().copies().TakeBack(document.id());
  document.mnuUndoItem_Click();
  EXPECT_EQ(OpenObject(document), copy);
  EXPECT_EQ(Bytes(copy), "old");
  Write(copy, "newer");
  table().copies().TakeBack(document.id());
  EXPECT_EQ(BytesOf(document), "newer");
}

TEST_F(ObjectTest, AFailedSecondOpeningLeavesTheCopyThatMayBeOpen) {
  frmText& document = WithObject("note.txt", "old");
  const files::Path copy = OpenObject(document);
  desktop.opens = [](const std::string&) { return ui::Shell::kNoApplication; };
  ExpectError("File: note.txt\r\ncannot be opened: no application is installed for this type of file.");
  OpenObject(document);
  EXPECT_TRUE(Exists(copy));
}

TEST_F(ObjectTest, AScaledObjectKeepsItsSize) {
  frmText& document = WithObject("note.txt", "old");
  ui::RichTextBox& box = document.RichTextBox1();
  text::EmbeddedObject scaled = ObjectOf(document);
  scaled.width /= 2, scaled.height /= 2, scaled.cropTop = 1000;
  box.SetSelStart(3);
  box.SetSelLength(1);
  box.SetSelRTF(QByteArray::fromStdString("{\\rtf1 " + text::rtf::PackageGroup("note.txt", "old", scaled) + "}"));
  const files::Path copy = OpenObject(document);
  Write(copy, "new");
  table().copies().TakeBack(document.id());
  EXPECT_EQ(BytesOf(document), "new");
  EXPECT_EQ(ObjectOf(document).width, scaled.width);
  EXPECT_NEAR(ObjectOf(document).height, scaled.height, 1);
  EXPECT_EQ(ObjectOf(document).cropTop, 1000);
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
  EXPECT_EQ(document.mnuSaveFile_Click(), documents::SaveOutcome::kSaved) << "about these it was agreed";
  EXPECT_EQ(Bytes(At("a.txt")), "text");
  Q_EMIT document.RichTextBox1().FilesDropped({Put("c", "C").native()});
  Settle();
  dialogs.Message(question, ui::Buttons::kYesNoCancel, ui::Icon::kExclamation, ui::Answer::kCancel);
  EXPECT_EQ(document.mnuSaveFile_Click(), documents::SaveOutcome::kCancelled) << "another one";
}

TEST_F(ObjectTest, RichTextThatBecomesPlainIsAskedAboutWhatComesLater) {
  frmText& document = WithObject("b", "B");
  dialogs.File(At("c.txt"));
  dialogs.Message(File(At("c.txt"),
                       "Warning: If you change the extension from .RTF, the saved file will lose any special "
                       "formatting.\r\nShall I continue?"),
                  ui::Buttons::kYesNo, ui::Icon::kQuestion, ui::Answer::kYes);
  EXPECT_EQ(document.mnuSaveFileAs_Click(), documents::SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(At("c.txt")), "onetwo");
  Q_EMIT document.RichTextBox1().FilesDropped({Put("c", "C").native()});
  Settle();
  dialogs.Message(File(At("c.txt"), "contains objects, which only rich text (.rtf) can hold.  Save without them?"),
                  ui::Buttons::kYesNoCancel, ui::Icon::kExclamation, ui::Answer::kCancel);
  EXPECT_EQ(document.mnuSaveFile_Click(), documents::SaveOutcome::kCancelled);
}

TEST_F(ObjectTest, FilesThatAreTogetherTooLargeAreNotRead) {
  frmText& document = *Open(Put("a.rtf", ""));
  std::vector<std::string> large;
  for (int i = 0; i < 5; ++i) {
    large.push_back(Put("big" + std::to_string(i), "").native());
    std::filesystem::resize_file(large.back(), 60 << 20);
  }
  ExpectError("These files have together more than 256 MB, the most that is inserted at once.");
  Q_EMIT document.RichTextBox1().FilesDropped(large);
  Settle();
  EXPECT_EQ(document.RichTextBox1().Text(), "");
}

TEST_F(InsertTest, PastingWhatIsGoneFromTheClipboardLeavesTheSelection) {
  frmText& document = New();
  Type(document, "precious");
  document.RichTextBox1().SelectAll();
  QGuiApplication::clipboard()->setMimeData(new QMimeData);
  document.mnuPasteAsText_Click();
  document.mnuPasteAsRTF_Click();
  document.mnuPasteAsLink_Click();
  EXPECT_EQ(document.RichTextBox1().Text(), "precious");
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

// New ones, by the desktop's own list; the end-to-end case installs an application for one.
TEST_F(ObjectTest, TheDialogInsertsSomethingNewAndOpensThatAlone) {
  if (ui::InstalledObjectTypes().empty()) GTEST_SKIP() << "no application is installed for any type";
  frmText& document = WithObject("existing.txt", "X");
  const auto choose = [&](bool accept) {
    dialogs.Modal([accept](ui::ModalForm& form) {
      static_cast<ui::InsertObjectForm&>(form).ChooseType(0);
      accept ? form.accept() : form.reject();
    });
    Choose("mnuObjInsert");
  };
  const ui::ObjectType type = ui::InstalledObjectTypes().front();
  document.RichTextBox1().SetSelStart(3);
  choose(false);
  EXPECT_TRUE(desktop.asked.empty());
  choose(true);
  EXPECT_EQ(document.RichTextBox1().Text(), QString("one") + kObject + kObject + "two");
  EXPECT_EQ(BytesOf(document, 3), type.templateFile.empty() ? type.blank : Bytes(type.templateFile));
  EXPECT_EQ(BytesOf(document, 4), "X");
  ASSERT_EQ(desktop.asked.size(), 1u);
  EXPECT_EQ(files::Path(desktop.asked[0]).filename(), ui::PlainFileName(type.fileName));
  document.RichTextBox1().SelectAll();
  document.mnuProtect_Click();
  Choose("mnuObjInsert");
  EXPECT_EQ(desktop.asked.size(), 1u);
}

}  // namespace
