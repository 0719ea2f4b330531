#include "ui/PendingEvents.h"
#include "ui/controls/ListBox.h"
#include "ui/editing/exchange/DroppedFiles.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

class ListBoxTest : public ::testing::Test {
 protected:
  ListBoxTest() {
    list.resize(200, 300);
    list.SetLines({{"first", 0}, {"b & <i>", 2}, {"a\xFF", 1}, {"two\nlines", 3}});
    list.show();
  }

  QPoint At(int line) const { return list.visualRect(list.model()->index(line, 0)).center(); }
  void Mouse(QEvent::Type type, QPoint point, Qt::KeyboardModifiers modifiers = {}) {
    const Qt::MouseButtons buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, point, list.viewport()->mapToGlobal(point), Qt::LeftButton, buttons, modifiers);
    QApplication::sendEvent(list.viewport(), &event);
  }
  void Click(int line, Qt::KeyboardModifiers modifiers) {
    Mouse(QEvent::MouseButtonPress, At(line), modifiers);
    Mouse(QEvent::MouseButtonRelease, At(line), modifiers);
  }
  void Send(QEvent::Type type, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QKeyEvent event(type, key, modifiers);
    QApplication::sendEvent(&list, &event);
  }
  void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) Send(type, key, modifiers);
  }

  ui::ListBox list;
};

TEST_F(ListBoxTest, KeepsLinesSelectionAndFocusLine) {
  EXPECT_EQ(list.count(), 4);
  EXPECT_EQ(list.ListIndex(), 0);
  EXPECT_EQ(list.SelCount(), 0);
  list.Select(3, true);
  list.Select(1, true);
  EXPECT_THAT(list.SelectedLines(), ElementsAre(1, 3));
  EXPECT_EQ(list.ListIndex(), 0);
  list.SelectOnly(2);
  EXPECT_THAT(list.SelectedLines(), ElementsAre(2));
  EXPECT_EQ(list.ListIndex(), 2);
  list.Append({"last", 9});
  list.SelectFrom(3);
  EXPECT_THAT(list.SelectedLines(), ElementsAre(3, 4));
  list.SetText(4, "changed");
  EXPECT_EQ(list.line(4).text, "changed");
  EXPECT_EQ(list.line(4).data, 9);
  list.SelectFrom(5);
  EXPECT_EQ(list.SelCount(), 0);
}

TEST_F(ListBoxTest, FindsTheNearestLineInsideAndNoneOutside) {
  EXPECT_EQ(list.ItemFromPoint(At(2)), 2);
  EXPECT_EQ(list.ItemFromPoint({5, list.viewport()->height() - 1}), 3);
  EXPECT_GE(list.ItemFromPoint({-1, 5}), list.count());
  EXPECT_GE(list.ItemFromPoint({5, list.viewport()->height()}), list.count());
}

TEST_F(ListBoxTest, KeysAndClicksTellWhatTheyMean) {
  int opened = 0;
  std::vector<bool> deleted;
  QObject::connect(&list, &ui::ListBox::Opened, [&] { ++opened; });
  QObject::connect(&list, &ui::ListBox::Deleted, [&](bool shift) { deleted.push_back(shift); });
  Key(Qt::Key_Return);
  Key(Qt::Key_Enter);
  EXPECT_EQ(opened, 2);
  Mouse(QEvent::MouseButtonDblClick, At(1));
  QApplication::processEvents();
  EXPECT_EQ(opened, 3);
  Key(Qt::Key_Delete);
  Key(Qt::Key_Delete, Qt::ShiftModifier);
  EXPECT_THAT(deleted, ElementsAre(false, true));
  Send(QEvent::KeyPress, Qt::Key_Delete, Qt::ShiftModifier);
  Send(QEvent::KeyRelease, Qt::Key_Delete);  // Shift was let go first
  EXPECT_THAT(deleted, ElementsAre(false, true, true));
  Send(QEvent::KeyRelease, Qt::Key_Delete);  // pressed in a dialog that has closed
  EXPECT_EQ(deleted.size(), 3u);
}

TEST_F(ListBoxTest, APressWithAModifierIsAClickUnlessItIsDragged) {
  int asked = 0;
  list.SetDragFiles([&asked] {
    ++asked;
    return std::vector<std::string>{};
  });
  list.SelectOnly(0);
  Mouse(QEvent::MouseButtonPress, At(2), Qt::ControlModifier);
  EXPECT_THAT(list.SelectedLines(), ElementsAre(0)) << "only armed";
  Mouse(QEvent::MouseButtonRelease, At(2), Qt::ControlModifier);
  EXPECT_THAT(list.SelectedLines(), ElementsAre(0, 2));
  Click(3, Qt::ShiftModifier);
  EXPECT_THAT(list.SelectedLines(), ElementsAre(0, 2, 3));
  EXPECT_EQ(asked, 0);

  Mouse(QEvent::MouseButtonPress, At(1), Qt::ControlModifier);
  Mouse(QEvent::MouseMove, At(1) + QPoint(0, QApplication::startDragDistance() + 1), Qt::ControlModifier);
  EXPECT_EQ(asked, 1);
  Mouse(QEvent::MouseButtonRelease, At(1), Qt::ControlModifier);
  EXPECT_THAT(list.SelectedLines(), ElementsAre(0, 2, 3));
}

TEST_F(ListBoxTest, APlainPressForgetsTheDragThatWasArmed) {
  int asked = 0;
  list.SetDragFiles([&asked] {
    ++asked;
    return std::vector<std::string>{};
  });
  Mouse(QEvent::MouseButtonPress, At(2), Qt::ControlModifier);  // whose release went elsewhere
  Mouse(QEvent::MouseButtonPress, At(1));
  Mouse(QEvent::MouseMove, At(1) + QPoint(0, QApplication::startDragDistance() + 1));
  EXPECT_EQ(asked, 0);
}

TEST_F(ListBoxTest, WhatComesInTheMiddleOfACommandWaitsForItsEnd) {
  int opened = 0, dropped = 0;
  QObject::connect(&list, &ui::ListBox::Opened, [&] { ++opened; });
  QObject::connect(&list, &ui::ListBox::FilesDropped, [&](const auto&) { ++dropped; });
  QMimeData data;
  data.setData("text/uri-list", "file:///a\r\n");
  {
    const ui::CommandScope command;
    Mouse(QEvent::MouseButtonDblClick, At(1));
    QDragEnterEvent enter(At(1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(list.viewport(), &enter);
    QDropEvent event(At(1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(list.viewport(), &event);
    ui::LetPendingEventsRun();
    EXPECT_EQ(opened + dropped, 0);
  }
  for (int i = 0; i < 3; ++i) QApplication::processEvents();
  EXPECT_EQ(opened, 1);
  EXPECT_EQ(dropped, 1);
}

TEST_F(ListBoxTest, TheFocusIsToldOfUnlessAPressOrAMenuMovedIt) {
  int gained = 0, lost = 0;
  QObject::connect(&list, &ui::ListBox::FocusGained, [&] { ++gained; });
  QObject::connect(&list, &ui::ListBox::FocusLost, [&] { ++lost; });
  const struct {
    Qt::FocusReason reason;
    int gained, lost;
  } kRows[] = {{Qt::TabFocusReason, 1, 1},
               {Qt::MouseFocusReason, 0, 1},
               {Qt::PopupFocusReason, 1, 0},
               {Qt::MenuBarFocusReason, 1, 0},
               {Qt::ActiveWindowFocusReason, 1, 0}};
  for (const auto& row : kRows) {
    gained = lost = 0;
    for (const auto type : {QEvent::FocusIn, QEvent::FocusOut}) {
      QFocusEvent event(type, row.reason);
      QApplication::sendEvent(&list, &event);
    }
    EXPECT_EQ(gained, row.gained) << row.reason;
    EXPECT_EQ(lost, row.lost) << row.reason;
  }
}

TEST_F(ListBoxTest, ARightPressKeepsWhatIsSelected) {
  list.SelectOnly(1);
  QContextMenuEvent menu(QContextMenuEvent::Mouse, At(3), list.viewport()->mapToGlobal(At(3)));
  QApplication::sendEvent(list.viewport(), &menu);
  EXPECT_THAT(list.SelectedLines(), ElementsAre(1, 3));
  EXPECT_EQ(list.ListIndex(), 3);
}

TEST_F(ListBoxTest, OfALongLineTheEndsAreShown) {
  list.SetText(1, std::string(4 << 20, 'a') + "\xD7\xA2");
  const QString shown = list.model()->index(1, 0).data().toString();
  EXPECT_EQ(shown.size(), 1001);
  EXPECT_TRUE(shown.endsWith(u"a\u05E2"));
}

TEST_F(ListBoxTest, TheMenuByKeyIsAtTheFocusLineInView) {
  std::vector<QPoint> asked;
  QObject::connect(&list, &ui::ListBox::MenuRequested, [&](const QPoint& point) { asked.push_back(point); });
  for (int i = 0; i < 100; ++i) list.Append({"line", i});
  list.SetListIndex(2);
  list.scrollToBottom();
  Key(Qt::Key_F10, Qt::ShiftModifier);
  ASSERT_EQ(asked.size(), 1u);
  EXPECT_EQ(list.ItemFromPoint(list.viewport()->mapFromGlobal(asked[0])), 2);
  EXPECT_TRUE(list.Selected(2));
}

TEST_F(ListBoxTest, DropsAreTakenWhenTheyAreFilesToCopy) {
  const auto drop = [this](const char* uris, Qt::DropActions actions) {
    QMimeData data;
    data.setData("text/uri-list", uris);
    QDragEnterEvent enter(At(1), actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(list.viewport(), &enter);
    QDropEvent event(At(1), actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(list.viewport(), &event);
    EXPECT_EQ(enter.isAccepted(), event.isAccepted());
    return event.isAccepted();
  };
  std::vector<std::string> dropped;
  QObject::connect(&list, &ui::ListBox::FilesDropped, [&](const auto& paths) { dropped = paths; });
  EXPECT_FALSE(drop("file:///a\r\n", Qt::MoveAction));
  EXPECT_FALSE(drop("https://quillmark.example/\r\n", Qt::CopyAction));
  EXPECT_TRUE(drop("file:///a%20b\r\nhttp://x/\r\nfile:///%FF\r\n", Qt::CopyAction | Qt::MoveAction));
  EXPECT_TRUE(dropped.empty()) << "after the drop was answered";
  QApplication::processEvents();
  EXPECT_THAT(dropped, ElementsAre("/a b", "/\xFF"));
}

TEST(DroppedFiles, AreBytesBothWays) {
  const std::vector<std::string> paths = {"/a b#?%.txt", "/two\nlines", "/\xFF\xC3\xA4", "/d/"};
  EXPECT_EQ(ui::FilesOf(*ui::MimeDataOfFiles(paths)), paths);
  EXPECT_FALSE(ui::HoldsFiles(*ui::MimeDataOfFiles({"relative.txt"})));
}

}  // namespace
