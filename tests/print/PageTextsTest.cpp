// Headers, footers and notes.
#include "tests/layout/LayoutTesting.h"
#include "text/print/PageNotes.h"
#include "text/print/PageTexts.h"

#include <set>

namespace text::layout {
namespace {

std::string Shown(PageText* text, const PageNumbers& numbers) {
  if (!text) return "-";
  const Content content = Filled(text->content, numbers).content();
  return content.ByteString(content.all());
}

struct Beside {
  const char* rtf;
  const char *first, *second, *third;  // header, "|", footer of three pages of twelve
};

TEST(PageTexts, EachPageHasItsOwn) {
  const char* const none = "-|-";
  for (const Beside& c :
       {Beside{"{\\rtf1 text}", none, none, none},
        {"{\\rtf1{\\header H}{\\footer \\chpgn}text}", "H|1", "H|2", "H|3"},
        {"{\\rtf1\\titlepg{\\headerf F}{\\header H}text}", "F|-", "H|-", "H|-"},
        {"{\\rtf1\\titlepg{\\footer f}text}", none, "-|f", "-|f"},
        {"{\\rtf1{\\headerr R}{\\headerl L}text}", "R|-", "R|-", "R|-"},
        {"{\\rtf1\\facingp{\\headerr R}{\\headerl L}text}", "R|-", "L|-", "R|-"},
        {"{\\rtf1{\\header one}a\\sect{\\header two}{\\footer two}b}", "one|-", "one|-", "one|-"},
        {"{\\rtf1{\\pict{\\header no}00}{\\*\\headers x}{\\headery H}{\\header y\\'e4\\par}t}", "yä|-", "yä|-", "yä|-"},
        {"{\\rtf1{\\footer{\\field{\\*\\fldinst { PAGE }}{\\fldrslt {\\b 7}7}} of "
         "{\\field{\\*\\fldinst NUMPAGES}{\\fldrslt}}, {\\field{\\*\\fldinst DATE}{\\fldrslt May}}}t}",
         "-|1 of 12, May", "-|2 of 12, May", "-|3 of 12, May"},
        {"{\\rtf1{\\header never ends", "never ends|-", "never ends|-", "never ends|-"}}) {
    const auto properties = rtf::Read(std::string(c.rtf), Content().store()).properties;
    const PageTexts texts(properties, ReadPageWords(properties.headerWords));
    const char* const wanted[] = {c.first, c.second, c.third};
    for (int page = 1; page <= 3; ++page) {
      const PageNumbers numbers{page, 12, 0};
      EXPECT_EQ(Shown(texts.Header(page), numbers) + "|" + Shown(texts.Footer(page), numbers), wanted[page - 1])
          << c.rtf << " page " << page;
    }
  }
}

TEST(PageTexts, KeepFontsAndColours) {
  const auto properties = rtf::Read(
                              "{\\rtf1\\deff1{\\upr{\\fonttbl{\\f1 A;}}{\\*\\ud{\\fonttbl{\\f1 "
                              "Arial;}}}}{\\colortbl;\\red255\\green0\\blue0;}{\\header\\cf1 H}t}",
                              Content().store())
                              .properties;
  const Content header = PageTexts(properties, {}).Header(1)->content;
  const CharFormat& format = header.formats()[header.CharFormatAt(Units(0))];
  EXPECT_EQ(header.formats()[format.font].name, "Arial");
  EXPECT_EQ(format.color, Color{0x0000FF});
}

// Notes of random lengths in random places: each stands once, from the page of its mark on, and nothing is too high.
TEST(PageNotes, StandAtTheFootOfTheirPage) {
  for (uint32_t seed = 1; seed <= 15; ++seed) {
    uint32_t state = seed;
    const auto next = [&state](uint32_t below) { return (state = state * 1664525u + 1013904223u) / 65536 % below; };
    std::string file = "{\\rtf1 ";
    int notes = 0;
    for (uint32_t paragraph = 0; paragraph < 40; ++paragraph) {
      file += Repeated("words of text ", static_cast<int>(next(20)));
      const uint32_t count = next(4) == 0 ? 1 + next(2) : 0;
      for (uint32_t i = 0; i < count; ++i, ++notes) {
        file += "{\\super\\chftn{\\footnote {\\super\\chftn} " +
                Repeated("note ", static_cast<int>(next(12) == 0 ? 400 : next(20))) + "}}";
      }
      file += "\\par ";
    }
    const rtf::ReadResult read = rtf::Read(file + "}", Content().store());
    const Document document(read.content);
    const PageTexts texts(read.properties, {});
    const double height = 240;
    const auto setUp = [](Blocks& blocks) {
      blocks.SetFont(QFont("DejaVu Sans"), 1);
      blocks.SetWidth(300);
    };
    Blocks blocks(document);
    setUp(blocks);
    Pages pages(blocks, height);
    PageNotes pageNotes(document, texts, height, setUp);
    pages.SetFoot([&](Range text) { return pageNotes.HeightFor(text); });
    std::set<const void*> begun;
    for (int page = 0; page < 1000; ++page) {
      const Units begin = pages.position();
      const auto text = pages.Next();
      if (!text && !pageNotes.leftOver()) break;
      const double used = text ? HeightOf(*text) : 0;
      double foot = 0;
      for (const auto& part : pageNotes.Take({begin, pages.position()}, height - used)) {
        foot += HeightOf(part.slices);
        begun.insert(part.note.get());
      }
      EXPECT_LE(used + foot, height + 0.1) << "seed " << seed << " page " << page;
      EXPECT_TRUE(text || foot > 0) << "seed " << seed << " page " << page;
      ASSERT_LT(page, 200) << "seed " << seed;
    }
    EXPECT_FALSE(pageNotes.leftOver());
    EXPECT_LE(begun.size(), static_cast<size_t>(notes));
    EXPECT_EQ(begun.empty(), notes == 0) << "seed " << seed;
  }
}

}  // namespace
}  // namespace text::layout
