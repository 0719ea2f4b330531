// The document windows: arranged in every way, minimised, restored and sent to the back.
#include "tests/program/ProgramTest.h"
#include "ui/frame/ChildArea.h"

#include <QMdiSubWindow>
#include <QScrollBar>

#include <set>

namespace {

using documents::frmText;
using ui::WindowState;

enum Way { kCascade, kRows, kColumns };

class ArrangeTest : public ProgramTest {
 protected:
  ui::ChildArea& Area() { return program().frame().area(); }
  commands::Commands& Do() { return program().commands(); }
  frmText& At(int slot) { return *table().Document(slot); }
  QRect Place(int slot) { return At(slot).widget()->geometry(); }
  void Make(int count, const QSize& window) {
    program().frame().widget()->resize(window);
    Settle();
    while (table().UpperBound() < count || !table().Document(count)) New();
  }
  // A maximised one, minimised ones at a place of the user's, one out of sight.
  void Disturb(int count) {
    At(1).widget()->move(-300, 1000);
    if (count > 2) At(2).SetWindowState(WindowState::kMinimized);
    if (count > 6) At(6).SetWindowState(WindowState::kMinimized);
    if (count > 2) At(2).widget()->move(50, 20);
    At(count).SetWindowState(WindowState::kMaximized);
    Settle();
  }
  void Arrange(Way way) {
    if (way == kCascade) Do().mnuWindowCascade_Click();
    if (way == kRows) Do().mnuWindowTileHoriz_Click();
    if (way == kColumns) Do().mnuWindowTileVertical_Click();
    Settle();
  }
  // Of the windows that are not minimised, in slot order, after looking at those that are.
  std::vector<QRect> Arranged() {
    std::vector<QRect> places;
    int x = 0;
    for (int slot = 1; slot <= table().UpperBound(); ++slot) {
      EXPECT_NE(At(slot).windowState(), WindowState::kMaximized) << slot;
      if (At(slot).windowState() == WindowState::kNormal) {
        places.push_back(Place(slot));
      } else {
        EXPECT_EQ(Place(slot).bottomLeft(), QPoint(x, Area().viewport()->height() - 1)) << slot;
        x = Place(slot).right() + 1;
        top_ = std::min(top_, Place(slot).top());
      }
    }
    return places;
  }
  // What the documents have: down to the minimised ones.
  QRect Room() { return {0, 0, Area().viewport()->width(), std::min(Area().viewport()->height(), top_)}; }
  void ExpectTiles(const std::vector<QRect>& tiles, Way way) {
    QRect all;
    qint64 covered = 0;
    for (const QRect& tile : tiles) {
      all |= tile;
      covered += qint64{tile.width()} * tile.height();
    }
    EXPECT_EQ(all, Room()) << "from edge to edge";
    EXPECT_EQ(covered, qint64{all.width()} * all.height()) << "neither gaps nor overlaps";
    const bool roomy = (way == kRows ? Room().height() / 100 : Room().width() / 160) >= int(tiles.size());
    for (size_t i = 1; i < tiles.size() && roomy; ++i)
      EXPECT_EQ(way == kRows ? tiles[i].top() : tiles[i].left(),
                (way == kRows ? tiles[i - 1].bottom() : tiles[i - 1].right()) + 1);
  }
  void ExpectCascade(const std::vector<QRect>& places) {
    std::set<std::pair<int, int>> corners;
    for (const QRect& window : places) {
      EXPECT_TRUE(corners.emplace(window.x(), window.y()).second) << "one hides another";
      EXPECT_EQ(window.size(), places[0].size());
      EXPECT_TRUE(Room().contains(window));
    }
    EXPECT_EQ(places[0].topLeft(), QPoint(0, 0));
    for (size_t i = 1; i < places.size(); ++i) {
      const QPoint step = places[i].topLeft() - places[i - 1].topLeft();
      EXPECT_TRUE((step.x() == step.y() && step.x() >= 20) || places[i].top() == 0) << i;
    }
  }

  int top_ = INT_MAX;
};

TEST_F(ArrangeTest, ByGeometry) {
  for (const int count : {1, 2, 3, 7}) {
    for (const Way way : {kCascade, kRows, kColumns}) {
      for (const bool disturbed : {false, true}) {
        SCOPED_TRACE(std::to_string(count) + " documents, way " + std::to_string(way) +
                     (disturbed ? ", disturbed" : ""));
        Restart();
        top_ = INT_MAX;
        Make(count, {1100, 800});
        if (disturbed) Disturb(count);
        frmText* const active = table().Active();
        Arrange(way);
        EXPECT_EQ(table().Active(), active);
        EXPECT_EQ(program().settings().SaveArrange, way);
        const std::vector<QRect> places = Arranged();
        EXPECT_EQ(places.size(), size_t(count) - (disturbed ? (count > 2) + (count > 6) : 0));
        way == kCascade ? ExpectCascade(places) : ExpectTiles(places, way);
      }
    }
  }
}

// Too small for all of them: each still has a size to work with, and can be scrolled to.
TEST_F(ArrangeTest, InATinyWindow) {
  Make(7, {300, 200});
  for (const Way way : {kCascade, kRows, kColumns}) {
    Arrange(way);
    QRect all;
    for (int slot = 1; slot <= 7; ++slot) {
      EXPECT_GE(Place(slot).width(), 150) << slot;
      EXPECT_GE(Place(slot).height(), 100) << slot;
      all |= Place(slot);
      for (int other = 1; other < slot && way != kCascade; ++other)
        EXPECT_FALSE(Place(slot).intersects(Place(other))) << way << ": " << slot << " and " << other;
    }
    EXPECT_EQ(all.topLeft(), QPoint(0, 0));
    EXPECT_GE(Area().horizontalScrollBar()->maximum() + Area().viewport()->width(), all.width());
    EXPECT_GE(Area().verticalScrollBar()->maximum() + Area().viewport()->height(), all.height());
  }
}

TEST_F(ArrangeTest, IconsStandInRowsFromTheBottomUp) {
  Make(7, {700, 500});
  Do().mnuMinRest_Click();
  for (int slot = 1; slot <= 7; ++slot) At(slot).widget()->move(30 * slot, 20);
  Do().mnuWindowArrange_Click();
  int rows = 0;
  for (int slot = 1; slot <= 7; ++slot) {
    const QRect icon = Place(slot);
    if (icon.left() == 0) ++rows;
    EXPECT_EQ(icon.bottom() + 1, Area().viewport()->height() - (rows - 1) * icon.height()) << slot;
    EXPECT_LE(icon.right(), Area().viewport()->width()) << slot;
    if (icon.left() != 0) {
      EXPECT_EQ(icon.left(), Place(slot - 1).right() + 1) << slot;
    }
  }
  EXPECT_GT(rows, 1);
}

TEST_F(ArrangeTest, MinimizeAndRestoreAllKeepTheActiveDocument) {
  Make(3, {900, 700});
  At(1).SetWindowState(WindowState::kMaximized);
  At(2).Activate();
  for (const WindowState state : {WindowState::kMinimized, WindowState::kNormal, WindowState::kMinimized}) {
    Do().mnuMinRest_Click();
    for (int slot = 1; slot <= 3; ++slot) EXPECT_EQ(At(slot).windowState(), state) << slot;
    EXPECT_NE(program().frame().windowState(), WindowState::kMinimized);
    EXPECT_EQ(table().Active(), &At(2));
  }
}

TEST_F(ArrangeTest, NextWindowGoesRoundInTheOrderOfTheirMaking) {
  Make(3, {900, 700});
  At(2).SetWindowState(WindowState::kMinimized);
  At(3).Activate();
  for (const int slot : {1, 2, 3, 1}) {
    Do().mnuNextPane_Click();
    EXPECT_EQ(table().Active(), &At(slot));
  }
  At(3).Activate();
  for (const int slot : {1, 2}) {
    Do().mnuWindowSendBack_Click();
    EXPECT_EQ(table().Active(), &At(slot)) << "the next one in front";
  }
}

TEST_F(ArrangeTest, CloseAllAsksBackwardsAndKeepsWhatWasCancelled) {
  Make(3, {900, 700});
  ExpectClosePrompt("Untitled:3", ui::Answer::kNo);
  ExpectClosePrompt("Untitled:2", ui::Answer::kCancel);
  ExpectClosePrompt("Untitled:1", ui::Answer::kNo);
  Do().mnuCloseAll_Click();
  Settle();
  EXPECT_EQ(table().Active()->caption(), "Untitled:2");
  EXPECT_EQ(table().Document(1), nullptr);
}

}  // namespace
