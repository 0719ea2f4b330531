#include "text/layout/LayoutBlock.h"

#include "text/layout/ViewLayout.h"
#include "text/outline/SymbolFonts.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>
#include <functional>

namespace text::layout {
namespace {

// Text is never squeezed into less than this, whatever the indents say.
constexpr double kMinTextPixels = 24;
constexpr double kLabelGap = 6;

double Pixels(int32_t twips, double zoom) {
  return std::clamp(twips / kTwipsPerPixel * zoom, -1e6, 1e6);
}
double Space(int32_t twips, double zoom) {
  return std::round(std::clamp(Pixels(twips, zoom), 0.0, kMaxPixels));
}

Qt::Alignment AlignmentOf(const ParaFormat& format, bool rightToLeft) {
  switch (format.alignment) {
    case Alignment::kRight:
      return Qt::AlignRight;
    case Alignment::kCenter:
      return Qt::AlignHCenter;
    case Alignment::kJustify:
      return Qt::AlignJustify;
    case Alignment::kLeft:
      break;
  }
  // Where only the text says that it runs to the left, "left" is not a choice but the default: it begins at its right.
  return rightToLeft && !format.rightToLeft ? Qt::AlignRight : Qt::AlignLeft;
}

}  // namespace

LayoutBlock::LayoutBlock(BlockText text, const BlockStyle& style) : text_(std::move(text)), width_(style.width) {
  FindLooks(style);
  boxMeasures_ = BoxMeasures(text_.paragraph.box, text_.boxJoins, style.fonts->zoom());
  if (!text_.label.isEmpty()) MeasureLabel(style);
  if (!text_.objects.empty()) LimitObjects(style);
  SetUpLayout(style);
  PlaceLines(style);
  if (text_.mixed) FindLevels();
  PlaceLabel(style.fonts->zoom());
  if (!text_.paragraph.box.empty()) PlaceBox(style.fonts->zoom());
}

void LayoutBlock::FindLooks(const BlockStyle& style) {
  looks_.reserve(text_.runs.size());
  for (const BlockRun& run : text_.runs) looks_.push_back(&style.fonts->Of(*style.formats, run.format));
  raises_ = std::any_of(looks_.begin(), looks_.end(), [](const FormatLook* look) { return look->raise != 0; });
  endLook_ = text_.runs.empty() ? &style.fonts->Of(*style.formats, text_.endFormat) : looks_.back();
}

// --- Objects

// Within the narrower of the paragraph's lines.
void LayoutBlock::LimitObjects(const BlockStyle& style) {
  const double zoom = style.fonts->zoom();
  const Edges first = EdgesOf(true, zoom), others = EdgesOf(false, zoom);
  const double widest = width_ - std::max(first.left + first.right, others.left + others.right);
  objectLimit_ = {std::min(widest, kMaxPixels), std::min(style.objectHeight, kMaxPixels)};
}

QSizeF LayoutBlock::ObjectSizeOf(const FormatLook& look) const {
  QSizeF size = look.object;
  if (size.isEmpty()) size = QSizeF(look.ascent + look.descent, look.ascent + look.descent);
  const double scale = std::min({1.0, objectLimit_.width() / size.width(), objectLimit_.height() / size.height()});
  return {std::max(1.0, std::floor(size.width() * scale)), std::max(1.0, std::round(size.height() * scale))};
}

// The stand-in is made as wide as the object by the spacing behind it.
QTextCharFormat LayoutBlock::ObjectFormat(const FormatLook& look, QChar standIn) const {
  QTextCharFormat format = look.format;
  QFont font = look.font;
  font.setUnderline(false);
  font.setStrikeOut(false);
  const double advance = QFontMetricsF(look.font).horizontalAdvance(standIn);
  font.setLetterSpacing(QFont::AbsoluteSpacing, ObjectSizeOf(look).width() - advance);
  format.setFont(font);
  format.setForeground(Qt::transparent);
  return format;
}

QList<QTextLayout::FormatRange> LayoutBlock::FormatRanges() const {
  QList<QTextLayout::FormatRange> ranges;
  const bool plain = text_.objects.empty() && looks_.size() <= 1 && endLook_->fontOnly;
  if (!plain) {
    for (size_t i = 0; i < looks_.size(); ++i) {
      const BlockRun& run = text_.runs[i];
      ranges.append({run.begin, run.end - run.begin, looks_[i]->format});
    }
  }
  // Neighbours of one look share a range: making a font is what costs.
  const FormatLook* last = nullptr;
  for (const int object : text_.objects) {
    const FormatLook* look = &LookAt(object);
    if (look == last && ranges.back().start + ranges.back().length == object) {
      ++ranges.back().length;
    } else if (look == last) {
      ranges.append({object, 1, ranges.back().format});
    } else {
      ranges.append({object, 1, ObjectFormat(*look, text_.text[object])});
    }
    last = look;
  }
  for (QTextLayout::FormatRange range : text_.preeditFormats) {
    QTextCharFormat format = LookAt(range.start).format;
    format.merge(range.format);
    range.format = format;
    ranges.append(range);
  }
  return ranges;
}

void LayoutBlock::SetUpLayout(const BlockStyle& style) {
  layout_.setCacheEnabled(true);
  layout_.setText(text_.text);
  layout_.setFont(looks_.empty() ? endLook_->font : looks_.front()->font);
  const QList<QTextLayout::FormatRange> ranges = FormatRanges();
  if (!ranges.isEmpty()) layout_.setFormats(ranges);
  option_.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  option_.setTextDirection(text_.rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
  option_.setAlignment(AlignmentOf(text_.paragraph, text_.rightToLeft));
  option_.setTabStopDistance(std::max(1.0, Pixels(style.defaultTab, style.fonts->zoom())));
  layout_.setTextOption(option_);
}

// The indents count from the side where the paragraph's lines begin.
LayoutBlock::Edges LayoutBlock::EdgesOf(bool firstLine, double zoom) const {
  const ParaFormat& format = text_.paragraph;
  double lead = Pixels(format.leftIndent, zoom);
  if (firstLine) {
    const double first = lead + Pixels(format.firstIndent, zoom);
    const bool labelled = labelRect_.width() > 0;
    lead = labelled ? std::max(lead, std::max(0.0, first) + labelRect_.width() + kLabelGap * zoom) : first;
  }
  const double room = std::max(0.0, width_ - std::min(width_, kMinTextPixels));
  const QMarginsF& inset = boxMeasures_.inset;
  lead = std::clamp(lead, std::min(text_.rightToLeft ? inset.right() : inset.left(), room), room);
  const double least = std::min(text_.rightToLeft ? inset.left() : inset.right(), room - lead);
  const double trail = std::clamp(Pixels(format.rightIndent, zoom), least, room - lead);
  return text_.rightToLeft ? Edges{trail, lead} : Edges{lead, trail};
}

// Qt counts tab stops from where the line begins, the document from the paragraph's edge. A hanging first line has the
// place of the following lines as a stop of its own.
std::vector<PixelStop> LayoutBlock::StopsOf(const BlockStyle& style) const {
  const double zoom = style.fonts->zoom();
  const double distance = option_.tabStopDistance();
  std::vector<PixelStop> stops;
  double last = 0;
  const auto add = [&](double at, TabKind kind = TabKind::kLeft, TabLeader leader = TabLeader::kNone) {
    stops.push_back({at, kind, leader});
    last = std::max(last, at);
  };
  for (const TabStop& stop : (*style.formats)[text_.paragraph.tabs])
    add(Pixels(stop.position, zoom), stop.kind, stop.leader);
  if (text_.paragraph.firstIndent < 0) add(Pixels(text_.paragraph.leftIndent, zoom));
  for (const int twips : *style.defaultStops) {
    const double stop = Pixels(twips, zoom);
    if (stop > last) add(stop);
  }
  for (double stop = (std::floor(last / distance) + 1) * distance; stop < width_ && stops.size() < 1000;
       stop += distance) {
    stops.push_back({stop});
  }
  std::stable_sort(stops.begin(), stops.end(), [](const PixelStop& a, const PixelStop& b) { return a.at < b.at; });
  return stops;
}

// For a line that begins at `lead`.
QList<QTextOption::Tab> LayoutBlock::TabsFrom(const std::vector<PixelStop>& stops, double lead) const {
  QList<QTextOption::Tab> tabs;
  for (const PixelStop& stop : stops) {
    if (stop.at > lead) tabs.append(StopAt(stop.at - lead, text_.rightToLeft));
  }
  return tabs;
}

void LayoutBlock::UseTabs(size_t line) const {
  option_.setTabs(lineTabs_[std::min(line, lineTabs_.size() - 1)]);
  layout_.setTextOption(option_);
}

// For the line that is placed next.
void LayoutBlock::PlaceTabs(const BlockStyle& style, const QTextLine& line, const Edges& edges) {
  const double lead = text_.rightToLeft ? edges.right : edges.left;
  if (ruler_) {
    while (!leaders_.empty() && leaders_.back().shown >= line.textStart()) leaders_.pop_back();
    const double end = width_ - (text_.rightToLeft ? edges.left : edges.right);
    lineTabs_.push_back(ruler_->StopsOf(line.textStart(), lead, end, leaders_));
  } else if (lines_.size() < 2) {
    const bool regular =
        text_.paragraph.tabs == TabsId::kNone && text_.paragraph.firstIndent >= 0 && style.defaultStops->empty();
    lineTabs_.push_back(regular && lead == 0 ? QList<QTextOption::Tab>() : TabsFrom(StopsOf(style), lead));
  } else {
    return;
  }
  UseTabs(lines_.size());
}

void LayoutBlock::MeasureLine(const QTextLine& line, double zoom, BlockLine* measured, double* ascent,
                              double* descent) const {
  double up = line.ascent(), down = line.descent(), leading = std::max(0.0, line.leading());
  const size_t first = raises_ ? RunBehind(measured->begin) : looks_.size();
  for (size_t i = first; i < looks_.size() && text_.runs[i].begin < measured->next; ++i) {
    if (looks_[i]->raise == 0) continue;
    up = std::max(up, looks_[i]->ascent + looks_[i]->raise);
    down = std::max(down, looks_[i]->descent - looks_[i]->raise);
  }
  for (auto object = std::lower_bound(text_.objects.begin(), text_.objects.end(), measured->begin);
       object != text_.objects.end() && *object < measured->next; ++object) {
    const FormatLook& look = LookAt(*object);
    if (look.object.isEmpty()) continue;
    up = std::max(up, ObjectSizeOf(look).height() + look.raise);
  }
  *ascent = std::ceil(up);
  *descent = std::ceil(down);
  const double natural = std::clamp(*ascent + *descent + std::ceil(leading), 1.0, 2 * kMaxPixels);
  const ParaFormat& format = text_.paragraph;
  const double asked =
      format.lineSpacingMultiple ? natural * format.lineSpacing / 240.0 : Pixels(format.lineSpacing, zoom);
  measured->height = natural;
  if (format.lineSpacing != 0) {
    // A negative spacing is exact, a positive one the least; multiples of a line may also be less than one.
    const bool least = !format.lineSpacingMultiple && asked > 0;
    measured->height = std::clamp(std::round(least ? std::max(asked, natural) : std::abs(asked)), 1.0, 2 * kMaxPixels);
  }
}

void LayoutBlock::PlaceLines(const BlockStyle& style) {
  const double zoom = style.fonts->zoom();
  double y = text_.startsParagraph ? Space(text_.paragraph.spaceBefore, zoom) + boxMeasures_.inset.top() : 0;
  if (text_.tabs && IsMoreThanLeft((*style.formats)[text_.paragraph.tabs])) ruler_.emplace(layout_, StopsOf(style));
  layout_.beginLayout();
  for (QTextLine line = layout_.createLine(); line.isValid(); line = layout_.createLine()) {
    const bool first = lines_.empty() && text_.startsParagraph;
    const Edges edges = EdgesOf(first, zoom);
    if (text_.tabs) PlaceTabs(style, line, edges);
    line.setLineWidth(width_ - edges.left - edges.right);
    // The heights are ours: positions within the layout have a range that tall blocks would leave.
    line.setPosition({edges.left, 0});
    BlockLine placed;
    placed.begin = line.textStart();
    placed.next = placed.end = placed.begin + line.textLength();
    if (placed.end > placed.begin && text_.text[placed.end - 1] == QChar::LineSeparator) --placed.end;
    double ascent = 0, descent = 0;
    MeasureLine(line, zoom, &placed, &ascent, &descent);
    placed.top = y;
    placed.baseline = y + placed.height - descent;
    y += placed.height;
    lines_.push_back(placed);
  }
  layout_.endLayout();
  ruler_.reset();
  tabsDiffer_ = std::adjacent_find(lineTabs_.begin(), lineTabs_.end(), std::not_equal_to()) != lineTabs_.end();
  height_ = y;
  if (text_.endsParagraph) height_ += boxMeasures_.inset.bottom() + Space(text_.paragraph.spaceAfter, zoom);
}

// What is between two paragraphs of one box belongs to it.
void LayoutBlock::PlaceBox(double zoom) {
  const ParaFormat& format = text_.paragraph;
  const bool above = text_.boxJoins & kJoinsAbove, below = text_.boxJoins & kJoinsBelow;
  const Edges edges = EdgesOf(format.firstIndent < 0, zoom);
  Edges outer = EdgesOf(false, zoom);
  const double hanging = Pixels(format.leftIndent + std::min(0, format.firstIndent), zoom);
  double& lead = text_.rightToLeft ? outer.right : outer.left;
  lead = std::min({lead, text_.rightToLeft ? edges.right : edges.left,
                   std::max(hanging, text_.rightToLeft ? boxMeasures_.inset.right() : boxMeasures_.inset.left())});
  const double left = outer.left - boxMeasures_.inset.left();
  const double right = width_ - outer.right + boxMeasures_.inset.right();
  const double top = text_.startsParagraph && !above ? Space(format.spaceBefore, zoom) : 0;
  const double bottom = text_.endsParagraph && !below ? height_ - Space(format.spaceAfter, zoom) : height_;
  box_ = {QRectF(QPointF(left, top), QPointF(right, bottom)), 0, boxMeasures_.line, format.box.color,
          format.box.shading};
  uint8_t hidden = ParaBox::kBetween;
  if (!text_.startsParagraph || above) hidden |= ParaBox::kTop;
  if (!text_.endsParagraph || below) hidden |= ParaBox::kBottom;
  box_.sides = static_cast<uint8_t>(format.box.borders & ~hidden);
  const bool between = text_.endsParagraph && below && (format.box.borders & ParaBox::kBetween);
  if (between) box_.sides |= ParaBox::kBottom;
}

// The label is written as the paragraph begins, but in the list's font if that names one.
void LayoutBlock::MeasureLabel(const BlockStyle& style) {
  const ParaFormat& format = text_.paragraph;
  CharFormat chars = LookAt(0).source;
  chars.flags &= static_cast<uint16_t>(~(kUnderline | kStrikeThru | kHidden));
  chars.link = LinkId::kNone;
  if (format.list != ListId::kNone) {
    const auto& levels = (*style.formats)[format.list].levels;
    const size_t level = std::min<size_t>(format.listLevel, levels.empty() ? 0 : levels.size() - 1);
    const FontId font = levels.empty() ? FontId::kDefault : levels[level].font;
    // What a symbol font has is shown by its Unicode character instead.
    if (font != FontId::kDefault && (*style.formats)[font].charset != kSymbolCharset) chars.font = font;
  }
  labelFont_ = FontOf(*style.formats, chars, style.fonts->defaultFont(), style.fonts->zoom());
  labelRect_.setWidth(std::ceil(QFontMetricsF(labelFont_).horizontalAdvance(text_.label)));
}

// A line that does not begin at its side has its label with it.
void LayoutBlock::PlaceLabel(double zoom) {
  if (labelRect_.width() == 0) return;
  const double width = labelRect_.width();
  double lead = std::clamp(Pixels(text_.paragraph.leftIndent + text_.paragraph.firstIndent, zoom), 0.0,
                           std::max(0.0, width_ - kMinTextPixels));
  const Edges edges = EdgesOf(true, zoom);
  const QRectF text = LineTextRect(0);
  lead += std::max(0.0, text_.rightToLeft ? width_ - edges.right - text.right() : text.left() - edges.left);
  const BlockLine& line = lines_.front();
  labelRect_ = QRectF(text_.rightToLeft ? width_ - lead - width : lead, line.top, width, line.height);
}

size_t LayoutBlock::RunBehind(int shown) const {
  const auto run = std::upper_bound(text_.runs.begin(), text_.runs.end(), shown,
                                    [](int offset, const BlockRun& r) { return offset < r.end; });
  return static_cast<size_t>(run - text_.runs.begin());
}

const FormatLook& LayoutBlock::LookAt(int shown) const {
  const size_t run = RunBehind(shown);
  return run == looks_.size() ? *endLook_ : *looks_[run];
}

int LayoutBlock::FromShown(int shown) const {
  if (text_.preeditLength == 0 || shown <= text_.preeditBegin) return shown;
  return std::max(text_.preeditBegin, shown - text_.preeditLength);
}

size_t LayoutBlock::LineOf(int shown, Bias bias) const {
  const auto line = std::upper_bound(lines_.begin(), lines_.end(), shown,
                                     [](int offset, const BlockLine& l) { return offset < l.next; });
  size_t index = line == lines_.end() ? lines_.size() - 1 : static_cast<size_t>(line - lines_.begin());
  if (bias == Bias::kLeft && index > 0 && shown == lines_[index].begin && lines_[index - 1].wraps()) --index;
  return index;
}

size_t LayoutBlock::LineAtY(double y) const {
  const auto line = std::upper_bound(lines_.begin(), lines_.end(), y,
                                     [](double at, const BlockLine& l) { return at < l.top + l.height; });
  return line == lines_.end() ? lines_.size() - 1 : static_cast<size_t>(line - lines_.begin());
}

CaretShape LayoutBlock::CaretAt(int shown, Bias bias) const {
  const size_t index = LineOf(shown, bias);
  const BlockLine& line = lines_[index];
  // As high as the text before it, which is what typing continues; at a line's begin as the text behind it.
  const FormatLook& look = LookAt(shown > line.begin ? shown - 1 : shown);
  const double baseline = line.baseline - look.raise;
  const QRectF rect(XAt(index, shown, bias), baseline - std::ceil(look.ascent), 1,
                    std::ceil(look.ascent) + std::ceil(look.descent));
  return {rect, baseline};
}

}  // namespace text::layout
