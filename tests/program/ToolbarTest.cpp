// Toolbar1 as the user finds it: what its buttons run, when they can be used, what they show of the selection.
#include "tests/program/ProgramTest.h"
#include "ui/frame/LeftPane.h"
#include "ui/frame/StatusBar.h"
#include "ui/frame/ToolBar.h"

#include <QCoreApplication>
#include <QEnterEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>

#include <iterator>
#include <map>

namespace {

using documents::frmText;
using ui::ButtonState;

constexpr const char* kNoDocument =
    "Error: No document has been selected.  Please select a document, and then try again.";

class ToolbarTest : public ProgramTest {
 protected:
  ui::ToolBar& Bar() { return program().frame().toolbar(); }
  size_t Row(const std::string& key) {
    const auto row = Bar().Find(key);
    EXPECT_TRUE(row) << key;
    return row.value_or(0);
  }
  ui::ToolButton& Button(const std::string& key) { return const_cast<ui::ToolButton&>(Bar().button(Row(key))); }
  // What a click reports, also of a button that is disabled.
  void Press(const std::string& key) { Q_EMIT Bar().Clicked(Row(key)); }
  void Choose(const std::string& key, const std::string& item) {
    Q_EMIT Bar().MenuClicked(Row(key), Bar().FindMenu(Row(key), item).value());
  }
  // The state of all buttons that have one: "B" pressed, "b" released, "?" mixed; then the pressed alignments.
  std::string States() {
    std::string states;
    for (const char* key : {"Bold", "Italics", "Underline", "Strikethru"}) {
      const ButtonState state = Bar().state(Row(key));
      states += state == ButtonState::kMixed ? '?' : state == ButtonState::kPressed ? *key : char(*key + 32);
    }
    for (const char* side : {"left", "center", "right"})
      if (Bar().state(Row(std::string("Align ") + side)) == ButtonState::kPressed) states += std::string(" ") + side;
    return states;
  }
  std::string Enabled() {
    std::string keys;
    for (size_t i = 0; i < Bar().count(); ++i)
      if (Bar().isEnabled(i)) keys += std::string(Bar().row(i).key) + ",";
    return keys;
  }
  std::string All() {
    std::string keys;
    for (size_t i = 0; i < Bar().count(); ++i) keys += std::string(Bar().row(i).key) + ",";
    return keys;
  }
  static void RightPress(QWidget& widget) {
    QMouseEvent press(QEvent::MouseButtonPress, {3, 3}, widget.mapToGlobal(QPointF(3, 3)), Qt::RightButton,
                      Qt::RightButton, {});
    QCoreApplication::sendEvent(&widget, &press);
  }
  bool Checked(const std::string& name) {
    ui::MenuBar& bar = program().menus().bar();
    program().menus().Fill();
    for (size_t i = 0; i < bar.rowCount(); ++i)
      if (name == bar.row(i).name) return bar.action(i)->isChecked();
    ADD_FAILURE() << name;
    return false;
  }
};

TEST_F(ToolbarTest, EveryButtonHasAPicture) {
  for (size_t i = 0; i < Bar().count(); ++i) {
    const ui::ToolBarRow& row = Bar().row(i);
    for (const int size : {16, 24, 48}) {
      const QImage picture = Bar().button(i).icon().pixmap(size).toImage();
      int inked = 0;
      for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) inked += picture.pixelColor(x, y).alpha() > 100;
      EXPECT_GT(inked, size * size / 20) << row.key << " " << size;
      EXPECT_LT(inked, size * size / 2) << row.key << " " << size;
    }
  }
}

TEST_F(ToolbarTest, WithoutADocumentTheCommandsOfDocumentsAreOff) {
  EXPECT_EQ(Enabled(), "New,Open,Save,Auto,Quotes,");
  EXPECT_FALSE(Bar().isMenuEnabled(Row("Save"), 1));
  EXPECT_EQ(States(), "bius left");
  frmText& document = New();
  EXPECT_EQ(Enabled(), All());
  EXPECT_TRUE(Bar().isMenuEnabled(Row("Save"), 1));
  frmText* other = Open(Put("a.txt", ""));
  other->Close();
  Settle();
  EXPECT_EQ(Enabled(), All()) << "there is another document";
  ExpectClosePrompt(document.caption(), ui::Answer::kNo);
  document.Close();
  Settle();
  EXPECT_EQ(Enabled(), "New,Open,Save,Auto,Quotes,");
  EXPECT_FALSE(Bar().isMenuEnabled(Row("Save"), 1));
}

TEST_F(ToolbarTest, TheFaceOfSaveDoesNothing) {
  Type(New(), "text");
  Button("Save").click();
  EXPECT_EQ(Bar().row(Row("Open")).face, ui::FaceClick::kNothing);
  EXPECT_EQ(Bar().row(Row("Strip")).face, ui::FaceClick::kOpensMenu);
}

TEST_F(ToolbarTest, FormatsAreTurnedOnAndOff) {
  frmText& document = New();
  Type(document, "text");
  document.RichTextBox1().SelectAll();
  const std::pair<const char*, const char*> flags[] = {
      {"Bold", "Bius left"}, {"Italics", "bIus left"}, {"Underline", "biUs left"}, {"Strikethru", "biuS left"}};
  for (const auto& [key, states] : flags) {
    Button(key).click();
    EXPECT_EQ(States(), states);
    Button(key).click();
    EXPECT_EQ(States(), "bius left");
  }
  const std::pair<const char*, const char*> sides[] = {{"Align right", "bius right"},
                                                       {"Align center", "bius center"},
                                                       {"Align center", "bius center"},
                                                       {"Align left", "bius left"}};
  for (const auto& [key, states] : sides) {
    Button(key).click();
    EXPECT_EQ(States(), states);
  }
}

TEST_F(ToolbarTest, FollowsTheSelection) {
  frmText* document = Open(Put("a.rtf", "{\\rtf1 plain {\\b bold }{\\i\\ul both}\\par\\qc centre\\par}"));
  ASSERT_TRUE(document);
  ui::RichTextBox& box = document->RichTextBox1();
  const struct {
    int start, length;
    const char* states;
  } kCases[] = {{6, 5, "Bius left"}, {8, 0, "Bius left"},  {0, 11, "?ius left"},
                {6, 9, "???s left"}, {11, 4, "bIUs left"}, {17, 0, "bius center"}};
  for (const auto& c : kCases) {
    box.SetSelStart(c.start);
    box.SetSelLength(c.length);
    EXPECT_EQ(States(), c.states) << c.start << " " << c.length;
  }
  box.SelectAll();
  EXPECT_EQ(States(), "???s center") << "a mixed alignment changes nothing";
  EXPECT_FALSE(document->checks().Italic) << "a mixed property leaves its check mark";
}

TEST_F(ToolbarTest, ShowsTheDocumentInFront) {
  frmText& bold = New();
  Button("Bold").click();
  EXPECT_EQ(States(), "Bius left");
  frmText& centred = New();
  EXPECT_EQ(States(), "bius left");
  Button("Align center").click();
  bold.Activate();
  EXPECT_EQ(States(), "Bius left");
  centred.Activate();
  EXPECT_EQ(States(), "bius center");
  bold.RichTextBox1().SetSelItalic(true);
  EXPECT_EQ(States(), "bius center") << "another document's selection";
  bold.Activate();
  EXPECT_EQ(States(), "BIus left");
  for (frmText* document : {&bold, &centred}) {
    ExpectClosePrompt(document->caption(), ui::Answer::kNo);
    document->Close();
    Settle();
  }
  EXPECT_EQ(States(), "bius left");
}

TEST_F(ToolbarTest, AnotherToggleInBetweenHasTheLastWord) {
  frmText& document = New();
  bool ran = false;
  QMetaObject::invokeMethod(
      &Bar(),
      [&] {
        ran = true;
        program().ToolbarToggle(true);
      },
      Qt::QueuedConnection);
  program().ToolbarToggle(false);
  EXPECT_TRUE(ran) << "events run between the buttons";
  EXPECT_EQ(Enabled(), All());
  EXPECT_EQ(table().Active(), &document);
}

TEST_F(ToolbarTest, StyleByMenuAndByTheRightButton) {
  ui::LeftPane& pane = program().frame().leftPane();
  const auto styles = [&] { return std::vector<int>{Bar().style(), pane.Toolbar2().style(), pane.Toolbar3().style()}; };
  program().commands().mnuToolbarButtonFlat_Click();
  EXPECT_EQ(styles(), (std::vector{1, 1, 1}));
  EXPECT_TRUE(Checked("mnuToolbarButtonFlat"));
  EXPECT_FALSE(Checked("mnuToolbarButtonRaised"));
  program().commands().mnuToolbarButtonRaised_Click();
  EXPECT_EQ(styles(), (std::vector{0, 1, 1})) << "the menu is about Toolbar1 only";
  EXPECT_FALSE(Checked("mnuToolbarButtonFlat"));
  EXPECT_TRUE(Checked("mnuToolbarButtonRaised"));
  RightPress(Bar());
  EXPECT_EQ(styles(), (std::vector{1, 1, 1}));
  New();
  RightPress(Button("Bold"));
  EXPECT_EQ(styles(), (std::vector{0, 0, 0}));
  EXPECT_EQ(program().commands().toolbarStyle(), 0);
  EXPECT_TRUE(Checked("mnuToolbarButtonRaised"));
  EXPECT_EQ(States(), "bius left") << "the right button presses nothing";
}

TEST_F(ToolbarTest, TheUserSaysWhereTheButtonsStand) {
  const std::string first = Bar().Layout(), start = "buttons,New,Open,Save,|,";
  ASSERT_TRUE(first.starts_with(start)) << first;
  struct Case {
    std::vector<const char*> acts;  // the number of a line, "check" for its check mark, or a button
    std::string expected;           // how the layout begins
    bool accepted = true;
  };
  // Each goes on from the one before.
  const Case cases[] = {
      {{"cmdDown", "cmdUp", "cmdUp", "cmdDown"}, "buttons,Open,New,Save,|,"},
      {{"check", "cmdAdd", "cmdUp", "cmdDown"}, "buttons,!Open,|,New,Save,|,"},
      {{"cmdReset"}, "buttons,!Open,|,New,Save,|,", false},
      {{"2", "cmdRemove", "cmdDown"}, "buttons,!Open,|,Save,New,|,"},
      {{"1", "cmdRemove", "0", "check"}, "buttons,Open,Save,New,|,"},
      {{"cmdReset", "cmdDown"}, "buttons,Open,New,Save,|,"},
      {{"cmdReset"}, start},
  };
  for (const Case& c : cases) {
    dialogs.Modal([&c](ui::ModalForm& form) {
      auto& list = *form.findChild<QListWidget*>("List1");
      for (const QString act : c.acts) {
        if (auto* button = form.findChild<QPushButton*>(act)) {
          button->click();
        } else if (act == "check") {
          QListWidgetItem& item = *list.currentItem();
          item.setCheckState(item.checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
        } else {
          list.setCurrentRow(act.toInt());
        }
      }
      form.done(c.accepted ? QDialog::Accepted : QDialog::Rejected);
    });
    program().commands().mnuToolBarCustomize_Click();
    EXPECT_TRUE(Bar().Layout().starts_with(c.expected)) << c.acts[0] << ": " << Bar().Layout();
  }
  EXPECT_EQ(Bar().Layout(), first);
}

TEST_F(ToolbarTest, TheListsToolbarAddsADocumentAndItsPictureChangesTheFont) {
  ui::LeftPane& pane = program().frame().leftPane();
  ExpectError(kNoDocument);
  Q_EMIT pane.Toolbar2().Clicked(*pane.Toolbar2().Find("listAdd"));
  EXPECT_EQ(dialogs.left(), 0u);
  pane.SetListFontSize(12);
  for (const double size : {13, 8, 9}) {
    Q_EMIT pane.Picture1().Pressed(true);
    EXPECT_EQ(pane.List1().fontSize(), size);
  }
  const auto picture = [&] {
    return pane.Toolbar2().button(*pane.Toolbar2().Find("listAdd")).icon().pixmap(24).toImage();
  };
  const QImage first = picture();
  Q_EMIT pane.Picture1().Pressed(false);
  EXPECT_NE(picture(), first);
  Q_EMIT pane.Picture1().Pressed(false);
  EXPECT_EQ(picture(), first);
}

TEST_F(ToolbarTest, TheStatusBarDescribesTheButtonUnderThePointer) {
  ui::StatusBar& status = program().frame().statusBar();
  status.ShowDate();
  const QString date = status.text(ui::Panel::stsDate);
  EXPECT_FALSE(date.isEmpty());
  QEnterEvent enter({3, 3}, {3, 3}, {3, 3});
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&Button("Align center"), &enter);
  EXPECT_EQ(status.text(ui::Panel::stsDate), "Center");
  status.Refresh();
  EXPECT_EQ(status.text(ui::Panel::stsDate), "Center") << "a new minute";
  QCoreApplication::sendEvent(&Button("Align center"), &leave);
  EXPECT_EQ(status.text(ui::Panel::stsDate), date);
}

}  // namespace
