#include "ui/frame/PaneLayout.h"

#include <algorithm>

namespace ui {
namespace {

constexpr int kSmallGap = 100;
constexpr int kOutsideLists = 2000;  // what List1 and TreeView1 leave to everything between and around them
constexpr int kOutsideTree = 1450;

}  // namespace

PanePlaces LayOutPanes(int frameHeight, const PaneMetrics& metrics) {
  const int inside = frameHeight - metrics.Toolbar1Height - metrics.StatusBar1Height;
  PanePlaces places;
  places.List1Height = std::max(kLeastPaneHeight, (inside - metrics.List1Top - kOutsideLists) / 2);
  places.Toolbar2Top = metrics.List1Top + places.List1Height + kPaneGap;
  places.Label1Top = places.Toolbar2Top + metrics.Toolbar2Height + kPaneGap;
  places.Drive1Top = places.Label1Top + metrics.Label1Height + kSmallGap;
  places.TreeView1Top = places.Drive1Top + metrics.Drive1Height + kSmallGap;
  places.TreeView1Height = std::max(kLeastPaneHeight, inside - places.TreeView1Top - kOutsideTree);
  places.Toolbar3Top = places.TreeView1Top + places.TreeView1Height + kPaneGap;
  return places;
}

int FrameHeightFor(int paneHeight, const PaneMetrics& metrics) {
  const int belowTree = kPaneGap + metrics.Toolbar3Height + kPaneGap;
  return paneHeight + metrics.Toolbar1Height + metrics.StatusBar1Height + kOutsideTree - belowTree;
}

}  // namespace ui
