// What the Edit menu inserts.
#include "tests/program/InsertTest.h"

#include "documents/DateTimeText.h"
#include "ui/desktop/ObjectTypes.h"
#include "ui/dialogs/InsertObjectForm.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>

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
