// What the mouse and drags do to the rows of the tree, by the events that the toolkit would send.
#include "tests/program/FolderTreeTest.h"
#include "tests/support/ScriptedFileOperations.h"
#include "ui/editing/exchange/DroppedFiles.h"

#include <QDragMoveEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

constexpr QPoint kArrow(-8, 0), kCheckBox(9, 0), kText(45, 0);

class TreeMouseTest : public FolderTreeTest {
 protected:
  TreeMouseTest() {
    auto scripted = std::make_unique<support::ScriptedFileOperations>();
    operations = scripted.get();
    program().SetFileOperations(std::move(scripted));
    ShowWindow();
  }

  QModelIndex Index(ui::TreePlace node) {
    const bool root = node == foldertree::NodeTable::kRoot;
    return View().model()->index(node.row, 0, root ? QModelIndex() : Index(Tree().Nodes().Parent(node)));
  }
  QRect Row(const std::string& name) { return View().visualRect(Index(*Tree().Nodes().Find(Key(name)))); }
  QPoint Place(const std::string& name, QPoint part) {
    return {Row(name).left() + part.x(), Row(name).center().y() + part.y()};
  }
  void Send(QEvent::Type type, QPoint at, Qt::KeyboardModifiers modifiers = {}) {
    const bool up = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, at, View().viewport()->mapToGlobal(at), Qt::LeftButton, up ? Qt::NoButton : Qt::LeftButton,
                      modifiers);
    QApplication::sendEvent(View().viewport(), &event);
  }
  void Click(QPoint at, QEvent::Type press = QEvent::MouseButtonPress) {
    Send(press, at);
    Send(QEvent::MouseButtonRelease, at);
    Settle();
  }
  void DoubleClick(const std::string& name, QPoint part) {
    Click(Place(name, part));
    Click(Place(name, part), QEvent::MouseButtonDblClick);
  }

  // --- A drag of another program
  struct Answer {
    bool accepted;
    Qt::DropAction action;
    bool operator==(const Answer&) const = default;
  };
  template <class Event>
  Answer Drag(QPoint at, Qt::DropActions actions, Qt::KeyboardModifiers modifiers) {
    const auto files = ui::MimeDataOfFiles({"/x/dropped"});
    std::unique_ptr<Event> event;
    if constexpr (std::is_same_v<Event, QDropEvent>) {
      event = std::make_unique<Event>(QPointF(at), actions, files.get(), Qt::LeftButton, modifiers);
    } else {
      event = std::make_unique<Event>(at, actions, files.get(), Qt::LeftButton, modifiers);
    }
    QApplication::sendEvent(View().viewport(), event.get());
    return {event->isAccepted(), event->dropAction()};
  }

  support::ScriptedFileOperations* operations;
};

TEST_F(TreeMouseTest, ClicksOpenCheckAndDoubleClick) {
  MakeFolders({"a/b"});
  for (const char* name : {"c.txt", "d.txt"}) Put(name, name);
  Sync();
  const struct {
    const char* name;
    QPoint part;
    bool twice;
    const char* shown;
    bool opened;
  } kRows[] = {
      {"a", kText, false, "a-(b+) c.txt d.txt", false},
      {"a", kArrow, false, "a+ c.txt d.txt", false},
      {"a", kArrow, false, "a-(b+) c.txt d.txt", false},
      {"a", kCheckBox, false, "a*-(b+) c.txt d.txt", false},
      {"c.txt", kText, false, "a*-(b+) c.txt* d.txt", false},
      {"d.txt", kCheckBox, true, "a*-(b+) c.txt* d.txt", false},
      {"c.txt", kCheckBox, false, "a*-(b+) c.txt d.txt", false},
      {"d.txt", kText, true, "a*-(b+) c.txt d.txt*", true},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(std::string(row.name) + " " + std::to_string(row.part.x()));
    row.twice ? DoubleClick(row.name, row.part) : Click(Place(row.name, row.part));
    EXPECT_EQ(Shown(), row.shown);
    EXPECT_EQ(table().Active() != nullptr, row.opened);
  }
  EXPECT_TRUE(Showing(Key("d.txt")));
}

TEST_F(TreeMouseTest, AFolderThatWasOpenHasItsArrowAgain) {
  MakeFolders({"a/b", "empty", "gone"});
  Sync();
  Tree().Select(Key(""));
  for (const char* name : {"a", "empty", "gone"}) {
    const auto picture = [&] { return View().viewport()->grab(Row(name).adjusted(-16, 0, 0, 0)).toImage(); };
    const QImage before = picture();
    Toggle(name);
    static_cast<void>(picture());
    if (*name == 'g') {
      std::filesystem::remove(At(name));
      ExpectCannotResolve(name, "No such file or directory");
      Tree().RefreshFolderNode(Key(name));
    } else {
      Toggle(name);
    }
    EXPECT_EQ(picture(), before) << name;
  }
}

TEST_F(TreeMouseTest, TheSelectedNodeIsSeenAndKeepsItsPlaceWhenOthersGo) {
  for (int i = 10; i < 90; ++i) Put(std::to_string(i), "");
  Sync();
  Tree().Select(Key("10"));
  for (int i = 10; i < 60; ++i) Press(View(), Qt::Key_Down);
  EXPECT_EQ(Selected(), "60");
  EXPECT_TRUE(View().viewport()->rect().contains(Row("60").center()));
  const struct {
    int first, last;
    const char* selected;
  } kRows[] = {{60, 60, "61"}, {40, 50, "61"}, {55, 75, "76"}, {76, 89, "application"}};
  for (const auto& row : kRows) {
    std::vector<std::string> keys;
    for (int i = row.first; i <= row.last; ++i) keys.push_back(Key(std::to_string(i)));
    Tree().RemoveNodes(keys);
    EXPECT_EQ(Selected(), row.selected) << row.first;
  }
  EXPECT_EQ(View().viewport()->grab().isNull(), false);
  EXPECT_EQ(View().model()->rowCount(Index(foldertree::NodeTable::kRoot)),
            Tree().Nodes().Count(Tree().Nodes().ListBelow(foldertree::NodeTable::kRoot)));
}

TEST_F(TreeMouseTest, ManyFoldersThatGoLeaveTheOthersOpen) {
  for (int i = 10; i < 60; ++i) MakeFolders({("f" + std::to_string(i) + "/in").c_str()});
  Sync();
  Toggle("f59");
  Tree().Select(Key("f59/in"));
  std::vector<std::string> keys;
  for (int i = 10; i < 59; ++i) keys.push_back(Key("f" + std::to_string(i)));
  keys.push_back(Key("f30/in"));
  Tree().RemoveNodes(keys);
  EXPECT_EQ(Shown(), "f59-(in+)");
  EXPECT_EQ(Selected(), "f59/in");
  EXPECT_TRUE(View().isExpanded(Index(*Tree().Nodes().Find(Key("f59")))));
  EXPECT_EQ(Row("f59/in").top(), Row("f59").bottom() + 1);
}

TEST_F(TreeMouseTest, KeysOfTheFieldForANameStayThere) {
  for (const char* name : {"a.txt", "b.txt"}) Put(name, name);
  Sync();
  Tree().Select(Key("a.txt"));
  for (const int key : {Qt::Key_Delete, Qt::Key_F5, Qt::Key_Down, Qt::Key_Tab, Qt::Key_Return, Qt::Key_Escape}) {
    View().StartLabelEdit();
    auto* const editor = qobject_cast<QLineEdit*>(View().indexWidget(View().currentIndex()));
    ASSERT_TRUE(editor) << key;
    Press(*editor, key);
    const bool ends = key == Qt::Key_Tab || key == Qt::Key_Return || key == Qt::Key_Escape;
    EXPECT_EQ(View().indexWidget(View().currentIndex()) == nullptr, ends) << key;
    if (!ends) Press(*editor, Qt::Key_Escape);
    EXPECT_EQ(Selected(), "a.txt") << key;
    EXPECT_EQ(View().indexWidget(Index(*Tree().Nodes().Find(Key("b.txt")))), nullptr) << key;
  }
  EXPECT_EQ(table().Active(), nullptr);
  QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r", true);
  QApplication::sendEvent(&View(), &held);
  Settle();
  EXPECT_EQ(table().Active(), nullptr) << "the key that ended the change is still held";
}

TEST_F(TreeMouseTest, ADropGoesWhereItWasOffered) {
  for (int i = 10; i < 60; ++i) MakeFolders({("f" + std::to_string(i)).c_str()});
  Put("g", "");
  Sync();
  const auto none = Qt::NoModifier, shift = Qt::ShiftModifier;
  const struct {
    Qt::DropActions actions;
    Qt::KeyboardModifiers modifiers;
    Answer answer;
    const char* done;
  } kRows[] = {
      {Qt::CopyAction | Qt::MoveAction, none, {true, Qt::CopyAction}, "copy"},
      {Qt::CopyAction | Qt::MoveAction, shift, {true, Qt::CopyAction}, "copy then delete"},
      {Qt::CopyAction, shift, {true, Qt::CopyAction}, "copy"},
      {Qt::MoveAction, shift, {true, Qt::ActionMask}, "copy then delete"},  // sent as "copy"
      {Qt::MoveAction, none, {false, Qt::ActionMask}, ""},
      {Qt::LinkAction, none, {false, Qt::ActionMask}, ""},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(std::to_string(row.actions.toInt()) + (row.modifiers ? " with Shift" : ""));
    operations->asked.clear();
    View().verticalScrollBar()->setValue(0);
    // The last row is seen in part; it is scrolled into view, so another one is under the pointer then.
    int last = 10;
    while (Row("f" + std::to_string(last)).bottom() < View().viewport()->height()) ++last;
    const std::string target = "f" + std::to_string(last);
    const QPoint at(Place(target, kText).x(), Row(target).top() + 1);
    ASSERT_LT(at.y(), View().viewport()->height());
    Drag<QDragEnterEvent>(at, row.actions, row.modifiers);
    EXPECT_NE(View().indexAt(at), Index(*Tree().Nodes().Find(Key(target))));
    EXPECT_EQ(Drag<QDropEvent>(at, row.actions, row.modifiers), row.answer);
    Settle();
    if (*row.done) {
      EXPECT_THAT(operations->asked, ElementsAre(std::string(row.done) + " [/x/dropped] to " + Key(target)));
    } else {
      EXPECT_THAT(operations->asked, testing::IsEmpty());
    }
  }
}

}  // namespace
