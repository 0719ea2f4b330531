#include "text/layout/BlockPainter.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace text::layout {
namespace {

QColor Blend(const QColor& a, const QColor& b) {
  return QColor((a.red() + b.red()) / 2, (a.green() + b.green()) / 2, (a.blue() + b.blue()) / 2);
}

// Whole pixels, so that what is filled and what is clipped have the same edges.
QRect OnPixels(const QRectF& rect) {
  const int left = qRound(rect.left()), top = qRound(rect.top());
  return {left, top, qRound(rect.right()) - left, qRound(rect.bottom()) - top};
}

QColor Rgb(Color color) {
  return QColor(color.rgb & 255, color.rgb >> 8 & 255, color.rgb >> 16 & 255);
}

bool Contains(const std::vector<int>& offsets, int offset) {
  return std::binary_search(offsets.begin(), offsets.end(), offset);
}

}  // namespace

BlockPainter::BlockPainter(QPainter& painter, const QRectF& clip, double x, const PaintOptions& options,
                           const FormatTable& formats)
    : painter_(painter), clip_(clip), x_(x), options_(options), formats_(formats) {
  const QPalette& palette = options.palette;
  const auto group = options.selectionActive ? QPalette::Active : QPalette::Inactive;
  text_ = palette.color(QPalette::Text);
  highlight_ = palette.color(group, QPalette::Highlight);
  highlightedText_ = palette.color(group, QPalette::HighlightedText);
  faint_ = Blend(text_, options.background.isValid() ? options.background : palette.color(QPalette::Base));
}

QColor BlockPainter::ColorOf(const FormatLook& look) const {
  return look.source.color.isAuto() ? text_ : Rgb(look.source.color);
}

BlockPainter::Selected BlockPainter::SelectedIn(const PlacedBlock& placed) const {
  const Range range = options_.selection.range();
  const Range span = placed.span.range;
  if (range.empty() || range.end < span.begin || range.begin > span.end) return {};
  return {placed.ShownOffset(std::max(range.begin, span.begin)), placed.ShownOffset(std::min(range.end, span.end)),
          placed.span.endsParagraph() && range.end > span.end};
}

void BlockPainter::Paint(const PlacedBlock& placed) {
  const LayoutBlock& block = *placed.block;
  const QPointF origin(x_, placed.top);
  const Selected selected = SelectedIn(placed);
  const size_t count = block.lines().size();
  // With exact line spacing text may reach into the lines beside its own.
  size_t first = block.LineAtY(clip_.top() - placed.top), last = block.LineAtY(clip_.bottom() - placed.top);
  first -= first > 0 ? 1 : 0;
  last += last + 1 < count ? 1 : 0;
  for (size_t line = first; line <= last; ++line) {
    PaintBackgrounds(block, line, origin);
    PaintSelection(block, line, selected, origin);
  }
  if (!block.bulletRect().isEmpty()) PaintBullet(block, origin);
  for (size_t line = first; line <= last; ++line) {
    PaintText(block, line, selected, origin);
    PaintMarks(block, line, selected, origin);
  }
}

void BlockPainter::PaintBackgrounds(const LayoutBlock& block, size_t line, QPointF origin) {
  const auto& runs = block.text().runs;
  const BlockLine& geometry = block.lines()[line];
  for (size_t i = block.RunBehind(geometry.begin); i < runs.size() && runs[i].begin < geometry.end; ++i) {
    const Color color = block.LookOfRun(i).source.background;
    if (color.isAuto()) continue;
    std::vector<QRectF> rects;
    block.AddRects(line, runs[i].begin, runs[i].end, &rects);
    for (const QRectF& rect : rects) painter_.fillRect(OnPixels(rect.translated(origin)), Rgb(color));
  }
}

void BlockPainter::PaintSelection(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin) {
  std::vector<QRectF> rects;
  block.AddRects(line, selected.from, selected.to, &rects);
  const BlockLine& geometry = block.lines()[line];
  const bool last = line + 1 == block.lines().size();
  const bool separator = !geometry.wraps() && selected.from <= geometry.end && selected.to > geometry.end;
  if (separator || (last && selected.lastBreak)) rects.push_back(block.BreakRect(line));
  for (const QRectF& rect : rects) painter_.fillRect(OnPixels(rect.translated(origin)), highlight_);
}

void BlockPainter::PaintText(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin) {
  const BlockLine& geometry = block.lines()[line];
  const QTextLine qt = block.qtLine(line);
  const QPointF position = origin + QPointF(0, geometry.baseline - qt.ascent());
  const int from = std::max(selected.from, geometry.begin), to = std::min(selected.to, geometry.end);
  painter_.setPen(text_);
  if (from >= to) return qt.draw(&painter_, position);
  std::vector<QRectF> rects;
  block.AddRects(line, from, to, &rects);
  QRegion inside;
  for (const QRectF& rect : rects) inside += OnPixels(rect.translated(origin));
  if (from > geometry.begin || to < geometry.end) {
    const QRect around =
        QRectF(0, origin.y() + geometry.top - geometry.height, x_ * 2 + block.width(), 3 * geometry.height)
            .toAlignedRect();
    painter_.save();
    painter_.setClipRegion(QRegion(around) - inside, Qt::IntersectClip);
    qt.draw(&painter_, position);
    painter_.restore();
  }
  painter_.save();
  painter_.setClipRegion(inside, Qt::IntersectClip);
  painter_.setPen(highlightedText_);
  PaintGlyphs(block, line, geometry.begin, geometry.end, position);
  painter_.restore();
}

// In the pen's colour whatever the formats say.
void BlockPainter::PaintGlyphs(const LayoutBlock& block, size_t line, int from, int to, QPointF linePosition) {
  const QTextLine qt = block.qtLine(line);
  const auto& runs = block.text().runs;
  for (size_t i = block.RunBehind(from); i < runs.size() && runs[i].begin < to; ++i) {
    const int begin = std::max(from, runs[i].begin), end = std::min(to, runs[i].end);
    if (end - begin == 1 && Contains(block.text().objects, begin)) continue;
    const FormatLook& look = block.LookOfRun(i);
    const QPointF position = linePosition - QPointF(0, look.raise);
    for (QGlyphRun glyphs : qt.glyphRuns(begin, end - begin)) {
      glyphs.setFlags({});  // the painter misplaces the lines of a part of a run
      painter_.drawGlyphRun(position, glyphs);
    }
    if (!look.font.underline() && !look.font.strikeOut()) continue;
    std::vector<QRectF> rects;
    block.AddRects(line, begin, end, &rects);
    const QFontMetricsF metrics(look.font);
    const double thick = std::max(1.0, std::round(metrics.lineWidth())), baseline = position.y() + qt.ascent();
    for (const QRectF& rect : rects) {
      const double x = rect.left() + linePosition.x();
      const auto fill = [&](double y) {
        painter_.fillRect(QRectF(x, std::round(y), rect.width(), thick), painter_.pen().color());
      };
      if (look.font.underline()) fill(baseline + metrics.underlinePos());
      if (look.font.strikeOut()) fill(baseline - metrics.strikeOutPos());
    }
  }
}

void BlockPainter::PaintMarks(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin) {
  const BlockLine& geometry = block.lines()[line];
  const auto& objects = block.text().objects;
  for (auto at = std::lower_bound(objects.begin(), objects.end(), geometry.begin);
       at != objects.end() && *at < geometry.end; ++at) {
    const bool on = *at >= selected.from && *at < selected.to;
    PaintObject(block, line, *at, origin, on ? highlightedText_ : ColorOf(block.LookAt(*at)));
  }
  if (geometry.wraps() || !Contains(block.text().pageBreaks, geometry.end)) return;
  const double from = block.XAt(line, geometry.end),
               y = std::round(origin.y() + geometry.top + geometry.height / 2) + 0.5;
  const double to = block.rightToLeft() ? 0 : block.width();
  const double gap = block.BreakRect(line).width() * (block.rightToLeft() ? -1 : 1);
  painter_.setPen(QPen(faint_, 1, Qt::DashLine));
  painter_.drawLine(QPointF(origin.x() + from + gap, y), QPointF(origin.x() + to, y));
}

void BlockPainter::PaintObject(const LayoutBlock& block, size_t line, int offset, QPointF origin, const QColor& color) {
  std::vector<QRectF> rects;
  block.AddRects(line, offset, offset + 1, &rects);
  if (rects.empty()) return;
  const FormatLook& look = block.LookAt(offset);
  const double baseline = block.lines()[line].baseline - look.raise;
  QRectF box(rects[0].left(), baseline - look.ascent, rects[0].width(), look.ascent + look.descent);
  box = box.translated(origin).adjusted(1.5, 1.5, -1.5, -1.5);
  painter_.setPen(QPen(color, 1));
  painter_.setBrush(Qt::NoBrush);
  painter_.drawRect(box);
  const double fold = box.width() / 3;
  painter_.drawPolyline(QPolygonF(
      {box.topRight() + QPointF(-fold, 0), box.topRight() + QPointF(-fold, fold), box.topRight() + QPointF(0, fold)}));
}

void BlockPainter::PaintBullet(const LayoutBlock& block, QPointF origin) {
  const FormatLook& look = block.LookAt(0);
  QFont font = look.font;
  font.setUnderline(false);
  font.setStrikeOut(false);
  painter_.setFont(font);
  painter_.setPen(ColorOf(look));
  painter_.drawText(origin + QPointF(block.bulletRect().left(), block.lines().front().baseline),
                    QString(QChar(0x2022)));
}

void BlockPainter::PaintCaret(const CaretShape& shape, double top, const FormatLook& look, const QRectF& cell) {
  QColor color = text_;
  if (!cell.isEmpty()) {
    color.setAlpha(110);
    painter_.fillRect(cell.translated(x_, top), color);
    return;
  }
  const double baseline = top + shape.baseline;
  const double from = baseline - std::ceil(look.ascent), to = baseline + std::ceil(look.descent);
  const double x = x_ + shape.rect.left();
  const double width = to - from > 40 ? 2 : 1;
  if (!look.font.italic()) {
    painter_.fillRect(QRectF(x, from, width, to - from), color);
    return;
  }
  const double lean = (to - from) * 0.2;
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setPen(QPen(color, width));
  painter_.drawLine(QPointF(x + lean * 0.75, from), QPointF(x - lean * 0.25, to));
  painter_.restore();
}

}  // namespace text::layout
