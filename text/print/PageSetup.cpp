#include "text/print/PageSetup.h"

#include <QPageLayout>
#include <QPagedPaintDevice>

#include <algorithm>
#include <charconv>

namespace text::layout {
namespace {

constexpr double kTwipsPerPoint = 20;
constexpr double kDefaultMargin = 25 / 25.4 * 72;  // points
constexpr double kSmallestText = 72;               // points, of the page's width and height

}  // namespace

PageWords ReadPageWords(std::string_view words) {
  PageWords page;
  constexpr int kMostTwips = 31680;
  const struct {
    std::string_view name;
    int* value;
  } known[] = {{"paperw", &page.width},      {"paperh", &page.height},       {"margl", &page.left},
               {"margt", &page.top},         {"margr", &page.right},         {"margb", &page.bottom},
               {"headery", &page.headerTop}, {"footery", &page.footerBottom}};
  const struct {
    std::string_view name;
    bool* value;
  } flags[] = {{"landscape", &page.landscape}, {"titlepg", &page.firstDiffers}, {"facingp", &page.sidesDiffer}};
  for (size_t at = words.find('\\'); at != std::string_view::npos; at = words.find('\\', at + 1)) {
    const std::string_view rest = words.substr(at + 1);
    const size_t letters = std::min(rest.find_first_not_of("abcdefghijklmnopqrstuvwxyz"), rest.size());
    const std::string_view name = rest.substr(0, letters);
    for (const auto& flag : flags) {
      if (flag.name == name) *flag.value = true;
    }
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

}  // namespace text::layout
