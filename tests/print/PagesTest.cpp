// How text is divided into pages.
#include "tests/layout/LayoutTesting.h"
#include "text/print/PageSetup.h"
#include "text/print/Pages.h"
#include "text/print/Printing.h"

#include <QBuffer>
#include <QPdfWriter>

namespace text::layout {
namespace {

struct PageLine {
  Units begin;  // of the line
  double top, bottom;
  bool starts, ends;  // its paragraph
  bool inTable;
};
using Page = std::vector<PageLine>;

std::vector<Page> PagesOf(const Document& document, double width, double height) {
  Blocks blocks(document);
  blocks.SetFont(QFont("DejaVu Sans"), 1);
  blocks.SetWidth(width);
  blocks.SetObjectHeight(height);
  Pages pages(blocks, height);
  std::vector<Page> result;
  while (const auto page = pages.Next()) {
    result.emplace_back();
    for (const PageSlice& slice : *page) {
      for (size_t i = 0; i < slice.block.row->parts().size(); ++i) {
        const PlacedPart part = slice.block.Part(i);
        for (const BlockLine& line : part.block->lines()) {
          const double top = part.top + line.top, middle = top + line.height / 2 - slice.block.top;
          if (middle < slice.from || middle >= slice.to) continue;
          result.back().push_back({part.PositionOf(line.begin), top, top + line.height,
                                   &line == &part.block->lines().front(), &line == &part.block->lines().back(),
                                   !slice.block.row->frames().empty()});
        }
      }
    }
  }
  return result;
}

TEST(Pages, EveryLineIsOnOnePageAndWhole) {
  for (uint32_t seed = 1; seed <= 20; ++seed) {
    uint32_t state = seed;
    const auto next = [&state](uint32_t below) { return (state = state * 1664525u + 1013904223u) / 65536 % below; };
    RichText text;
    for (int i = 0; i < 60; ++i) {
      ParaFormat format;
      format.spaceBefore = static_cast<int32_t>(next(3) * 200);
      format.spaceAfter = static_cast<int32_t>(next(3) * 200);
      if (next(8) == 0) {
        text.AddRow({Repeated("cell words ", static_cast<int>(next(90))), "b|c", "d"}, MakeRow({1500, 3000, 4500}));
      } else {
        text.Add(Repeated("some words ", static_cast<int>(next(60))) + (next(12) == 0 ? "\fbehind a page break" : ""),
                 format);
      }
    }
    Document document = text.Finish();
    const double height = 200;
    const auto pages = PagesOf(document, 300, height);
    Units before(-1);
    for (size_t p = 0; p < pages.size(); ++p) {
      const Page& page = pages[p];
      ASSERT_FALSE(page.empty()) << "seed " << seed;
      for (const PageLine& line : page) {
        if (!line.inTable) {
          EXPECT_GT(line.begin, before) << "seed " << seed;
          before = line.begin;
        }
        EXPECT_GE(line.top, -0.01) << "seed " << seed << " page " << p;
        EXPECT_LE(line.bottom, height + 0.01) << "seed " << seed << " page " << p;
      }
      const PageLine& last = page.back();
      const auto behindPageBreak = [&](const Page& at) {
        const Range character{at.front().begin - Units(1), at.front().begin};
        return document.content().Utf16(character) == u"\f";
      };
      if (p + 1 == pages.size() || behindPageBreak(pages[p + 1])) continue;
      EXPECT_FALSE(!last.inTable && last.starts && !last.ends && page.size() > 1)
          << "a first line alone at the end of page " << p << ", seed " << seed;
      const PageLine& over = pages[p + 1].front();
      EXPECT_FALSE(!over.inTable && over.ends && !over.starts && page.size() > 2)
          << "a last line alone at the begin of page " << p + 1 << ", seed " << seed;
    }
    // Each position is on a page: as many lines as without pages.
    size_t lines = 0;
    for (const Page& page : pages) lines += page.size();
    const auto whole = PagesOf(document, 300, 1e6);
    size_t all = 0;
    for (const Page& page : whole) all += page.size();
    EXPECT_EQ(lines, all) << "seed " << seed;
  }
}

TEST(Pages, BreaksAndRowsBeginThem) {
  Document broken = MakeDocument("one\ftwo\n\fthree\f");
  EXPECT_EQ(PagesOf(broken, 300, 500).size(), 4u);
  RichText text;
  text.Add(Repeated("line\u2028", 9) + "end").AddRow({Repeated("words that wrap ", 5), "b"}, MakeRow({1500, 3000}));
  Document row = text.Finish();
  const auto pages = PagesOf(row, 300, 260);
  ASSERT_EQ(pages.size(), 2u);
  EXPECT_FALSE(pages[0].back().inTable) << "a row that fits a page is not divided";
  EXPECT_EQ(PagesOf(MakeDocument(""), 300, 500).size(), 1u);
}

struct Words {
  const char* words;
  int width, left, bottom;
  bool landscape;
};

TEST(PageWords, AreRead) {
  for (const Words& c : {Words{"\\paperw12240\\paperh15840\\margl1440\\margr1800\\margb720 ", 12240, 1440, 720, false},
                         {"\\landscape\\paperw15840", 15840, 0, 0, true},
                         {"\\margl-5\\margb99999999999", 0, 0, 0, false},
                         {"\\margltext\\marglsxn100\\\\margl7", 0, 7, 0, false},
                         {"", 0, 0, 0, false}}) {
    const PageWords page = ReadPageWords(c.words);
    EXPECT_EQ(page.width, c.width) << c.words;
    EXPECT_EQ(page.left, c.left) << c.words;
    EXPECT_EQ(page.bottom, c.bottom) << c.words;
    EXPECT_EQ(page.landscape, c.landscape) << c.words;
  }
}

int PagesIn(const QByteArray& pdf) {
  return static_cast<int>(pdf.count("/Type /Page\n"));
}

TEST(Printing, GivesPagesUntilItIsCancelled) {
  Document document = MakeDocument(Paragraphs(300));
  for (const int most : {0, 2}) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    ASSERT_TRUE(buffer.open(QIODevice::WriteOnly));
    int told = 0;
    Printed printed;
    {
      QPdfWriter writer(&buffer);
      SetUpPages({12240, 15840, 1440, 1440, 1440, 1440, false}, true, writer);
      EXPECT_NEAR(writer.pageLayout().paintRect(QPageLayout::Point).width(), 468, 1);
      PrintOptions options;
      options.range = document.content().all();
      options.defaultFont = QFont("DejaVu Sans");
      options.progress = [&](int page, double part) {
        EXPECT_EQ(page, ++told);
        EXPECT_LE(part, 1);
        return page != most;
      };
      printed = Print(document, options, writer);
    }
    EXPECT_EQ(printed, most ? Printed::kCancelled : Printed::kAll);
    EXPECT_TRUE(bytes.startsWith("%PDF"));
    if (most) {
      EXPECT_EQ(told, most);
    } else {
      EXPECT_EQ(PagesIn(bytes), told);
      EXPECT_GT(told, 5);
    }
  }
}

}  // namespace
}  // namespace text::layout
