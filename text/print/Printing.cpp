#include "text/print/Printing.h"

#include "text/print/PageNotes.h"
#include "text/print/PageTexts.h"
#include "text/print/Pages.h"
#include "text/print/SlicePainter.h"

#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QPainter>

#include <algorithm>

namespace text::layout {
namespace {

constexpr double kPixelsPerPoint = 96.0 / 72;
constexpr int kUsualEdge = 720;             // twips, between paper and headers
constexpr double kBesideHeader = 6;         // pixels, between it and the text
constexpr double kMostOfHeaders = 1.0 / 3;  // of the paper

class Printer {
 public:
  Printer(const Document& document, const PrintOptions& options, QPagedPaintDevice& device)
      : options_(options),
        device_(device),
        words_(ReadPageWords(options.properties ? options.properties->headerWords : std::string())),
        texts_(options.properties ? *options.properties : rtf::DocumentProperties(), words_),
        document_(Content(document.content()).Slice(options.range)) {
    whole_ = document.content();
    FindAreas();
  }

  Printed PrintAll() {
    if (texts_.countPages() && !Count()) return Printed::kCancelled;
    QPainter painter;
    if (!painter.begin(&device_)) return Printed::kFailed;
    const double scale = device_.logicalDpiX() / 96.0;
    painter.scale(scale, scale);
    Run run(*this);
    for (int number = 1; auto page = run.Next(); ++number) {
      if (!Tell(number, page->before, texts_.countPages() ? 0.5 : 0)) return Printed::kCancelled;
      if (number > 1 && !device_.newPage()) return Printed::kFailed;
      run.Paint(painter, *page, number);
    }
    return painter.end() ? Printed::kAll : Printed::kFailed;
  }

 private:
  struct Page {
    double before = 0;  // the part of the text
    std::vector<PageSlice> text;
    std::vector<PageNotes::Part> foot;
  };

  // One way through the pages.
  class Run {
   public:
    explicit Run(Printer& printer)
        : printer_(printer),
          blocks_(printer.document_),
          notes_(printer.document_, printer.texts_, printer.height_, [&printer](Blocks& b) { printer.SetUp(b); }),
          pages_((printer.SetUpText(blocks_), blocks_), printer.height_) {
      if (notes_.any()) pages_.SetFoot([this](Range text) { return notes_.HeightFor(text); });
    }
    std::optional<Page> Next() {
      Page page;
      const Units begin = pages_.position();
      page.before = static_cast<double>(begin.value()) / std::max<double>(1, blocks_.content().size().value());
      auto text = pages_.Next();
      if (!text && !notes_.leftOver()) return std::nullopt;
      if (text) page.text = std::move(*text);
      page.foot = notes_.Take({begin, pages_.position()}, printer_.height_ - HeightOf(page.text));
      return page;
    }
    void Paint(QPainter& painter, const Page& page, int number) {
      SlicePainter slices(painter, printer_.width_);
      slices.SetNoteMarks([this](ObjectId object) { return notes_.MarkOf(object); });
      painter.save();
      painter.translate(0, printer_.top_);
      slices.Paint(page.text, 0, blocks_.content().formats(), pictures_);
      notes_.Paint(page.foot, slices, painter);
      painter.restore();
      printer_.PaintBeside(slices, number);
    }

   private:
    Printer& printer_;
    Blocks blocks_;
    PageNotes notes_;
    Pages pages_;
    pictures::PictureCache pictures_;
  };

  void SetUp(Blocks& blocks) const {
    QFont font = options_.defaultFont;
    font.setHintingPreference(QFont::PreferNoHinting);  // lines are as wide on paper as they were measured
    blocks.SetFont(font, 1);
    blocks.SetDefaultTab(options_.defaultTab);
    blocks.SetDefaultStops(options_.defaultStops);
    blocks.SetLinkColor(QColor(0x05, 0x63, 0xC1));
    blocks.SetWidth(width_);
    blocks.SetObjectHeight(height_);
  }
  void SetUpText(Blocks& blocks) const {
    blocks.numbers().StartBehind(whole_, whole_.ParagraphAt(options_.range.begin));
    SetUp(blocks);
  }

  bool Tell(int number, double part, double from) const {
    return !options_.progress || options_.progress(number, from + part * (texts_.countPages() ? 0.5 : 1));
  }

  // How many pages there are is known only behind the last.
  bool Count() {
    Run run(*this);
    for (pages_ = 0; const auto page = run.Next(); ++pages_) {
      if (!Tell(pages_ + 1, page->before, 0)) return false;
    }
    return true;
  }

  // The text's area, from the margins' corner, where the painter's coordinates begin.
  void FindAreas() {
    const QRectF paper = device_.pageLayout().fullRect(QPageLayout::Point);
    const QRectF inside = device_.pageLayout().paintRect(QPageLayout::Point);
    width_ = std::max(1.0, inside.width() * kPixelsPerPoint);
    height_ = std::max(1.0, inside.height() * kPixelsPerPoint);
    const auto edge = [](int twips) { return (twips > 0 ? twips : kUsualEdge) / kTwipsPerPixel; };
    headerTop_ = edge(words_.headerTop) - inside.top() * kPixelsPerPoint;
    footerBottom_ = height_ + (paper.bottom() - inside.bottom()) * kPixelsPerPoint - edge(words_.footerBottom);
    const double most = paper.height() * kPixelsPerPoint * kMostOfHeaders;
    double header = 0, footer = 0;
    for (int page = 1; page <= 3; ++page) {
      if (PageText* text = texts_.Header(page)) header = std::max(header, HeightOfText(*text));
      if (PageText* text = texts_.Footer(page)) footer = std::max(footer, HeightOfText(*text));
    }
    if (header > 0) top_ = std::max(0.0, headerTop_ + std::min(header, most) + kBesideHeader);
    double bottom = height_;
    if (footer > 0) bottom = std::min(bottom, footerBottom_ - std::min(footer, most) - kBesideHeader);
    height_ = std::max(height_ * kMostOfHeaders, bottom - top_);
  }

  double HeightOfText(const PageText& text) const {
    double height = 0;
    WithText(text, {}, [&](Blocks&, const std::vector<PageSlice>& slices) { height = HeightOf(slices); });
    return height;
  }

  template <class F>
  void WithText(const PageText& text, const PageNumbers& numbers, const F& visit) const {
    const Document document = Filled(text.content, numbers);
    Blocks blocks(document);
    SetUp(blocks);
    Pages pages(blocks, kMaxPixels);
    if (const auto slices = pages.Next()) visit(blocks, *slices);
  }

  void PaintBeside(SlicePainter& painter, int number) {
    const PageNumbers numbers{number, pages_, 0};
    const auto paint = [&](PageText* text, const std::function<double(double height)>& top) {
      if (!text) return;
      WithText(*text, numbers, [&](Blocks& blocks, const std::vector<PageSlice>& slices) {
        painter.Paint(slices, top(HeightOf(slices)), blocks.content().formats(), text->pictures);
      });
    };
    paint(texts_.Header(number), [&](double) { return headerTop_; });
    paint(texts_.Footer(number), [&](double height) { return footerBottom_ - height; });
  }

  const PrintOptions& options_;
  QPagedPaintDevice& device_;
  PageWords words_;
  PageTexts texts_;
  Document document_;
  Content whole_;
  double width_ = 1, height_ = 1;            // of the text's area
  double top_ = 0;                           // where it begins
  double headerTop_ = 0, footerBottom_ = 0;  // from there
  int pages_ = 1;
};

}  // namespace

Printed Print(const Document& document, const PrintOptions& options, QPagedPaintDevice& device) {
  return Printer(document, options, device).PrintAll();
}

}  // namespace text::layout
