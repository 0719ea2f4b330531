// Auto-complete: the word file, the switch, and the list at the caret driven by the keyboard alone.
#include "autocomplete/WordFile.h"
#include "tests/program/ProgramTest.h"
#include "ui/controls/completion/CompletionBox.h"
#include "ui/frame/ToolBar.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <functional>
#include <map>
#include <tuple>

namespace {

using documents::frmText;
using ui::CompletionBox;

constexpr const char* kWords = "# tags\r\n<a>\r\n\r\n<b>\n<br>\r<table>\n<TD>\nhello world\nworld\n\xD7\xA9\xD7\x9C";
constexpr const char* kAll = "<a>,<b>,<br>,<table>,<TD>,hello world,world,\xD7\xA9\xD7\x9C";
constexpr const char* kTags = "<a>,<b>,<br>,<table>,<TD>";

class AutoCompleteTest : public ProgramTest {
 protected:
  void Start(const std::string& words) { StartWith(Put("words.txt", words)); }
  void Toggle() { program().commands().mnuAutoCompleteToggle_Click(); }
  void StartWith(const files::Path& file) {
    shell::SettingsFile(place.application.settings, place.recovery)
        .SaveSettings(services::kApplicationName, services::kGeneral,
                      {{"AutoTagFile", file.native()}, {"AutoCompleteAtStartup", "True"}});
    Restart();
  }
  std::vector<std::string> Words() {
    std::vector<std::string> words;
    for (const QString& word : program().autoComplete().AutoCompleteWords()->entries())
      words.push_back(word.toStdString());
    return words;
  }

  // A document whose text shows where the selection is: "|" is the caret, "[" the anchor when it is elsewhere.
  frmText& NewWith(const QString& marked) {
    frmText& document = New();
    ui::RichTextBox& editor = document.RichTextBox1();
    QString text = marked;
    const auto anchor = text.indexOf('[');
    const auto caret = text.remove('[').indexOf('|');
    editor.SetSelText(text.remove('|'));
    editor.SetSelStart(anchor < 0 ? caret : anchor);
    if (anchor >= 0) editor.SetSelLength(caret - anchor);
    return document;
  }
  static QString Marked(frmText& document) {
    const ui::RichTextBox& editor = document.RichTextBox1();
    QString text = editor.Text();
    text.insert(static_cast<qsizetype>(editor.SelStart() + editor.SelLength()), '|');
    if (editor.SelLength() > 0) text.insert(static_cast<qsizetype>(editor.SelStart()), '[');
    return text;
  }
  static CompletionBox& Combo1(frmText& document) {
    return *document.RichTextBox1().findChild<CompletionBox*>("Combo1");
  }
  static std::string Rows(const CompletionBox& box) {
    QStringList rows;
    for (int i = 0; i < box.list().count(); ++i)
      rows += (i == box.list().Chosen() ? "*" : "") + box.list().model()->index(i, 0).data().toString();
    return rows.join(',').toStdString();
  }
  // The text and, when the list is open, what stands in it and what it offers.
  static std::string State(frmText& document) {
    const std::string text = Marked(document).toStdString();
    const CompletionBox& box = Combo1(document);
    EXPECT_EQ(box.isVisible(), box.isOpen());
    EXPECT_EQ(box.isOpen(), !document.RichTextBox1().hasFocus());
    if (!box.isOpen()) return text;
    EXPECT_EQ(box.list().isVisible(), box.list().count() > 0);
    return text + " {" + box.Text().toStdString() + ": " + Rows(box) + "}";
  }

  static void Key(int key, const QString& text = {}, Qt::KeyboardModifiers modifiers = {}) {
    QWidget* focus = QApplication::focusWidget();
    ASSERT_TRUE(focus);
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(focus, &press);
    // It goes where the focus is by then.
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    if (QWidget* now = QApplication::focusWidget()) QApplication::sendEvent(now, &release);
  }
  // Names with blanks between them; what is no name is typed.
  static void Press(frmText& document, const QString& keys) {
    static const std::map<QString, int> kNames = {
        {"Enter", Qt::Key_Return},        {"Space", Qt::Key_Space}, {"Escape", Qt::Key_Escape},
        {"Down", Qt::Key_Down},           {"Up", Qt::Key_Up},       {"PgDown", Qt::Key_PageDown},
        {"Backspace", Qt::Key_Backspace}, {"Tab", Qt::Key_Tab},     {"PgUp", Qt::Key_PageUp},
        {"Insert", Qt::Key_Insert}};
    for (const QString& key : keys.split(' ', Qt::SkipEmptyParts)) {
      const auto name = kNames.find(key);
      if (key == "F4") {
        document.mnuAutoComplete_Click();
      } else if (key == "Undo") {
        document.mnuUndoItem_Click();
      } else if (name != kNames.end()) {
        Key(name->second, key == "Enter" ? "\r" : key == "Space" ? " " : "");
      } else {
        for (const QChar c : key) Key(0, c);
      }
    }
    Settle();
  }
};

// --- The list

TEST_F(AutoCompleteTest, TheListFromTheKeyboard) {
  Start(kWords);
  const std::string all = std::string(kAll) + "}", tags = std::string(kTags) + "}";
  const struct {
    const char *before, *keys;
    std::string after;
  } kCases[] = {
      // What is completed
      {"|", "<", "[<| {<: " + tags},
      {"a [b| c", "<", "a [<| c {<: " + tags},
      {"|abc", "Insert <", "[<|abc {<: " + tags},  // not over what stands there
      {"hello wor|", "F4", "hello [wor| {wor: world}"},
      {"x |", "F4", "x | {: " + all},
      {"x\r\n|", "F4", "x\r\n| {: " + all},
      {"a<<|", "F4", "a[<<| {<<: " + all},
      {"<p><t|", "F4", "[<p><t| {<p><t: " + all},
      {"[two words| more", "F4", "[two words| more {two words: " + all},
      {"[a\r\nb|", "F4", "[a\r\nb| {: " + all},
      {"wor \xD7\xA9|", "F4", "wor [\xD7\xA9| {\xD7\xA9: \xD7\xA9\xD7\x9C}"},
      // What is offered
      {"|", "< t", "[<| {<t: <table>,<TD>}"},
      {"|", "< t x", "[<| {<tx: }"},
      {"|", "< t x Backspace", "[<| {<t: <table>,<TD>}"},
      {"|", "< Backspace", "[<| {: " + all},
      {"|", "< t Down Down Down", "[<| {<TD>: <table>,*<TD>}"},
      {"|", "< t Down Down Up Up", "[<| {<t: <table>,<TD>}"},
      {"|", "< t PgDown", "[<| {<TD>: <table>,*<TD>}"},
      {"|", "< t Tab", "[<| {<t: <table>,<TD>}"},
      // Taken
      {"a|b", "< Enter", "a<|b"},
      {"|", "< t Enter", "<t|"},
      {"|", "< b Down Down >", "<br>|"},
      {"|", "< t Down Space", "<table>|"},
      {"hello wor|", "F4 l d Enter", "hello world|"},
      {"x |", "F4 Down Enter", "x <a>|"},
      {"wor|", "F4 Backspace Backspace Backspace Enter", "|"},
      {"[a\r\nb|", "F4 Down Enter", "<a>|"},
      {"x|", "< t Down Enter Undo Undo", "x|"},
      // Given up
      {"|", "< t Escape", "<|"},
      {"a [b| c", "F4 Escape", "a b| c"},
  };
  for (const auto& row : kCases) {
    SCOPED_TRACE(std::string(row.before) + " " + row.keys);
    frmText& document = NewWith(row.before);
    Press(document, row.keys);
    EXPECT_EQ(State(document), row.after);
    document.RichTextBox1().SetOvertype(false);
    document.RichTextBox1().document().SetSaved();
    table().DocInfo(document.slot()).Changed = false;
    document.Close();
    Settle();
  }
}

TEST_F(AutoCompleteTest, WhatElseHappensMeanwhileGivesItUp) {
  Start(kWords);
  const struct {
    const char* what;
    std::function<void(frmText&)> act;
    const char* after;
  } kCases[] = {
      {"a click",
       [](frmText& d) {
         QMouseEvent press(QEvent::MouseButtonPress, {3, 6}, d.RichTextBox1().viewport()->mapToGlobal(QPointF(3, 6)),
                           Qt::LeftButton, Qt::LeftButton, {});
         QApplication::sendEvent(d.RichTextBox1().viewport(), &press);
       },
       "|hello wor"},
      {"the caret", [](frmText& d) { d.RichTextBox1().SetSelStart(2); }, "he|llo wor"},
      {"a replacement", [](frmText& d) { d.RichTextBox1().SetSelText("x"); }, "hello x|"},
      {"undo", [](frmText& d) { d.mnuUndoItem_Click(); }, "|"},
      {"the toggle",
       [this](frmText&) {
         Toggle();
         Toggle();
       },
       "hello [wor|"},
  };
  for (const auto& row : kCases) {
    SCOPED_TRACE(row.what);
    frmText& document = NewWith("hello wor|");
    Press(document, "F4");
    ASSERT_TRUE(Combo1(document).isOpen());
    row.act(document);
    Settle();
    EXPECT_EQ(State(document), row.after);
  }
}

TEST_F(AutoCompleteTest, ItWaitsForItsWindowToComeBack) {
  Start(kWords);
  frmText& document = NewWith("wor|");
  Press(document, "F4 l");
  frmText& other = NewWith("other|");
  EXPECT_TRUE(Combo1(document).isOpen());
  EXPECT_FALSE(Combo1(document).list().isVisible());
  document.Activate();
  Press(document, "d Enter");
  EXPECT_EQ(State(document), "world|");
  other.Activate();
  document.Activate();
  EXPECT_TRUE(document.RichTextBox1().hasFocus());
}

TEST_F(AutoCompleteTest, AWindowThatClosesTakesItAlong) {
  Start(kWords);
  frmText& document = NewWith("wor|");
  Press(document, "F4");
  const QPointer<const ui::CompletionList> list = &Combo1(document).list();
  ExpectClosePrompt(document.caption(), ui::Answer::kNo);
  EXPECT_TRUE(document.Close());
  EXPECT_TRUE(!list || !list->isVisible());
  Settle();
  EXPECT_FALSE(table().AnyDocumentOpen());
}

TEST_F(AutoCompleteTest, ProtectedTextOpensNone) {
  Start(kWords);
  frmText* document = Open(Put("a.rtf", "{\\rtf1 free {\\protect word and} free}"));
  ASSERT_TRUE(document);
  const QString text = document->RichTextBox1().Text();
  for (const auto& [caret, key] : {std::pair{7, "F4"}, {7, "<"}, {13, "F4"}}) {
    document->RichTextBox1().SetSelStart(caret);
    Press(*document, key);
    EXPECT_FALSE(Combo1(*document).isOpen()) << caret << key;
    EXPECT_EQ(document->RichTextBox1().Text(), text);
  }
}

TEST_F(AutoCompleteTest, AFragmentThatIsTooLongIsNone) {
  Start(kWords);
  for (const auto& [units, selected] : {std::pair{1000, 1000}, {1001, 0}, {5000, 0}}) {
    frmText& document = NewWith("x " + QString(units, 'y') + "|");
    Press(document, "F4");
    EXPECT_EQ(document.RichTextBox1().SelLength(), selected);
    EXPECT_EQ(Combo1(document).Text().size(), selected);
    Press(document, "Escape");
  }
}

TEST_F(AutoCompleteTest, TypedByAnInputMethod) {
  Start(kWords);
  frmText& document = NewWith("|");
  for (const char* text : {"<", "b"}) {
    QInputMethodEvent event;
    event.setCommitString(text);
    QApplication::sendEvent(QApplication::focusWidget(), &event);
  }
  EXPECT_EQ(State(document), "[<| {<b: <b>,<br>}");
}

// --- Its place

TEST_F(AutoCompleteTest, StandsAtTheCaretAndInsideTheEditor) {
  Start(kWords);
  const QString line = "word ";
  for (const auto& [text, atTheEdge, above] : {std::tuple{QString("\r\n\r\n"), false, false},
                                               {line.repeated(9), true, false},
                                               {QString("x\r\n").repeated(200), false, true},
                                               {QString(QChar(0x5D0)) + " ", true, false}}) {
    SCOPED_TRACE(text.left(20).toStdString());
    frmText& document = NewWith(text + "|");
    document.SetWindowState(ui::WindowState::kMaximized);
    document.RichTextBox1().parentWidget()->setFixedWidth(520);
    Settle();
    Press(document, "F4");
    const QRect box = Combo1(document).geometry(), caret = document.RichTextBox1().CaretRect();
    const int width = document.RichTextBox1().width();
    EXPECT_EQ(box.top(), caret.top());
    EXPECT_EQ(box.left(), atTheEdge ? width - box.width() : caret.left());
    EXPECT_TRUE(!atTheEdge || caret.left() + box.width() > width);
    const auto& list = Combo1(document).list();
    const int top = Combo1(document).mapTo(list.parentWidget(), QPoint()).y();
    EXPECT_EQ(above ? list.geometry().bottom() + 1 : list.y(), above ? top : top + box.height());
    EXPECT_TRUE(list.parentWidget()->rect().contains(list.geometry()));
    document.RichTextBox1().parentWidget()->resize(700, 400);
    Settle();
    EXPECT_EQ(Combo1(document).y(), document.RichTextBox1().CaretRect().top()) << "it follows the text";
    Press(document, "Escape");
  }
}

// --- The word file

TEST(WordFileTest, Entries) {
  const struct {
    std::string bytes;
    std::vector<const char16_t*> entries;
  } kCases[] = {
      {"", {}},
      {"# only\r\n\r\n#comments", {}},
      {"<a>\r\n<b>\r\n", {u"<a>", u"<b>"}},
      {"a\nb\rc\r\n\n\r\nd", {u"a", u"b", u"c", u"d"}},
      {" a \t\n #b\n", {u" a \t", u" #b"}},
      {"\xEF\xBB\xBF#x\n\xC3\xA9\n", {u"\u00E9"}},
      {"<\xE9>\n<\xE8>", {u"<\u00E9>", u"<\u00E8>"}},                   // Windows-1252
      {std::string("\xFF\xFE#\0x\0\n\0a\0", 10), {u"a"}},               // UTF-16
      {"\xC3\xA9\xC3\xA9\xC3\xA9\xFF", {u"\u00E9\u00E9\u00E9\xDCFF"}},  // a stray byte
  };
  for (const auto& row : kCases) {
    std::vector<QString> expected;
    for (const char16_t* entry : row.entries) expected.push_back(QString::fromUtf16(entry));
    EXPECT_EQ(autocomplete::ParseWordFile(row.bytes), expected) << row.bytes;
  }
}

TEST_F(AutoCompleteTest, AFileThatCannotBeOpenedIsAnEntry) {
  const std::string text = "Error: " + At("no/words.txt").native() + " : No such file or directory";
  StartWith(At("no/words.txt"));
  EXPECT_EQ(Words(), std::vector{text});
  frmText& document = NewWith("|");
  Press(document, "<");
  EXPECT_EQ(State(document), "[<| {<: " + text + "}") << "shown whatever is typed";
}

TEST_F(AutoCompleteTest, AFileWithoutEntriesOffersEmptyLines) {
  Start("# nothing\n\n");
  EXPECT_EQ(Words(), std::vector<std::string>(999));
  frmText& document = NewWith("|");
  Press(document, "<");
  EXPECT_EQ(Combo1(document).list().count(), 999);
  EXPECT_GT(Combo1(document).list().height(), 5 * Combo1(document).fontMetrics().height());
  Press(document, "Down Enter");
  EXPECT_EQ(State(document), "|");
}

// --- The switch

TEST_F(AutoCompleteTest, AtTheStart) {
  const struct {
    const char *file, *atStartup;
    bool on, told;
  } kCases[] = {{"words.txt", "True", true, false},
                {"words.txt", "False", false, false},
                {"", "True", false, true},
                {"", "False", false, false}};
  Put("words.txt", kWords);
  for (const auto& row : kCases) {
    shell::SettingsFile(place.application.settings, place.recovery)
        .SaveSettings(services::kApplicationName, services::kGeneral,
                      {{"AutoTagFile", row.file}, {"AutoCompleteAtStartup", row.atStartup}});
    if (row.told) ExpectError("No Auto-Complete file has been loaded.  Please click 'Help' for more information");
    Restart();
    EXPECT_EQ(program().AutoCompleteOn(), row.on) << row.file << row.atStartup;
    EXPECT_EQ(dialogs.left(), 0u);
  }
}

TEST_F(AutoCompleteTest, TheToggleShowsEverywhere) {
  Start(kWords);
  ui::ToolBar& bar = program().frame().toolbar();
  const size_t button = bar.Find("Auto").value();
  const auto action = [&](const char* name) {
    program().menus().Fill();
    return program().frame().menuBar().findChild<QAction*>(name);
  };
  frmText& document = NewWith("|");
  for (const bool on : {true, false, true}) {
    SCOPED_TRACE(on);
    EXPECT_EQ(program().AutoCompleteOn(), on);
    EXPECT_EQ(bar.state(button), on ? ui::ButtonState::kPressed : ui::ButtonState::kReleased);
    EXPECT_EQ(action("mnuAutoCompleteToggle")->isChecked(), on);
    EXPECT_EQ(action("mnuAutoComplete")->isEnabled(), on);
    Press(document, "<");
    EXPECT_EQ(Combo1(document).isOpen(), on);
    if (on) Press(document, "Escape");
    Q_EMIT bar.Clicked(button);
  }
  EXPECT_EQ(document.RichTextBox1().Text(), "<<<");
}

TEST_F(AutoCompleteTest, AnotherFileReachesTheOpenDocuments) {
  Start(kWords);
  frmText& first = NewWith("x |");
  frmText& second = NewWith("x |");
  Put("other.txt", "one\ntwo\n");
  dialogs.File(At("other.txt"), [this](const ui::FileRequest& request) {
    EXPECT_EQ(request.title, "Select an Auto-Complete file");
    EXPECT_EQ(request.folder / request.name, At("words.txt"));
    ASSERT_EQ(request.filters.size(), 2u);
    EXPECT_EQ(request.filters[0].pattern, "*.TXT");
  });
  program().commands().mnuOpenAutoComplete_Click();
  for (frmText* document : {&first, &second}) {
    document->Activate();
    Press(*document, "F4");
    EXPECT_EQ(State(*document), "x | {: one,two}");
    Press(*document, "Escape");
  }
  EXPECT_EQ(program().autoComplete().AutoCompleteFile(), At("words.txt").native());
  dialogs.File(std::nullopt);
  program().commands().mnuOpenAutoComplete_Click();
  EXPECT_EQ(Words(), (std::vector<std::string>{"one", "two"}));
}

}  // namespace
