#include "text/print/Printing.h"

#include "text/layout/BlockPainter.h"
#include "text/print/Pages.h"

#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QPainter>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace text::layout {
namespace {

constexpr double kTwipsPerPoint = 20;
constexpr double kDefaultMargin = 25 / 25.4 * 72;  // points
constexpr double kPixelsPerPoint = 96.0 / 72;
constexpr double kSmallestText = 72;  // points, of the page's width and height

QPalette Black() {
  QPalette palette;
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    palette.setColor(group, QPalette::Text, Qt::black);
    palette.setColor(group, QPalette::Base, Qt::white);
  }
  return palette;
}

class Printer {
 public:
  Printer(const Document& document, const PrintOptions& options, QPagedPaintDevice& device)
      : options_(options),
        device_(device),
        document_(Content(document.content()).Slice(options.range)),
        blocks_(document_) {
    const Breaks first = document.content().ParagraphAt(options.range.begin);
    blocks_.numbers().StartBehind(document.content(), first);
    QFont font = options.defaultFont;
    font.setHintingPreference(QFont::PreferNoHinting);  // lines are as wide on paper as they were measured
    blocks_.SetFont(font, 1);
    blocks_.SetDefaultTab(options.defaultTab);
    blocks_.SetDefaultStops(options.defaultStops);
    blocks_.SetLinkColor(QColor(0x05, 0x63, 0xC1));
    const QRectF area = device.pageLayout().paintRect(QPageLayout::Point);
    size_ = area.size() * kPixelsPerPoint;
    blocks_.SetWidth(std::max(1.0, size_.width()));
    blocks_.SetObjectHeight(std::max(1.0, size_.height()));
  }

  Printed Run() {
    QPainter painter;
    if (!painter.begin(&device_)) return Printed::kFailed;
    const double scale = device_.logicalDpiX() / 96.0;
    Pages pages(blocks_, size_.height());
    const double units = std::max<double>(1, static_cast<double>(document_.content().size().value()));
    for (int number = 1;; ++number) {
      const double part = static_cast<double>(pages.position().value()) / units;
      const auto page = pages.Next();
      if (!page) break;
      if (options_.progress && !options_.progress(number, part)) return Printed::kCancelled;
      if (number > 1 && !device_.newPage()) return Printed::kFailed;
      painter.save();
      painter.scale(scale, scale);
      PaintPage(painter, *page);
      painter.restore();
    }
    return painter.end() ? Printed::kAll : Printed::kFailed;
  }

 private:
  void PaintPage(QPainter& painter, const std::vector<PageSlice>& page) {
    PaintOptions options;
    options.palette = Black();
    options.printing = true;
    const QRectF all(QPointF(), size_);
    BlockPainter blockPainter(painter, all, 0, options, document_.formats(), pictures_);
    for (const PageSlice& slice : page) {
      const PlacedBlock& block = slice.block;
      blockPainter.PaintShading(block, block.top + slice.from, block.top + slice.to);
      for (size_t i = 0; i < block.row->parts().size(); ++i) PaintPart(blockPainter, block, i, slice);
      blockPainter.PaintBorders(block, block.top + slice.from, block.top + slice.to);
    }
  }

  // Only the lines of this page are drawn: what is merely clipped would still be text of the file.
  static void PaintPart(BlockPainter& painter, const PlacedBlock& block, size_t index, const PageSlice& slice) {
    const RowPart& part = block.row->parts()[index];
    const auto& lines = part.block->lines();
    const auto isHere = [&](const BlockLine& line) {
      const double middle = part.y + line.top + line.height / 2;
      return middle >= slice.from && middle < slice.to;
    };
    const auto first = std::find_if(lines.begin(), lines.end(), isHere);
    const auto end = std::find_if_not(first, lines.end(), isHere);
    if (first == end) return;
    painter.PaintLines(block.Part(index), static_cast<size_t>(first - lines.begin()),
                       static_cast<size_t>(end - lines.begin()) - 1);
  }

  const PrintOptions& options_;
  QPagedPaintDevice& device_;
  Document document_;
  Blocks blocks_;
  pictures::PictureCache pictures_;
  QSizeF size_;  // of the pages' text area, pixels
};

}  // namespace

PageWords ReadPageWords(std::string_view words) {
  PageWords page;
  constexpr int kMostTwips = 31680;
  const struct {
    std::string_view name;
    int* value;
  } known[] = {{"paperw", &page.width}, {"paperh", &page.height}, {"margl", &page.left},
               {"margt", &page.top},    {"margr", &page.right},   {"margb", &page.bottom}};
  for (size_t at = words.find('\\'); at != std::string_view::npos; at = words.find('\\', at + 1)) {
    const std::string_view rest = words.substr(at + 1);
    const size_t letters = std::min(rest.find_first_not_of("abcdefghijklmnopqrstuvwxyz"), rest.size());
    const std::string_view name = rest.substr(0, letters);
    if (name == "landscape") page.landscape = true;
    for (const auto& word : known) {
      if (name != word.name) continue;
      int value = 0;
      std::from_chars(rest.data() + letters, rest.data() + rest.size(), value);
      *word.value = std::clamp(value, 0, kMostTwips);
    }
  }
  return page;
}

void SetUpPages(const PageWords& words, bool sizeToo, QPagedPaintDevice& device) {
  const QSizeF size(words.width / kTwipsPerPoint, words.height / kTwipsPerPoint);
  if (sizeToo && size.width() >= 2 * kSmallestText && size.height() >= 2 * kSmallestText) {
    // A paper's own size is upright.
    const bool wide = size.width() > size.height();
    device.setPageOrientation(wide ? QPageLayout::Landscape : QPageLayout::Portrait);
    device.setPageSize(QPageSize(wide ? size.transposed() : size, QPageSize::Point, {}, QPageSize::FuzzyMatch));
  }
  const auto margin = [](int twips) { return twips > 0 ? twips / kTwipsPerPoint : kDefaultMargin; };
  QMarginsF margins(margin(words.left), margin(words.top), margin(words.right), margin(words.bottom));
  const QSizeF paper = device.pageLayout().fullRect(QPageLayout::Point).size();
  if (paper.width() - margins.left() - margins.right() < kSmallestText) {
    margins.setLeft(std::min(kDefaultMargin, paper.width() / 4));
    margins.setRight(margins.left());
  }
  if (paper.height() - margins.top() - margins.bottom() < kSmallestText) {
    margins.setTop(std::min(kDefaultMargin, paper.height() / 4));
    margins.setBottom(margins.top());
  }
  device.setPageMargins(margins, QPageLayout::Point);
}

Printed Print(const Document& document, const PrintOptions& options, QPagedPaintDevice& device) {
  return Printer(document, options, device).Run();
}

}  // namespace text::layout
