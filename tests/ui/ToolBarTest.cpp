// A toolbar from a table: what it shows, what it reports, its layout as a text.
#include "ui/frame/ToolBar.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QEnterEvent>
#include <QMenu>
#include <QMouseEvent>
#include <gtest/gtest.h>

namespace {

using ui::ButtonState;
using ui::FaceClick;
using ui::ToolBar;

constexpr ui::ToolBarMenuRow kMenu[] = {{"&First", "First"}, {"&Second", "Second"}};
constexpr ui::ToolBarRow kRows[] = {
    {.key = "A", .longText = "Do A...", .shortText = "Letter A", .icon = "new"},
    {.key = "B", .longText = "Do B", .shortText = "Letter B", .icon = "bold", .toggles = true, .newGroup = true},
    {.key = "C c", .shortText = "Letter C", .icon = "save", .face = FaceClick::kNothing, .menu = kMenu},
    {.key = "D", .shortText = "Letter D", .icon = "cut", .newGroup = true},
};

class ToolBarTest : public ::testing::Test {
 protected:
  ToolBarTest() {
    bar.SetButtons(kRows);
    QObject::connect(&bar, &ToolBar::Clicked, [this](size_t row) { clicked.push_back(row); });
    QObject::connect(&bar, &ToolBar::MenuClicked, [this](size_t row, size_t item) { chosen.push_back({row, item}); });
    QObject::connect(&bar, &ToolBar::Hovered, [this](const QString& description) { hovered.push_back(description); });
    QObject::connect(&bar, &ToolBar::RightPressed, [this] { ++right; });
    QObject::connect(&bar, &ToolBar::LayoutChanged, [this] { ++changed; });
    bar.resize(400, 40);
    bar.show();
    QCoreApplication::processEvents();
  }
  static ui::ToolButton& Button(const ToolBar& bar, size_t row) { return const_cast<ui::ToolButton&>(bar.button(row)); }
  // What shows, from left to right: letters and "|".
  std::string Shown() const {
    std::string shown;
    for (QAction* action : bar.actions()) {
      if (!action->isVisible()) continue;
      shown += action->isSeparator() ? '|' : bar.widgetForAction(action)->objectName().at(0).toLatin1();
    }
    return shown;
  }
  QImage Picture(size_t row) const { return Button(bar, row).grab().toImage(); }

  static void Click(QWidget& widget, Qt::MouseButton button, QPoint at = {3, 3}) {
    const QPointF global = widget.mapToGlobal(at);
    QMouseEvent press(QEvent::MouseButtonPress, at, global, button, button, {});
    QMouseEvent release(QEvent::MouseButtonRelease, at, global, button, {}, {});
    QCoreApplication::sendEvent(&widget, &press);
    QCoreApplication::sendEvent(&widget, &release);
  }

  ToolBar bar;
  // What was reported.
  std::vector<size_t> clicked;
  std::vector<std::pair<size_t, size_t>> chosen;
  std::vector<QString> hovered;
  int right = 0, changed = 0;
};

TEST_F(ToolBarTest, KeysAreFoundWithoutRegardToCase) {
  EXPECT_EQ(bar.Find("c C"), 2u);
  EXPECT_EQ(bar.Find("a"), 0u);
  EXPECT_EQ(bar.Find("cc"), std::nullopt);
  EXPECT_EQ(bar.Find(""), std::nullopt);
  EXPECT_EQ(bar.FindMenu(2, "SECOND"), 1u);
  EXPECT_EQ(bar.FindMenu(2, "third"), std::nullopt);
  EXPECT_EQ(bar.FindMenu(0, "first"), std::nullopt);
}

TEST_F(ToolBarTest, AClickIsReportedAndChangesNothing) {
  Button(bar, 1).click();
  EXPECT_EQ(clicked, std::vector<size_t>{1});
  EXPECT_EQ(bar.state(1), ButtonState::kReleased);
  Button(bar, 2).click();
  EXPECT_EQ(clicked.size(), 1u) << "the face of a button that only has a menu";
  Button(bar, 2).menu()->actions().at(1)->trigger();
  EXPECT_EQ(chosen, (std::vector<std::pair<size_t, size_t>>{{2, 1}}));
}

TEST_F(ToolBarTest, EntriesOfAMenuAreEnabledOneByOne) {
  bar.SetMenuEnabled(2, 1, false);
  EXPECT_TRUE(bar.isEnabled(2));
  EXPECT_TRUE(bar.isMenuEnabled(2, 0));
  EXPECT_FALSE(bar.isMenuEnabled(2, 1));
  Button(bar, 2).menu()->actions().at(1)->trigger();
  EXPECT_TRUE(chosen.empty());
}

TEST_F(ToolBarTest, EveryStateHasALookOfItsOwn) {
  for (const int style : {0, 1}) {
    bar.SetStyle(style);
    for (const bool dark : {false, true}) {
      QPalette palette;
      if (dark) {
        palette = QPalette(QColor(45, 45, 45), QColor(40, 40, 40));
        palette.setColor(QPalette::Highlight, QColor(60, 130, 200));
      }
      bar.setPalette(palette);
      std::vector<QImage> looks;
      for (const bool enabled : {true, false}) {
        for (const ButtonState state : {ButtonState::kReleased, ButtonState::kPressed, ButtonState::kMixed}) {
          bar.SetEnabled(1, enabled);
          bar.SetState(1, state);
          for (const QImage& look : looks) EXPECT_NE(look, Picture(1)) << style << dark << looks.size();
          looks.push_back(Picture(1));
        }
      }
    }
  }
}

TEST_F(ToolBarTest, AScreenReaderHearsNameTextAndState) {
  QAccessibleInterface* b = QAccessible::queryAccessibleInterface(&Button(bar, 1));
  ASSERT_TRUE(b);
  EXPECT_EQ(b->text(QAccessible::Name), "Letter B");
  EXPECT_EQ(b->text(QAccessible::Description), "Do B");
  EXPECT_EQ(b->role(), QAccessible::Button);
  EXPECT_TRUE(b->state().checkable);
  bar.SetState(1, ButtonState::kMixed);
  EXPECT_TRUE(b->state().checkStateMixed);
  EXPECT_FALSE(b->state().checked);
  bar.SetState(1, ButtonState::kPressed);
  EXPECT_TRUE(b->state().checked);
  EXPECT_FALSE(b->state().checkStateMixed);
  b->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(clicked.size(), 1u);
  EXPECT_FALSE(QAccessible::queryAccessibleInterface(&Button(bar, 0))->state().checkable);
  QAccessibleInterface* c = QAccessible::queryAccessibleInterface(&Button(bar, 2));
  EXPECT_TRUE(c->state().hasPopup);
  EXPECT_EQ(c->actionInterface()->actionNames(), QStringList{QAccessibleActionInterface::showMenuAction()});
}

TEST_F(ToolBarTest, TheButtonUnderThePointerIsReported) {
  hovered.clear();
  bar.SetEnabled(1, false);
  QEnterEvent enter({5, 5}, {5, 5}, {5, 5});
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&Button(bar, 1), &enter);
  QCoreApplication::sendEvent(&Button(bar, 1), &leave);
  EXPECT_EQ(hovered, (std::vector<QString>{"Letter B", ""})) << "also of a disabled button";
}

TEST_F(ToolBarTest, TheRightButtonIsReportedOnceWhereverItIsPressed) {
  Click(Button(bar, 0), Qt::RightButton);
  EXPECT_EQ(right, 1);
  bar.SetEnabled(0, false);
  Click(Button(bar, 0), Qt::RightButton);
  EXPECT_EQ(right, 2);
  Click(bar, Qt::RightButton, QPoint(bar.width() - 2, 10));
  EXPECT_EQ(right, 3);
  Click(bar, Qt::LeftButton, QPoint(bar.width() - 2, 10));
  EXPECT_EQ(right, 3);
  EXPECT_TRUE(clicked.empty());
}

TEST_F(ToolBarTest, AClickTakesNoFocus) {
  for (size_t i = 0; i < bar.count(); ++i) EXPECT_FALSE(bar.button(i).focusPolicy() & Qt::ClickFocus) << i;
}

// --- The layout

struct RestoreCase {
  const char* text;
  const char* shown;  // nothing: refused
};

TEST_F(ToolBarTest, RestoresWhatMakesSenseAndRefusesTheRest) {
  const RestoreCase cases[] = {
      {"buttons,D,|,C c,B,A", "D|CBA"},
      {"buttons,D,!C c,B,A", "DBA"},
      {"buttons,d,c C,b,a", "DCBA"},              // case
      {"buttons,D,D,A,D,B,C c", "DABC"},          // doubled
      {"buttons,D,Later,|,B,x y", "AD|BC"},       // unknown; the missing A goes in front, C behind B
      {"buttons,A,|,|,|,B,|,C c,D,|", "A|B|CD"},  // too many separators
      {"buttons,|,A,|,!B,|,C c,D", "A|CD"},       // around a hidden button
      {"buttons,!A,!B,!C c,!D", ""},              // the user wanted it so
      {"buttons,,,\xFF\n,B,,", "ABCD"},
      {"buttons,C c", "ABCD"},
      {"", nullptr},
      {"buttons", nullptr},
      {"buttons,", nullptr},
      {"buttons,|,|", nullptr},
      {"buttons,E,F", nullptr},
      {"Buttons,A,B", nullptr},
      {"A,B,C c,D", nullptr},
      {"{\"a\": 1}", nullptr},
      {"\xFF\xFE", nullptr},
  };
  for (const RestoreCase& c : cases) {
    ASSERT_TRUE(bar.Restore("buttons,B,A,C c,D"));
    EXPECT_EQ(bar.Restore(c.text), c.shown != nullptr) << c.text;
    EXPECT_EQ(Shown(), c.shown ? c.shown : "BACD") << c.text;
  }
}

TEST_F(ToolBarTest, ALayoutSurvivesItsText) {
  EXPECT_EQ(Shown(), "A|BC|D");
  const std::string first = bar.Layout();
  const std::vector<std::vector<ui::ToolBarPlace>> layouts = {
      {{3}, {}, {1}, {2, false}, {0}}, {{0, false}, {1}, {2}, {3}}, {{2}, {}, {0}, {}, {3}, {}, {1}}};
  for (const auto& places : layouts) {
    bar.Arrange(places);
    const std::string text = bar.Layout(), shown = Shown();
    EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
    ToolBar other;
    other.SetButtons(kRows);
    ASSERT_TRUE(other.Restore(text)) << text;
    EXPECT_EQ(other.places(), places) << text;
    EXPECT_EQ(other.Layout(), text);
  }
  bar.Arrange(bar.FirstPlaces());
  EXPECT_EQ(bar.Layout(), first);
}

TEST_F(ToolBarTest, OnlyTheUsersChangesAreReported) {
  bar.Restore("buttons,D,C c,B,A");
  EXPECT_EQ(changed, 0);
  bar.Arrange(bar.places());
  EXPECT_EQ(changed, 0) << "nothing is different";
  bar.Arrange({{0}, {1}, {2}, {3}});
  EXPECT_EQ(changed, 1);
}

TEST_F(ToolBarTest, StatesOutliveANewOrder) {
  bar.SetState(1, ButtonState::kMixed);
  bar.SetEnabled(3, false);
  bar.Arrange({{3}, {1}, {0}, {2}});
  QCoreApplication::processEvents();
  EXPECT_EQ(bar.state(1), ButtonState::kMixed);
  EXPECT_FALSE(bar.isEnabled(3));
  EXPECT_TRUE(bar.button(3).isVisible());
  EXPECT_LT(bar.button(3).x(), bar.button(1).x());
}

}  // namespace
