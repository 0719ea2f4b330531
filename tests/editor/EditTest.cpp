#include "tests/editor/EditorFixture.h"

#include <gtest/gtest.h>

namespace ui::test {
namespace {

text::CharFormatPatch Setting(uint16_t flags) {
  text::CharFormatPatch patch;
  patch.setFlags = flags;
  return patch;
}

class EditTest : public testing::TestWithParam<KeyCase> {};

// Every edit is also undone to the very same text.
TEST_P(EditTest, ChangesTheTextAndBack) {
  Editor editor(GetParam().before);
  EXPECT_EQ(editor.Press(GetParam().keys).Shown(), GetParam().after);
  const bool changes = ParseMarked(GetParam().before).bytes != ParseMarked(GetParam().after).bytes;
  EXPECT_EQ(editor.host.textChanges > 0, changes);
  while (editor.document.canUndo()) editor.Press("Ctrl+Z");
  EXPECT_EQ(ParseMarked(editor.Shown()).bytes, ParseMarked(GetParam().before).bytes);
  while (editor.document.canRedo()) editor.Press("Ctrl+Y");
  EXPECT_EQ(ParseMarked(editor.Shown()).bytes, ParseMarked(GetParam().after).bytes);
}

INSTANTIATE_TEST_SUITE_P(Typing, EditTest,
                         testing::Values(KeyCase{"a|c", "'b'", "ab|c"}, KeyCase{"|", "'x y'", "x y|"},
                                         KeyCase{"a[bc|d", "'x'", "ax|d"}, KeyCase{"a|bc[d", "'xy'", "axy|d"},
                                         KeyCase{"a|b", "Return", "a\n|b"}, KeyCase{"a|b", "Shift+Return", "a\n|b"},
                                         KeyCase{"a|b", "Tab", "a\t|b"},
                                         KeyCase{"|", "'\u00E9\U0001F600'", "\u00E9\U0001F600|"}));

INSTANTIATE_TEST_SUITE_P(
    Deleting, EditTest,
    testing::Values(KeyCase{"ab|c", "Backspace", "a|c"}, KeyCase{"a|bc", "Delete", "a|c"},
                    KeyCase{"|abc", "Backspace", "|abc"}, KeyCase{"abc|", "Delete", "abc|"},
                    KeyCase{"a[b|c", "Backspace", "a|c"}, KeyCase{"a\r\n|b", "Backspace", "a|b"},
                    KeyCase{"a|\r\nb", "Delete", "a|b"}, KeyCase{"one two|", "Ctrl+Backspace", "one |"},
                    KeyCase{"|one two", "Ctrl+Delete", "|two"}, KeyCase{"a\n|b", "Ctrl+Backspace", "a|b"},
                    KeyCase{"e\u0301|x", "Backspace", "e|x"}, KeyCase{"|e\u0301x", "Delete", "|x"},
                    KeyCase{"\U0001F1E9\U0001F1EA|", "Backspace", "|"}, KeyCase{"[abc|", "Ctrl+Delete", "|"}));

INSTANTIATE_TEST_SUITE_P(
    Overtype, EditTest,
    testing::Values(KeyCase{"a|bcd", "Insert 'xy'", "axy|d"}, KeyCase{"ab|\ncd", "Insert 'xy'", "abxy|\ncd"},
                    KeyCase{"|e\u0301x", "Insert 'a'", "a|x"}, KeyCase{"a[bc|d", "Insert 'x'", "ax|d"},
                    KeyCase{"a|b", "Insert Return", "a\n|b"}, KeyCase{"ab|\r\ncd", "Insert 'xy'", "abxy|\r\ncd"},
                    KeyCase{"a|\U0001F600b", "Insert 'x'", "ax|b"},
                    KeyCase{"|\U0001F468\u200D\U0001F469x", "Insert '\U0001F600'", "\U0001F600|x"},
                    // A mark joins what is before it and replaces nothing.
                    KeyCase{"e|x", "Insert '\u0301'", "e\u0301|x"}, KeyCase{"|", "Insert 'ab'", "ab|"}));

INSTANTIATE_TEST_SUITE_P(Clipboard, EditTest,
                         testing::Values(KeyCase{"a[bc|d", "Ctrl+X", "a|d"}, KeyCase{"a[bc|d", "Shift+Delete", "a|d"},
                                         KeyCase{"a[bc|d", "Ctrl+C End Ctrl+V", "abcdbc|"},
                                         KeyCase{"a[bc|d", "Ctrl+Insert End Shift+Insert", "abcdbc|"},
                                         KeyCase{"a[b\nc|d", "Ctrl+X Ctrl+V Ctrl+V", "ab\ncb\nc|d"},
                                         KeyCase{"a[\xFF\xC3|d", "Ctrl+C Right Ctrl+V", "a\xFF\xC3\xFF\xC3|d"},
                                         KeyCase{"a[b|c", "Ctrl+C Ctrl+A Ctrl+Shift+V", "b|"},
                                         KeyCase{"a|c", "Ctrl+V Ctrl+X", "a|c"}));

// What one undo takes back.
TEST(Undo, MergesWhatBelongsTogether) {
  const KeyCase cases[] = {
      {"|", "'abc def'", "|"},
      {"|", "'abc' Left Right 'def'", "abc|"},
      {"|", "'abc' Return 'def'", "abc\n|"},
      {"|", "'abc' Return", "abc|"},
      {"|", "'abc' Backspace Backspace", "abc|"},
      {"abcd|", "Backspace Backspace", "abcd|"},
      {"|abcd", "Delete Delete", "|abcd"},
      {"ab|cd", "Backspace Delete", "a|cd"},
      {"one two|", "Ctrl+Backspace Ctrl+Backspace", "one |"},
      {"a[bc|d", "'xyz'", "a[bc|d"},
      {"|abcd", "Insert 'xyz'", "|abcd"},
      {"|", "'abc' Ctrl+Z 'd'", "|"},
      {"[ab|", "Ctrl+X Ctrl+V", "|"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Editor(c.before).Press(c.keys).Press("Ctrl+Z").Shown(), c.after) << c.before << " " << c.keys;
  }
}

TEST(Undo, APauseBeginsANewStep) {
  Editor editor("|");
  editor.Press("'abc'");
  editor.clock += 5000;
  editor.Press("'def' Ctrl+Z");
  EXPECT_EQ(editor.Shown(), "abc|");
}

TEST(Undo, AFormatForTheNextTextBeginsANewStep) {
  Editor editor("|");
  editor.Press("'abc'");
  editor.controller.PatchChars(Setting(text::kBold));
  editor.Press("'def' Ctrl+Z");
  EXPECT_EQ(editor.Shown(), "abc|");
}

TEST(Undo, ReadOnlyTextIsNotTouchedByIt) {
  Editor editor("|");
  editor.Press("'a'");
  editor.controller.SetReadOnly(true);
  EXPECT_EQ(editor.Press("Ctrl+Z 'b' Backspace Delete Return Ctrl+V").Shown(), "a|");
  EXPECT_GT(editor.host.refusals, 0);
}

// Breaks that are typed or pasted are spelled as the document's are.
TEST(LineEnds, TakeThePrevailingSpelling) {
  for (const auto& [lineEnd, spelling] :
       {std::pair{text::LineEnd::kCrLf, "\r\n"}, {text::LineEnd::kLf, "\n"}, {text::LineEnd::kCr, "\r"}}) {
    Editor editor("a|", lineEnd);
    editor.Press("Return 'b'");
    auto data = std::make_unique<QMimeData>();
    data->setText(QStringLiteral("x\ny\r\nz"));
    editor.controller.Insert(*data, false);
    const std::string s = spelling;
    EXPECT_EQ(editor.Shown(), "a" + s + "bx" + s + "y" + s + "z|");
  }
}

// --- Protection: "bcd" of the text is protected.

TEST(Protection, RefusesWhatTouchesIt) {
  const KeyCase cases[] = {
      {"ab|cdef", "'x'", ""},         {"abc[de|f", "'x'", ""},        {"abcd|ef", "Backspace", ""},
      {"a|bcdef", "Delete", ""},      {"[abcdef|", "Delete", ""},     {"ab|cdef", "Return", ""},
      {"[abcdef|", "Ctrl+X", ""},     {"abc|def", "Ctrl+V", ""},      {"|abcdef", "Ctrl+Delete", ""},
      {"a|bcdef", "'x'", "ax|bcdef"}, {"abcd|ef", "'x'", "abcdx|ef"}, {"abcde|f", "Backspace", "abcd|f"},
      {"abcd[ef|", "'x'", "abcdx|"},  {"a|bcdef", "Insert 'x'", ""},
  };
  for (const auto& c : cases) {
    const std::string bytes = ParseMarked(c.before).bytes;
    Editor editor(c.before);
    const text::Selection selection = editor.controller.selection();
    editor.host.data[QClipboard::Clipboard] = std::make_unique<QMimeData>();
    editor.host.data[QClipboard::Clipboard]->setText(QStringLiteral("p"));
    editor.controller.Select({text::Units(1), text::Units(4)});
    ASSERT_TRUE(editor.controller.PatchChars(Setting(text::kProtected)));
    editor.controller.Select(selection);
    editor.Press(c.keys);
    EXPECT_EQ(editor.Shown(), c.after.empty() ? c.before : c.after) << c.before << " " << c.keys;
    EXPECT_EQ(editor.host.refusals, c.after.empty() ? 1 : 0) << c.before << " " << c.keys;
    EXPECT_EQ(editor.Flagged(text::kProtected), "bcd,");
  }
}

// Whatever part of a paragraph is selected: with protected text in it, it keeps its format.
TEST(Protection, KeepsTheFormatOfItsParagraphs) {
  const std::pair<const char*, bool> cases[] = {
      {"|abc\ndef\nghi", true},   {"abc\n|def\nghi", false}, {"abc\nd|ef\nghi", false}, {"abc\nde|f\nghi", false},
      {"abc\ndef|\nghi", false},  {"abc\ndef\n|ghi", true},  {"ab[c\n|def\nghi", true}, {"ab[c\nd|ef\nghi", false},
      {"abc\nde[f\nghi|", false}, {"[abc\ndef\nghi|", false}};
  for (const auto& [marked, allowed] : cases) {
    Editor editor(marked);
    const text::Selection selection = editor.controller.selection();
    editor.controller.MapParagraphs([](text::ParaFormat format) { return WithBullet(format, 360); });
    editor.controller.Select({text::Units(4), text::Units(6)});  // "de"
    ASSERT_TRUE(editor.controller.PatchChars(Setting(text::kProtected)));
    editor.controller.Select(selection);
    const text::Content before = editor.document.content();
    text::ParaFormatPatch toRight;
    toRight.alignment = text::Alignment::kRight;
    EXPECT_EQ(editor.controller.PatchParagraphs(toRight), allowed) << marked;
    const auto indented = [](text::ParaFormat format) { return format.leftIndent += 100, format; };
    EXPECT_EQ(editor.controller.MapParagraphs(indented), allowed) << marked;
    EXPECT_EQ(editor.document.content().SameAs(before), !allowed) << marked;
  }
}

TEST(Protection, KeepsTheBulletFromBackspace) {
  Editor editor("abc\n|def");
  editor.controller.MapParagraphs([](text::ParaFormat format) { return WithBullet(format, 360); });
  editor.controller.Select({text::Units(5), text::Units(6)});
  ASSERT_TRUE(editor.controller.PatchChars(Setting(text::kProtected)));
  editor.controller.Select({text::Units(4), text::Units(4)});
  EXPECT_EQ(editor.Press("Backspace").Shown(), "abc\n|def");
  EXPECT_EQ(editor.host.refusals, 1);
  EXPECT_EQ(editor.controller.ParagraphState().bullet, true);
}

TEST(Protection, TakesNoFormatButItself) {
  Editor editor("[abc|");
  text::CharFormatPatch release;
  text::ParaFormatPatch toRight;
  toRight.alignment = text::Alignment::kRight;
  release.clearFlags = text::kProtected;
  EXPECT_TRUE(editor.controller.PatchChars(Setting(text::kProtected)));
  EXPECT_FALSE(editor.controller.PatchChars(Setting(text::kBold)));
  EXPECT_FALSE(editor.controller.PatchParagraphs(toRight));
  EXPECT_FALSE(editor.controller.Replace(editor.controller.range(), "x"));
  EXPECT_EQ(editor.controller.CharState().Flag(text::kBold), false);
  EXPECT_TRUE(editor.controller.PatchChars(release));
  EXPECT_TRUE(editor.controller.PatchChars(Setting(text::kBold)));
  EXPECT_EQ(editor.Flagged(text::kBold), "abc,");
}

// --- Formats of new text: "bb" is bold in "aa bb cc".

TEST(NewText, LooksLikeWhatStandsBefore) {
  const KeyCase cases[] = {
      {"aa |bb cc", "'x'", "bb,"},           {"aa bb| cc", "'x'", "bbx,"},
      {"aa b|b cc", "'x'", "bxb,"},          {"aa [bb| cc", "'x'", "x,"},
      {"aa bb| cc", "Return 'x'", "bb\nx,"}, {"aa bb| cc", "Return Left Right 'x'", "bb\n,"},
  };
  for (const auto& c : cases) {
    Editor editor(c.before);
    const text::Selection selection = editor.controller.selection();
    editor.controller.Select({text::Units(3), text::Units(5)});
    editor.controller.PatchChars(Setting(text::kBold));
    editor.controller.Select(selection);
    EXPECT_EQ(editor.Press(c.keys).Flagged(text::kBold), c.after) << c.before << " " << c.keys;
  }
}

TEST(NewText, AtAParagraphsStartLooksLikeWhatFollows) {
  Editor editor("a\n[b|");
  editor.controller.PatchChars(Setting(text::kBold));
  EXPECT_EQ(editor.Press("Home 'x'").Flagged(text::kBold), "xb,");
}

// The whole text, or all of a paragraph, is bold and goes away.
TEST(NewText, LooksLikeTheTextThatWasDeleted) {
  const KeyCase cases[] = {
      {"[abc|", "Delete 'x'", "x,"},
      {"[abc|", "Backspace Left Right 'x'", "x,"},
      {"[abc|", "Ctrl+X 'x'", "x,"},
      {"a[bc|", "Ctrl+A Delete 'x'", ""},
      {"[a|", "Right Backspace 'x'", "x,"},
      {"[abc|", "Delete Ctrl+Z Ctrl+Y 'x'", "x,"},
      {"1\n[abc|\n2", "Delete 'x'", "x,"},
      {"1\n[abc|", "Ctrl+X 'x'", "x,"},
      {"1\n[a|\n2", "Left Delete 'x'", "x,"},
      {"1\n[a|\n2", "Right Ctrl+Backspace 'x'", "x,"},
      {"1\n[abc|\n2", "Delete Left Right 'x'", ""},
  };
  for (const auto& c : cases) {
    Editor editor(c.before);
    editor.controller.PatchChars(Setting(text::kBold));
    EXPECT_EQ(editor.Press(c.keys).Flagged(text::kBold), c.after) << c.before << " " << c.keys;
  }
}

TEST(NewText, AFormatWithoutSelectionIsRememberedUntilTheCaretMoves) {
  Editor editor("a|c");
  editor.controller.PatchChars(Setting(text::kBold));
  EXPECT_EQ(editor.controller.CharState().Flag(text::kBold), true);
  EXPECT_EQ(editor.host.selectionChanges, 1);
  EXPECT_FALSE(editor.document.canUndo());
  EXPECT_EQ(editor.Press("'xy'").Flagged(text::kBold), "xy,");
  editor.Press("End");
  editor.controller.PatchChars(Setting(text::kBold));
  EXPECT_EQ(editor.Press("Left Right 'z'").Flagged(text::kBold), "xy,");
}

// --- Bullets

TEST(Bullets, EnterGoesOnAndEndsTheListAndBackspaceRemovesTheBullet) {
  Editor editor("one|");
  editor.controller.MapParagraphs([](text::ParaFormat format) { return WithBullet(format, 360); });
  const auto format = [&] {
    const text::Content& content = editor.document.content();
    return content.formats()[content.ParaFormatOf(content.ParagraphAt(editor.controller.caret().position))];
  };
  editor.Press("Return 'two' Return");
  EXPECT_EQ(editor.Shown(), "one\ntwo\n|");
  EXPECT_TRUE(format().bullet);
  editor.Press("Return");
  EXPECT_EQ(editor.Shown(), "one\ntwo\n|");
  EXPECT_FALSE(format().bullet);
  EXPECT_EQ(format().firstIndent, 0);
  EXPECT_EQ(format().leftIndent, 0);
  editor.Press("Up Home");
  EXPECT_TRUE(format().bullet);
  EXPECT_EQ(editor.Press("Backspace").Shown(), "one\n|two\n");
  EXPECT_FALSE(format().bullet);
  EXPECT_EQ(editor.Press("Backspace").Shown(), "one|two\n");
  editor.Press("Ctrl+Z Ctrl+Z");
  EXPECT_TRUE(format().bullet);
}

// A format chosen for the next text comes back when that text is undone.
TEST(TypingFormat, ComesBackWithUndo) {
  Editor editor("|");
  editor.controller.PatchChars(Setting(text::kBold));
  EXPECT_EQ(editor.Press("'ab' Ctrl+Z").Shown(), "|");
  EXPECT_TRUE(editor.controller.InsertFormat().flags & text::kBold);
  EXPECT_EQ(editor.Press("'cd'").Flagged(text::kBold), "cd,");
  editor.Press("Ctrl+Z Left 'e'");
  EXPECT_EQ(editor.Flagged(text::kBold), "") << "a caret move gives it up";
}

// Undone to an empty text, the empty text has the format it had then.
TEST(TypingFormat, OfTheEmptyTextBelongsToTheStep) {
  Editor editor("|");
  const auto isBold = [&] {
    return (editor.document.formats()[editor.document.emptyCharFormat()].flags & text::kBold) != 0;
  };
  editor.Press("'ab' Ctrl+A");
  editor.controller.PatchChars(Setting(text::kBold));
  editor.Press("Delete");
  EXPECT_TRUE(isBold());
  editor.Press("Ctrl+Z Ctrl+Z Ctrl+Z");
  ASSERT_EQ(editor.Shown(), "|");
  EXPECT_FALSE(isBold());
  editor.Press("Ctrl+Y Ctrl+Y Ctrl+Y");
  ASSERT_EQ(editor.Shown(), "|");
  EXPECT_TRUE(isBold());
}

TEST(Zoom, ByKeys) {
  Editor editor("a|b");
  for (const char* key : {"Ctrl++", "Ctrl+=", "Ctrl+Shift++"}) {
    editor.host.zoom = 1;
    editor.Press(key);
    EXPECT_NEAR(editor.host.zoom, 1.1, 1e-9) << key;
  }
  editor.host.zoom = 1;
  editor.Press("Ctrl+-");
  EXPECT_NEAR(editor.host.zoom, 1 / 1.1, 1e-9);
  editor.layout.SetZoom(2.5);
  editor.host.zoom = 2.5;
  editor.Press("Ctrl+0");
  EXPECT_NEAR(editor.host.zoom, 1, 1e-9);
  EXPECT_EQ(editor.Shown(), "a|b");
}

// --- What the host is told

TEST(Telling, ComesOnceForAnOperation) {
  Editor editor("a[bc|d");
  editor.Press("'x'");
  EXPECT_EQ(editor.host.textChanges, 1);
  EXPECT_EQ(editor.host.selectionChanges, 1);
  editor.Press("Left");
  EXPECT_EQ(editor.host.textChanges, 1);
  EXPECT_EQ(editor.host.selectionChanges, 2);
  editor.Press("Home Home");
  EXPECT_EQ(editor.host.selectionChanges, 3) << "the second Home moves nothing";
  editor.Press("Ctrl+Z");
  EXPECT_EQ(editor.host.textChanges, 2);
}

TEST(Telling, EditsMadeToTheDocumentDirectlyCarryTheSelectionAlong) {
  Editor editor("abc [def|");
  editor.document.Replace({text::Units(0), text::Units(2)}, "12345", text::CharFormatId::kDefault,
                          text::EditKind::kCommand, {});
  editor.controller.Sync();
  EXPECT_EQ(editor.Shown(), "12345c [def|");
  EXPECT_EQ(editor.host.textChanges, 1);
}

}  // namespace
}  // namespace ui::test
