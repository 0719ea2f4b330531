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

QRectF Between(QRectF rect, double top, double bottom) {
  rect.setTop(std::max(rect.top(), top));
  rect.setBottom(std::max(rect.top(), std::min(rect.bottom(), bottom)));
  return rect;
}

// In the screen's measures whatever the device, as all text here is; from the rectangle's top or in its middle.
void DrawLines(QPainter& painter, const QString& text, const QFont& font, const QRectF& rect, Qt::Alignment alignment,
               bool rightToLeft = false) {
  QTextLayout layout(text, font);
  QTextOption option(alignment & Qt::AlignHorizontal_Mask);
  option.setTextDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  layout.setTextOption(option);
  double height = 0;
  layout.beginLayout();
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(std::max(1.0, rect.width()));
    line.setPosition({0, height});
    height += line.height();
    if (height > kMaxPixels) break;
  }
  layout.endLayout();
  const double y = alignment & Qt::AlignVCenter ? std::max(0.0, (rect.height() - height) / 2) : 0;
  layout.draw(&painter, rect.topLeft() + QPointF(0, y));
}

constexpr int kDarkPaper = 100;  // of 255

bool IsLegibleOn(const QColor& paper, const QColor& color) {
  constexpr int kLeast = 80;
  return std::abs(qGray(color.rgb()) - qGray(paper.rgb())) >= kLeast;
}

// The colour with its lightness turned around.
QColor LegibleOn(const QColor& paper, const QColor& color) {
  QColor light = QColor::fromHsl(color.hslHue(), color.hslSaturation(), 255 - color.lightness());
  while (!IsLegibleOn(paper, light) && light.lightness() < 255) {
    light = QColor::fromHsl(light.hslHue(), light.hslSaturation(), std::min(255, light.lightness() + 20));
  }
  return light;
}

// Of a leader that is a line, else 0.
double ThicknessOf(TabLeader leader) {
  return leader == TabLeader::kLine ? 1 : leader == TabLeader::kThickLine ? 2 : 0;
}

QChar CharacterOf(TabLeader leader) {
  switch (leader) {
    case TabLeader::kMiddleDots:
      return QChar(0xB7);
    case TabLeader::kHyphens:
      return QLatin1Char('-');
    case TabLeader::kEquals:
      return QLatin1Char('=');
    default:
      return QLatin1Char('.');
  }
}

bool Contains(const std::vector<int>& offsets, int offset) {
  return std::binary_search(offsets.begin(), offsets.end(), offset);
}

}  // namespace

BlockPainter::BlockPainter(QPainter& painter, const QRectF& clip, double x, const PaintOptions& options,
                           const FormatTable& formats, pictures::PictureCache& pictures)
    : painter_(painter), clip_(clip), x_(x), options_(options), formats_(formats), pictures_(pictures) {
  const QPalette& palette = options.palette;
  const auto group = options.selectionActive ? QPalette::Active : QPalette::Inactive;
  text_ = ink_ = palette.color(QPalette::Text);
  highlight_ = palette.color(group, QPalette::Highlight);
  highlightedText_ = palette.color(group, QPalette::HighlightedText);
  paper_ = options.background.isValid() ? options.background : palette.color(QPalette::Base);
  darkPaper_ = !options.printing && qGray(paper_.rgb()) < kDarkPaper;
  faint_ = Blend(text_, paper_);
}

QColor BlockPainter::ColorOf(const FormatLook& look) const {
  if (IsTooDark(look)) return LegibleOn(paper_, ColorFrom(look.source.color));
  if (!look.source.color.isAuto()) return ColorFrom(look.source.color);
  return look.source.background.isAuto() ? ink_ : ReadableOn(look.source.background);
}

// Documents are made for white paper: on a dark one of the desktop's, colours that would vanish are made lighter.
bool BlockPainter::IsTooDark(const FormatLook& look) const {
  return darkPaper_ && behind_.isAuto() && look.source.background.isAuto() && !look.source.color.isAuto() &&
         !IsLegibleOn(paper_, ColorFrom(look.source.color));
}

// Automatic text is the palette's, but where the document says what is behind it.
QColor BlockPainter::InkOn(Color behind) const {
  return behind.isAuto() ? text_ : ReadableOn(behind);
}

BlockPainter::Selected BlockPainter::SelectedIn(const PlacedPart& part) const {
  const Range range = options_.selection.range();
  if (range.empty() || range.end < part.range.begin || range.begin > part.range.end) return {};
  return {part.ShownOffset(range.begin), part.ShownOffset(range.end),
          part.block->text().endsParagraph && range.end > part.range.end};
}

void BlockPainter::Paint(const PlacedBlock& placed) {
  PaintShading(placed, placed.top, placed.bottom());
  for (size_t i = 0; i < placed.row->parts().size(); ++i) {
    const PlacedPart part = placed.Part(i);
    const LayoutBlock& block = *part.block;
    if (part.top > clip_.bottom() || part.top + block.height() < clip_.top()) continue;
    // With exact line spacing text may reach into the lines beside its own.
    size_t first = block.LineAtY(clip_.top() - part.top), last = block.LineAtY(clip_.bottom() - part.top);
    first -= first > 0 ? 1 : 0;
    last += last + 1 < block.lines().size() ? 1 : 0;
    PaintLines(part, first, last);
  }
  PaintBorders(placed, placed.top, placed.bottom());
}

void BlockPainter::PaintLines(const PlacedPart& part, size_t first, size_t last) {
  const LayoutBlock& block = *part.block;
  const QPointF origin(x_ + part.x, part.top);
  const Selected selected = SelectedIn(part);
  behind_ = part.behind;
  ink_ = InkOn(behind_);
  for (size_t line = first; line <= last; ++line) {
    PaintBackgrounds(block, line, origin);
    PaintSelection(block, line, selected, origin);
  }
  if (first == 0 && !block.labelRect().isEmpty()) PaintLabel(block, origin);
  for (size_t line = first; line <= last; ++line) {
    PaintText(block, line, selected, origin);
    PaintLeaders(block, line, selected, origin);
    PaintMarks(block, line, selected, origin);
  }
}

// --- Tables and boxes

void BlockPainter::PaintShading(const PlacedBlock& placed, double from, double to) {
  for (const CellFrame& frame : placed.row->frames()) {
    if (frame.shading.isAuto()) continue;
    painter_.fillRect(OnPixels(Between(frame.rect.translated(x_, placed.top), from, to)), ColorFrom(frame.shading));
  }
  for (size_t i = 0; i < placed.row->parts().size(); ++i) {
    const PlacedPart part = placed.Part(i);
    const BlockBox& box = part.block->box();
    if (box.shading.isAuto()) continue;
    painter_.fillRect(OnPixels(Between(box.rect.translated(x_ + part.x, part.top), from, to)), ColorFrom(box.shading));
  }
}

void BlockPainter::PaintBoxBorders(const PlacedPart& part, double from, double to) {
  const BlockBox& box = part.block->box();
  if (box.sides == 0) return;
  const QRectF all = OnPixels(box.rect.translated(x_ + part.x, part.top));
  QColor color = box.color.isAuto() ? text_ : ColorFrom(box.color);
  if (darkPaper_ && part.behind.isAuto() && !IsLegibleOn(paper_, color)) color = LegibleOn(paper_, color);
  const auto side = [&](ParaBox::Side which, QRectF line) {
    if (box.sides & which) painter_.fillRect(Between(line, from, to), color);
  };
  side(ParaBox::kLeft, QRectF(all.left(), all.top(), box.line, all.height()));
  side(ParaBox::kRight, QRectF(all.right() - box.line, all.top(), box.line, all.height()));
  side(ParaBox::kTop, QRectF(all.left(), all.top(), all.width(), box.line));
  side(ParaBox::kBottom, QRectF(all.left(), all.bottom() - box.line, all.width(), box.line));
}

// A line lies on the pixels to the right of and below its edge; neighbours draw the same ones.
void BlockPainter::PaintBorders(const PlacedBlock& placed, double from, double to) {
  for (size_t i = 0; i < placed.row->parts().size(); ++i) PaintBoxBorders(placed.Part(i), from, to);
  const auto line = [&](const QPointF& a, const QPointF& b, bool guide) {
    const double top = std::max(a.y(), from), bottom = std::min(b.y(), to);
    if (bottom < top) return;
    QPen pen(guide ? faint_ : text_, 1, guide ? Qt::DotLine : Qt::SolidLine, Qt::FlatCap);
    painter_.setPen(pen);
    painter_.drawLine(QPointF(a.x() + 0.5, top + 0.5), QPointF(b.x() + 0.5, bottom + 0.5));
  };
  for (const CellFrame& frame : placed.row->frames()) {
    const QRectF rect = OnPixels(frame.rect.translated(x_, placed.top));
    const auto side = [&](TableCell::Side which, const QPointF& a, const QPointF& b) {
      if (frame.borders & which) {
        line(a, b, false);
      } else if (frame.guides & which && !options_.printing) {
        line(a, b, true);
      }
    };
    side(TableCell::kLeft, rect.topLeft(), rect.bottomLeft());
    side(TableCell::kRight, rect.topRight(), rect.bottomRight());
    side(TableCell::kTop, rect.topLeft(), rect.topRight());
    side(TableCell::kBottom, rect.bottomLeft(), rect.bottomRight());
  }
}

// --- Text

void BlockPainter::PaintBackgrounds(const LayoutBlock& block, size_t line, QPointF origin) {
  const auto& runs = block.text().runs;
  const BlockLine& geometry = block.lines()[line];
  for (size_t i = block.RunBehind(geometry.begin); i < runs.size() && runs[i].begin < geometry.end; ++i) {
    const Color color = block.LookOfRun(i).source.background;
    if (color.isAuto()) continue;
    std::vector<QRectF> rects;
    block.AddRects(line, runs[i].begin, runs[i].end, &rects);
    for (const QRectF& rect : rects) painter_.fillRect(OnPixels(rect.translated(origin)), ColorFrom(color));
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

bool BlockPainter::HasTooDark(const LayoutBlock& block, size_t line) const {
  // What is composed has formats of its own.
  if (!darkPaper_ || block.text().preeditLength > 0) return false;
  const auto& runs = block.text().runs;
  const BlockLine& geometry = block.lines()[line];
  for (size_t i = block.RunBehind(geometry.begin); i < runs.size() && runs[i].begin < geometry.end; ++i) {
    if (IsTooDark(block.LookOfRun(i))) return true;
  }
  return false;
}

void BlockPainter::PaintText(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin) {
  const BlockLine& geometry = block.lines()[line];
  const QTextLine qt = block.qtLine(line);
  const QPointF position = origin + QPointF(0, geometry.baseline - qt.ascent());
  const int from = std::max(selected.from, geometry.begin), to = std::min(selected.to, geometry.end);
  painter_.setPen(ink_);
  // On paper what stands in for objects would be text.
  const auto object = std::lower_bound(block.text().objects.begin(), block.text().objects.end(), geometry.begin);
  if (options_.printing && object != block.text().objects.end() && *object < geometry.end) {
    return PaintGlyphs(block, line, geometry.begin, geometry.end, position, true);
  }
  const bool dark = HasTooDark(block, line);
  const auto draw = [&] {
    if (dark) return PaintGlyphs(block, line, geometry.begin, geometry.end, position, true);
    qt.draw(&painter_, position);
  };
  if (from >= to) return draw();
  std::vector<QRectF> rects;
  block.AddRects(line, from, to, &rects);
  QRegion inside;
  for (const QRectF& rect : rects) inside += OnPixels(rect.translated(origin));
  if (from > geometry.begin || to < geometry.end) {
    const QRect around = QRectF(origin.x() - x_, origin.y() + geometry.top - geometry.height, x_ * 2 + block.width(),
                                3 * geometry.height)
                             .toAlignedRect();
    painter_.save();
    painter_.setClipRegion(QRegion(around) - inside, Qt::IntersectClip);
    draw();
    painter_.restore();
  }
  painter_.save();
  painter_.setClipRegion(inside, Qt::IntersectClip);
  painter_.setPen(highlightedText_);
  PaintGlyphs(block, line, geometry.begin, geometry.end, position);
  painter_.restore();
}

// In the pen's colour whatever the formats say, or in their own.
void BlockPainter::PaintGlyphs(const LayoutBlock& block, size_t line, int from, int to, QPointF linePosition,
                               bool ownColors) {
  const QTextLine qt = block.qtLine(line);
  const auto& runs = block.text().runs;
  for (size_t i = block.RunBehind(from); i < runs.size() && runs[i].begin < to; ++i) {
    const int begin = std::max(from, runs[i].begin), end = std::min(to, runs[i].end);
    if (end - begin == 1 && Contains(block.text().objects, begin)) continue;
    const FormatLook& look = block.LookOfRun(i);
    const bool colored = look.format.hasProperty(QTextFormat::ForegroundBrush) && !IsTooDark(look);
    if (ownColors) painter_.setPen(colored ? look.format.foreground().color() : ColorOf(look));
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

// One below the other in all the lines.
void BlockPainter::PaintLeaders(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin) {
  const BlockLine& geometry = block.lines()[line];
  const auto& leaders = block.leaders();
  const auto before = [](const LeaderAt& leader, int shown) { return leader.shown < shown; };
  for (auto at = std::lower_bound(leaders.begin(), leaders.end(), geometry.begin, before);
       at != leaders.end() && at->shown < geometry.end; ++at) {
    const auto [left, right] = std::minmax({block.XAt(line, at->shown, Bias::kLeft), block.XAt(line, at->shown + 1)});
    const FormatLook& look = block.LookAt(at->shown);
    const bool isSelected = at->shown >= selected.from && at->shown < selected.to;
    painter_.setPen(isSelected ? highlightedText_ : ColorOf(look));
    const double baseline = geometry.baseline - look.raise;
    if (const double thick = ThicknessOf(at->leader); thick > 0) {
      const QRectF rule(left, std::round(baseline) + 1, right - left, thick);
      painter_.fillRect(rule.translated(origin), painter_.pen().color());
      continue;
    }
    QFont font = look.font;
    font.setUnderline(false);
    font.setStrikeOut(false);
    const QChar dot = CharacterOf(at->leader);
    const double step = std::max(1.0, QFontMetricsF(font).horizontalAdvance(dot));
    const double first = std::ceil(left / step) * step;
    const int count = static_cast<int>((right - first) / step);
    painter_.setFont(font);
    if (count > 0) painter_.drawText(origin + QPointF(first, baseline), QString(count, dot));
  }
}

void BlockPainter::PaintMarks(const LayoutBlock& block, size_t line, const Selected& selected, QPointF origin) {
  const BlockLine& geometry = block.lines()[line];
  const auto& objects = block.text().objects;
  for (auto at = std::lower_bound(objects.begin(), objects.end(), geometry.begin);
       at != objects.end() && *at < geometry.end; ++at) {
    PaintObject(block, line, *at, origin, *at >= selected.from && *at < selected.to);
  }
  if (options_.printing || geometry.wraps() || !Contains(block.text().pageBreaks, geometry.end)) return;
  const double from = block.XAt(line, geometry.end),
               y = std::round(origin.y() + geometry.top + geometry.height / 2) + 0.5;
  const double to = block.rightToLeft() ? 0 : block.width();
  const double gap = block.BreakRect(line).width() * (block.rightToLeft() ? -1 : 1);
  painter_.setPen(QPen(faint_, 1, Qt::DashLine));
  painter_.drawLine(QPointF(origin.x() + from + gap, y), QPointF(origin.x() + to, y));
}

// --- Objects

void BlockPainter::PaintObject(const LayoutBlock& block, size_t line, int offset, QPointF origin, bool selected) {
  std::vector<QRectF> rects;
  block.AddRects(line, offset, offset + 1, &rects);
  if (rects.empty()) return;
  const FormatLook& look = block.LookAt(offset);
  const QColor color = selected ? highlightedText_ : ColorOf(look);
  const double baseline = block.lines()[line].baseline - look.raise;
  if (look.source.object == ObjectId::kNone) {
    const QRectF box(rects[0].left(), baseline - look.ascent, rects[0].width(), look.ascent + look.descent);
    return PaintStandIn(box.translated(origin).adjusted(1.5, 1.5, -1.5, -1.5), color);
  }
  const QSizeF size = block.ObjectSize(offset);
  const QRectF box = QRectF(QPointF(rects[0].left(), baseline - size.height()), size).translated(origin);
  if (formats_[look.source.object].kind == ObjectKind::kNote) {
    QFont font = look.font;
    font.setPointSizeF(std::max(1.0, font.pointSizeF() * 0.75));
    painter_.setPen(color);
    const QString mark = options_.noteMark ? options_.noteMark(look.source.object) : QStringLiteral("*");
    return DrawLines(painter_, mark, font, box.adjusted(-8, 0, 8, 0), Qt::AlignHCenter);
  }
  if (!PaintPicture(look, box)) return PaintNamedFrame(look, box, color);
  if (!selected) return;
  QColor veil = highlight_;
  veil.setAlpha(110);
  painter_.fillRect(box, veil);
}

bool BlockPainter::PaintPicture(const FormatLook& look, const QRectF& box) {
  const QTransform& transform = painter_.deviceTransform();
  constexpr double kMost = 16384;
  const QSizeF pixels(std::min(kMost, box.width() * std::abs(transform.m11())),
                      std::min(kMost, box.height() * std::abs(transform.m22())));
  const QImage image = pictures_.Get(formats_, look.source.object, pixels.toSize());
  if (image.isNull()) return false;
  painter_.save();
  painter_.setRenderHint(QPainter::SmoothPixmapTransform);
  painter_.drawImage(box, image);
  painter_.restore();
  return true;
}

void BlockPainter::PaintNamedFrame(const FormatLook& look, const QRectF& box, const QColor& color) {
  painter_.save();
  painter_.setPen(QPen(color, 1));
  painter_.setBrush(Qt::NoBrush);
  painter_.drawRect(box.adjusted(0.5, 0.5, -0.5, -0.5));
  QFont font = look.font;
  font.setUnderline(false);
  const QRectF inside = box.adjusted(3, 1, -3, -1);
  painter_.setClipRect(inside, Qt::IntersectClip);
  DrawLines(painter_, pictures::NameOf(formats_[look.source.object]), font, inside, Qt::AlignCenter);
  painter_.restore();
}

// A character that refers to nothing.
void BlockPainter::PaintStandIn(const QRectF& box, const QColor& color) {
  painter_.setPen(QPen(color, 1));
  painter_.setBrush(Qt::NoBrush);
  painter_.drawRect(box);
  const double fold = box.width() / 3;
  painter_.drawPolyline(QPolygonF(
      {box.topRight() + QPointF(-fold, 0), box.topRight() + QPointF(-fold, fold), box.topRight() + QPointF(0, fold)}));
}

// --- What is not text

void BlockPainter::PaintLabel(const LayoutBlock& block, QPointF origin) {
  painter_.setPen(ColorOf(block.LookAt(0)));
  const double baseline = origin.y() + block.lines().front().baseline;
  const QRectF label = block.labelRect();
  const QRectF rect(origin.x() + label.left(), baseline - QFontMetricsF(block.labelFont()).ascent(), label.width() + 1,
                    label.height());
  DrawLines(painter_, block.text().label, block.labelFont(), rect, Qt::AlignLeft | Qt::AlignAbsolute,
            block.rightToLeft());
}

void BlockPainter::PaintCaret(const CaretShape& shape, const PlacedPart& part, const FormatLook& look,
                              const QRectF& cell) {
  const QPointF origin(part.x, part.top);
  QColor color = InkOn(part.behind);
  if (!cell.isEmpty()) {
    color.setAlpha(110);
    painter_.fillRect(cell.translated(origin + QPointF(x_, 0)), color);
    return;
  }
  const double baseline = origin.y() + shape.baseline;
  const double from = baseline - std::ceil(look.ascent), to = baseline + std::ceil(look.descent);
  const double x = x_ + origin.x() + shape.rect.left();
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
