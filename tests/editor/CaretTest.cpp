#include "tests/editor/EditorFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace ui::test {
namespace {

struct KeyCase {
  std::string before;
  std::string keys;
  std::string after;
};

std::ostream& operator<<(std::ostream& out, const KeyCase& c) {
  return out << c.before << " " << c.keys;
}

class CaretTest : public testing::TestWithParam<KeyCase> {};

TEST_P(CaretTest, MovesAsItReads) {
  Editor editor(GetParam().before);
  EXPECT_EQ(editor.Press(GetParam().keys).Shown(), GetParam().after);
  EXPECT_EQ(editor.host.textChanges, 0);
}

INSTANTIATE_TEST_SUITE_P(
    LeftToRight, CaretTest,
    testing::Values(KeyCase{"on|e two", "Right", "one| two"}, KeyCase{"on|e", "Left", "o|ne"},
                    KeyCase{"|one", "Left", "|one"}, KeyCase{"one|", "Right", "one|"},
                    KeyCase{"a|\nb", "Right", "a\n|b"}, KeyCase{"a\r\n|b", "Left", "a|\r\nb"},
                    KeyCase{"on|e two", "Ctrl+Right", "one |two"}, KeyCase{"one tw|o", "Ctrl+Left", "one |two"},
                    KeyCase{"one |two", "Ctrl+Left Ctrl+Left", "|one two"}, KeyCase{"on|e two", "Home", "|one two"},
                    KeyCase{"on|e two\nx", "End", "one two|\nx"}, KeyCase{"a\nb|b\nc", "Ctrl+Home", "|a\nbb\nc"},
                    KeyCase{"a\nb|b\nc", "Ctrl+End", "a\nbb\nc|"}, KeyCase{"a\nb|b\nc", "Ctrl+Up", "a\n|bb\nc"},
                    KeyCase{"a\n|bb\nc", "Ctrl+Up", "|a\nbb\nc"}, KeyCase{"a\nb|b\nc", "Ctrl+Down", "a\nbb\n|c"},
                    KeyCase{"a\nb|b", "Ctrl+Down", "a\nbb|"}, KeyCase{"aa|aa\nbbbb", "Down", "aaaa\nbb|bb"},
                    KeyCase{"aaaa\nbb|bb", "Up", "aa|aa\nbbbb"},
                    // The column is remembered through a shorter line, and forgotten by a move along the line.
                    KeyCase{"aaaa|\nb\ncccc", "Down Down", "aaaa\nb\ncccc|"},
                    KeyCase{"aaaa|\nb\ncccc", "Down Left Down", "aaaa\nb\n|cccc"},
                    KeyCase{"a|\nb\nc", "PgDown", "a\nb\nc|"}, KeyCase{"a\nb\n|c", "PgUp", "|a\nb\nc"}));

INSTANTIATE_TEST_SUITE_P(
    Selecting, CaretTest,
    testing::Values(KeyCase{"on|e", "Shift+Right", "on[e|"}, KeyCase{"on|e", "Shift+Left Shift+Left", "|on[e"},
                    KeyCase{"[one| two", "Left", "|one two"}, KeyCase{"[one| two", "Right", "one| two"},
                    KeyCase{"|one[ two", "Right", "one| two"}, KeyCase{"on|e two", "Ctrl+Shift+Right", "on[e |two"},
                    KeyCase{"on|e two", "Shift+End", "on[e two|"}, KeyCase{"on|e two", "Ctrl+A", "[one two|"},
                    KeyCase{"a\nb|b\nc", "Ctrl+Shift+Home", "|a\nb[b\nc"},
                    KeyCase{"aa|aa\nbbbb", "Shift+Down", "aa[aa\nbb|bb"},
                    KeyCase{"on|e two", "Shift+End Shift+Home", "|on[e two"},
                    KeyCase{"[ab|", "Shift+Left Shift+Left", "|ab"}));

// Hebrew letters alef to dalet; in a right-to-left paragraph left goes on.
#define ALEF "\u05D0"
#define BET "\u05D1"
#define GIMEL "\u05D2"
INSTANTIATE_TEST_SUITE_P(RightToLeft, CaretTest,
                         testing::Values(KeyCase{"|" ALEF BET GIMEL, "Left", ALEF "|" BET GIMEL},
                                         KeyCase{ALEF BET "|" GIMEL, "Right", ALEF "|" BET GIMEL},
                                         KeyCase{ALEF "|" BET " " GIMEL, "Ctrl+Left", ALEF BET " |" GIMEL},
                                         KeyCase{ALEF BET " " GIMEL "|", "Ctrl+Right", ALEF BET " |" GIMEL},
                                         KeyCase{ALEF "|" BET, "Shift+Left", ALEF "[" BET "|"},
                                         KeyCase{"[" ALEF BET "|" GIMEL, "Left", ALEF BET "|" GIMEL},
                                         KeyCase{"[" ALEF BET "|" GIMEL, "Right", "|" ALEF BET GIMEL},
                                         KeyCase{ALEF "|" BET, "Home", "|" ALEF BET},
                                         KeyCase{ALEF "|" BET, "End", ALEF BET "|"}));

INSTANTIATE_TEST_SUITE_P(MarksAndEmoji, CaretTest,
                         testing::Values(KeyCase{"|e\u0301\u0323x", "Right", "e\u0301\u0323|x"},
                                         KeyCase{"e\u0301\u0323|x", "Left", "|e\u0301\u0323x"},
                                         KeyCase{"a|\U0001F600b", "Right", "a\U0001F600|b"},
                                         KeyCase{"a\U0001F600|b", "Shift+Left", "a|\U0001F600[b"},
                                         KeyCase{"|\U0001F468\u200D\U0001F469\u200D\U0001F467x", "Right",
                                                 "\U0001F468\u200D\U0001F469\u200D\U0001F467|x"},
                                         KeyCase{"|\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7", "Right",
                                                 "\U0001F1E9\U0001F1EA|\U0001F1EB\U0001F1F7"},
                                         KeyCase{"|\xFFz", "Right", "\xFF|z"}));

// Through mixed text the caret passes every place once, the right-to-left run backwards, and comes back the same way.
TEST(Caret, GoesThroughMixedTextAsItIsSeen) {
  Editor editor("|ab " ALEF BET " cd");
  std::vector<std::string> seen;
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(std::count(seen.begin(), seen.end(), editor.Shown()), 0) << i;
    seen.push_back(editor.Shown());
    editor.Press("Right");
  }
  EXPECT_EQ(editor.Shown(), "ab " ALEF BET " cd|");
  for (auto place = seen.rbegin(); place != seen.rend(); ++place) EXPECT_EQ(editor.Press("Left").Shown(), *place);
}

// At a wrap End stays on its line though the position begins the next one too.
TEST(Caret, HomeAndEndKeepToTheVisualLine) {
  Editor editor("|aaaa bbbb cccc dddd eeee ffff gggg hhhh", text::LineEnd::kLf, {120, 400});
  const text::Range first = editor.layout.LineAt({text::Units(0)});
  ASSERT_LT(first.end, editor.document.content().size());
  editor.Press("End");
  EXPECT_EQ(editor.controller.caret().position, first.end);
  EXPECT_EQ(editor.layout.CaretRect(editor.controller.caret()).y(), editor.layout.CaretRect({text::Units(0)}).y());
  editor.Press("End Home");
  EXPECT_EQ(editor.controller.caret().position, text::Units(0));
  editor.Press("Down Home");
  EXPECT_EQ(editor.controller.caret().position, first.end);
  EXPECT_GT(editor.layout.CaretRect(editor.controller.caret()).y(), editor.layout.CaretRect({text::Units(0)}).y());
}

TEST(Caret, PagesKeepTheCaretInSightAndComeBack) {
  std::string lines = "|";
  for (int i = 0; i < 500; ++i) lines += std::to_string(i) + "\n";
  Editor editor(lines, text::LineEnd::kLf, {400, 300});
  editor.Press("Down Down");
  const auto start = editor.controller.caret().position;
  const double y = editor.layout.CaretRect(editor.controller.caret()).y();
  editor.Press("PgDown PgDown");
  EXPECT_GT(editor.controller.caret().position, start + text::Units(20));
  EXPECT_NEAR(editor.layout.CaretRect(editor.controller.caret()).y(), y, 20);
  editor.Press("PgUp PgUp");
  EXPECT_EQ(editor.controller.caret().position, start);
  for (int i = 0; i < 60; ++i) editor.Press("PgDown");
  EXPECT_EQ(editor.controller.caret().position, editor.document.content().size());
}

}  // namespace
}  // namespace ui::test
