#include "text/layout/ViewLayout.h"

#include "text/layout/BlockPainter.h"
#include "text/layout/ScrollModel.h"
#include "text/pictures/Pictures.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace text::layout {
namespace {

constexpr double kFarAway = 1e7;
// A jump over more than so many viewports goes by the estimate.
constexpr double kMaxWalk = 40;

}  // namespace

struct ViewLayout::Impl {
  explicit Impl(const Document& document) : blocks(document), view(blocks), scroll(blocks, view) {}

  const Content& content() const { return blocks.content(); }
  double margin() const { return view.margin(); }
  void SetWidth() { blocks.SetWidth(std::max(1.0, view.width() - 2 * margin())); }
  void Update();
  CaretPlace Valid(CaretPlace place) const { return {content().Snap(place.position, Bias::kLeft), place.affinity}; }
  // A block of the place, not necessarily visible; its top is 0 then.
  PlacedBlock BlockOf(CaretPlace place);
  int ShownOffset(const PlacedPart& part, CaretPlace place) const;
  CaretPlace PlaceAt(const PlacedBlock& block, RowLine line, double x) const;
  bool StepLine(PlacedBlock& block, RowLine& line, bool down, double x);
  std::optional<PlacedBlock> Neighbour(const PlacedBlock& block, bool after);

  Blocks blocks;
  View view;
  ScrollModel scroll;
  pictures::PictureCache pictures;
};

void ViewLayout::Impl::Update() {
  const uint64_t before = blocks.generation();
  if (!blocks.Update([this](const Change& change) { view.Map(change); })) {
    view.Clamp();
    pictures.Clear();
  }
  if (blocks.generation() != before) view.Invalidate();
}

PlacedBlock ViewLayout::Impl::BlockOf(CaretPlace place) {
  if (const PlacedBlock* visible = view.FindVisible(place)) return *visible;
  const BlockSpan span = SpanAt(content(), place.position, place.affinity);
  return {span, blocks.Get(span), 0};
}

// The caret of an input method stands within its text.
int ViewLayout::Impl::ShownOffset(const PlacedPart& part, CaretPlace place) const {
  const auto& preedit = blocks.preedit();
  const int shown = part.ShownOffset(place.position);
  const bool within = preedit && preedit->position == place.position && part.block->text().preeditBegin >= 0;
  return within ? shown + std::clamp(preedit->cursor, 0, part.block->text().preeditLength) : shown;
}

CaretPlace ViewLayout::Impl::PlaceAt(const PlacedBlock& block, RowLine line, double x) const {
  const PlacedPart part = block.Part(line.part);
  const LayoutBlock::Hit hit = part.block->HitLine(line.line, x - margin() - part.x);
  CaretPlace place{content().Snap(part.PositionOf(hit.shown), Bias::kLeft), hit.bias};
  // The last line of a segment wraps into the next one.
  if (place.position == part.range.end && !part.block->text().endsParagraph) place.affinity = Bias::kLeft;
  return place;
}

std::optional<PlacedBlock> ViewLayout::Impl::Neighbour(const PlacedBlock& block, bool after) {
  const auto span = after ? SpanAfter(content(), block.span) : SpanBefore(content(), block.span);
  if (!span) return std::nullopt;
  return PlacedBlock{*span, blocks.Get(*span), 0};
}

// Within a table's row to what stands below in the same cell, else to the next row.
bool ViewLayout::Impl::StepLine(PlacedBlock& block, RowLine& line, bool down, double x) {
  const auto lines = [&](size_t part) { return block.row->parts()[part].block->lines().size(); };
  if (down ? line.line + 1 < lines(line.part) : line.line > 0) {
    line.line = down ? line.line + 1 : line.line - 1;
    return true;
  }
  if (const auto beside = block.row->Beside(line.part, x - margin(), down)) {
    line.part = *beside;
  } else {
    auto next = Neighbour(block, down);
    if (!next) return false;
    block = std::move(*next);
    line.part = block.row->PartAt({x - margin(), down ? -kFarAway : kFarAway});
  }
  line.line = down ? 0 : lines(line.part) - 1;
  return true;
}

ViewLayout::ViewLayout(const Document& document) : impl_(std::make_unique<Impl>(document)) {
  impl_->SetWidth();
}
ViewLayout::~ViewLayout() = default;

// --- Settings

void ViewLayout::SetViewport(QSizeF size) {
  Update();
  impl_->view.SetSize({std::max(1.0, size.width()), std::max(1.0, size.height())}, impl_->margin());
  impl_->SetWidth();
}

void ViewLayout::SetMargins(double margin) {
  Update();
  impl_->view.SetSize({impl_->view.width(), impl_->view.height()}, std::max(0.0, margin));
  impl_->SetWidth();
}

void ViewLayout::SetZoom(double factor) {
  Update();
  impl_->blocks.SetFont(impl_->blocks.font(), std::clamp(factor, 0.1, 10.0));
  impl_->view.Invalidate();
}

void ViewLayout::SetDefaultFont(const QFont& font) {
  Update();
  impl_->blocks.SetFont(font, impl_->blocks.zoom());
  impl_->view.Invalidate();
}

void ViewLayout::SetDefaultTab(int twips) {
  Update();
  impl_->blocks.SetDefaultTab(std::clamp(twips, 15, 31680));
  impl_->view.Invalidate();
}

void ViewLayout::SetDefaultTabStops(std::vector<int> twips) {
  constexpr int kMostTwips = 31680;
  constexpr size_t kMostStops = 1000;
  Update();
  std::erase_if(twips, [](int stop) { return stop <= 0 || stop > kMostTwips; });
  std::sort(twips.begin(), twips.end());
  twips.erase(std::unique(twips.begin(), twips.end()), twips.end());
  twips.resize(std::min(twips.size(), kMostStops));
  impl_->blocks.SetDefaultStops(std::move(twips));
  impl_->view.Invalidate();
}

void ViewLayout::SetLinkColor(const QColor& color) {
  Update();
  impl_->blocks.SetLinkColor(color);
  impl_->view.Invalidate();
}

QSizeF ViewLayout::viewport() const {
  return {impl_->view.width(), impl_->view.height()};
}
double ViewLayout::zoom() const {
  return impl_->blocks.zoom();
}
void ViewLayout::Update() {
  impl_->Update();
}

// --- Scrolling

int ViewLayout::scrollMaximum() {
  return Update(), impl_->scroll.Maximum();
}
int ViewLayout::scrollPage() {
  return Update(), impl_->scroll.Page();
}
int ViewLayout::scrollValue() {
  return Update(), impl_->scroll.Value();
}
void ViewLayout::SetScrollValue(int value) {
  Update(), impl_->scroll.SetValue(value);
}

double ViewLayout::ScrollBy(double pixels) {
  Update();
  if (std::abs(pixels) <= kMaxWalk * impl_->view.height()) return impl_->view.ScrollBy(pixels);
  const Units before = VisibleRange().begin;
  impl_->scroll.JumpBy(pixels);
  return impl_->scroll.HeightBefore(VisibleRange().begin) - impl_->scroll.HeightBefore(before);
}

bool ViewLayout::EnsureVisible(CaretPlace place, double contextPixels) {
  Update();
  View& view = impl_->view;
  place = impl_->Valid(place);
  const double room = std::max(0.0, view.height() - CaretRect(place).height());
  const double context = std::clamp(contextPixels, 0.0, room / 2);
  const bool far = !view.FindVisible(place);
  if (far) {
    const bool above = place.position <= view.Visible().front().span.range.begin;
    const PlacedBlock block = impl_->BlockOf(place);
    const BlockLine& line = block.row->LineAt(block.LineOf(place));
    view.PlaceLine(place, above ? context : view.height() - context - line.height);
  }
  const QRectF rect = CaretRect(place);
  const double tooLow = rect.bottom() + context - view.height();
  double tooHigh = rect.top() - context;
  // The text's first line can be much taller than the caret; what is above it is seen where both have room.
  const PlacedBlock block = impl_->BlockOf(place);
  const double toTop = block.top - impl_->margin();
  if (block.BeginOf(block.LineOf(place)) == Units(0) && rect.bottom() - toTop <= view.height())
    tooHigh = std::min(tooHigh, toTop);
  const double by = tooHigh < 0 ? tooHigh : tooLow > 0 ? std::min(tooLow, tooHigh) : 0;
  const bool moved = by != 0 && view.ScrollBy(by) != 0;
  return far || moved;
}

Range ViewLayout::VisibleRange() {
  Update();
  const auto& blocks = impl_->view.Visible();
  const PlacedBlock &first = blocks.front(), &last = blocks.back();
  Range range{first.span.range.end, last.span.range.begin};
  for (size_t i = 0; i < first.row->parts().size(); ++i) {
    const PlacedPart part = first.Part(i);
    if (i + 1 < first.row->parts().size() && part.top + part.block->height() <= 0) continue;
    range.begin = std::min(range.begin, part.PositionOf(part.block->lines()[part.block->LineAtY(-part.top)].begin));
  }
  // The line that begins exactly at the lower edge is not seen.
  const double lowest = std::nextafter(impl_->view.height(), 0);
  for (size_t i = 0; i < last.row->parts().size(); ++i) {
    const PlacedPart part = last.Part(i);
    if (i > 0 && part.top > lowest) continue;
    range.end = std::max(range.end, part.PositionOf(part.block->lines()[part.block->LineAtY(lowest - part.top)].end));
  }
  return range;
}

// --- Geometry

QRectF ViewLayout::CaretRect(CaretPlace place) {
  Update();
  place = impl_->Valid(place);
  const PlacedBlock block = impl_->BlockOf(place);
  const PlacedPart part = block.PartOf(place);
  const CaretShape shape = part.block->CaretAt(impl_->ShownOffset(part, place), place.affinity);
  double top = part.top;
  if (!impl_->view.FindVisible(place)) {
    top = place.position < impl_->view.Visible().front().span.range.begin ? -kFarAway : kFarAway;
  }
  return shape.rect.translated(impl_->margin() + part.x, top);
}

CaretPlace ViewLayout::HitTest(QPointF point) {
  Update();
  const PlacedBlock block = impl_->view.BlockAt(point.y());
  const QPointF inside(point.x() - impl_->margin(), point.y() - block.top);
  const size_t part = block.row->PartAt(inside);
  const RowPart& text = block.row->parts()[part];
  return impl_->PlaceAt(block, {part, text.block->LineAtY(inside.y() - text.y)}, point.x());
}

bool ViewLayout::IsOnText(QPointF point) {
  Update();
  const PlacedBlock block = impl_->view.BlockAt(point.y());
  const QPointF inside = point - QPointF(impl_->margin(), block.top);
  const RowPart& part = block.row->parts()[block.row->PartAt(inside)];
  const QPointF within = inside - QPointF(part.x, part.y);
  return part.block->LineTextRect(part.block->LineAtY(within.y())).contains(within);
}

std::optional<Units> ViewLayout::CharacterAt(QPointF point) {
  const Units place = HitTest(point).position;
  const Content& content = impl_->content();
  for (const Units from : {content.Snap(place - Units(1), Bias::kLeft), place}) {
    for (const QRectF& rect : RangeRects({from, content.Snap(from + Units(1), Bias::kRight)})) {
      if (rect.contains(point)) return from;
    }
  }
  return std::nullopt;
}

std::vector<QRectF> ViewLayout::RangeRects(Range range) {
  Update();
  std::vector<QRectF> rects;
  for (const PlacedBlock& block : impl_->view.Visible()) {
    if (range.end <= block.span.range.begin || range.begin >= block.span.range.end) continue;
    for (size_t i = 0; i < block.row->parts().size(); ++i) {
      const PlacedPart part = block.Part(i);
      if (range.end <= part.range.begin || range.begin >= part.range.end) continue;
      const int from = part.ShownOffset(range.begin), to = part.ShownOffset(range.end);
      const size_t first = part.block->LineOf(from, Bias::kRight), last = part.block->LineOf(to, Bias::kLeft);
      for (size_t line = first; line <= last; ++line) {
        std::vector<QRectF> inLine;
        part.block->AddRects(line, from, to, &inLine);
        for (const QRectF& rect : inLine) {
          const QRectF placed = rect.translated(impl_->margin() + part.x, part.top);
          if (placed.bottom() > 0 && placed.top() < impl_->view.height()) rects.push_back(placed);
        }
      }
    }
  }
  return rects;
}

// --- Lines

Range ViewLayout::LineAt(CaretPlace place) {
  Update();
  place = impl_->Valid(place);
  const PlacedBlock block = impl_->BlockOf(place);
  const RowLine at = block.LineOf(place);
  const PlacedPart part = block.Part(at.part);
  const BlockLine& line = block.row->LineAt(at);
  return {part.PositionOf(line.begin), part.PositionOf(line.end)};
}

CaretPlace ViewLayout::MoveByLines(CaretPlace place, int64_t lines, double x) {
  Update();
  place = impl_->Valid(place);
  PlacedBlock block = impl_->BlockOf(place);
  RowLine line = block.LineOf(place);
  for (int64_t left = std::abs(lines); left > 0 && impl_->StepLine(block, line, lines > 0, x); --left) {
  }
  return impl_->PlaceAt(block, line, x);
}

CaretPlace ViewLayout::MoveVisually(CaretPlace place, bool right) {
  Update();
  place = impl_->Valid(place);
  const PlacedBlock block = impl_->BlockOf(place);
  const PlacedPart part = block.PartOf(place);
  const auto placeOf = [&](const PlacedPart& in, LayoutBlock::Hit hit) {
    const Units position = in.PositionOf(hit.shown);
    return CaretPlace{impl_->content().Snap(position, position > place.position ? Bias::kRight : Bias::kLeft),
                      hit.bias};
  };
  const bool forward = right != part.block->rightToLeft();
  const LayoutBlock::Hit from{part.ShownOffset(place.position), place.affinity};
  if (const auto moved = part.block->MoveVisually(from, right)) return placeOf(part, *moved);
  std::optional<PlacedBlock> nextBlock;
  PlacedPart next;
  if (forward ? part.index + 1 < block.row->parts().size() : part.index > 0) {
    next = block.Part(forward ? part.index + 1 : part.index - 1);
  } else {
    nextBlock = impl_->Neighbour(block, forward);
    if (!nextBlock) return place;
    next = nextBlock->Part(forward ? 0 : nextBlock->row->parts().size() - 1);
  }
  const Units edge = forward ? next.range.begin : next.range.end;
  if (edge != place.position) return {edge, Bias::kRight};
  // On the border of two segments the same position is the edge of both.
  const LayoutBlock::Hit border{next.ShownOffset(edge), forward ? Bias::kRight : Bias::kLeft};
  const auto moved = next.block->MoveVisually(border, right);
  return moved ? placeOf(next, *moved) : CaretPlace{edge};
}

bool ViewLayout::IsRightToLeft(Breaks paragraph) {
  Update();
  const Content& content = impl_->content();
  const Breaks number = std::clamp(paragraph, Breaks(0), content.breaks());
  const Range range{content.ParagraphStart(number), content.ParagraphEnd(number)};
  return IsParagraphRightToLeft(content, range, content.formats()[content.ParaFormatOf(number)]);
}

// --- Painting

void ViewLayout::SetPreedit(std::optional<Preedit> preedit) {
  Update();
  impl_->blocks.SetPreedit(std::move(preedit));
  impl_->view.Invalidate();
}

const std::optional<Preedit>& ViewLayout::preedit() const {
  return impl_->blocks.preedit();
}

void ViewLayout::Paint(QPainter& painter, const QRectF& clip, const PaintOptions& options) {
  Update();
  const QColor base = options.background.isValid() ? options.background : options.palette.color(QPalette::Base);
  painter.fillRect(clip, base);
  painter.save();
  painter.setClipRect(clip, Qt::IntersectClip);
  const FormatTable& formats = impl_->content().formats();
  BlockPainter blockPainter(painter, clip, impl_->margin(), options, formats, impl_->pictures);
  for (const PlacedBlock& block : impl_->view.Visible()) {
    if (block.bottom() > clip.top() && block.top < clip.bottom()) blockPainter.Paint(block);
  }
  if (options.showCaret) PaintCaret(blockPainter, options);
  painter.restore();
}

void ViewLayout::PaintCaret(BlockPainter& painter, const PaintOptions& options) {
  const CaretPlace place = impl_->Valid({options.selection.caret, options.caretAffinity});
  const PlacedBlock* block = impl_->view.FindVisible(place);
  const auto& preedit = impl_->blocks.preedit();
  const bool hidden = preedit && preedit->position == place.position && preedit->cursor < 0;
  if (!block || hidden) return;
  const PlacedPart part = block->PartOf(place);
  const int shown = impl_->ShownOffset(part, place);
  CaretShape shape = part.block->CaretAt(shown, place.affinity);
  const size_t line = part.block->LineOf(shown, place.affinity);
  std::vector<QRectF> cell;
  if (options.overtype) part.block->AddRects(line, shown, part.block->NextShown(shown), &cell);
  const FormatLook look = impl_->blocks.fonts().Make(impl_->content().formats(), options.caretFormat);
  shape.baseline = part.block->lines()[line].baseline - look.raise;
  painter.PaintCaret(shape, part, look, cell.empty() ? QRectF() : cell.front());
}

size_t ViewLayout::cachedBlocks() const {
  return impl_->blocks.cached();
}

}  // namespace text::layout
