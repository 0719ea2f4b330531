#include "tests/editor/EditorFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace ui::test {
namespace {

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
                                         KeyCase{"|\U0001F44D\U0001F3FFx", "Right", "\U0001F44D\U0001F3FF|x"},
                                         KeyCase{"|\u0915\u094D\u0937x", "Right", "\u0915\u094D\u0937|x"},
                                         KeyCase{"|\xFFz", "Right", "\xFF|z"}));

// Arrows go as it is seen: through a word of the other direction backwards, each place once. Here "abc ALEF BET GIMEL
// def" is seen as "abc GIMEL BET ALEF def".
INSTANTIATE_TEST_SUITE_P(
    Mixed, CaretTest,
    testing::Values(
        KeyCase{"ab| " ALEF BET GIMEL " cd", "Right", "ab |" ALEF BET GIMEL " cd"},
        KeyCase{"ab |" ALEF BET GIMEL " cd", "Right", "ab " ALEF BET "|" GIMEL " cd"},
        KeyCase{"ab " ALEF BET "|" GIMEL " cd", "Right", "ab " ALEF "|" BET GIMEL " cd"},
        KeyCase{"ab " ALEF "|" BET GIMEL " cd", "Right", "ab " ALEF BET GIMEL "| cd"},
        KeyCase{"ab " ALEF BET GIMEL "| cd", "Right", "ab " ALEF BET GIMEL " |cd"},
        KeyCase{"ab " ALEF BET GIMEL "| cd", "Left", "ab " ALEF "|" BET GIMEL " cd"},
        KeyCase{"ab |" ALEF BET, "Right", "ab " ALEF "|" BET}, KeyCase{"ab " ALEF BET "|", "Left", "ab " ALEF "|" BET},
        // Latin in a right-to-left paragraph: left goes on, and through the Latin word backwards.
        KeyCase{ALEF " |abc " BET, "Left", ALEF " ab|c " BET}, KeyCase{ALEF " a|bc " BET, "Left", ALEF " abc| " BET},
        KeyCase{ALEF "| 123", "Left", ALEF " |123"}, KeyCase{ALEF " |123", "Left", ALEF " 12|3"},
        // Words, Home and End, and what is deleted go in the order of the text.
        KeyCase{"ab |" ALEF BET " cd", "Ctrl+Right", "ab " ALEF BET " |cd"},
        KeyCase{"ab " ALEF BET "| cd", "Ctrl+Left", "ab |" ALEF BET " cd"},
        KeyCase{ALEF " |ab " BET, "Ctrl+Left", ALEF " ab |" BET}, KeyCase{"ab " ALEF "|" BET, "Home", "|ab " ALEF BET},
        KeyCase{"ab " ALEF "|" BET, "End", "ab " ALEF BET "|"},
        // A selection is left at the end that is seen on that side.
        KeyCase{"ab [" ALEF BET GIMEL "| cd", "Left", "ab |" ALEF BET GIMEL " cd"},
        KeyCase{ALEF " [abc| " BET, "Left", ALEF " abc| " BET}, KeyCase{ALEF " [abc| " BET, "Right", ALEF " |abc " BET},
        KeyCase{"ab " ALEF "|" BET, "Shift+Right Shift+Right", "ab " ALEF "[" BET "|"}));

INSTANTIATE_TEST_SUITE_P(
    LinesAndBreaks, CaretTest,
    testing::Values(KeyCase{"a|\r\nb", "Right", "a\r\n|b"}, KeyCase{"a|\r\n\r\nb", "Right Right", "a\r\n\r\n|b"},
                    KeyCase{"a\rb|", "Left Left", "a|\rb"}, KeyCase{"|\tb", "Right", "\t|b"},
                    KeyCase{"a\t|b", "Left", "a|\tb"}, KeyCase{"a|\u2028b", "Right", "a\u2028|b"},
                    KeyCase{"a\u2028|b", "Left", "a|\u2028b"}, KeyCase{"ab\u2028c|d", "Home", "ab\u2028|cd"},
                    KeyCase{"a|b\u2028cd", "End", "ab|\u2028cd"}, KeyCase{"a|\fb", "Right", "a\f|b"},
                    KeyCase{ALEF "|\n" BET, "Left", ALEF "\n|" BET}, KeyCase{ALEF "\n|" BET, "Right", ALEF "|\n" BET},
                    KeyCase{"a|\n" ALEF, "Right", "a\n|" ALEF}, KeyCase{ALEF "|\na", "Left", ALEF "\n|a"}));

#define FAMILY "\U0001F468\u200D\U0001F469\u200D\U0001F467"
#define GERMANY "\U0001F1E9\U0001F1EA"
#define DARK_THUMB "\U0001F44D\U0001F3FF"
class EraseTest : public testing::TestWithParam<KeyCase> {};

TEST_P(EraseTest, TakesWholeCharactersInTheOrderOfTheText) {
  Editor editor(GetParam().before);
  EXPECT_EQ(editor.Press(GetParam().keys).Shown(), GetParam().after);
  EXPECT_EQ(editor.Press("Ctrl+Z").Shown(), GetParam().before);
}

INSTANTIATE_TEST_SUITE_P(
    Erase, EraseTest,
    testing::Values(KeyCase{"one tw|o", "Ctrl+Backspace", "one |o"}, KeyCase{"one| two", "Ctrl+Delete", "one|two"},
                    KeyCase{"one\r\n|two", "Backspace", "one|two"}, KeyCase{"one|\r\ntwo", "Delete", "one|two"},
                    KeyCase{"e\u0301|x", "Backspace", "e|x"}, KeyCase{"|e\u0301x", "Delete", "|x"},
                    KeyCase{"a" FAMILY "|", "Backspace", "a|"}, KeyCase{"|" FAMILY "a", "Delete", "|a"},
                    KeyCase{GERMANY GERMANY "|", "Backspace", GERMANY "|"}, KeyCase{"|" DARK_THUMB "a", "Delete", "|a"},
                    KeyCase{DARK_THUMB "|", "Backspace", "|"}, KeyCase{ALEF BET "|", "Backspace", ALEF "|"},
                    KeyCase{ALEF "|" BET, "Delete", ALEF "|"},
                    KeyCase{ALEF BET " " GIMEL "|", "Ctrl+Backspace", ALEF BET " |"},
                    KeyCase{"ab " ALEF "|" BET, "Ctrl+Delete", "ab " ALEF "|"}, KeyCase{"a\t|b", "Backspace", "a|b"}));

// Where directions meet the caret stands where the next letter of the same kind will appear.
TEST(Caret, StaysBesideWhatWasTyped) {
  Editor editor("ab |cd");
  const auto x = [&] { return editor.layout.CaretRect(editor.controller.caret()).x(); };
  const double before = x();
  editor.Press("'" ALEF "'");
  EXPECT_NEAR(x(), before, 2) << "left of the letter";
  editor.Press("'" BET "'");
  EXPECT_NEAR(x(), before, 2);
  editor.Press("Backspace");
  EXPECT_NEAR(x(), before, 2);
  editor.Press("Right");
  EXPECT_EQ(editor.Shown(), "ab " ALEF "|cd") << "its other side, right of the letter";
  EXPECT_GT(x(), before + 3);
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

// In a wrapped right-to-left paragraph: End is on the left, and Left goes on to the line below.
TEST(Caret, WrappedRightToLeftLines) {
  std::string words = "|";
  for (int i = 0; i < 12; ++i) words += ALEF BET GIMEL " ";
  Editor editor(words, text::LineEnd::kLf, {120, 400});
  const text::Range first = editor.layout.LineAt({text::Units(0)});
  ASSERT_LT(first.end, editor.document.content().size());
  const auto rect = [&] { return editor.layout.CaretRect(editor.controller.caret()); };
  const double right = rect().x(), top = rect().y();
  for (int64_t at = 1; at < first.end.value(); ++at) {
    editor.Press("Left");
    ASSERT_EQ(editor.controller.caret().position.value(), at);
    ASSERT_EQ(rect().y(), top);
  }
  editor.Press("Left");
  EXPECT_EQ(editor.controller.caret().position, first.end);
  EXPECT_GT(rect().y(), top);
  EXPECT_NEAR(rect().x(), right, 1);
  editor.Press("Right");
  EXPECT_EQ(editor.controller.caret().position, first.end - text::Units(1));
  editor.Press("Home End");
  EXPECT_EQ(editor.controller.caret().position, first.end);
  EXPECT_EQ(rect().y(), top);
  EXPECT_LT(rect().x(), right - 50);
  editor.Press("Home Down Up");
  EXPECT_EQ(editor.controller.caret().position, text::Units(0));
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
