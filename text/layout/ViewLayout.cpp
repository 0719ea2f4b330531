#include "text/layout/ViewLayout.h"

#include "text/layout/BlockPainter.h"
#include "text/layout/ScrollModel.h"

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
  int ShownOffset(const PlacedBlock& block, CaretPlace place) const;
  CaretPlace PlaceAt(const PlacedBlock& block, size_t line, double x) const;
  bool StepLine(PlacedBlock& block, size_t& line, bool down);
  std::optional<PlacedBlock> Neighbour(const PlacedBlock& block, bool after);

  Blocks blocks;
  View view;
  ScrollModel scroll;
};

void ViewLayout::Impl::Update() {
  const uint64_t before = blocks.generation();
  if (!blocks.Update([this](const Change& change) { view.Map(change); })) view.Clamp();
  if (blocks.generation() != before) view.Invalidate();
}

PlacedBlock ViewLayout::Impl::BlockOf(CaretPlace place) {
  if (const PlacedBlock* visible = view.FindVisible(place)) return *visible;
  const BlockSpan span = SpanAt(content(), place.position, place.affinity);
  return {span, blocks.Get(span), 0};
}

// The caret of an input method stands within its text.
int ViewLayout::Impl::ShownOffset(const PlacedBlock& block, CaretPlace place) const {
  const auto& preedit = blocks.preedit();
  const int shown = block.ShownOffset(place.position);
  const bool within = preedit && preedit->position == place.position && block.block->text().preeditBegin >= 0;
  return within ? shown + std::clamp(preedit->cursor, 0, block.block->text().preeditLength) : shown;
}

CaretPlace ViewLayout::Impl::PlaceAt(const PlacedBlock& block, size_t line, double x) const {
  const LayoutBlock::Hit hit = block.block->HitLine(line, x - margin());
  CaretPlace place{content().Snap(block.PositionOf(hit.shown), Bias::kLeft), hit.bias};
  // The last line of a segment wraps into the next one.
  if (place.position == block.span.range.end && !block.span.endsParagraph()) place.affinity = Bias::kLeft;
  return place;
}

std::optional<PlacedBlock> ViewLayout::Impl::Neighbour(const PlacedBlock& block, bool after) {
  const auto span = after ? SpanAfter(content(), block.span) : SpanBefore(content(), block.span);
  if (!span) return std::nullopt;
  return PlacedBlock{*span, blocks.Get(*span), 0};
}

bool ViewLayout::Impl::StepLine(PlacedBlock& block, size_t& line, bool down) {
  if (down ? line + 1 < block.block->lines().size() : line > 0) {
    line = down ? line + 1 : line - 1;
    return true;
  }
  auto next = Neighbour(block, down);
  if (!next) return false;
  block = std::move(*next);
  line = down ? 0 : block.block->lines().size() - 1;
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
  const QRectF rect = CaretRect(place);
  const double room = std::max(0.0, view.height() - rect.height());
  const double context = std::clamp(contextPixels, 0.0, room / 2);
  if (view.FindVisible(place)) {
    const double tooHigh = rect.top() - context, tooLow = rect.bottom() + context - view.height();
    const double by = tooHigh < 0 ? tooHigh : tooLow > 0 ? std::min(tooLow, tooHigh) : 0;
    return by != 0 && view.ScrollBy(by) != 0;
  }
  const bool above = place.position <= view.Visible().front().span.range.begin;
  const PlacedBlock block = impl_->BlockOf(place);
  const BlockLine& line = block.block->lines()[block.block->LineOf(block.ShownOffset(place.position), place.affinity)];
  view.PlaceLine(place, above ? context : view.height() - context - line.height);
  view.Visible();
  return true;
}

Range ViewLayout::VisibleRange() {
  Update();
  const auto& blocks = impl_->view.Visible();
  const PlacedBlock &first = blocks.front(), &last = blocks.back();
  const size_t firstLine = first.block->LineAtY(-first.top);
  // The line that begins exactly at the lower edge is not seen.
  const size_t lastLine = last.block->LineAtY(std::nextafter(impl_->view.height(), 0) - last.top);
  return {first.PositionOf(first.block->lines()[firstLine].begin), last.PositionOf(last.block->lines()[lastLine].end)};
}

// --- Geometry

QRectF ViewLayout::CaretRect(CaretPlace place) {
  Update();
  place = impl_->Valid(place);
  const PlacedBlock block = impl_->BlockOf(place);
  const CaretShape shape = block.block->CaretAt(impl_->ShownOffset(block, place), place.affinity);
  double top = block.top;
  if (!impl_->view.FindVisible(place)) {
    top = place.position < impl_->view.Visible().front().span.range.begin ? -kFarAway : kFarAway;
  }
  return shape.rect.translated(impl_->margin(), top);
}

CaretPlace ViewLayout::HitTest(QPointF point) {
  Update();
  const PlacedBlock block = impl_->view.BlockAt(point.y());
  return impl_->PlaceAt(block, block.block->LineAtY(point.y() - block.top), point.x());
}

bool ViewLayout::IsOnText(QPointF point) {
  Update();
  const PlacedBlock block = impl_->view.BlockAt(point.y());
  const QPointF inside = point - QPointF(impl_->margin(), block.top);
  return block.block->LineTextRect(block.block->LineAtY(inside.y())).contains(inside);
}

std::vector<QRectF> ViewLayout::RangeRects(Range range) {
  Update();
  std::vector<QRectF> rects;
  for (const PlacedBlock& block : impl_->view.Visible()) {
    if (range.end <= block.span.range.begin || range.begin >= block.span.range.end) continue;
    const int from = block.ShownOffset(std::max(range.begin, block.span.range.begin));
    const int to = block.ShownOffset(std::min(range.end, block.span.range.end));
    const size_t first = block.block->LineOf(from, Bias::kRight), last = block.block->LineOf(to, Bias::kLeft);
    for (size_t line = first; line <= last; ++line) {
      std::vector<QRectF> inLine;
      block.block->AddRects(line, from, to, &inLine);
      for (const QRectF& rect : inLine) {
        const QRectF placed = rect.translated(impl_->margin(), block.top);
        if (placed.bottom() > 0 && placed.top() < impl_->view.height()) rects.push_back(placed);
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
  const BlockLine& line = block.block->lines()[block.block->LineOf(block.ShownOffset(place.position), place.affinity)];
  return {block.PositionOf(line.begin), block.PositionOf(line.end)};
}

CaretPlace ViewLayout::MoveByLines(CaretPlace place, int64_t lines, double x) {
  Update();
  place = impl_->Valid(place);
  PlacedBlock block = impl_->BlockOf(place);
  size_t line = block.block->LineOf(block.ShownOffset(place.position), place.affinity);
  for (int64_t left = std::abs(lines); left > 0 && impl_->StepLine(block, line, lines > 0); --left) {
  }
  return impl_->PlaceAt(block, line, x);
}

CaretPlace ViewLayout::MoveVisually(CaretPlace place, bool right) {
  Update();
  place = impl_->Valid(place);
  const PlacedBlock block = impl_->BlockOf(place);
  const auto placeOf = [&](const PlacedBlock& in, LayoutBlock::Hit hit) {
    const Units position = in.PositionOf(hit.shown);
    return CaretPlace{impl_->content().Snap(position, position > place.position ? Bias::kRight : Bias::kLeft),
                      hit.bias};
  };
  const bool forward = right != block.block->rightToLeft();
  const LayoutBlock::Hit from{block.ShownOffset(place.position), place.affinity};
  if (const auto moved = block.block->MoveVisually(from, right)) return placeOf(block, *moved);
  const auto next = impl_->Neighbour(block, forward);
  if (!next) return place;
  const Units edge = forward ? next->span.range.begin : next->span.range.end;
  if (edge != place.position) return {edge, Bias::kRight};
  // On the border of two segments the same position is the edge of both.
  const LayoutBlock::Hit border{next->ShownOffset(edge), forward ? Bias::kRight : Bias::kLeft};
  const auto moved = next->block->MoveVisually(border, right);
  return moved ? placeOf(*next, *moved) : CaretPlace{edge};
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
  BlockPainter blockPainter(painter, clip, impl_->margin(), options, formats);
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
  const int shown = impl_->ShownOffset(*block, place);
  CaretShape shape = block->block->CaretAt(shown, place.affinity);
  const size_t line = block->block->LineOf(shown, place.affinity);
  std::vector<QRectF> cell;
  if (options.overtype) block->block->AddRects(line, shown, block->block->NextShown(shown), &cell);
  const FormatLook look = impl_->blocks.fonts().Make(impl_->content().formats(), options.caretFormat);
  shape.baseline = block->block->lines()[line].baseline - look.raise;
  painter.PaintCaret(shape, block->top, look, cell.empty() ? QRectF() : cell.front());
}

size_t ViewLayout::cachedBlocks() const {
  return impl_->blocks.cached();
}

}  // namespace text::layout
