#include "text/Movement.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>

namespace text {
namespace {

Content ContentOf(std::string_view bytes) {
  ContentBuilder builder(Content().store());
  builder.Append(bytes);
  return builder.Finish();
}

// Text with "|" where the caret is.
struct Marked {
  explicit Marked(std::string marked) {
    const size_t caret = marked.find('|');
    before = marked.substr(0, caret);
    content = ContentOf(marked.erase(caret, 1));
    position = ContentOf(before).size();
  }
  std::string before;
  Content content;
  Units position;
};

std::string Show(const Content& content, Units position) {
  return content.ByteString({Units(0), position}) + "|" + content.ByteString({position, content.size()});
}

using Step = Units (*)(const Content&, Units);
struct StepCase {
  const char* name;
  Step step;
  const char* before;
  const char* after;
};

std::ostream& operator<<(std::ostream& out, const StepCase& c) {
  return out << c.name << " " << c.before;
}

class StepTest : public testing::TestWithParam<StepCase> {};

TEST_P(StepTest, MovesTheCaret) {
  const Marked start(GetParam().before);
  EXPECT_EQ(Show(start.content, GetParam().step(start.content, start.position)), GetParam().after);
}

#define NEXT "NextGrapheme", NextGrapheme
#define PREVIOUS "PreviousGrapheme", PreviousGrapheme
#define BACKSPACE "BackspaceStart", BackspaceStart
#define NEXT_WORD "NextWord", NextWord
#define PREVIOUS_WORD "PreviousWord", PreviousWord

INSTANTIATE_TEST_SUITE_P(
    Graphemes, StepTest,
    testing::Values(
        StepCase{NEXT, "a|bc", "ab|c"}, StepCase{NEXT, "abc|", "abc|"}, StepCase{PREVIOUS, "|abc", "|abc"},
        StepCase{NEXT, "a|\r\nb", "a\r\n|b"}, StepCase{NEXT, "a\r\n|\r\nb", "a\r\n\r\n|b"},
        StepCase{PREVIOUS, "a\r|b", "a|\rb"}, StepCase{PREVIOUS, "a\n|b", "a|\nb"},
        // An accent alone in a paragraph does not cling to the break before it.
        StepCase{PREVIOUS, "a\n\u0301|b", "a\n|\u0301b"}, StepCase{NEXT, "|e\u0301\u0323x", "e\u0301\u0323|x"},
        StepCase{PREVIOUS, "e\u0301\u0323|x", "|e\u0301\u0323x"},
        StepCase{BACKSPACE, "e\u0301\u0323|x", "e\u0301|\u0323x"}, StepCase{BACKSPACE, "e|x", "|ex"},
        StepCase{BACKSPACE, "a\r\n|b", "a|\r\nb"}, StepCase{NEXT, "|\U0001F600a", "\U0001F600|a"},
        // A family joined by ZWJ, a flag, a skin tone, a keycap.
        StepCase{NEXT, "|\U0001F468\u200D\U0001F469\u200D\U0001F467x", "\U0001F468\u200D\U0001F469\u200D\U0001F467|x"},
        StepCase{BACKSPACE, "\U0001F468\u200D\U0001F469\u200D\U0001F467|x",
                 "|\U0001F468\u200D\U0001F469\u200D\U0001F467x"},
        StepCase{BACKSPACE, "\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7|", "\U0001F1E9\U0001F1EA|\U0001F1EB\U0001F1F7"},
        StepCase{BACKSPACE, "\U0001F44D\U0001F3FD|", "|\U0001F44D\U0001F3FD"},
        StepCase{BACKSPACE, "1\uFE0F\u20E3|", "|1\uFE0F\u20E3"},
        // Stray bytes are characters of their own.
        StepCase{NEXT, "|\xFF\xFE", "\xFF|\xFE"}, StepCase{BACKSPACE, "a\xC3|", "a|\xC3"}));

INSTANTIATE_TEST_SUITE_P(
    Words, StepTest,
    testing::Values(StepCase{NEXT_WORD, "on|e two", "one |two"}, StepCase{NEXT_WORD, "one|  two", "one  |two"},
                    StepCase{NEXT_WORD, "one tw|o", "one two|"}, StepCase{NEXT_WORD, "one|\r\ntwo", "one\r\n|two"},
                    StepCase{NEXT_WORD, "one |\ntwo", "one \n|two"}, StepCase{NEXT_WORD, "|<b>word", "<|b>word"},
                    StepCase{NEXT_WORD, "a|=\"b", "a=\"|b"}, StepCase{NEXT_WORD, "|can't stop", "can't |stop"},
                    StepCase{NEXT_WORD, "|snake_case x", "snake_case |x"},
                    StepCase{NEXT_WORD, "|\u0443\u043B\u0438\u0446\u0430 x", "\u0443\u043B\u0438\u0446\u0430 |x"},
                    StepCase{NEXT_WORD, "|\u05D0\u05D1 \u05D2", "\u05D0\u05D1 |\u05D2"},
                    StepCase{PREVIOUS_WORD, "one two|", "one |two"}, StepCase{PREVIOUS_WORD, "one tw|o", "one |two"},
                    StepCase{PREVIOUS_WORD, "one  |two", "|one  two"},
                    StepCase{PREVIOUS_WORD, "one\r\n|two", "one|\r\ntwo"}, StepCase{PREVIOUS_WORD, "x (a)|", "x (a|)"},
                    StepCase{PREVIOUS_WORD, "  |x", "|  x"}, StepCase{PREVIOUS_WORD, "|x", "|x"}));

struct WordCase {
  const char* at;
  const char* word;
};

TEST(Movement, WordAtTakesTheRunUnderTheCharacterBehind) {
  const WordCase cases[] = {{"one t|wo.", "two"},
                            {"one |two.", "two"},
                            {"one| two", " "},
                            {"one two|.", "."},
                            {"|", ""},
                            {"a\n|\nb", ""},
                            {"one two|\nx", "two"},
                            {"x ..|.", "..."},
                            {"caf|e\u0301!", "cafe\u0301"}};
  for (const auto& c : cases) {
    const Marked start(c.at);
    EXPECT_EQ(start.content.ByteString(WordAt(start.content, start.position)), c.word) << c.at;
  }
}

TEST(Movement, ParagraphHasItsBreak) {
  const Content content = ContentOf("a\r\nbb\r\nc");
  EXPECT_EQ(ParagraphRange(content, Units(2)), (Range{Units(2), Units(5)}));
  EXPECT_EQ(ParagraphRange(content, Units(4)), (Range{Units(2), Units(5)}));
  EXPECT_EQ(ParagraphRange(content, content.size()), (Range{Units(5), Units(6)}));
}

TEST(Movement, AWordLongerThanAnyWindowIsCut) {
  const Content content = ContentOf(std::string(100000, 'a'));
  const Units middle(50000);
  EXPECT_EQ(NextWord(content, middle), middle + Units(16384));
  EXPECT_EQ(PreviousWord(content, middle), middle - Units(16384));
  EXPECT_EQ(WordAt(content, middle).size(), Units(32768));
}

TEST(Movement, AWindowThatMustGrowFindsTheRealBoundary) {
  const std::string marks = [] {
    std::string text = "e";
    for (int i = 0; i < 3000; ++i) text += "\u0301";
    return text;
  }();
  const Content content = ContentOf("x" + marks + "y " + std::string(900, 'w') + " z");
  EXPECT_EQ(NextGrapheme(content, Units(1)), Units(3002));
  EXPECT_EQ(PreviousGrapheme(content, Units(3002)), Units(1));
  EXPECT_EQ(NextWord(content, Units(3004)), Units(3905));
  EXPECT_EQ(PreviousWord(content, Units(3904)), Units(3004));
}

// Every boundary met going forward is met going back.
TEST(Movement, ForwardAndBackwardAgree) {
  const Content content = ContentOf("a e\u0301 \U0001F1E9\U0001F1EA\r\n\xFFz \U0001F600\u0301\r\r\n\u0E01\u0E33.");
  std::vector<Units> forward{Units(0)};
  while (forward.back() < content.size()) {
    const Units next = NextGrapheme(content, forward.back());
    ASSERT_GT(next, forward.back());
    forward.push_back(next);
  }
  for (size_t i = forward.size() - 1; i > 0; --i) {
    EXPECT_EQ(PreviousGrapheme(content, forward[i]), forward[i - 1]) << i;
  }
}

}  // namespace
}  // namespace text
