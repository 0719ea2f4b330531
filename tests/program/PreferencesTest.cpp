// The Preferences dialog: what it shows, what OK changes and saves, and that Cancel does neither.
#include "shell/settings/frmOptions.h"
#include "tests/program/ProgramTest.h"
#include "ui/controls/DialogControls.h"

#include <QImage>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QTabWidget>

#include <functional>
#include <map>
#include <stdexcept>

namespace {

using shell::frmOptions;

class PreferencesTest : public ProgramTest {
 protected:
  template <class T>
  static T& Find(ui::ModalForm& form, const char* name) {
    T* found = form.findChild<T*>(QLatin1String(name));
    if (!found) throw std::runtime_error(name);
    return *found;
  }
  static QString Text(ui::ModalForm& form, const char* name) { return Find<ui::TextBox>(form, name).Text(); }
  static void SetText(ui::ModalForm& form, const char* name, const char* text) {
    Find<ui::TextBox>(form, name).SetText(text);
  }
  static void Press(ui::ModalForm& form, const char* name) { Find<ui::Button>(form, name).click(); }
  static void Click(ui::ModalForm& form, const char* name) { Find<QAbstractButton>(form, name).click(); }
  void Open(const std::function<void(ui::ModalForm&)>& act) {
    dialogs.Modal([&act](ui::ModalForm& form) {
      form.show();
      act(form);
      form.hide();
    });
    program().mnuPrefItem_Click();
  }
  std::string Stored(const char* key) {
    return program().settingsStore().GetSetting("Quillmark", "General", key, "(missing)");
  }
  static QColor Background(documents::frmText& document) {
    const QImage image = document.RichTextBox1().viewport()->grab().toImage();
    return image.pixelColor(image.rect().bottomRight() - QPoint(2, 2));
  }
  // Something else in every field.
  void EditEverything(ui::ModalForm& form) {
    for (const char* box : {"Check1", "Check2", "Check3", "Check4", "Check5", "optDelete(1)"}) Click(form, box);
    for (const char* box :
         {"Text1", "Text2", "Text3", "Text4", "Text5", "Text6", "Text7(0)", "Text7(1)", "Text7(2)", "Text7(3)"})
      SetText(form, box, box == std::string("Text3") ? " 300, 600 " : " /a b ");
    dialogs.Font([](const ui::FontChoice&) { return ui::FontChoice{.family = "Serif", .points = 12.5}; });
    Press(form, "Command1(2)");
    dialogs.Color(0x102030);
    Press(form, "Command1(4)");
  }
};

struct Row {
  const char* key;
  const char* after;
};
constexpr Row kRows[] = {
    {"Extensions", "/a b"},      {"Font", "Serif,12.5"},
    {"Tabs", "300, 600"},        {"rtbBackColor", "1056816"},
    {"AutoCopy", "True"},        {"SaveWindowState", "True"},
    {"TreeDelMethod", "True"},   {"TreeSync", "True"},
    {"AutoLoadProject", "True"}, {"AutoCompleteAtStartup", "True"},
    {"QuoteFile", " /a b "},     {"NotesFile", " /a b "},
    {"TextBlocks", " /a b "},    {"AutoTagFile", " /a b "},
    {"EmailApp", "/a b"},        {"NewsApp", "/a b"},
    {"SNewsApp", "/a b"},        {"FTPApp", "/a b"},
};

TEST_F(PreferencesTest, CancelChangesNothingAndOkSavesEverything) {
  std::map<std::string, std::string> before;
  for (const Row& row : kRows) before[row.key] = Stored(row.key);
  const auto values = [this] {
    std::vector<std::string> texts;
    for (const services::SettingRow& row : services::SettingTable())
      texts.push_back(services::ToText(row, program().settings()));
    return texts;
  };
  const std::vector<std::string> running = values();
  for (const char* leave : {"Command1(1)", "close"}) {
    Open([&](ui::ModalForm& form) {
      EditEverything(form);
      leave == std::string("close") ? void(form.close()) : Press(form, leave);
    });
    for (const Row& row : kRows) EXPECT_EQ(Stored(row.key), before[row.key]) << row.key << " after " << leave;
    EXPECT_EQ(values(), running) << "after " << leave;
  }
  Open([&](ui::ModalForm& form) {
    EXPECT_EQ(Text(form, "Text3"), "") << "edits of before are forgotten";
    EditEverything(form);
    Press(form, "Command1(0)");
  });
  for (const Row& row : kRows) EXPECT_EQ(Stored(row.key), row.after) << row.key;
  EXPECT_EQ(program().defaultFont(), (services::DefaultFont{"Serif", 12.5}));
  Restart();
  EXPECT_EQ(program().settings().DocBackColor, 0x102030);
}

TEST_F(PreferencesTest, OpenDocumentsTakeWhatWasChosenAtOnce) {
  documents::frmText& document = New();
  const QColor before = Background(document);
  Open([&](ui::ModalForm& form) {
    dialogs.Color(0x0000FF, [&](int64_t initial, ui::CustomColors&) {
      EXPECT_EQ(initial, before.red() | before.green() << 8 | before.blue() << 16);
    });
    Press(form, "Command1(4)");
    SetText(form, "Text1", ".one,.two");
    Press(form, "Command1(0)");
  });
  EXPECT_EQ(Background(document), QColor(255, 0, 0));
  EXPECT_EQ(program().documentFilter(), ".one|*.one|.two|*.two|All Files|*.*");
  Open([&](ui::ModalForm& form) {
    Press(form, "Automatic");
    SetText(form, "Text1", "");
    SetText(form, "Text7(0)", "  ");
    Press(form, "Command1(0)");
  });
  EXPECT_EQ(Background(document), before);
  EXPECT_EQ(Stored("rtbBackColor"), "-2147483643");
  EXPECT_EQ(Stored("Extensions"), ".txt,.htm*,.js,.css,.xml,.rtf");
  EXPECT_EQ(Stored("EmailApp"), "mailto:");
}

TEST_F(PreferencesTest, TabStopsTakeDigitsBlanksAndCommas) {
  Open([&](ui::ModalForm& form) {
    auto& box = Find<ui::TextBox>(form, "Text3");
    const auto press = [&box](int key, const char* text, Qt::KeyboardModifiers modifiers = {}) {
      QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
      QCoreApplication::sendEvent(&box, &event);
    };
    for (const char c : std::string("1a2,-x 3.;")) press(c, std::string(1, c).c_str());
    press(Qt::Key_V, "\x16", Qt::ControlModifier);
    press(Qt::Key_K, "k", Qt::AltModifier);
    EXPECT_EQ(box.Text(), "12, 3");
    QInputMethodEvent letter, digit;
    letter.setCommitString("ä");
    digit.setCommitString("7");
    QCoreApplication::sendEvent(&box, &letter);
    QCoreApplication::sendEvent(&box, &digit);
    press(Qt::Key_Backspace, "\b");
    press(Qt::Key_Home, "");
    press(Qt::Key_Delete, "\x7f");
    EXPECT_EQ(box.Text(), "2, 3");
    Press(form, "Command1(1)");
  });
}

TEST_F(PreferencesTest, BrowsingBeginsAtTheFieldElseAtThePanesFile) {
  program().panes().quotes().LoadQuotesFile(Put("q.txt", "quote"));
  program().panes().notes().MyShow(Put("n.txt", ""));
  program().panes().textBlocks().MyShow(Put("t.txt", ""));
  const struct {
    const char *button, *field, *title, *fileOfPane;
  } kBrowse[] = {
      {"Command1(3)", "Text2", "Select a quotes or tagline file", "q.txt"},
      {"Command1(6)", "Text4", "Select a personal notes file", "n.txt"},
      {"Command1(7)", "Text5", "Select a text blocks file", "t.txt"},
      {"Command1(8)", "Text6", "Select an Auto-Complete file", ""},
      {"Command1(9)", "Text7(0)", "Select a URL protocol application", ""},
      {"Command1(12)", "Text7(3)", "Select a URL protocol application", ""},
  };
  Open([&](ui::ModalForm& form) {
    for (const auto& row : kBrowse) {
      for (const bool empty : {true, false}) {
        SetText(form, row.field, empty ? "" : At("typed.txt").c_str());
        dialogs.File({}, [&](const ui::FileRequest& request) {
          EXPECT_EQ(request.title, row.title);
          EXPECT_EQ(request.name, empty ? row.fileOfPane : "typed.txt") << row.button;
        });
        Press(form, row.button);
      }
    }
    Press(form, "Command1(0)");
  });
  EXPECT_EQ(program().panes().quotes().pane()->caption(), At("q.txt").native()) << "the next start loads another";
}

TEST_F(PreferencesTest, BrowsingKeepsBytes) {
  const files::Path chosen = Put("q\xFFuotes.txt", "");
  Open([&](ui::ModalForm& form) {
    dialogs.File(chosen);
    Press(form, "Command1(3)");
    dialogs.File({});
    Press(form, "Command1(12)");
    EXPECT_EQ(Text(form, "Text7(3)"), "FTP://") << "cancelled";
    Press(form, "Command1(0)");
  });
  EXPECT_EQ(program().settings().QuoteFile, chosen.native());
}

TEST_F(PreferencesTest, EditingAPathKeepsTheBytesBesideTheEdit) {
  const std::string folder = "/home/me/caf\xE9/";
  program().settings().QuoteFile = folder + "quotes.txt";
  Open([&](ui::ModalForm& form) {
    auto& box = Find<ui::TextBox>(form, "Text2");
    box.SetText(box.Text().replace("quotes", "more"));
    Press(form, "Command1(0)");
  });
  EXPECT_EQ(program().settings().QuoteFile, folder + "more.txt");
}

TEST_F(PreferencesTest, TheTabSeenLastStaysInFront) {
  Open([&](ui::ModalForm& form) {
    EXPECT_EQ(Find<QTabWidget>(form, "TabStrip1").currentIndex(), 0);
    Find<QTabWidget>(form, "TabStrip1").setCurrentIndex(6);
    Press(form, "Command1(1)");
  });
  Open([&](ui::ModalForm& form) {
    EXPECT_EQ(Find<QTabWidget>(form, "TabStrip1").currentIndex(), 6);
    Press(form, "Command1(1)");
  });
}

}  // namespace
