// Where the text behind tabs stands when stops say more than where it begins: its middle, end or decimal point, or what
// fills the space before it.
#pragma once

#include "text/Formats.h"

#include <QTextLayout>

#include <vector>

namespace text::layout {

// Pixels from the paragraph's edge.
struct PixelStop {
  double at = 0;
  TabKind kind = TabKind::kLeft;
  TabLeader leader = TabLeader::kNone;
};

struct LeaderAt {
  int shown;  // the tab's offset
  TabLeader leader;
};

bool IsMoreThanLeft(const Tabs& tabs);

// Text begins at it: where lines begin on the right, the toolkit means the other side by a left one.
QTextOption::Tab StopAt(double at, bool rightToLeft);

class TabRuler {
 public:
  // The layout has its text and formats; its lines do not matter. The stops ascend.
  TabRuler(const QTextLayout& layout, std::vector<PixelStop> stops);

  // For a line that begins with the unit `from`, `lead` pixels from the paragraph's edge, and ends at `end` at most:
  // one left stop for each of its tabs, counted from the line's begin, so that the text between them comes to stand as
  // the ruler's stops say. The leaders of these tabs are added.
  QList<QTextOption::Tab> StopsOf(int from, double lead, double end, std::vector<LeaderAt>& leaders) const;

 private:
  // Of the units [from, to), which no line separator divides.
  double Width(int from, int to) const;
  int NextTab(int from) const;
  double Before(TabKind kind, int from, int to) const;

  QTextLayout natural_;  // nothing wraps
  std::vector<PixelStop> stops_;
};

}  // namespace text::layout
