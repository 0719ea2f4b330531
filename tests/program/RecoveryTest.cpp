// Texts that are kept because somebody ended the program, and what the recovery folder remembers of them.
#include "files/saving/Recovery.h"
#include "services/RecoveryKind.h"
#include "tests/program/ProgramTest.h"

#include <sys/stat.h>

namespace {

using documents::frmText;
using documents::SaveOutcome;
using services::RecoveryKind;
using ui::Answer;
using ui::Buttons;
using ui::Icon;

TEST(RecoveryKindTest, Lines) {
  const files::FileStamp stamp{UINT64_MAX, 12, INT64_MAX, -1, 999999999};
  for (const RecoveryKind& kind : {RecoveryKind{true, stamp}, RecoveryKind{false, stamp}, RecoveryKind{true, {}},
                                   RecoveryKind{false, files::FileStamp{}}}) {
    const RecoveryKind back = services::RecoveryKindOf(ToLine(kind));
    EXPECT_EQ(back.rich, kind.rich) << ToLine(kind);
    EXPECT_EQ(back.original, kind.original) << ToLine(kind);
  }
  for (const char* line : {"", "text", "rtfx", "text 1 2 3 4", "text 1 2 3 4 5 6", "text 1 2 3 4 5 ", "text 1 2 3 4 x",
                           "text -1 2 3 4 5", "text 1  2 3 4 5", "text 99999999999999999999 2 3 4 5"}) {
    EXPECT_FALSE(services::RecoveryKindOf(line).rich) << line;
    EXPECT_FALSE(services::RecoveryKindOf(line).original) << line;
  }
}

class KeepTest : public ProgramTest {
 protected:
  // Name and bytes of the texts in the recovery folder, those that a window holds included.
  std::vector<std::pair<std::string, std::string>> Kept() {
    std::vector<std::pair<std::string, std::string>> kept;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(program().recoveryFolder(), none)) {
      const std::string about = Bytes(entry.path() / "about");
      kept.emplace_back(about.substr(about.find('\n', about.find('\n') + 1) + 1), Bytes(entry.path() / "text"));
    }
    std::ranges::sort(kept);
    return kept;
  }
  using Texts = std::vector<std::pair<std::string, std::string>>;

  void Keep() { EXPECT_FALSE(program().KeepTexts()); }
  void Recover(const std::string& caption, Answer answer) {
    dialogs.Message("The text of [" + QString::fromStdString(caption) +
                        "] was not saved when its window was closed.\r\nDo you want to open it now?  No deletes it, "
                        "Cancel leaves it for the next start.",
                    Buttons::kYesNoCancel, Icon::kQuestion, answer);
    program().OfferRecovered();
  }
  frmText& Edited(const files::Path& path, const QString& more = "+") {
    frmText* document = Open(path);
    EXPECT_TRUE(document);
    Type(*document, more);
    return *document;
  }
};

TEST_F(KeepTest, WhatWasKeptGoesWhenItIsUndone) {
  frmText& document = Edited(Put("a.txt", "a"));
  Keep();
  EXPECT_EQ(Kept(), (Texts{{At("a.txt").native(), "+a"}}));
  document.RichTextBox1().Undo();
  Keep();
  EXPECT_EQ(Kept(), Texts{});
}

TEST_F(KeepTest, WhatIsKeptAndWhatNot) {
  New();                               // nothing typed
  Open(Put("same.txt", "as it was"));  // unchanged
  Edited(Put("a.txt", "text"));        // changed
  frmText& emptied = Edited(Put("b.txt", "text"));
  emptied.mnuSelAll_Click();
  emptied.mnuDelete_Click();
  Type(New(), "new");
  Edited(Put("c.rtf", "{\\rtf1 {\\b bold}}"));
  Keep();
  const Texts kept = Kept();
  ASSERT_EQ(kept.size(), 4u);
  EXPECT_EQ(kept[0], std::pair(At("a.txt").native(), std::string("+text")));
  EXPECT_EQ(kept[1], std::pair(At("b.txt").native(), std::string())) << "emptied on purpose";
  EXPECT_EQ(kept[2].first, At("c.rtf").native());
  EXPECT_TRUE(kept[2].second.starts_with("{\\rtf1"));
  EXPECT_EQ(kept[3], std::pair(std::string("Untitled:5"), std::string("new")));
  EXPECT_EQ(Bytes(At("a.txt")), "text") << "the file is left alone";
}

TEST_F(KeepTest, ANewDocumentWithoutTextLeavesNothingBehind) {
  for (const bool typed : {false, true}) {
    frmText& document = New();
    Type(document, "x");
    if (!typed) document.RichTextBox1().SelectAll(), document.RichTextBox1().SetSelText({});
    ExpectClosePrompt(document.caption(), Answer::kYes);
    dialogs.File(std::nullopt);
    EXPECT_TRUE(document.Close());
    EXPECT_EQ(Kept().size(), typed ? 1u : 0u);
  }
}

TEST_F(KeepTest, SavingOrGivingUpEndsTheKeeping) {
  frmText& saved = Edited(Put("a.txt", "text"));
  frmText& given = Edited(Put("b.txt", "text"));
  Keep();
  EXPECT_EQ(saved.mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Kept(), (Texts{{At("b.txt").native(), "+text"}}));
  ExpectClosePrompt(given.caption(), Answer::kNo);
  EXPECT_TRUE(given.Close());
  EXPECT_EQ(Kept(), Texts());
}

TEST_F(KeepTest, TheFileIsReplacedUnaskedWhenItIsStillTheSame) {
  for (const bool changes : {false, true}) {
    const files::Path path = Put("a.txt", "text");
    Type(Edited(path), "+");
    Keep();
    Keep();
    EXPECT_EQ(Kept(), (Texts{{path.native(), "++text"}})) << "kept once";
    Restart();
    if (changes) Put("a.txt", "someone else's");
    Recover(path.native(), Answer::kYes);
    frmText* document = Showing(path.native());
    ASSERT_TRUE(document);
    EXPECT_TRUE(Changed(*document));
    if (changes)
      dialogs.Message(
          File(path, "has been changed by another program since it was opened.  Do you want to replace it?"),
          Buttons::kYesNoCancel, Icon::kExclamation, Answer::kYes);
    EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kSaved);
    EXPECT_EQ(Bytes(path), "++text");
    EXPECT_EQ(Kept(), Texts());
    EXPECT_TRUE(document->Close());
  }
}

TEST_F(KeepTest, AnUntitledTextGetsAFreeNumber) {
  Type(New(), "first");
  Type(New(), "second");
  Keep();
  Restart();
  New();
  for (const char* name : {"Untitled:1", "Untitled:2"})
    dialogs.Message(
        QString("The text of [%1] was not saved when its window was closed.\r\nDo you want to open it now?  "
                "No deletes it, Cancel leaves it for the next start.")
            .arg(name),
        Buttons::kYesNoCancel, Icon::kQuestion, Answer::kYes);
  program().OfferRecovered();
  std::vector<QString> texts;
  for (int slot = 1; slot <= 3; ++slot) {
    ASSERT_TRUE(table().Document(slot));
    EXPECT_EQ(table().Document(slot)->caption(), "Untitled:" + std::to_string(slot));
    texts.push_back(table().Document(slot)->RichTextBox1().Text());
  }
  std::ranges::sort(texts);
  EXPECT_EQ(texts, (std::vector<QString>{"", "first", "second"}));
}

TEST_F(KeepTest, ARecoveredTextIsHeldByItsWindow) {
  Edited(Put("a.txt", "text"));
  Keep();
  EXPECT_TRUE(files::ListRecovery(program().recoveryFolder()).value().empty()) << "its window is still open";
  Restart();
  Recover(At("a.txt").native(), Answer::kYes);
  program().OfferRecovered();  // asks nothing: an unannounced question fails the test
  EXPECT_TRUE(files::ListRecovery(program().recoveryFolder()).value().empty()) << "nor is another copy offered it";
  Keep();
  EXPECT_EQ(Kept().size(), 1u) << "it is kept already";
  Restart();
  EXPECT_EQ(files::ListRecovery(program().recoveryFolder()).value().size(), 1u) << "not saved, so offered again";
}

TEST_F(KeepTest, TheEndKeepsTheTextsAndQuits) {
  bool quit = false;
  program().SetQuit([&] { quit = true; });
  Edited(Put("a.txt", "text"));
  program().EndSession();
  EXPECT_TRUE(quit);
  EXPECT_EQ(Kept(), (Texts{{At("a.txt").native(), "+text"}}));
}

TEST_F(KeepTest, TheEndIsRefusedWhenATextCannotBeKept) {
  Put("state", "a file where the folder should be");
  Edited(Put("a.txt", "text"));
  ExpectError("Error: " + QString::fromStdString(program().recoveryFolder().native()) + "\r\nNot a directory");
  program().EndSession();
  EXPECT_TRUE(Showing(At("a.txt").native()));
}

// An entry as the death of the program leaves it.
struct LeftBehind {
  const char* kind;
  const char* name;  // "/..." is in the test's folder
  bool complete, previous;
  const char* prompt;        // %1 the name, %2 the entry's folder
  const char* beforeSaving;  // the question behind the file's name; null: none
  bool leftAfterNo;
};

constexpr const char* kChoices = "\r\nDo you want to open it now?  No deletes it, Cancel leaves it for the next start.";
constexpr const char* kWithPrevious =
    "\r\nDo you want to open the text that was to be saved?  No leaves it for the next start, in the folder\r\n%2";
constexpr const char* kOnlyTheBeginning =
    "Only the beginning of the text of [%1] could be kept; the file itself is as "
    "it was.";
constexpr const char* kIsWhole =
    "is as it was, and of the recovered text only the beginning could be kept.  Do you want to replace it?";
constexpr const char* kLeftThere =
    "holds what a save that was cut short has left there.  Do you want to replace it by the recovered text?";

constexpr LeftBehind kLeftBehind[] = {
    {"", "/a.txt", false, false, kOnlyTheBeginning, kIsWhole, false},
    {"text", "Untitled:3", false, false, "Only the beginning of the text of [%1] could be kept.", nullptr, false},
    {"", "", false, false, "The beginning of a text was kept in the recovery folder, but its name is lost.", nullptr,
     false},
    {"", "", true, false, "A text was kept in the recovery folder, but its name is lost.", nullptr, false},
    {"", "", true, true, "A text was kept in the recovery folder, but its name is lost.", nullptr, true},
    {"", "/a.txt", true, false, "Saving [%1] was cut short.", kLeftThere, false},
    {"", "/a.txt", true, true, "Saving [%1] was cut short.", kLeftThere, true},
};

class CutShortTest : public KeepTest {
 protected:
  std::string NameOf(const LeftBehind& c) const { return *c.name == '/' ? At(c.name + 1).native() : c.name; }
  void Leave(const LeftBehind& c) {
    Put("a.txt", "the original");
    std::filesystem::create_directories(Entry());
    Put("state/entry-left/about", "quillmark-recovery 1\n" + std::string(c.kind) + "\n" + NameOf(c));
    Put(c.complete ? "state/entry-left/text" : "state/entry-left/text.part", "the orig");
    if (c.previous) Put("state/entry-left/previous", "the original");
  }
  files::Path Entry() const { return At("state/entry-left"); }
  void Offer(const LeftBehind& c, Answer answer) {
    QString text = QString::fromUtf8(c.prompt) + QString::fromUtf8(c.previous ? kWithPrevious : kChoices);
    text.replace("%1", QString::fromStdString(NameOf(c))).replace("%2", Entry().c_str());
    dialogs.Message(text, c.previous ? Buttons::kYesNo : Buttons::kYesNoCancel, Icon::kQuestion, answer);
    program().OfferRecovered();
    EXPECT_EQ(dialogs.left(), 0u);
  }
  frmText* Shown() { return table().Document(table().UpperBound()); }
};

TEST_F(CutShortTest, No) {
  for (const LeftBehind& c : kLeftBehind) {
    SCOPED_TRACE(std::string(c.kind) + " " + c.name);
    Leave(c);
    Offer(c, Answer::kNo);
    EXPECT_EQ(Exists(Entry()), c.leftAfterNo);
    EXPECT_EQ(Bytes(At("a.txt")), "the original");
    std::filesystem::remove_all(Entry());
  }
}

TEST_F(CutShortTest, TheOriginalIsNotReplacedUnasked) {
  for (const LeftBehind& c : kLeftBehind) {
    SCOPED_TRACE(std::string(c.kind) + " " + c.name);
    Restart();
    Leave(c);
    Offer(c, Answer::kYes);
    frmText* document = Shown();
    ASSERT_TRUE(document);
    EXPECT_EQ(document->RichTextBox1().Text(), "the orig");
    EXPECT_TRUE(Changed(*document));
    if (c.beforeSaving) {
      for (const Answer answer : {Answer::kCancel, Answer::kYes}) {
        EXPECT_EQ(Bytes(At("a.txt")), "the original");
        EXPECT_TRUE(Exists(Entry()));
        dialogs.Message(File(NameOf(c), c.beforeSaving), Buttons::kYesNoCancel, Icon::kExclamation, answer);
        EXPECT_EQ(document->mnuSaveFile_Click(),
                  answer == Answer::kYes ? SaveOutcome::kSaved : SaveOutcome::kCancelled);
      }
      EXPECT_EQ(Bytes(At("a.txt")), "the orig");
    } else {
      dialogs.File(At("chosen.txt"));
      EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kSaved);
      EXPECT_EQ(Bytes(At("chosen.txt")), "the orig");
      std::filesystem::remove(At("chosen.txt"));
    }
    EXPECT_FALSE(Exists(Entry())) << "saved, so it is not offered again";
    std::filesystem::remove_all(Entry());
  }
}

TEST_F(CutShortTest, SavedElsewhereItStaysForItsFile) {
  Leave(kLeftBehind[0]);
  Offer(kLeftBehind[0], Answer::kYes);
  dialogs.File(At("b.txt"));
  EXPECT_EQ(Shown()->mnuSaveFileAs_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(At("b.txt")), "the orig");
  EXPECT_TRUE(Exists(Entry()));
}

class KeptProjectTest : public KeepTest {
 protected:
  std::string Entries() {
    std::string entries;
    for (size_t i = 1; i <= program().project().ProjectItems().Highest(); ++i)
      entries += program().project().ProjectItems()[i] + ";";
    return entries;
  }
  void Load(const files::Path& path) {
    program().project().ProjectFile = path.native();
    program().project().LoadProject();
  }
  void Offer(const QString& what, Answer answer) {
    dialogs.Message(what + kChoices, Buttons::kYesNoCancel, Icon::kQuestion, answer);
    program().OfferRecovered();
  }
  QString Named() const {
    return "The project [" + QString::fromStdString(At("p.prj").native()) +
           "] was changed and not saved when the program ended.";
  }
  void ExpectProjectQuestion(Answer answer) {
    dialogs.Message("Project " + QString::fromStdString(program().project().ProjectFile) +
                        " has been changed.\r\nDo you want to save the changes before continuing?",
                    Buttons::kYesNoCancel, Icon::kExclamation, answer);
  }
};

TEST_F(KeptProjectTest, AChangedOneComesBack) {
  Load(Put("p.prj", "/x/one.txt\r\n\r\n"));
  Keep();
  EXPECT_EQ(Kept(), Texts()) << "not changed";
  program().AddNewDocOrLink("/x/two.txt");
  Keep();
  Keep();
  EXPECT_EQ(Kept(), (Texts{{At("p.prj").native(), "/x/one.txt\r\n/x/two.txt\r\n\r\n"}}));
  Restart();
  Offer(Named(), Answer::kYes);
  EXPECT_EQ(Entries(), "/x/one.txt;/x/two.txt;");
  EXPECT_EQ(program().project().ProjectFile, At("p.prj").native());
  EXPECT_FALSE(program().project().ProjectSaved);
  EXPECT_EQ(Kept().size(), 1u) << "until it is saved";
  dialogs.Message(
      File(At("p.prj"), "may have been changed since the recovered project was kept.  Do you want to replace it?"),
      Buttons::kYesNo, Icon::kQuestion, Answer::kYes);
  program().project().mnuSaveProject_Click();
  EXPECT_EQ(Bytes(At("p.prj")), "/x/one.txt\r\n/x/two.txt\r\n\r\n");
  EXPECT_EQ(Kept(), Texts());
}

TEST_F(KeptProjectTest, AnUnnamedOneComesBackUnnamed) {
  program().AddNewDocOrLink("/x/two.txt");
  Keep();
  Restart();
  Offer("A project without a name was not saved when the program ended.", Answer::kCancel);
  EXPECT_EQ(Entries(), "");
  Offer("A project without a name was not saved when the program ended.", Answer::kYes);
  EXPECT_EQ(Entries(), "/x/two.txt;");
  EXPECT_EQ(program().project().ProjectFile, "");
  ExpectProjectQuestion(Answer::kNo);
  program().project().mnuNewProject_Click();
  EXPECT_EQ(Kept(), Texts()) << "given up";
}

TEST_F(KeptProjectTest, ASaveThatWasNotMadeAtTheEndLosesNothing) {
  program().AddNewDocOrLink("/x/two.txt");
  ExpectProjectQuestion(Answer::kYes);
  dialogs.File(std::nullopt);
  EXPECT_TRUE(program().frame().RequestClose());
  Restart();
  Offer("A project without a name was not saved when the program ended.", Answer::kYes);
  EXPECT_EQ(Entries(), "/x/two.txt;");
}

TEST_F(KeptProjectTest, ASaveThatFailedAtTheEndLosesNothing) {
  program().AddNewDocOrLink("/x/two.txt");
  program().project().ProjectFile = At("missing/p.prj").native();
  ExpectProjectQuestion(Answer::kYes);
  ExpectError(Error(At("missing/p.prj"), "No such file or directory"));
  EXPECT_TRUE(program().frame().RequestClose());
  EXPECT_EQ(Kept(), (Texts{{At("missing/p.prj").native(), "/x/two.txt\r\n\r\n"}}));
}

TEST_F(KeepTest, CharactersThatThePageCannotHoldAreKeptAsUtf8) {
  Edited(Put("a.txt", "caf\xE9 na\xEFve \xFC"), QString(QChar(0x4E2D)));
  Keep();
  ASSERT_EQ(Kept().size(), 1u);
  EXPECT_EQ(Kept()[0].second,
            "\xE4\xB8\xAD"
            "caf\xC3\xA9 na\xC3\xAFve \xC3\xBC");
}

}  // namespace
