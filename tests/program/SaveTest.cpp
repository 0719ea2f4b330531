// Save, Save As and what can stand in their way.
#include "files/saving/Recovery.h"
#include "tests/program/ProgramTest.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using documents::frmText;
using documents::SaveOutcome;
using ui::Answer;
using ui::Buttons;
using ui::Icon;

const QString kReadOnly =
    "is a Read-only file.  Its Read-only attribute must be removed before it can be replaced.  Do you want to remove "
    "it?";
const QString kChangedOnDisk = "has been changed by another program since it was opened.  Do you want to replace it?";
const QString kExistsNow = "did not exist when it was opened, but exists now.  Do you want to replace it?";
const QString kLosesFormat =
    "Warning: If you change the extension from .RTF, the saved file will lose any special formatting.\r\nShall I "
    "continue?";
const QString kNotRtf =
    "does not hold rich text, although its name says so.  Do you want to save it as rich text?  No saves it as the "
    "plain text it is.";

class SaveTest : public ProgramTest {
 protected:
  void Question(const files::Path& path, const QString& text, Buttons buttons, Icon icon, Answer answer) {
    dialogs.Message(File(path, text), buttons, icon, answer);
  }
  // An open document that has been edited.
  frmText& Edited(const files::Path& path) {
    frmText* document = Open(path);
    EXPECT_TRUE(document);
    Type(*document, "+");
    return *document;
  }
};

TEST_F(SaveTest, AnUntitledDocumentOffersItsNameWithTheDefaultExtension) {
  frmText& document = New();
  Type(document, "text\r\n");
  dialogs.File(std::nullopt, [&](const ui::FileRequest& request) {
    EXPECT_TRUE(request.save);
    EXPECT_EQ(request.name, "Untitled.txt");
    EXPECT_EQ(request.folder, folder());
    EXPECT_EQ(request.filterIndex, 1);
    EXPECT_EQ(request.filters.size(), 7u);
  });
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kCancelled);
  EXPECT_EQ(document.caption(), "Untitled.txt");
  EXPECT_TRUE(Changed(document));
  dialogs.File(At("new.txt"));
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kSaved) << "still untitled, so Save As again";
  EXPECT_EQ(document.caption(), At("new.txt").native());
  EXPECT_EQ(Bytes(At("new.txt")), "text\r\n");
  EXPECT_FALSE(Changed(document));
}

TEST_F(SaveTest, WithoutAPointTheDefaultExtensionIsAddedToANewName) {
  frmText& document = Edited(Put("README", "text"));
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(At("README")), "+text");
  dialogs.File(At("LIESMICH"));
  EXPECT_EQ(document.mnuSaveFileAs_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(document.caption(), At("LIESMICH.txt").native());
}

TEST_F(SaveTest, NoToLeavingRichTextSavesNothing) {
  const files::Path path = Put("a.rtf", "{\\rtf1 {\\b text}}"), plain = At("a.txt");
  frmText& document = Edited(path);
  dialogs.File(plain, [](const ui::FileRequest& request) {
    EXPECT_EQ(request.name, "a.rtf");
    EXPECT_EQ(request.filterIndex, 6);
  });
  Question(plain, kLosesFormat, Buttons::kYesNo, Icon::kQuestion, Answer::kNo);
  EXPECT_EQ(document.mnuSaveFileAs_Click(), SaveOutcome::kCancelled);
  EXPECT_EQ(document.caption(), path.native());
  EXPECT_FALSE(Exists(plain));
}

TEST_F(SaveTest, ReplacingAnotherFileIsAskedOnce) {
  frmText& document = Edited(Put("a.txt", "text"));
  const files::Path other = Put("b.txt", "other");
  const QString question =
      QString::fromStdString(other.native()) + "\r\nThis file already exists.  Do you want to replace it?";
  dialogs.File(other);
  dialogs.Message(question, Buttons::kYesNo, Icon::kExclamation, Answer::kNo);
  dialogs.File(other, [](const ui::FileRequest& request) { EXPECT_EQ(request.name, "b.txt"); });
  dialogs.Message(question, Buttons::kYesNo, Icon::kExclamation, Answer::kYes);
  EXPECT_EQ(document.mnuSaveFileAs_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(other), "+text");
}

TEST_F(SaveTest, AReadOnlyFileIsReplacedAfterYesAlone) {
  const struct {
    Answer answer;
    bool cancelled;
    SaveOutcome outcome;
    mode_t mode;
    const char *bytes, *caption;
  } kRows[] = {{Answer::kYes, false, SaveOutcome::kSaved, 0644, "+old", "a.txt"},
               {Answer::kYes, true, SaveOutcome::kCancelled, 0444, "old", "a.txt"},
               {Answer::kNo, false, SaveOutcome::kSaved, 0444, "old", "b.txt"}};
  for (const auto& row : kRows) {
    std::filesystem::remove(At("a.txt"));
    const files::Path path = Put("a.txt", "old");
    frmText& document = Edited(path);
    chmod(path.c_str(), 0444);
    Question(path, kReadOnly, Buttons::kYesNo, Icon::kInformation, row.answer);
    if (row.answer == Answer::kNo) dialogs.File(At("b.txt"));
    if (row.cancelled) dialogs.CancelNextWork();
    EXPECT_EQ(document.mnuSaveFile_Click(), row.outcome);
    struct stat status {};
    stat(path.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, row.mode);
    EXPECT_EQ(Bytes(path), row.bytes);
    EXPECT_EQ(document.caption(), At(row.caption).native());
    document.SetUnchanged();
    document.Close();
  }
  EXPECT_EQ(Bytes(At("b.txt")), "+old");
}

TEST_F(SaveTest, AFileThatChangedOnDiskIsNotReplacedUnasked) {
  for (const bool existed : {true, false}) {
    const files::Path path = At(existed ? "a.txt" : "later.txt");
    if (existed) Put("a.txt", "text");
    frmText& document = Edited(path);
    Put(path.filename().native(), "someone else's");
    const QString& question = existed ? kChangedOnDisk : kExistsNow;
    Question(path, question, Buttons::kYesNoCancel, Icon::kExclamation, Answer::kCancel);
    EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kCancelled);
    EXPECT_TRUE(Changed(document));
    Question(path, question, Buttons::kYesNoCancel, Icon::kExclamation, Answer::kNo);
    dialogs.File(std::nullopt);
    EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kCancelled);
    EXPECT_EQ(Bytes(path), "someone else's");
    Question(path, question, Buttons::kYesNoCancel, Icon::kExclamation, Answer::kYes);
    EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kSaved);
    EXPECT_EQ(Bytes(path), existed ? "+text" : "+");
    EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kSaved) << "our own file is no change";
  }
}

TEST_F(SaveTest, AMissingFileIsMade) {
  for (const bool existed : {true, false}) {
    const files::Path path = existed ? Put("a.txt", "") : At("later.txt");
    frmText& document = *Open(path);
    EXPECT_FALSE(Changed(document));
    EXPECT_EQ(document.RichTextBox1().SelFontName(), QString("Courier New"));
    unlink(path.c_str());
    Type(document, "text");
    EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kSaved);
    EXPECT_EQ(Bytes(path), "text");
  }
}

TEST_F(SaveTest, CharactersThatThePageCannotHold) {
  const std::string bytes = "caf\xE9 na\xEFve \xFC\xF6\xE4";
  const files::Path path = Put("a.txt", bytes);
  const QString question = "contains characters that Windows-1252 cannot hold.  Save as UTF-8?";
  frmText* document = Open(path);
  Type(*document, QString(QChar(0x4E2D)));
  Question(path, question, Buttons::kYesNoCancel, Icon::kExclamation, Answer::kCancel);
  EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kCancelled);
  EXPECT_EQ(Bytes(path), bytes);
  Question(path, question, Buttons::kYesNoCancel, Icon::kExclamation, Answer::kNo);
  dialogs.File(std::nullopt);
  EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kCancelled);
  Question(path, question, Buttons::kYesNoCancel, Icon::kExclamation, Answer::kYes);
  EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(path),
            "\xE4\xB8\xAD"
            "caf\xC3\xA9 na\xC3\xAFve \xC3\xBC\xC3\xB6\xC3\xA4");
  Type(*document, "x");
  EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kSaved) << "UTF-8 from now on";
}

TEST_F(SaveTest, RichTextInNameOnlyAsksAtTheFirstEditedSave) {
  const files::Path path = Put("a.rtf", "plain\n");
  frmText& document = Edited(path);
  Question(path, kNotRtf, Buttons::kYesNoCancel, Icon::kQuestion, Answer::kCancel);
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kCancelled);
  EXPECT_EQ(Bytes(path), "plain\n");
  Question(path, kNotRtf, Buttons::kYesNoCancel, Icon::kQuestion, Answer::kNo);
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(path), "+plain\n");
  Type(document, "+");
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kSaved) << "the answer is remembered";
  const files::Path other = Put("b.rtf", "plain");
  Question(other, kNotRtf, Buttons::kYesNoCancel, Icon::kQuestion, Answer::kYes);
  EXPECT_EQ(Edited(other).mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_TRUE(Bytes(other).starts_with("{\\rtf1"));
}

// A table wider than RTF can say.
void PutHugeTable(frmText& document) {
  text::Document& edited = document.RichTextBox1().document();
  text::ParaFormat row;
  row.row = edited.formats().Intern(text::TableRow{.cells = {{.right = 2'000'000'000, .shading = {}}}, .words = {}});
  text::ContentBuilder builder(edited.content().store());
  for (const text::RowMark mark : {text::RowMark::kCellEnd, text::RowMark::kRowEnd}) {
    row.rowMark = mark;
    builder.Append("\r\n", text::CharFormatId::kDefault, edited.formats().Intern(row));
  }
  edited.Replace({}, builder.Finish(), text::EditKind::kCommand, {});
  document.RichTextBox1().DocumentEdited();
}

TEST_F(SaveTest, WhatRichTextHoldsBesidesItsTextStays) {
  std::string tabs;
  for (int i = 1; i <= 100; ++i) tabs += "\\tx" + std::to_string(i * 10);
  const files::Path path = Put("a.rtf", "{\\rtf1\\ansi{\\header head}" + tabs + " text\\par}");
  frmText& document = Edited(path);
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_NE(Bytes(path).find("{\\header head}" + tabs), std::string::npos) << Bytes(path);
}

TEST_F(SaveTest, RichTextIsSavedAsItWasWhenTheSaveBegan) {
  const std::string bytes = "{\\rtf1\\ansi{\\header head} text\\par}";
  const files::Path path = Put("a.rtf", bytes);
  frmText& document = Edited(path);
  dialogs.CancelNextWork();
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kCancelled);
  dialogs.FailNextWork();
  ExpectError(File(path, "Cannot allocate memory"));
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kFailed);
  EXPECT_EQ(Bytes(path), bytes);
  dialogs.AfterNextWork([&] { PutHugeTable(document); });
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(path), "{\\rtf1\\ansi{\\header head}+ text\\par}") << "nobody was asked about the table";
  EXPECT_TRUE(Changed(document));
}

TEST_F(SaveTest, WhatCannotStayIsAskedAboutFirst) {
  const std::string bytes = "{\\rtf1\\ansi{\\header head} text\\par}";
  const files::Path path = Put("a.rtf", bytes);
  frmText* document = Open(path);
  ASSERT_TRUE(document);
  PutHugeTable(*document);
  const QString question =
      "holds more than the text that is shown, and with these changes it cannot be kept.  Do you want to save the text "
      "alone?";
  Question(path, question, Buttons::kYesNoCancel, Icon::kExclamation, Answer::kCancel);
  EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kCancelled);
  EXPECT_EQ(Bytes(path), bytes);
  Question(path, question, Buttons::kYesNoCancel, Icon::kExclamation, Answer::kYes);
  EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(path).find("head"), std::string::npos);
  Type(*document, "x");
  EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kSaved) << "asked once";
}

TEST_F(SaveTest, WhatCannotBeReplacedSaysWhatItIs) {
  const struct {
    const char* name;
    std::function<void(const files::Path&)> make;
    const char* text;
  } kRows[] = {
      {"folder.txt", [](const files::Path& p) { std::filesystem::create_directory(p); },
       "Is a directory\r\nitem is a directory"},
      {".fifo.txt", [](const files::Path& p) { EXPECT_EQ(mkfifo(p.c_str(), 0400), 0); },
       "Not a regular file\r\nitem is a system file or folder"},
      {"link.txt", [](const files::Path& p) { std::filesystem::create_symlink("/dev/null", p); },
       "Not a regular file\r\nitem is a system file or folder"},
      {"loop.txt", [](const files::Path& p) { std::filesystem::create_symlink(p, p); },
       "Too many levels of symbolic links"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    frmText& document = Edited(At(row.name));
    row.make(At(row.name));
    ExpectError(File(At(row.name), row.text));
    EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kFailed);
    EXPECT_TRUE(Changed(document));
  }
}

TEST_F(SaveTest, TheWarningGoesByTheOldExtensionAndTheNewEnd) {
  const struct {
    const char *from, *to;
    bool warns, rich;
  } kRows[] = {
      {"a.rtf", "b.txt", true, false},     {"a.RTF", "b.rtf", false, true},     {"a.Rtf", "b.rtfx", true, false},
      {"a.rtf", "b.rtf.bak", true, false}, {"a.txt", "b.rtf", false, true},     {"a.rtf.txt", "b.txt", false, false},
      {"a.rtf", "b.htm", true, false},     {"a.txt", "xrtf.txt", false, false}, {"a", "b.RTF", false, true},
      {"a.txt", ".rtf", false, true},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(std::string(row.from) + " to " + row.to);
    const bool wasRich = documents::IsRichName(row.from);
    frmText& document = Edited(Put(row.from, wasRich ? "{\\rtf1 text}" : "text"));
    std::filesystem::remove(At(row.to));
    dialogs.File(At(row.to));
    if (row.warns) Question(At(row.to), kLosesFormat, Buttons::kYesNo, Icon::kQuestion, Answer::kYes);
    EXPECT_EQ(document.mnuSaveFileAs_Click(), SaveOutcome::kSaved);
    EXPECT_EQ(document.caption(), At(row.to).native());
    EXPECT_EQ(Bytes(At(row.to)).starts_with("{\\rtf1"), row.rich);
    EXPECT_TRUE(document.Close());
  }
}

TEST_F(SaveTest, AHiddenFileThatCannotBeWrittenSaysSo) {
  const files::Path path = Put(".a.txt", "text");
  frmText& document = Edited(path);
  chmod(folder().c_str(), 0555);
  chown(path.c_str(), 65533, 65533);
  const Unprivileged unprivileged;
  dialogs.Message(File(path, "Permission denied\r\nitem is a hidden file or folder"), Buttons::kOk, Icon::kExclamation,
                  Answer::kOk);
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kFailed);
  EXPECT_EQ(Bytes(path), "text");
}

TEST_F(SaveTest, AWriteThatFailsHalfWayLeavesTheOldFileAndTheText) {
  const files::Path path = Put("a.txt", "old");
  frmText* document = Open(path);
  Type(*document, QString(200000, 'x'));
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit small{100000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  ExpectError(File(path, "File too large"));
  EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kFailed);
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(Bytes(path), "old");
  EXPECT_TRUE(Changed(*document));
  EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(path).size(), 200003u);
}

TEST_F(SaveTest, ACancelledSaveLeavesTheOldFileAndSaysNothing) {
  for (const char* bytes : {"old", "caf\xE9 na\xEFve \xFC"}) {  // the second is looked through first
    const files::Path path = Put(*bytes == 'o' ? "a.txt" : "b.txt", bytes);
    frmText& document = Edited(path);
    dialogs.CancelNextWork();
    EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kCancelled);
    EXPECT_EQ(Bytes(path), bytes);
    EXPECT_TRUE(Changed(document));
  }
}

TEST_F(SaveTest, TextThatArrivesWhileSavingStaysUnsaved) {
  frmText& document = Edited(Put("a.txt", "text"));
  dialogs.AfterNextWork([&] { Type(document, "late"); });
  EXPECT_EQ(document.mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(At("a.txt")), "+text");
  EXPECT_TRUE(Changed(document));
}

TEST_F(SaveTest, SaveAllGoesBackwards) {
  New();
  Edited(Put("a.txt", "text"));
  New();
  dialogs.File(At("first.txt"));
  dialogs.File(At("second.txt"));
  program().commands().mnuSaveAll_Click();
  EXPECT_EQ(Bytes(At("a.txt")), "+text");
  EXPECT_EQ(table().Document(3)->caption(), At("first.txt").native());
  EXPECT_EQ(table().Document(1)->caption(), At("second.txt").native());
}

// --- Texts whose save failed while their window closed

class RescueTest : public SaveTest {
 protected:
  std::vector<files::RecoveryEntry> Kept() {
    const auto entries = files::ListRecovery(program().recoveryFolder());
    EXPECT_TRUE(entries);
    return entries ? entries.value() : std::vector<files::RecoveryEntry>{};
  }
  void Offer(const std::string& caption, Answer answer) {
    dialogs.Message("The text of [" + QString::fromStdString(caption) +
                        "] was not saved when its window was closed.\r\nDo you want to open it now?  No deletes it, "
                        "Cancel leaves it for the next start.",
                    Buttons::kYesNoCancel, Icon::kQuestion, answer);
  }
  void CloseWithCancelledSave(const std::string& caption = "Untitled:1") {
    frmText& document = New();
    Type(document, "precious");
    ExpectClosePrompt(caption, Answer::kYes);
    dialogs.File(std::nullopt);
    EXPECT_TRUE(document.Close()) << "it closes whether or not it was saved";
  }
};

TEST_F(RescueTest, TheTextIsOfferedAtTheNextStart) {
  CloseWithCancelledSave();
  Restart();
  Offer("Untitled.txt", Answer::kCancel);
  program().OfferRecovered();
  ASSERT_EQ(Kept().size(), 1u);
  EXPECT_EQ(Kept()[0].originalPath, "Untitled.txt");
  Offer("Untitled.txt", Answer::kYes);
  program().OfferRecovered();
  frmText* document = Showing("Untitled.txt");
  ASSERT_TRUE(document);
  EXPECT_EQ(document->RichTextBox1().Text(), "precious");
  EXPECT_TRUE(Changed(*document));
  EXPECT_TRUE(Kept().empty()) << "its window has it";
  EXPECT_FALSE(std::filesystem::is_empty(program().recoveryFolder())) << "kept until it is saved";
  dialogs.File(At("saved.txt"));
  EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(At("saved.txt")), "precious");
  EXPECT_TRUE(std::filesystem::is_empty(program().recoveryFolder()));
  CloseWithCancelledSave("Untitled:2");
  Offer("Untitled.txt", Answer::kNo);
  program().OfferRecovered();
  EXPECT_TRUE(Kept().empty()) << "No deletes it";
}

TEST_F(RescueTest, WhenKeepingTheTextIsCancelledTheWindowStays) {
  frmText& document = New();
  Type(document, "text");
  ExpectClosePrompt(document.caption(), Answer::kYes);
  dialogs.File(std::nullopt);
  dialogs.CancelNextWork();
  EXPECT_FALSE(document.Close());
  EXPECT_EQ(document.RichTextBox1().Text(), "text");
  EXPECT_TRUE(files::ListRecovery(program().recoveryFolder()).value().empty());
}

TEST_F(RescueTest, AFailedSaveWhileClosingKeepsRichTextAsSuch) {
  std::filesystem::create_directory(At("sub"));
  frmText* document = Open(At("sub/a.rtf"));
  ASSERT_TRUE(document);
  document->mnuBold_Click();
  Type(*document, "bold");
  std::filesystem::remove(At("sub"));
  const files::Path path = At("sub/a.rtf");
  ExpectClosePrompt(path.native(), Answer::kYes);
  ExpectError(File(path, "No such file or directory"));
  EXPECT_TRUE(document->Close());
  ASSERT_EQ(Kept().size(), 1u);
  EXPECT_TRUE(Bytes(Kept()[0].text).starts_with("{\\rtf1"));
  Offer(path.native(), Answer::kYes);
  program().OfferRecovered();
  document = Showing(path.native());
  ASSERT_TRUE(document);
  document->mnuSelAll_Click();
  EXPECT_EQ(document->RichTextBox1().SelBold(), true);
}

TEST_F(RescueTest, ARecoveredTextDoesNotReplaceTheFileUnasked) {
  const files::Path path = Put("a.txt", "text");
  frmText& document = Edited(path);
  Put("a.txt", "someone else's");
  ExpectClosePrompt(path.native(), Answer::kYes);
  Question(path, kChangedOnDisk, Buttons::kYesNoCancel, Icon::kExclamation, Answer::kCancel);
  EXPECT_TRUE(document.Close());
  Offer(path.native(), Answer::kYes);
  program().OfferRecovered();
  frmText* recovered = Showing(path.native());
  ASSERT_TRUE(recovered);
  EXPECT_EQ(recovered->RichTextBox1().Text(), "+text");
  Question(path, kChangedOnDisk, Buttons::kYesNoCancel, Icon::kExclamation, Answer::kCancel);
  EXPECT_EQ(recovered->mnuSaveFile_Click(), SaveOutcome::kCancelled);
  ExpectClosePrompt(path.native(), Answer::kNo);
  EXPECT_TRUE(recovered->Close());
  EXPECT_TRUE(std::filesystem::is_empty(program().recoveryFolder())) << "given up by the user";
}

TEST_F(RescueTest, WhenTheTextCannotBeKeptTheWindowStays) {
  Put("state", "a file where the folder should be");
  frmText& document = New();
  Type(document, "precious");
  ExpectClosePrompt("Untitled:1", Answer::kYes);
  dialogs.File(std::nullopt);
  ExpectError("Error: Untitled.txt\r\nNot a directory");
  EXPECT_FALSE(document.Close());
  EXPECT_EQ(Showing("Untitled.txt"), &document);
  EXPECT_EQ(document.RichTextBox1().Text(), "precious");
}

}  // namespace
