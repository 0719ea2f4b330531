// Places in a block: the caret among characters of both directions, points and places.
#include "text/Bidi.h"
#include "text/layout/LayoutBlock.h"

#include <QGlyphRun>
#include <QRawFont>

#include <algorithm>
#include <cmath>

namespace text::layout {
namespace {

// A line of more characters than that is made of such without width; there is nothing to see in their order.
constexpr int kMaxMixedUnits = 2000;
constexpr double kBreakWidth = 0.35;  // of the line's height

std::u16string_view ViewOf(const QString& text) {
  return {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<size_t>(text.size())};
}

}  // namespace

// --- Order

void LayoutBlock::FindLevels() {
  const std::u16string_view text = ViewOf(text_.text);
  levels_ = BidiLevels(text, text_.rightToLeft);
  if (levels_.empty()) levels_.assign(text.size(), text_.rightToLeft ? 1 : 0);
  for (const BlockLine& line : lines_) {
    EndLineAt(text, static_cast<size_t>(line.begin), static_cast<size_t>(line.next), text_.rightToLeft, &levels_);
  }
}

bool LayoutBlock::IsMixed(const BlockLine& line) const {
  return !levels_.empty() && line.end - line.begin <= kMaxMixedUnits;
}

LineOrder LayoutBlock::OrderOf(const BlockLine& line) const {
  return LineOrder(levels_.data() + line.begin, line.end - line.begin, text_.rightToLeft ? 1 : 0);
}

// The paragraph goes on in the next line.
bool LayoutBlock::WrapsOn(size_t line) const {
  return lines_[line].wraps() && (line + 1 < lines_.size() || !text_.endsParagraph);
}

// --- Points of places

double LayoutBlock::XAt(size_t index, int shown, Bias bias) const {
  const BlockLine& line = lines_[index];
  const QTextLine qt = qtLine(index);
  const auto levelAt = [&](int i) {
    return i < line.begin || i >= line.end ? uint8_t{text_.rightToLeft} : levels_[static_cast<size_t>(i)];
  };
  // Only where the direction turns Qt's caret stands elsewhere.
  if (!IsMixed(line) || levelAt(shown - 1) == levelAt(shown)) return std::clamp(qt.cursorToX(shown), 0.0, width_);
  const LineOrder order = OrderOf(line);
  const int gap = order.GapOf(shown - line.begin, bias);
  // Marks of no width may stand anywhere; what has no glyphs (a tab) gives no edge.
  const auto glyphsFrom = [&](int from, bool right) {
    const int step = right ? 1 : -1;
    std::optional<std::pair<double, double>> found;
    do {
      const int next = right ? order.RightOf(from) : order.LeftOf(from);
      found = next < 0 ? std::nullopt : GlyphsOfChar(qt, line.begin + next);
      from += step;
    } while (found && found->second - found->first < 0.5);
    return found;
  };
  double x = qt.cursorToX(shown);
  if (const auto behind = glyphsFrom(gap, true)) {
    x = behind->first;
  } else if (const auto before = glyphsFrom(gap, false)) {
    x = before->second;
  }
  return std::clamp(x, 0.0, width_);
}

std::optional<std::pair<double, double>> LayoutBlock::GlyphsOfChar(const QTextLine& line, int shown) const {
  double left = 1e9, right = -1e9;
  for (const QGlyphRun& glyphs : line.glyphRuns(shown, 1)) {
    const QList<QPointF> positions = glyphs.positions();
    const QList<QPointF> advances = glyphs.rawFont().advancesForGlyphIndexes(glyphs.glyphIndexes());
    for (qsizetype i = 0; i < std::min(positions.size(), advances.size()); ++i) {
      left = std::min(left, positions[i].x());
      right = std::max(right, positions[i].x() + advances[i].x());
    }
  }
  if (left > right) return std::nullopt;
  return std::pair(left, right);
}

// Where the direction turns, the leading edge that Qt gives is the caret's, beside the character before; the glyphs
// tell where the character itself stands. Of tabs and objects, which have no glyphs, and of a character alone in its
// direction it gives that edge twice.
std::pair<double, double> LayoutBlock::EdgesOfChar(const QTextLine& line, int shown) const {
  const double leading = line.cursorToX(shown, QTextLine::Leading),
               trailing = line.cursorToX(shown, QTextLine::Trailing);
  const auto glyphs = GlyphsOfChar(line, shown);
  const bool narrow = leading == trailing && !text_.text[shown].isMark();
  if (!glyphs && narrow) return {leading, line.cursorToX(shown + 1)};
  const bool beside = glyphs && (narrow || leading < glyphs->first - 1 || leading > glyphs->second + 1);
  return beside ? *glyphs : std::pair(leading, trailing);
}
// --- Places of points

// Qt gives places that its caret does not come to, where directions meet and beside trailing blanks.
int LayoutBlock::NearestCaret(size_t index, double x) const {
  const BlockLine& line = lines_[index];
  int best = line.begin;
  double nearest = 1e9;
  for (int shown = line.begin; shown <= line.end;
       shown = shown < line.end ? layout_.nextCursorPosition(shown) : shown + 1) {
    const double distance = std::abs(XAt(index, shown) - x);
    if (distance >= nearest) continue;
    nearest = distance;
    best = shown;
  }
  return best;
}

LayoutBlock::Hit LayoutBlock::HitLine(size_t index, double x) const {
  const BlockLine& line = lines_[index];
  const bool careful = text_.mixed && line.end - line.begin <= kMaxMixedUnits;
  int shown = careful ? NearestCaret(index, x) : std::clamp(qtLine(index).xToCursor(x), line.begin, line.end);
  if (!line.wraps() || index + 1 == lines_.size() || line.begin == line.end) return {shown, Bias::kRight};
  const QChar last = text_.text[line.end - 1];
  if (last.isSpace()) return {std::min(shown, line.end - 1), Bias::kRight};
  if (std::abs(XAt(index, line.end) - x) < std::abs(XAt(index, shown) - x)) shown = line.end;
  return {shown, shown == line.end ? Bias::kLeft : Bias::kRight};
}

// --- Rectangles

QRectF LayoutBlock::LineTextRect(size_t index) const {
  const QRectF natural = qtLine(index).naturalTextRect();
  const double left = std::clamp(natural.left(), 0.0, width_), right = std::clamp(natural.right(), 0.0, width_);
  return {left, lines_[index].top, right - left, lines_[index].height};
}

void LayoutBlock::AddRects(size_t index, int from, int to, std::vector<QRectF>* rects) const {
  const BlockLine& line = lines_[index];
  from = std::max(from, line.begin);
  to = std::min(to, line.end);
  if (from >= to) return;
  const QTextLine qt = qtLine(index);
  if (text_.mixed && from == line.begin && to == line.end) return rects->push_back(LineTextRect(index));
  if (!text_.mixed || to - from > kMaxMixedUnits) return AddRect(line, qt.cursorToX(from), qt.cursorToX(to), rects);
  for (int i = from; i < to; ++i) {
    const auto [a, b] = EdgesOfChar(qt, i);
    AddRect(line, a, b, rects);
  }
}

void LayoutBlock::AddRect(const BlockLine& line, double a, double b, std::vector<QRectF>* rects) const {
  const auto [left, right] = std::minmax(std::clamp(a, 0.0, width_), std::clamp(b, 0.0, width_));
  if (!rects->empty() && rects->back().top() == line.top) {
    QRectF& last = rects->back();
    if (std::abs(last.right() - left) < 0.1) return last.setRight(right);
    if (std::abs(last.left() - right) < 0.1) return last.setLeft(left);
  }
  if (right > left) rects->emplace_back(left, line.top, right - left, line.height);
}

QRectF LayoutBlock::BreakRect(size_t index) const {
  const BlockLine& line = lines_[index];
  const double width = std::round(line.height * kBreakWidth);
  const double x = XAt(index, line.end);
  return {text_.rightToLeft ? x - width : x, line.top, width, line.height};
}

// --- One step to the side

std::optional<LayoutBlock::Hit> LayoutBlock::MoveVisually(Hit from, bool right) const {
  const size_t index = LineOf(from.shown, from.bias);
  const BlockLine& line = lines_[index];
  if (!IsMixed(line)) return MoveLogically(from.shown, right != text_.rightToLeft);
  const int gap = OrderOf(line).GapOf(from.shown - line.begin, from.bias);
  if (const auto stop = NextStop(index, gap, right)) return stop;
  return LeaveLine(index, from.shown, right);
}

// The next place of the line beyond a gap where the caret may stand.
std::optional<LayoutBlock::Hit> LayoutBlock::NextStop(size_t index, int gap, bool right) const {
  const BlockLine& line = lines_[index];
  const LineOrder order = OrderOf(line);
  const int step = right ? 1 : -1;
  for (gap += step; gap >= 0 && gap <= order.count(); gap += step) {
    const int shown = line.begin + order.PlaceOf(gap);
    if (shown == line.end && WrapsOn(index)) return std::nullopt;
    if (layout_.isValidCursorPosition(shown)) return Hit{shown, Bias::kRight};
  }
  return std::nullopt;
}

std::optional<LayoutBlock::Hit> LayoutBlock::LeaveLine(size_t index, int shown, bool right) const {
  const bool forward = right != text_.rightToLeft;
  if (forward ? index + 1 == lines_.size() : index == 0) return std::nullopt;
  if (forward) {
    const Hit next{lines_[index].next, Bias::kRight};
    return next.shown == shown ? MoveVisually(next, right) : next;
  }
  const BlockLine& line = lines_[index - 1];
  if (!line.wraps()) return Hit{line.end, Bias::kRight};
  if (!IsMixed(line)) return MoveLogically(line.end, false);
  const auto stop = NextStop(index - 1, OrderOf(line).lastGap(), right);
  return stop ? stop : LeaveLine(index - 1, line.begin, right);
}

std::optional<LayoutBlock::Hit> LayoutBlock::MoveLogically(int shown, bool forward) const {
  const int moved = forward ? layout_.nextCursorPosition(shown) : layout_.previousCursorPosition(shown);
  if (moved == shown) return std::nullopt;
  return Hit{moved, Bias::kRight};
}

}  // namespace text::layout
