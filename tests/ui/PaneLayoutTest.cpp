// Where the panes stand, computed by hand and looked at in the pane itself.
#include "ui/frame/LeftPane.h"

#include <QCoreApplication>
#include <QLabel>
#include <gtest/gtest.h>

namespace {

using ui::PaneMetrics;
using ui::PanePlaces;

constexpr PaneMetrics kMetrics = {.Toolbar1Height = 420,
                                  .StatusBar1Height = 300,
                                  .List1Top = 120,
                                  .Toolbar2Height = 390,
                                  .Label1Height = 240,
                                  .Drive1Height = 360,
                                  .Toolbar3Height = 405};

struct LayoutCase {
  int frameHeight;
  PanePlaces places;
};

TEST(PaneLayout, FollowsTheFormulas) {
  const LayoutCase cases[] = {
      // 10500 twips are 700 pixels
      {10500, {3830, 4100, 4640, 4980, 5440, 2890, 8480}},
      {10501, {3830, 4100, 4640, 4980, 5440, 2891, 8481}},  // the odd twip is dropped in the list, not in the tree
      // 4K: 2160 pixels
      {32400, {14780, 15050, 15590, 15930, 16390, 13840, 30380}},
      // the tree at its least, the list above it
      {8000, {2580, 2850, 3390, 3730, 4190, 1640, 5980}},
      {5000, {1080, 1350, 1890, 2230, 2690, 600, 3440}},
      // both at their least
      {3000, {600, 870, 1410, 1750, 2210, 600, 2960}},
      {0, {600, 870, 1410, 1750, 2210, 600, 2960}},
      {-100, {600, 870, 1410, 1750, 2210, 600, 2960}},
  };
  for (const LayoutCase& c : cases) EXPECT_EQ(ui::LayOutPanes(c.frameHeight, kMetrics), c.places) << c.frameHeight;
}

TEST(PaneLayout, TheLastToolbarEndsOneGapAboveTheEdge) {
  for (int pane = 5000; pane < 33000; pane += 997) {
    const PanePlaces places = ui::LayOutPanes(ui::FrameHeightFor(pane, kMetrics), kMetrics);
    ASSERT_GT(places.TreeView1Height, ui::kLeastPaneHeight) << pane;
    EXPECT_EQ(places.Toolbar3Top + kMetrics.Toolbar3Height + ui::kPaneGap, pane);
  }
}

TEST(LeftPane, StandsAsTheFormulasSay) {
  ui::LeftPane pane;
  for (const int height : {700, 701, 2000, 450}) {
    pane.resize(pane.sizeHint().width(), height);
    pane.show();
    QCoreApplication::processEvents();
    const QWidget* column[] = {&pane.List1(),  &pane.Toolbar2(),  &pane.Label1(),
                               &pane.Drive1(), &pane.TreeView1(), &pane.Toolbar3()};
    for (size_t i = 0; i + 1 < std::size(column); ++i) {
      const int gap = column[i + 1]->geometry().top() - column[i]->geometry().bottom() - 1;
      EXPECT_NEAR(gap, i == 2 || i == 3 ? 100 / 15. : 150 / 15., 1) << height << " " << i;
      const int beside = column[i] == &pane.Toolbar2() ? pane.Picture1().width() : 0;
      EXPECT_EQ(column[i]->width() + beside, pane.width() - 2 * column[i]->x());
    }
    EXPECT_NEAR(pane.height() - pane.Toolbar3().geometry().bottom() - 1, 10, 1) << height;
    EXPECT_GE(pane.Toolbar2().height(), pane.Toolbar2().iconSize().height()) << "an empty toolbar keeps its place";
  }
}

TEST(LeftPane, ATinyOneKeepsItsControlsUsable) {
  ui::LeftPane pane;
  pane.resize(pane.sizeHint().width(), 30);
  pane.show();
  QCoreApplication::processEvents();
  EXPECT_EQ(pane.List1().height(), 40);
  EXPECT_EQ(pane.TreeView1().height(), 40);
  EXPECT_LT(pane.List1().geometry().bottom(), pane.TreeView1().geometry().top());
  EXPECT_EQ(pane.minimumSizeHint().height(), 0) << "the frame may be made smaller than the panes";
}

TEST(LeftPane, OneFontSizeForListAndTree) {
  ui::LeftPane pane;
  for (const double points : {8., 10., 12.5}) {
    pane.SetListFontSize(points);
    EXPECT_EQ(pane.List1().fontSize(), points);
    EXPECT_EQ(pane.TreeView1().fontSize(), points);
  }
}

TEST(LeftPane, DrivesCanBeChosenOnceThereAreAny) {
  ui::LeftPane pane;
  EXPECT_FALSE(pane.Drive1().isEnabled());
  pane.Drive1().SetDrives({"/"});
  EXPECT_TRUE(pane.Drive1().isEnabled());
  pane.Drive1().SetDrives({});
  EXPECT_FALSE(pane.Drive1().isEnabled());
}

TEST(LeftPane, EveryControlHasAName) {
  ui::LeftPane pane;
  for (const QWidget* control : {static_cast<QWidget*>(&pane.List1()), static_cast<QWidget*>(&pane.Toolbar2()),
                                 static_cast<QWidget*>(&pane.Drive1()), static_cast<QWidget*>(&pane.TreeView1()),
                                 static_cast<QWidget*>(&pane.Toolbar3())})
    EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
}

}  // namespace
