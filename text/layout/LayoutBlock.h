// One shaped block: its lines, where they stand, and the questions about places in it.
//
// Coordinates are logical pixels from the block's top left corner; the block is as wide as the text area. Offsets are
// units from the block's begin: 0 .. units(). "Shown" offsets count in the shown text, which a preedit makes longer.
#pragma once

#include "text/layout/BlockText.h"
#include "text/layout/FormatFonts.h"
#include "text/layout/LayoutTabs.h"
#include "text/layout/LineOrder.h"
#include "text/layout/ParagraphBox.h"

#include <QPointF>
#include <QRectF>
#include <QTextLayout>

#include <optional>
#include <utility>
#include <vector>

namespace text::layout {

struct BlockStyle {
  double width = 0;
  double objectHeight = kMaxPixels;                // the most
  int defaultTab = 720;                            // twips
  const std::vector<int>* defaultStops = nullptr;  // twips, ascending
  const FormatTable* formats = nullptr;
  FormatFonts* fonts = nullptr;
};

struct BlockLine {
  double top = 0;
  double height = 0;
  double baseline = 0;  // from the block's top
  int begin = 0;        // shown offsets; a separator at its end is not part of the line
  int end = 0;
  int next = 0;  // where the following line begins
  bool wraps() const { return end == next; }
};

struct CaretShape {
  QRectF rect;
  double baseline = 0;
};

class LayoutBlock {
 public:
  LayoutBlock(BlockText text, const BlockStyle& style);
  LayoutBlock(const LayoutBlock&) = delete;
  LayoutBlock& operator=(const LayoutBlock&) = delete;

  double height() const { return height_; }
  double width() const { return width_; }
  int units() const { return static_cast<int>(text_.text.size()) - text_.preeditLength; }
  const std::vector<BlockLine>& lines() const { return lines_; }
  bool rightToLeft() const { return text_.rightToLeft; }
  const BlockText& text() const { return text_; }
  // To be used before another line is asked for.
  QTextLine qtLine(size_t line) const {
    if (tabsDiffer_) UseTabs(line);
    return layout_.lineAt(static_cast<int>(line));
  }
  // The look of the character at a shown offset, or at the end of the text of the last one.
  const FormatLook& LookAt(int shown) const;
  // The first run that reaches beyond a shown offset, or how many runs there are.
  size_t RunBehind(int shown) const;
  // The part of the run's look that this block needs; one for each run of text().
  const FormatLook& LookOfRun(size_t run) const { return *looks_[run]; }

  int ToShown(int offset) const { return offset + (offset > text_.preeditBegin ? text_.preeditLength : 0); }
  int FromShown(int shown) const;

  // The line of a shown offset; at a wrap kLeft gives the line that ends there.
  size_t LineOf(int shown, Bias bias) const;
  // The line at a height, the nearest one outside the block.
  size_t LineAtY(double y) const;
  // The caret's x; where directions meet the bias decides as in LineOrder.
  double XAt(size_t line, int shown, Bias bias = Bias::kRight) const;
  CaretShape CaretAt(int shown, Bias bias) const;
  // The place nearest to x in a line: a shown offset and the side of a wrap.
  struct Hit {
    int shown;
    Bias bias;
  };
  Hit HitLine(size_t line, double x) const;
  QRectF LineTextRect(size_t line) const;
  // The rectangles that shown offsets from .. to cover in a line, as high as the line.
  void AddRects(size_t line, int from, int to, std::vector<QRectF>* rects) const;
  // Behind the line's last character: what shows that its break is selected.
  QRectF BreakRect(size_t line) const;
  // One character to the left or right as it is seen, or nothing at the block's edge. The place of a wrap is passed
  // once, as the following line's begin.
  std::optional<Hit> MoveVisually(Hit from, bool right) const;
  // Behind the character at a shown offset.
  int NextShown(int shown) const { return layout_.nextCursorPosition(shown); }
  // Where a list paragraph's label stands, an empty rectangle without one, and its font.
  QRectF labelRect() const { return labelRect_; }
  const QFont& labelFont() const { return labelFont_; }
  const BlockBox& box() const { return box_; }
  // Tabs whose space is filled, ascending.
  const std::vector<LeaderAt>& leaders() const { return leaders_; }
  // What stands for the object at a shown offset.
  QSizeF ObjectSize(int shown) const { return ObjectSizeOf(LookAt(shown)); }

 private:
  struct Edges {
    double left, right;  // of the text area's both sides
  };
  void SetUpLayout(const BlockStyle& style);
  QList<QTextLayout::FormatRange> FormatRanges() const;
  void PlaceLines(const BlockStyle& style);
  Edges EdgesOf(bool firstLine, double zoom) const;
  std::vector<PixelStop> StopsOf(const BlockStyle& style) const;
  QList<QTextOption::Tab> TabsFrom(const std::vector<PixelStop>& stops, double lead) const;
  void UseTabs(size_t line) const;
  void PlaceTabs(const BlockStyle& style, const QTextLine& line, const Edges& edges);
  void MeasureLine(const QTextLine& line, double zoom, BlockLine* measured, double* ascent, double* descent) const;
  void FindLooks(const BlockStyle& style);
  void MeasureLabel(const BlockStyle& style);
  void PlaceLabel(double zoom);
  void PlaceBox(double zoom);
  void LimitObjects(const BlockStyle& style);
  QSizeF ObjectSizeOf(const FormatLook& look) const;
  QTextCharFormat ObjectFormat(const FormatLook& look, QChar standIn) const;
  void FindLevels();
  bool IsMixed(const BlockLine& line) const;
  LineOrder OrderOf(const BlockLine& line) const;
  bool WrapsOn(size_t line) const;
  std::optional<Hit> NextStop(size_t line, int gap, bool right) const;
  std::optional<Hit> LeaveLine(size_t line, int shown, bool right) const;
  std::optional<Hit> MoveLogically(int shown, bool forward) const;
  int NearestCaret(size_t line, double x) const;
  void AddRect(const BlockLine& line, double a, double b, std::vector<QRectF>* rects) const;
  std::optional<std::pair<double, double>> GlyphsOfChar(const QTextLine& line, int shown) const;
  std::pair<double, double> EdgesOfChar(const QTextLine& line, int shown) const;

  BlockText text_;
  std::vector<const FormatLook*> looks_;
  const FormatLook* endLook_ = nullptr;
  bool raises_ = false;  // some look does
  // Whenever a line is looked at, the toolkit places its tabs anew by the one option of the layout. So the option is
  // changed with the line where lines have stops of their own.
  mutable QTextLayout layout_;
  mutable QTextOption option_;
  std::vector<QList<QTextOption::Tab>> lineTabs_;  // counted from a line's begin; the last one's are those of the rest
  std::optional<TabRuler> ruler_;                  // while lines are placed
  std::vector<LeaderAt> leaders_;
  bool tabsDiffer_ = false;
  std::vector<BlockLine> lines_;
  std::vector<uint8_t> levels_;  // of each shown unit, if some may run to the left
  QRectF labelRect_;
  QFont labelFont_;
  BoxMeasures boxMeasures_;
  BlockBox box_;
  QSizeF objectLimit_;
  double width_ = 0;
  double height_ = 0;
};

}  // namespace text::layout
