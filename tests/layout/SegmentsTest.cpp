#include "LayoutTesting.h"
#include "text/outline/Segments.h"

#include <random>

namespace text::layout {
namespace {

std::vector<BlockSpan> AllSpans(const Content& content) {
  std::vector<BlockSpan> spans;
  for (auto span = std::optional(SpanAt(content, Units(0), Bias::kRight)); span; span = SpanAfter(content, *span)) {
    spans.push_back(*span);
  }
  return spans;
}

std::string Words(int count) {
  std::string text;
  std::mt19937 random(7);
  for (int i = 0; i < count; ++i) text += std::string(1 + random() % 9, static_cast<char>('a' + random() % 26)) + " ";
  return text;
}

struct LongLine {
  const char* name;
  std::string text;
};

class Segments : public testing::TestWithParam<LongLine> {};

TEST_P(Segments, CoverTheTextInOrderAndAreFoundFromEveryPlace) {
  const Content content = MakeContent(GetParam().text);
  const std::vector<BlockSpan> spans = AllSpans(content);
  ASSERT_EQ(spans.front().range.begin, Units(0));
  ASSERT_EQ(spans.back().range.end, content.size());
  for (size_t i = 0; i < spans.size(); ++i) {
    const BlockSpan& span = spans[i];
    EXPECT_LE(span.range.size().value(), kMaxBlockUnits);
    EXPECT_EQ(content.Snap(span.range.begin, Bias::kLeft), span.range.begin) << "a border splits a surrogate pair";
    if (i > 0) {
      EXPECT_EQ(NextStart(spans[i - 1], content.size()), span.range.begin);
      EXPECT_EQ(SpanBefore(content, span), spans[i - 1]);
    }
    const int64_t step = std::max<int64_t>(1, span.range.size().value() / 50);
    for (int64_t at = span.range.begin.value() + 1; at < span.range.end.value(); at += step) {
      if (content.Snap(Units(at), Bias::kLeft) == span.range.begin) continue;
      EXPECT_EQ(SpanAt(content, Units(at), Bias::kRight), span) << at;
      EXPECT_EQ(SpanAt(content, Units(at), Bias::kLeft), span) << at;
    }
    EXPECT_EQ(SpanAt(content, span.range.begin, Bias::kRight), span);
    EXPECT_EQ(SpanAt(content, span.range.end, Bias::kLeft), span);
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, Segments,
    testing::Values(LongLine{"empty", ""}, LongLine{"short", "one\ntwo\n\nthree"}, LongLine{"words", Words(20000)},
                    LongLine{"noSpace", std::string(50000, 'x')}, LongLine{"justBelow", std::string(8192 + 1023, 'x')},
                    LongLine{"manyGrids", std::string(8192 * 3, 'y') + "\n" + std::string(8192 * 2 + 1024, 'z')},
                    LongLine{"emoji", Repeated("\U0001F600", 20000)},
                    LongLine{"combining", Repeated("e\u0301\u0323", 10000)},
                    LongLine{"marksOnly", "e" + Repeated("\u0301", 30000)},
                    LongLine{"strayBytes", std::string(30000, '\xFF')},
                    LongLine{"between", "a\n" + Words(9000) + "\nb\n" + std::string(30000, 'q')}),
    [](const auto& sample) { return std::string(sample.param.name); });

TEST(SegmentBorders, StandBehindASpaceWhereThereIsOne) {
  const Content content = MakeContent(Words(20000));
  const std::vector<BlockSpan> spans = AllSpans(content);
  ASSERT_GT(spans.size(), 5u);
  for (size_t i = 1; i < spans.size(); ++i) {
    const Units begin = spans[i].range.begin;
    EXPECT_EQ(content.Utf16({begin - Units(1), begin}), u" ");
    EXPECT_NE(content.Utf16({begin, begin + Units(1)}), u" ");
  }
}

TEST(SegmentBorders, DoNotTearACharacterFromItsMarks) {
  const Content content = MakeContent(Repeated("e\u0301\u0323", 10000));
  const std::vector<BlockSpan> spans = AllSpans(content);
  ASSERT_GT(spans.size(), 2u);
  for (const BlockSpan& span : spans) EXPECT_EQ(span.range.begin.value() % 3, 0);
}

// Typing at the front moves the grid through the text; the borders stay with their words nearly always.
TEST(SegmentBorders, StayWithTheirTextWhileSomethingIsTypedBefore) {
  Document document = MakeDocument(Words(20000));
  auto last = AllSpans(document.content());
  int moved = 0;
  constexpr int kKeys = 100;
  for (int key = 1; key <= kKeys; ++key) {
    Insert(document, Units(3), "k");
    const auto now = AllSpans(document.content());
    ASSERT_EQ(now.size(), last.size());
    for (size_t i = 1; i < now.size(); ++i) moved += now[i].range.begin != last[i].range.begin + Units(1);
    last = now;
  }
  EXPECT_LT(moved, static_cast<int>(last.size()) * kKeys / 50);
}

}  // namespace
}  // namespace text::layout
