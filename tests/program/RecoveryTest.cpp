// Texts that are kept because somebody ended the program, and what the recovery folder remembers of them.
#include "documents/RecoveryKind.h"
#include "files/Recovery.h"
#include "tests/program/ProgramTest.h"

#include <sys/stat.h>

namespace {

using documents::frmText;
using documents::RecoveryKind;
using documents::SaveOutcome;
using ui::Answer;
using ui::Buttons;
using ui::Icon;

TEST(RecoveryKindTest, Lines) {
  const files::FileStamp stamp{UINT64_MAX, 12, INT64_MAX, -1, 999999999};
  for (const RecoveryKind& kind : {RecoveryKind{true, stamp}, RecoveryKind{false, stamp}, RecoveryKind{true, {}},
                                   RecoveryKind{false, files::FileStamp{}}}) {
    const RecoveryKind back = documents::RecoveryKindOf(ToLine(kind));
    EXPECT_EQ(back.rich, kind.rich) << ToLine(kind);
    EXPECT_EQ(back.original, kind.original) << ToLine(kind);
  }
  for (const char* line : {"", "text", "rtfx", "text 1 2 3 4", "text 1 2 3 4 5 6", "text 1 2 3 4 5 ", "text 1 2 3 4 x",
                           "text -1 2 3 4 5", "text 1  2 3 4 5", "text 99999999999999999999 2 3 4 5"}) {
    EXPECT_FALSE(documents::RecoveryKindOf(line).rich) << line;
    EXPECT_FALSE(documents::RecoveryKindOf(line).original) << line;
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

TEST_F(KeepTest, KeepingAgainReplacesAndDoesNotRepeat) {
  frmText& document = Edited(Put("a.txt", "text"));
  Keep();
  Keep();
  EXPECT_EQ(Kept(), (Texts{{At("a.txt").native(), "+text"}}));
  Type(document, "+");
  Keep();
  EXPECT_EQ(Kept(), (Texts{{At("a.txt").native(), "++text"}}));
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
  const files::Path path = Put("a.txt", "text");
  Edited(path);
  Keep();
  Restart();
  Recover(path.native(), Answer::kYes);
  frmText* document = Showing(path.native());
  ASSERT_TRUE(document);
  EXPECT_TRUE(Changed(*document));
  EXPECT_EQ(document->RichTextBox1().Text(), "+text");
  EXPECT_EQ(document->mnuSaveFile_Click(), SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(path), "+text");
  EXPECT_EQ(Kept(), Texts());
}

TEST_F(KeepTest, AFileThatChangedMeanwhileIsNot) {
  const files::Path path = Put("a.txt", "text");
  Edited(path);
  Keep();
  Restart();
  Put("a.txt", "someone else's");
  Recover(path.native(), Answer::kYes);
  dialogs.Message(File(path, "has been changed by another program since it was opened.  Do you want to replace it?"),
                  Buttons::kYesNoCancel, Icon::kExclamation, Answer::kCancel);
  EXPECT_EQ(Showing(path.native())->mnuSaveFile_Click(), SaveOutcome::kCancelled);
  EXPECT_EQ(Bytes(path), "someone else's");
}

TEST_F(KeepTest, AnUntitledTextGetsAFreeNumber) {
  Type(New(), "first");
  Type(New(), "second");
  Keep();
  Restart();
  New();
  dialogs.Message(
      "The text of [Untitled:1] was not saved when its window was closed.\r\nDo you want to open it now?  "
      "No deletes it, Cancel leaves it for the next start.",
      Buttons::kYesNoCancel, Icon::kQuestion, Answer::kYes);
  dialogs.Message(
      "The text of [Untitled:2] was not saved when its window was closed.\r\nDo you want to open it now?  "
      "No deletes it, Cancel leaves it for the next start.",
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

TEST_F(KeepTest, TheEndIsRefusedWhenATextCannotBeKept) {
  Put("state", "a file where the folder should be");
  Edited(Put("a.txt", "text"));
  ExpectError("Error: " + QString::fromStdString(program().recoveryFolder().native()) + "\r\nNot a directory");
  program().EndSession();
  EXPECT_TRUE(Showing(At("a.txt").native()));
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
