// Files out of documents that applications have open, and how their changes come back.
#include "files/FolderUse.h"
#include "tests/program/InsertTest.h"

#include <QThread>

#include <algorithm>
#include <csignal>
#include <future>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using documents::frmText;

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
  // Written once more, when it has been waited for and read.
  dialogs.AfterNextWork([&] { dialogs.AfterNextWork([&] { Write(copy, "small again"); }); });
  table().copies().TakeBack(document.id());
  EXPECT_FALSE(Exists(copy.parent_path() / ".about")) << "the user was told of it";
  EXPECT_NE(BytesOf(document), "small again");
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
bool IsSafe(const files::Path& copy) {
  const auto stamp = files::StampOf(copy);
  std::string about;
  std::getline(std::ifstream(copy.parent_path() / ".about"), about);
  return about == std::to_string(stamp->size) + " " + std::to_string(stamp->modifiedSeconds) + " " +
                      std::to_string(stamp->modifiedNanoseconds);
}

TEST_F(ObjectTest, WhatWasTakenBackIsSafeOnlyOnceTheDocumentIsSaved) {
  frmText& document = WithObject("note.txt", "old");
  document.mnuSaveFile_Click();
  const files::Path copy = OpenObject(document);
  const auto isSafe = [&] { return IsSafe(copy); };
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

TEST_F(ObjectTest, WhatTheFileDoesNotHoldIsNotSafeThoughTheDocumentHoldsIt) {
  frmText& document = WithObject("note.txt", "old");
  document.mnuSaveFile_Click();
  const files::Path copy = OpenObject(document);
  Write(copy, "new");
  document.mnuSaveFile_Click();
  EXPECT_EQ(BytesOf(document), "new");
  EXPECT_TRUE(IsSafe(copy));
  document.mnuUndoItem_Click();
  Write(copy, "old");
  table().copies().TakeBack(document.id());
  EXPECT_FALSE(IsSafe(copy)) << "the file has the new one";
  document.mnuSaveFile_Click();
  EXPECT_TRUE(IsSafe(copy));
}

// While it lives this process's files end there.
class FilesEndAt {
 public:
  explicit FilesEndAt(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FilesEndAt() { setrlimit(RLIMIT_FSIZE, &before_); }

 private:
  rlimit before_{};
};

TEST_F(ObjectTest, WhatAFailedOpeningHasLeftIsNobodysWork) {
  const std::string old(10000, 'o');
  frmText& document = WithObject("note.txt", old);
  const files::Path copy = OpenObject(document);
  Write(copy, "new");
  table().copies().TakeBack(document.id());
  document.mnuUndoItem_Click();
  {
    const FilesEndAt limit(4096);
    ExpectError("Error: note.txt\r\nFile too large");
    OpenObject(document);
  }
  EXPECT_EQ(Bytes(copy), old.substr(0, 4096));
  EXPECT_TRUE(IsSafe(copy));
  EXPECT_EQ(OpenObject(document), copy);
  EXPECT_EQ(Bytes(copy), old);
  EXPECT_FALSE(IsSafe(copy));
}

TEST_F(ObjectTest, OfAProtectedOneTheCopyIsBroughtUpToDateAndReadOnly) {
  frmText& document = WithObject("note.txt", "old");
  if (geteuid() == 0) {
    ASSERT_EQ(chown(folder().c_str(), 65534, 65534), 0);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder()))
      ASSERT_EQ(lchown(entry.path().c_str(), 65534, 65534), 0);
  }
  const Unprivileged unprivileged;
  const files::Path copy = OpenObject(document);
  Write(copy, "new");
  table().copies().TakeBack(document.id());
  document.mnuUndoItem_Click();
  for (const bool isProtected : {true, false}) {
    document.RichTextBox1().SelectAll();
    document.mnuProtect_Click();
    EXPECT_EQ(OpenObject(document), copy);
    EXPECT_EQ(Bytes(copy), "old");
    EXPECT_EQ(ModeOf(copy), isProtected ? 0400 : 0600);
  }
  Write(copy, "newer");
  table().copies().TakeBack(document.id());
  EXPECT_EQ(BytesOf(document), "newer");
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

const QString kNotKnown = "whether the object is still in the document is not known: others there are equal to it.";

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
  ExpectKept(document, first, kNotKnown);
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
      {"deleted, and that undone",
       [](ui::RichTextBox& box) {
         box.SetSelStart(3), box.SetSelLength(1), box.DeleteSelection();
         box.Undo();
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
    if (!row.place) ExpectKept(document, copy, kNotKnown);
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

}  // namespace
