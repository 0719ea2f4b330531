// Where the panes at the left stand, as a pure function of the frame's height. All lengths are twips; tops are below
// the upper edge of the pane, which begins under Toolbar1.
#pragma once

namespace ui {

constexpr int kTwipsPerPixel = 15;  // a logical pixel, 96 to the inch

// What does not depend on the frame's height.
struct PaneMetrics {
  int Toolbar1Height = 0;
  int StatusBar1Height = 0;
  int List1Top = 0;
  int Toolbar2Height = 0;
  int Label1Height = 0;
  int Drive1Height = 0;
  int Toolbar3Height = 0;
};

struct PanePlaces {
  int List1Height = 0;
  int Toolbar2Top = 0;
  int Label1Top = 0;
  int Drive1Top = 0;
  int TreeView1Top = 0;
  int TreeView1Height = 0;
  int Toolbar3Top = 0;
  bool operator==(const PanePlaces&) const = default;
};

constexpr int kPaneGap = 150;
// Of List1 and TreeView1 in a frame that is too small for them: what is below then lies outside the pane.
constexpr int kLeastPaneHeight = 600;

PanePlaces LayOutPanes(int frameHeight, const PaneMetrics& metrics);

// The frame height with which Toolbar3 ends one gap above the lower edge of a pane that high: title bars and menu bars
// differ from desktop to desktop, and the formulas know one of them.
int FrameHeightFor(int paneHeight, const PaneMetrics& metrics);

}  // namespace ui
