#include "tests/editor/EditorFixture.h"

#include <QInputMethodEvent>
#include <gtest/gtest.h>

namespace ui::test {
namespace {

void Compose(Editor& editor, const QString& preedit, const QString& commit = {}, int from = 0, int length = 0) {
  QInputMethodEvent event(preedit, {});
  event.setCommitString(commit, from, length);
  editor.controller.HandleInputMethod(event);
}

TEST(InputMethod, PreeditIsShownButNotText) {
  Editor editor("a|b");
  const double before = editor.layout.CaretRect({text::Units(2)}).x();
  Compose(editor, QStringLiteral("nihao"));
  EXPECT_EQ(editor.Shown(), "a|b");
  EXPECT_EQ(editor.host.textChanges, 0);
  EXPECT_TRUE(editor.controller.composing());
  EXPECT_GT(editor.layout.CaretRect({text::Units(2)}).x(), before + 10) << "the text behind moves aside";
  Compose(editor, {}, QStringLiteral("\u4F60\u597D"));
  EXPECT_EQ(editor.Shown(), "a\u4F60\u597D|b");
  EXPECT_FALSE(editor.controller.composing());
  EXPECT_EQ(editor.host.resets, 0) << "the input method ended it itself";
  EXPECT_EQ(editor.Press("Ctrl+Z").Shown(), "a|b");
}

TEST(InputMethod, CommitsAndReplacements) {
  struct Case {
    const char* before;
    const char* commit;
    int from, length;
    const char* after;
  };
  const Case cases[] = {
      {"a[bc|d", "x", 0, 0, "ax|d"},    {"abc|d", "X", -2, 2, "aX|d"}, {"ab|cd", "", -1, 2, "a|d"},
      {"a\nb|c", "X", -9, 9, "a\nX|c"}, {"ab|", "X", 0, 99, "abX|"},   {"a|\nb", "\n", 0, 0, "a\n|\nb"},
  };
  for (const Case& c : cases) {
    Editor editor(c.before);
    Compose(editor, {}, QString::fromUtf8(c.commit), c.from, c.length);
    EXPECT_EQ(editor.Shown(), c.after) << c.before << " " << c.commit << " " << c.from;
  }
}

TEST(InputMethod, ComposingReplacesTheSelection) {
  Editor editor("a[bc|d");
  Compose(editor, QStringLiteral("x"));
  EXPECT_EQ(editor.Shown(), "a|d");
}

TEST(InputMethod, AnythingElseEndsTheComposition) {
  for (const char* keys : {"Left", "'x'", "Ctrl+Z", "Delete"}) {
    Editor editor("a|bc");
    Compose(editor, QStringLiteral("pre"));
    editor.Press(keys);
    EXPECT_FALSE(editor.controller.composing()) << keys;
    EXPECT_EQ(editor.host.resets, 1) << keys;
  }
}

// Who clicks elsewhere or leaves the window has not taken back what was composed.
TEST(InputMethod, WhatWasComposedStaysWhenItIsFinished) {
  Editor editor("a[bc|d");
  Compose(editor, QStringLiteral("xy"));
  editor.controller.FinishComposition();
  EXPECT_EQ(editor.Shown(), "axy|d");
  EXPECT_EQ(editor.host.resets, 1);
  editor.controller.FinishComposition();
  EXPECT_EQ(editor.Shown(), "axy|d") << "only once";
  EXPECT_EQ(editor.Press("Ctrl+Z Ctrl+Z").Shown(), "a[bc|d");
}

TEST(InputMethod, AttributesPlaceCaretSelectionAndLooks) {
  using Attribute = QInputMethodEvent::Attribute;
  Editor editor("ab|cd");
  const double plain = editor.layout.CaretRect(editor.controller.caret()).x();
  editor.controller.HandleInputMethod(
      QInputMethodEvent(QStringLiteral("mmm"), {{QInputMethodEvent::Cursor, 0, 1, {}}}));
  EXPECT_EQ(editor.layout.CaretRect(editor.controller.caret()).x(), plain) << "in front of the composed text";
  editor.controller.HandleInputMethod(
      QInputMethodEvent(QStringLiteral("mmm"), {{QInputMethodEvent::Cursor, 3, 1, {}}}));
  EXPECT_GT(editor.layout.CaretRect(editor.controller.caret()).x(), plain + 20);
  ASSERT_TRUE(editor.layout.preedit());
  ASSERT_EQ(editor.layout.preedit()->formats.size(), 1) << "underlined when the input method says nothing";
  EXPECT_TRUE(editor.layout.preedit()->formats[0].format.fontUnderline());
  editor.controller.HandleInputMethod(QInputMethodEvent({}, {Attribute(QInputMethodEvent::Selection, 1, 2, {})}));
  EXPECT_EQ(editor.Shown(), "a[bc|d");
  editor.controller.HandleInputMethod(QInputMethodEvent({}, {Attribute(QInputMethodEvent::Selection, 99, -97, {})}));
  EXPECT_EQ(editor.Shown(), "ab|cd[") << "clamped to the paragraph";
}

// Composed Hebrew grows to the left, the caret in front of it, in the midst of a Latin line too.
TEST(InputMethod, ComposesRightToLeft) {
  Editor editor("ab |cd");
  const double before = editor.layout.CaretRect(editor.controller.caret()).x();
  Compose(editor, QStringLiteral("\u05D0\u05D1"));
  EXPECT_NEAR(editor.layout.CaretRect(editor.controller.caret()).x(), before, 2);
  Compose(editor, {}, QStringLiteral("\u05D0\u05D1"));
  EXPECT_EQ(editor.Shown(), "ab \u05D0\u05D1|cd");
  EXPECT_NEAR(editor.layout.CaretRect(editor.controller.caret()).x(), before, 2);
}

TEST(InputMethod, IsRefusedWhereNothingMayBeTyped) {
  Editor editor("a|b");
  editor.controller.SetReadOnly(true);
  Compose(editor, QStringLiteral("pre"));
  EXPECT_FALSE(editor.controller.composing());
  Compose(editor, {}, QStringLiteral("x"));
  EXPECT_EQ(editor.Shown(), "a|b");
  EXPECT_EQ(editor.host.refusals, 2);
}

TEST(InputMethod, OvertypeReplacesCharacterForCharacter) {
  Editor editor("a|bcd");
  editor.controller.SetOvertype(true);
  Compose(editor, {}, QStringLiteral("xy"));
  EXPECT_EQ(editor.Shown(), "axy|d");
}

TEST(InputMethod, SurroundingsAreTheParagraphCutAroundTheCaret) {
  Editor small("one\ntw[o|\nthree");
  const auto ask = [](const Editor& editor, Qt::InputMethodQuery query) {
    return editor.controller.QueryInputMethod(query);
  };
  EXPECT_EQ(ask(small, Qt::ImSurroundingText).toString(), "two");
  EXPECT_EQ(ask(small, Qt::ImCursorPosition).toInt(), 3);
  EXPECT_EQ(ask(small, Qt::ImAnchorPosition).toInt(), 2);
  EXPECT_EQ(ask(small, Qt::ImCurrentSelection).toString(), "o");
  EXPECT_EQ(ask(small, Qt::ImTextBeforeCursor).toString(), "two");
  EXPECT_EQ(ask(small, Qt::ImTextAfterCursor).toString(), "");
  EXPECT_TRUE(ask(small, Qt::ImEnabled).toBool());
  std::string longLine(10000, 'a');
  longLine[5000] = '|';
  Editor large(longLine);
  large.Press("Ctrl+Shift+End");
  const int length = static_cast<int>(ask(large, Qt::ImSurroundingText).toString().size());
  EXPECT_LE(length, 600);
  EXPECT_LE(ask(large, Qt::ImCursorPosition).toInt(), length);
  EXPECT_LE(ask(large, Qt::ImCurrentSelection).toString().size(), 600);
}

}  // namespace
}  // namespace ui::test
