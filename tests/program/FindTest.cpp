// Finding and replacing: the engine by its steps, the dialog by its buttons.
#include "tests/program/ProgramTest.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include <map>
#include <random>
#include <sstream>

namespace {

using documents::frmText;
using search::FindEngine;

class FindTest : public ProgramTest {
 protected:
  FindEngine& Engine() { return program().find().engine(); }
  search::frmFind& Dialog() { return *program().find().dialog(); }
  ui::RichTextBox& Box(int slot) { return table().Document(slot)->RichTextBox1(); }
  ui::RichTextBox& Active() { return table().Active()->RichTextBox1(); }

  // A new document with that text; "|" is the caret, two of them a selection.
  frmText& NewText(QString text) {
    frmText& document = New();
    const qsizetype begin = std::max<qsizetype>(0, text.indexOf('|'));
    const qsizetype end = text.lastIndexOf('|');
    document.RichTextBox1().SetSelText(text.remove('|'));
    document.RichTextBox1().SetSelStart(begin);
    document.RichTextBox1().SetSelLength(end > begin ? end - begin - 1 : 0);
    return document;
  }
  void OpenFor(const char* tag, const QString& find, const QString& replace = {}) {
    if (*tag == 'R') program().commands().mnuReplace_Click();
    if (*tag != 'R') program().commands().mnuFind_Click();
    Settle();
    Dialog().Combo1(0).SetText(find);
    Dialog().Combo1(1).SetText(replace);
  }
  void ExpectNotFound(const QString& text) {
    dialogs.Message("Cannot find any (more) occurrences of\r\n\"" + text + "\"", ui::Buttons::kOk, ui::Icon::kNone,
                    ui::Answer::kOk);
  }
  // Presses Find next until the next message, and gives the places found, "slot:" before them where it changes.
  std::string PressUntilMessage() {
    std::string found;
    int slot = program().ActiveSlot();
    ExpectNotFound(Dialog().Combo1(0).Text());
    for (int i = 0; i < 20; ++i) {
      Dialog().cmdFind().click();
      if (dialogs.left() == 0) return found + "-";
      if (program().ActiveSlot() != slot) found += std::to_string(slot = program().ActiveSlot()) + ":";
      found += std::to_string(Active().SelStart()) + " ";
    }
    return found + "...";
  }
  std::string States() {
    std::string states;
    for (const QWidget* control :
         {static_cast<QWidget*>(&Dialog().cmdFind()), static_cast<QWidget*>(&Dialog().cmdReplace()),
          static_cast<QWidget*>(&Dialog().cmdReplaceAll()), static_cast<QWidget*>(&Dialog().Combo1(1)),
          static_cast<QWidget*>(&Dialog().Label2())})
      states += control->isEnabled() ? '+' : '-';
    return states + (Dialog().Label3().isHidden() ? '-' : '+');
  }
};

// --- Steps

struct StepCase {
  const char* text;
  const char* needle;
  const char* first;   // what is found up to the message
  const char* second;  // and from there on, up to the next one
  bool matchCase = false, wholeWord = false;
};

const StepCase kSteps[] = {
    {"|abc abc", "abc", "4 -", "4 -"},  // a match at the caret is passed over
    {"|aaaa", "aa", "1 -", "2 -"},      // on from two behind the last one; round again from 2
    {"|x\r\ny\r\nz", "\r\n", "1 4 -", "4 -"},
    {"|.Cat cat CAT concat cat_", "cat", "1 5 9 16 20 -", "5 9 16 20 -"},
    {"|.Cat cat CAT concat cat_", "cat", "5 16 20 -", "5 16 20 -", true},
    {"|.Cat cat CAT concat cat_", "cat", "1 5 9 -", "5 9 -", false, true},
    {"|. stra\u00DFe STRASSE STRA\u1E9EE", "stra\u00DFe", "2 17 -", "2 17 -"},  // simple folding: a letter is a letter
    {"|. \u0416\u0443\u043A \u0436\u0443\u043A\u0438", "\u0436\u0443\u043A", "2 -", "2 -", false, true},
    {"|", "a", "-", "-"},
};

TEST_F(FindTest, StepsGoOnFromWhereTheLastOneStood) {
  for (const StepCase& row : kSteps) {
    SCOPED_TRACE(row.text);
    frmText& document = NewText(row.text);
    OpenFor("", row.needle);
    Dialog().chkCase().SetValue(row.matchCase);
    Dialog().chkWhole().SetValue(row.wholeWord);
    EXPECT_EQ(PressUntilMessage(), row.first);
    EXPECT_EQ(Active().SelStart(), 0);
    EXPECT_EQ(Active().SelLength(), 0);
    EXPECT_EQ(PressUntilMessage(), row.second);
    Dialog().Close();
    document.Unload();
  }
}

TEST_F(FindTest, AllDocumentsInTheOrderOfTheirSlots) {
  for (const char* text : {". a", "a. a", "gone", ". a a"}) NewText(text);
  table().Document(3)->Unload();
  table().Document(2)->Activate();
  OpenFor("", "a");
  Dialog().Option1(1).click();
  EXPECT_EQ(PressUntilMessage(), "3 4:2 4 1:2 2:3 -") << "the first one once more, from 2";
  EXPECT_EQ(Engine().FindAllStartDoc, 2);
  EXPECT_EQ(PressUntilMessage(), "3 -") << "at its end the round is over";
  table().Document(1)->Activate();
  EXPECT_EQ(PressUntilMessage(), "2:3 -") << "from another one up to the document where it began";
  Dialog().Combo1(0).SetText(". a");
  EXPECT_EQ(Engine().FindAllStartDoc, 0) << "typing begins a new round";
  table().Document(1)->Activate();
  table().Document(4)->SetWindowState(ui::WindowState::kMinimized);
  table().Document(1)->Activate();
  Active().SetSelStart(2);
  ExpectNotFound(". a");
  Dialog().cmdFind().click();
  EXPECT_EQ(dialogs.left(), 0u) << "each document is searched from 2";
}

TEST_F(FindTest, ARoundWhoseFirstDocumentHasGoneEndsSilently) {
  for (const char* text : {"..", "..", ". a"}) NewText(text);
  table().Document(2)->Activate();
  OpenFor("", "a");
  Dialog().Option1(1).click();
  Dialog().cmdFind().click();
  EXPECT_EQ(program().ActiveSlot(), 3);
  table().Document(2)->Unload();
  Dialog().cmdFind().click();
  EXPECT_EQ(program().ActiveSlot(), 1) << "on to the first";
  Dialog().cmdFind().click();
  EXPECT_EQ(program().ActiveSlot(), 1);
  EXPECT_FALSE(Engine().FocusFromFindAll);
}

TEST_F(FindTest, FindNextWorksWithoutTheDialogAndBringsAMatchIntoView) {
  frmText& document = NewText("needle" + QString("\r\nline").repeated(300) + "\r\nneedle");
  program().commands().mnuFindNext_Click();
  ASSERT_TRUE(program().find().dialog()) << "nothing to search yet";
  Dialog().Combo1(0).SetText("needle");
  Dialog().cmdFind().click();
  Dialog().Close();
  for (const auto state : {ui::WindowState::kNormal, ui::WindowState::kMinimized}) {
    document.SetWindowState(state);
    Active().SetSelStart(50);
    program().commands().mnuFindNext_Click();
    EXPECT_GT(Active().SelStart(), 1000);
    EXPECT_FALSE(Active().SelectionOnScreen().isEmpty());
    EXPECT_EQ(document.windowState(), ui::WindowState::kNormal) << "what is found is seen";
  }
}

// --- The dialog

TEST_F(FindTest, TheControlsFollowTheModeAndTheText) {
  NewText("|x|");
  OpenFor("", "");
  EXPECT_EQ(States(), "------");
  Dialog().Combo1(0).SetText("x");
  EXPECT_EQ(States(), "++----");
  Dialog().cmdReplace().click();
  EXPECT_EQ(States(), "++++++") << "the first press only makes it a replace dialog";
  EXPECT_EQ(Dialog().Combo1(0).count(), 0);
  Dialog().Combo1(0).SetText("");
  EXPECT_EQ(States(), "------");
  Dialog().Combo1(0).SetText("x");
  EXPECT_EQ(States(), "++----");
  Dialog().cmdcancel().click();
  EXPECT_FALSE(Dialog().isShown());
  OpenFor("R", "x");
  EXPECT_EQ(States(), "++++++");
  OpenFor("", "x");
  EXPECT_EQ(States(), "++++++") << "it is open for replacing";
  Dialog().Close();
  OpenFor("", "x");
  EXPECT_EQ(States(), "++---+") << "set up anew; the line is empty";
  program().commands().mnuReplace_Click();
  EXPECT_EQ(States(), "++++++") << "the command says for replacing";
}

TEST_F(FindTest, WhatTheBoxesHoldWhenItOpens) {
  frmText& document = NewText("one |two| three");
  OpenFor("", "", "with");
  Dialog().Close();
  EXPECT_EQ(Engine().ReplaceText, "with") << "left behind by Cancel";
  Dialog().Combo1(1).SetText("lost");
  program().commands().mnuFind_Click();
  EXPECT_EQ(Dialog().Combo1(0).Text(), "two") << "the selection";
  EXPECT_EQ(Dialog().Combo1(1).Text(), "with");
  Dialog().Combo1(0).SetText("three");
  Dialog().cmdFind().click();
  document.RichTextBox1().SetSelStart(0);
  Dialog().Combo1(0).SetText("typed only");
  Dialog().Close();
  program().commands().mnuFind_Click();
  EXPECT_EQ(Dialog().Combo1(0).Text(), "three") << "the text searched for last";
  document.RichTextBox1().SelectAll();
  document.RichTextBox1().SetSelText(QString(32766, 'a') + "\r\nb");
  document.RichTextBox1().SelectAll();
  program().commands().mnuFind_Click();
  EXPECT_EQ(Dialog().Combo1(0).Text(), QString(32766, 'a')) << "cut at a character's border";
}

TEST_F(FindTest, HistoriesHoldEachTextOnce) {
  NewText("text Text");
  OpenFor("", "text");
  const auto entries = [this](size_t box) {
    QStringList list;
    for (int i = 0; i < Dialog().Combo1(box).count(); ++i) list += Dialog().Combo1(box).itemText(i);
    return list.join("|");
  };
  Dialog().chkCase().SetValue(true);
  for (const char* text : {"text", "text", "Text", "text"}) {
    Dialog().Combo1(0).SetText(text);
    Active().SetSelStart(0);
    if (*text == 't') ExpectNotFound(text);
    Dialog().cmdFind().click();
    EXPECT_EQ(Dialog().Combo1(0).Text(), text);
  }
  EXPECT_EQ(entries(0), "Text|text");
  EXPECT_EQ(Dialog().Combo1(0).currentIndex(), 1) << "chosen, not moved";
  EXPECT_EQ(Dialog().Combo1(1).count(), 1) << "one empty text";
  Dialog().Close();
  OpenFor("", "");
  EXPECT_EQ(entries(0), "Text|text");
}

TEST_F(FindTest, OptionsReachTheEngineAndBeginANewRound) {
  NewText("text");
  OpenFor("", "x");
  QAbstractButton* const options[] = {&Dialog().chkCase(), &Dialog().chkWhole(), &Dialog().Option1(1),
                                      &Dialog().Option1(0)};
  for (QAbstractButton* option : options) {
    Engine().NewSearch = false;
    Engine().FindAllStartDoc = 7;
    option->click();
    EXPECT_TRUE(Engine().NewSearch && Engine().FindAllStartDoc == 0);
    EXPECT_EQ(Engine().SearchAllDocuments, option == options[2]);
  }
  EXPECT_TRUE(Engine().MatchCase == 1 && Engine().MatchWholeWord == 1);
}

TEST_F(FindTest, WithoutADocumentItSaysSo) {
  const QString text = "Error: No document has been selected.  Please select a document, and then try again.";
  ExpectError(text);
  program().commands().mnuFind_Click();
  frmText& document = NewText("a");
  OpenFor("R", "a");
  document.Unload();
  for (ui::Button* button : {&Dialog().cmdFind(), &Dialog().cmdReplace(), &Dialog().cmdReplaceAll()}) {
    ExpectError(text);
    button->click();
  }
}

TEST_F(FindTest, KeysOfTheDialog) {
  NewText("a.a.a");
  OpenFor("", "a");
  const auto press = [this](Qt::Key key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&Dialog().Combo1(0), &event);
  };
  QKeyEvent replaceAll(QEvent::KeyPress, Qt::Key_A, Qt::AltModifier, "a");
  QApplication::sendEvent(&Dialog().Combo1(0), &replaceAll);
  EXPECT_EQ(Dialog().Combo1(0).Text(), "a") << "the key of a button that is disabled";
  EXPECT_EQ(Dialog().Combo1(0).lineEdit()->selectedText(), "") << "typed just now";
  Dialog().cmdFind().setFocus();
  Dialog().Combo1(0).setFocus();
  EXPECT_EQ(Dialog().Combo1(0).lineEdit()->selectedText(), "a") << "entering a box selects its text";
  press(Qt::Key_Return);
  EXPECT_EQ(Active().SelStart(), 2);
  EXPECT_EQ(Dialog().Combo1(0).lineEdit()->selectedText(), "a");
  press(Qt::Key_Escape);
  EXPECT_FALSE(Dialog().isShown());
}

// --- Replacing

TEST_F(FindTest, ReplaceTakesOnlyTheTextToTheLetter) {
  frmText& document = NewText("|abc| ABC abc abc");
  OpenFor("R", "abc", "x");
  Dialog().cmdReplace().click();
  EXPECT_EQ(document.RichTextBox1().Text(), "x ABC abc abc");
  EXPECT_EQ(document.RichTextBox1().SelText(), "ABC") << "one found already";
  Dialog().cmdReplace().click();
  EXPECT_EQ(document.RichTextBox1().Text(), "x ABC abc abc") << "another case: passed over";
  EXPECT_EQ(document.RichTextBox1().SelStart(), 6);
  Dialog().cmdReplace().click();
  EXPECT_EQ(document.RichTextBox1().Text(), "x ABC x abc");
  document.RichTextBox1().Undo();
  EXPECT_EQ(document.RichTextBox1().Text(), "x ABC abc abc") << "each is a step of its own";
}

// What it leaves is compared with the steps below; here is what the dialog tells.
TEST_F(FindTest, ReplaceAllFromTheCaretOn) {
  const struct {
    const char *text, *needle, *replacement, *expected, *label;
  } kRows[] = {
      {"|ab.ab.ab", "ab", "", "ab..ab", "1 replacements were made."},
      {"|.aba", "a", "aa", ".aabaa", "2 replacements were made."},
      {"|ab| ab", "ab", "x", "x x", "1 replacements were made."},  // the selection does not count
      {"a.|a", "a", "x", "a.a", ""},                               // a match at the caret stays
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.text);
    frmText& document = NewText(row.text);
    OpenFor("R", row.needle, row.replacement);
    ExpectNotFound(row.needle);
    Dialog().cmdReplaceAll().click();
    EXPECT_EQ(document.RichTextBox1().Text(), row.expected);
    EXPECT_EQ(Dialog().Label3().text(), row.label);
    EXPECT_EQ(document.RichTextBox1().SelStart(), 0);
    Dialog().Close();
    document.Unload();
  }
}

TEST_F(FindTest, MoreReplacementsThanAShortNumberHolds) {
  const QString text = "." + QString("a.").repeated(40000);
  frmText& document = NewText("|" + text);
  document.RichTextBox1().document().SetSaved();
  OpenFor("R", "a", "bc");
  ExpectNotFound("a");
  Dialog().cmdReplaceAll().click();
  EXPECT_EQ(Dialog().Label3().text(), "40000 replacements were made.");
  document.RichTextBox1().Undo();
  EXPECT_TRUE(document.RichTextBox1().Text() == text) << "one step";
  EXPECT_FALSE(document.RichTextBox1().document().changed());
}

TEST_F(FindTest, ACancelledReplaceAllChangesNothing) {
  NewText(".. a");
  frmText& second = NewText("|.. a");
  OpenFor("R", "a", "x");
  Dialog().Option1(1).click();
  dialogs.CancelNextWork();
  Dialog().cmdReplaceAll().click();
  EXPECT_EQ(Box(1).Text() + Box(2).Text(), ".. a.. a");
  EXPECT_EQ(table().Active(), &second);
  EXPECT_EQ(Dialog().Label3().text(), "");
}

// Text that an input method delivers while the texts are computed is neither lost nor skipped.
TEST_F(FindTest, WhatIsTypedMeanwhileIsSearchedToo) {
  frmText& document = NewText("|.. a");
  OpenFor("R", "a", "x");
  dialogs.AfterNextWork([&] {
    document.RichTextBox1().document().Replace({text::Units(4), text::Units(4)}, " a", text::CharFormatId::kDefault,
                                               text::EditKind::kTyping, {});
    document.RichTextBox1().DocumentEdited();
  });
  ExpectNotFound("a");
  Dialog().cmdReplaceAll().click();
  EXPECT_EQ(document.RichTextBox1().Text(), ".. x x");
}

// --- Replace All against the loop of steps that it stands for

class LoopTest : public FindTest {
 protected:
  struct Start {
    text::Content content;
    text::TextProperties properties;
    int64_t selStart, selLength;
  };

  template <typename T, size_t N>
  const T& Any(const T (&from)[N]) {
    return from[random() % N];
  }
  std::string RandomBytes(int parts);
  text::Content RandomContent(text::Document& document);
  void MakeStarts();
  void Reset();
  int64_t StepByStep(const QString& replacement);
  std::string Now(int64_t count);
  static std::string Dump(const text::Content& content);
  void Compare(unsigned seed);

  std::mt19937 random;
  std::vector<int> slots;
  std::map<int, Start> starts;
  FindEngine* engine = nullptr;
  int64_t lastFound = 0;
  bool newSearch = false;
  int activeSlot = 0;
};

std::string LoopTest::RandomBytes(int parts) {
  static const char* const kParts[] = {"a",    "a",  "a",  "b",        "A",    " ",    "_",
                                       "\r\n", "\n", "\r", "\xC3\xA9", "\xFF", "\x98", "\xF0\x9F\x98\x80"};
  std::string bytes;
  for (int i = 0; i < parts; ++i) bytes += Any(kParts);
  return bytes;
}

text::Content LoopTest::RandomContent(text::Document& document) {
  text::ContentBuilder builder(document.content().store());
  const bool anyProtected = random() % 3 == 0, anyTable = random() % 4 == 0;
  for (int i = static_cast<int>(random() % 6); i > 0; --i) {
    text::CharFormat chars;
    if (random() % 3 == 0) chars.flags |= text::kBold;
    if (random() % 6 == 0) chars.flags |= text::kHidden;
    if (anyProtected && random() % 3 == 0) chars.flags |= text::kProtected;
    text::ParaFormat paragraph;
    paragraph.leftIndent = static_cast<int>(random() % 2) * 100;
    if (anyTable && random() % 2) {
      paragraph.row = document.formats().Intern(text::TableRow{.left = 10, .cells = {{}, {}}, .words = {}});
      paragraph.rowMark = Any({text::RowMark::kNone, text::RowMark::kCellEnd, text::RowMark::kRowEnd});
    }
    builder.Append(RandomBytes(static_cast<int>(random() % 12)), document.formats().Intern(chars),
                   document.formats().Intern(paragraph));
  }
  return builder.Finish();
}

void LoopTest::MakeStarts() {
  starts.clear();
  for (const int slot : slots) {
    text::Document& document = Box(slot).document();
    Start start{RandomContent(document), {}, 0, 0};
    start.properties.lineEnd = Any({text::LineEnd::kCrLf, text::LineEnd::kLf, text::LineEnd::kCr});
    start.selStart = static_cast<int64_t>(random() % static_cast<uint64_t>(start.content.surfaceSize().value() + 1));
    if (random() % 3 == 0) start.selStart = 0;
    if (random() % 3 == 0) start.selLength = static_cast<int64_t>(random() % 4);
    starts.emplace(slot, start);
  }
}

void LoopTest::Reset() {
  for (auto& [slot, start] : starts) {
    Box(slot).document().Reset(start.content, start.properties);
    Box(slot).DocumentEdited();
    Box(slot).SetSelStart(start.selStart);
    Box(slot).SetSelLength(start.selLength);
  }
  table().Document(activeSlot)->Activate();
  engine->LastFoundPos = lastFound;
  engine->NewSearch = newSearch;
  engine->FindAllStartDoc = 5;
}

// Word for word.
int64_t LoopTest::StepByStep(const QString& replacement) {
  engine->FindAllStartDoc = 0;
  if (engine->SelectionIsSearchText()) Active().SetSelText(replacement);
  int64_t counted = 0;
  for (int64_t found = 0; found != FindEngine::kNoMore;) {
    found = engine->FindInDocument();
    if (found < 0) continue;
    // What the editor refuses is not counted.
    const text::Revision before = Active().document().revision();
    Active().SetSelText(replacement);
    counted += Active().document().revision() != before;
  }
  return counted;
}

std::string LoopTest::Dump(const text::Content& content) {
  std::string dump;
  content.ForEachPiece(content.all(), [&](const text::PieceView& piece) {
    for (const char byte : piece.bytes) {
      const bool isBreak = byte == '\r' || byte == '\n';
      dump += byte;
      dump += static_cast<char>('0' + static_cast<int>(piece.charFormat));
      if (isBreak) dump += static_cast<char>('0' + static_cast<int>(piece.paraFormat));
    }
    return true;
  });
  return dump;
}

// Texts, formats, selections and the engine's state.
std::string LoopTest::Now(int64_t count) {
  std::ostringstream now;
  now << count << " found last " << engine->LastFoundPos << " active " << program().ActiveSlot() << " from "
      << engine->FindAllStartDoc << "\n";
  for (const int slot : slots) {
    now << slot << ": " << Dump(Box(slot).document().content()) << " at " << Box(slot).SelStart() << "+"
        << Box(slot).SelLength() << "\n";
    EXPECT_NO_THROW(Box(slot).document().content().CheckInvariants());
  }
  return now.str();
}

void LoopTest::Compare(unsigned seed) {
  SCOPED_TRACE(::testing::Message() << "seed " << seed << ", documents " << slots.size());
  random.seed(seed);
  MakeStarts();
  const auto asText = [](const std::string& bytes) {
    return QString::fromStdU16String(text::Utf16OfBytes(bytes, text::BreakAs::kCrLf));
  };
  engine->SearchText = asText(RandomBytes(1 + static_cast<int>(random() % 3)));
  const QString replacement = random() % 3 ? asText(RandomBytes(static_cast<int>(random() % 3)))
                                           : engine->SearchText + asText(RandomBytes(static_cast<int>(random() % 2)));
  engine->MatchCase = random() % 2;
  engine->MatchWholeWord = random() % 4 == 0;
  engine->SearchAllDocuments = random() % 4 != 0;
  activeSlot = slots[random() % slots.size()];
  newSearch = random() % 2 == 0;
  lastFound = random() % 2 ? starts.at(activeSlot).selStart : 0;
  if (random() % 3 == 0 && starts.at(activeSlot).selLength > 0) {
    Reset();
    engine->SearchText = Active().SelText();
  }
  SCOPED_TRACE("\"" + engine->SearchText.toStdString() + "\" by \"" + replacement.toStdString() + "\"");
  QString shown = engine->SearchText;  // a stray byte shows as U+FFFD
  for (qsizetype i = 0; i < shown.size(); ++i)
    if (shown[i].isLowSurrogate() && (i == 0 || !shown[i - 1].isHighSurrogate())) shown[i] = QChar(0xFFFD);
  Reset();
  ExpectNotFound(shown);
  const std::string expected = Now(StepByStep(replacement));
  Reset();
  ExpectNotFound(shown);
  int64_t counted = 0;
  engine->ReplaceAll(replacement, [&](int64_t count) { counted = count; });
  ASSERT_EQ(Now(counted), expected);
  for (const int slot : slots) {
    if (Box(slot).CanUndo()) Box(slot).Undo();
    ASSERT_FALSE(Box(slot).CanUndo()) << "more than one step in " << slot;
    ASSERT_EQ(Dump(Box(slot).document().content()), Dump(starts.at(slot).content));
  }
}

TEST_F(LoopTest, ReplaceAllGivesWhatTheStepsGive) {
  engine = &Engine();
  unsigned seed = 1;
  const auto some = [&] {
    for (int i = 0; i < 60 && !HasFatalFailure(); ++i) Compare(seed++);
  };
  for (int slot = 1; slot <= 4; ++slot) {
    New();
    slots.push_back(slot);
    some();
  }
  table().Document(2)->Unload();
  slots = {1, 3, 4};
  some();
}

}  // namespace
