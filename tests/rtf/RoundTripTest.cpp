// Seeded random contents: written and read they must be the same text in the same formats.
#include "tests/rtf/RtfTestSupport.h"
#include "text/rtfsave/RtfSave.h"
#include "text/rtfwrite/RtfWrite.h"

#include <gtest/gtest.h>

#include <random>

namespace text::rtf {
namespace {

class RandomDocument {
 public:
  explicit RandomDocument(uint32_t seed) : random_(seed), store_(NewStore()), formats_(store_->formats()) {}

  Content Make() {
    ContentBuilder builder(store_);
    for (uint32_t paragraph = Below(12); paragraph > 0; --paragraph) {
      const ParaFormatId format = formats_.Intern(Paragraph());
      for (uint32_t run = Below(5); run > 0; --run) builder.Append(Text(), formats_.Intern(Chars()), format);
      builder.Append("\r\n", formats_.Intern(Chars()), format);
    }
    if (Below(2)) builder.Append(Text(), formats_.Intern(Chars()));
    return builder.Finish(formats_.Intern(Paragraph()));
  }

  DocumentProperties Properties() {
    DocumentProperties properties;
    properties.defaultTab = 1 + static_cast<int>(Below(2000));
    properties.codePage = Pick({1252, 1250, 932});
    return properties;
  }

 private:
  uint32_t Below(uint32_t limit) { return limit == 0 ? 0 : random_() % limit; }
  int32_t Pick(std::initializer_list<int32_t> values) { return *(values.begin() + Below(values.size())); }
  int32_t Signed(int32_t limit) { return static_cast<int32_t>(Below(2 * limit)) - limit; }

  std::string Text() {
    constexpr const char* kParts[] = {"word",   " ",      "\\",     "{",      "}",  "\t",     "\f", "\u2028", "\u00A0",
                                      "\u2011", "\u00AD", "ä",      "€",      "中", "😀",      "-1", "0",      "\x01",
                                      ";",      "\uF0B7", "\uFFFD", "\u0081", "'",  "\u200D", "*",  "\x7F",   "\u2022"};
    std::string text;
    for (uint32_t count = 1 + Below(6); count > 0; --count) text += kParts[Below(std::size(kParts))];
    return text;
  }

  CharFormat Chars() {
    constexpr uint8_t kCharsets[] = {0, 1, 2, 77, 128, 130, 204, 238};
    CharFormat format;
    if (Below(3)) return format;
    if (Below(2)) {
      const auto family = static_cast<uint8_t>(Below(8));
      format.font = formats_.Intern(Font{Below(2) ? "Some; Font" : "Schrift ä中", kCharsets[Below(8)], family});
    }
    if (Below(2)) format.halfPoints = static_cast<uint16_t>(1 + Below(3276));
    format.flags = static_cast<uint16_t>(Below(kAllCharFlags + 1));
    if (Below(2)) format.color.rgb = Below(3);
    if (Below(3) == 0) format.background.rgb = Below(0x1000000);
    if (Below(2)) format.offset = Signed(100) * 10;
    return format;
  }

  TabStop Stop() {
    return {static_cast<int32_t>(Below(20000)), static_cast<TabKind>(Below(4)), static_cast<TabLeader>(Below(7))};
  }

  ParaFormat Paragraph() {
    ParaFormat format;
    if (Below(3) == 0) return format;
    format.alignment = static_cast<Alignment>(Below(4));
    format.bullet = Below(2);
    format.rightToLeft = Below(4) == 0;
    format.leftIndent = Signed(3000);
    format.firstIndent = Signed(3000);
    format.rightIndent = Below(2) ? Signed(3000) : 0;
    format.spaceBefore = Below(2) ? Signed(500) : 0;
    format.spaceAfter = Below(2) ? Signed(500) : 0;
    format.lineSpacing = Below(2) ? Signed(500) : 0;
    format.lineSpacingMultiple = Below(2);
    Tabs tabs;
    for (uint32_t i = Below(2) ? Below(kMaxTabs) : 0; i > 0; --i) tabs.push_back(Stop());
    format.tabs = formats_.Intern(tabs);
    return format;
  }

  std::mt19937 random_;
  std::shared_ptr<TextStore> store_;
  FormatTable& formats_;
};

TEST(RtfRoundTrip, RandomDocuments) {
  for (uint32_t seed = 1; seed <= 1500; ++seed) {
    RandomDocument random(seed);
    const Content content = random.Make();
    const DocumentProperties properties = random.Properties();
    const std::string written = Written(content, properties);
    const ReadResult read = ReadNew(written);
    ASSERT_EQ(Describe(read.content), Describe(content)) << "seed " << seed << "\n" << written;
    ASSERT_EQ(Written(read), written) << "seed " << seed;
    ASSERT_EQ(read.properties.defaultTab, properties.defaultTab);
  }
}

TEST(RtfRoundTrip, RandomFragments) {
  for (uint32_t seed = 1; seed <= 500; ++seed) {
    RandomDocument random(seed);
    const Content content = random.Make();
    std::mt19937 choice(seed);
    const auto place = [&] { return content.Snap(Units(choice() % (content.size().value() + 1)), Bias::kLeft); };
    Range range{place(), place()};
    if (range.end < range.begin) std::swap(range.begin, range.end);
    const Content slice = content.Slice(range);
    const ReadResult read = ReadFragment(WriteFragment(content, range, {}), NewStore());
    // The paragraph at the end counts only where some of its text is in the range.
    const ParaFormatId none = ParaFormatId::kDefault;
    ASSERT_EQ(Describe(read.content.WithLastParaFormat(none)), Describe(slice.WithLastParaFormat(none)))
        << "seed " << seed;
  }
}

// Rows of any level, of which parts are missing.
TEST(RtfRoundTrip, RawDataOfGroupsStandApartFromWords) {
  for (const char* data : {"\\bin0 ", "\\bin7777777777", "\\bin-1 ", "\\bin3 abc"}) {
    const ReadResult read = ReadNew("{\\rtf1{\\object" + std::string(data) + "text}x\\par}");
    EXPECT_EQ(TextOf(read.content), "\uFFFCx") << data;
    EXPECT_EQ(TextOf(ReadNew(Written(read)).content), "\uFFFCx") << data;
  }
}

TEST(RtfRoundTrip, ALabelPastItsCapEndsAtTheSameCharacter) {
  std::string label = "\\leveltext";
  for (int i = 0; i < 63; ++i) label += "\\u255?";
  const ReadResult read =
      ReadNew("{\\rtf1{\\*\\listtable{\\list{\\listlevel\\levelnfc23{" + label +
              "a\\u98?cd;}}\\listid7}}{\\*\\listoverridetable{\\listoverride\\listid7\\ls1}}\\ls1 x\\par}");
  const std::string written = Written(read);
  EXPECT_NE(written.find("\\u255?ab;}"), std::string::npos) << written;
  EXPECT_EQ(Written(ReadNew(written)), written);
}

TEST(RtfRoundTrip, TornTables) {
  for (uint32_t seed = 1; seed <= 1000; ++seed) {
    std::mt19937 random(seed);
    const auto store = NewStore();
    FormatTable& formats = store->formats();
    ContentBuilder builder(store);
    for (uint32_t count = random() % 12; count > 0; --count) {
      ParaFormat format;
      TableRow row;
      row.level = static_cast<uint8_t>(random() % 4);
      row.cells.resize(1 + random() % 2);
      row.cells.back().right = 9;
      row.cells.back().shading.rgb = random() % 3;
      if (row.level > 0) format.row = formats.Intern(row), format.rowMark = static_cast<RowMark>(random() % 3);
      builder.Append("x\r\n", CharFormatId::kDefault, formats.Intern(format));
    }
    const Content content = builder.Finish();
    const std::string written = Written(content);
    const ReadResult read = ReadNew(written);
    ASSERT_EQ(TextOf(read.content), TextOf(content)) << "seed " << seed << "\n" << written;
    ASSERT_EQ(Written(read), written) << "seed " << seed;
  }
}

}  // namespace
}  // namespace text::rtf
