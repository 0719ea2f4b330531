#include "text/layout/LayoutTabs.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace text::layout {
namespace {

// What the toolkit can count in; no block is as wide.
constexpr double kNeverWraps = 1e7;
constexpr double kLeastTab = 1;

}  // namespace

bool IsMoreThanLeft(const Tabs& tabs) {
  return std::any_of(tabs.begin(), tabs.end(), [](const TabStop& stop) {
    return stop.kind != TabKind::kLeft || stop.leader != TabLeader::kNone;
  });
}

QTextOption::Tab StopAt(double at, bool rightToLeft) {
  return {at, rightToLeft ? QTextOption::RightTab : QTextOption::LeftTab};
}

TabRuler::TabRuler(const QTextLayout& layout, std::vector<PixelStop> stops)
    : natural_(layout.text(), layout.font()), stops_(std::move(stops)) {
  QTextOption option = layout.textOption();
  option.setWrapMode(QTextOption::NoWrap);
  option.setAlignment(Qt::AlignLeft);
  option.setTabs({});
  natural_.setTextOption(option);
  natural_.setFormats(layout.formats());
  natural_.setCacheEnabled(true);
  natural_.beginLayout();
  for (QTextLine line = natural_.createLine(); line.isValid(); line = natural_.createLine())
    line.setLineWidth(kNeverWraps);
  natural_.endLayout();
}

double TabRuler::Width(int from, int to) const {
  const QTextLine line = natural_.lineForTextPosition(from);
  if (from >= to || !line.isValid()) return 0;
  return std::abs(line.cursorToX(to) - line.cursorToX(from));
}

// Or the end of the line that no wrap ends.
int TabRuler::NextTab(int from) const {
  const QString text = natural_.text();
  while (from < text.size() && text[from] != QLatin1Char('\t') && text[from] != QChar::LineSeparator) ++from;
  return from;
}

// How much of the text stands before the stop.
double TabRuler::Before(TabKind kind, int from, int to) const {
  if (kind == TabKind::kLeft) return 0;
  if (kind == TabKind::kDecimal) {
    const auto point = static_cast<int>(natural_.text().indexOf(QLocale().decimalPoint(), from));
    return Width(from, point < 0 ? to : std::min(point, to));
  }
  return kind == TabKind::kCenter ? Width(from, to) / 2 : Width(from, to);
}

QList<QTextOption::Tab> TabRuler::StopsOf(int from, double lead, double end, std::vector<LeaderAt>& leaders) const {
  QList<QTextOption::Tab> tabs;
  const QString text = natural_.text();
  double x = lead;
  for (int tab = NextTab(from); tab < text.size() && text[tab] == QLatin1Char('\t'); tab = NextTab(from)) {
    x += Width(from, tab);
    if (x >= end) break;
    const auto stop =
        std::upper_bound(stops_.begin(), stops_.end(), x, [](double at, const PixelStop& s) { return at < s.at; });
    if (stop == stops_.end()) break;
    from = tab + 1;
    const double before = Before(stop->kind, from, NextTab(from));
    // What ends at a stop past the line's end would wrap.
    const double at = stop->kind == TabKind::kLeft ? stop->at : std::min(stop->at, end - 1);
    x = std::max(x + kLeastTab, at - before);
    tabs.append(StopAt(x - lead, natural_.textOption().textDirection() == Qt::RightToLeft));
    if (stop->leader != TabLeader::kNone) leaders.push_back({tab, stop->leader});
  }
  return tabs;
}

}  // namespace text::layout
