#include "ui/editor/EditorAccessible.h"
#include "ui/editor/RichTextBox.h"

#include <QAccessible>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ui::test {
namespace {

class AccessibleTest : public testing::Test {
 protected:
  AccessibleTest() {
    box.resize(400, 200);
    box.SetSelText(QStringLiteral("one two.\r\nthr\u0301ee"));
    box.SetSelStart(0);
    root = QAccessible::queryAccessibleInterface(&box);
    text = root->textInterface();
    edit = root->editableTextInterface();
  }
  QString At(int offset, QAccessible::TextBoundaryType boundary) {
    return text->textAtOffset(offset, boundary, &start, &end);
  }

  RichTextBox box;
  QAccessibleInterface* root;
  QAccessibleTextInterface* text;
  QAccessibleEditableTextInterface* edit;
  int start = -1, end = -1;
};

TEST_F(AccessibleTest, IsAnEditableText) {
  EXPECT_EQ(root->role(), QAccessible::EditableText);
  ASSERT_TRUE(text);
  ASSERT_TRUE(edit);
  EXPECT_TRUE(root->state().editable);
  EXPECT_TRUE(root->state().multiLine);
  box.SetReadOnly(true);
  EXPECT_TRUE(root->state().readOnly);
}

TEST_F(AccessibleTest, CountsABreakAsOne) {
  EXPECT_EQ(text->characterCount(), 15);
  EXPECT_EQ(text->text(0, -1), QStringLiteral("one two.\nthr\u0301ee"));
  EXPECT_EQ(text->text(9, 12), "thr");
  text->setCursorPosition(9);
  EXPECT_EQ(box.SelStart(), 10);
  EXPECT_EQ(text->cursorPosition(), 9);
}

TEST_F(AccessibleTest, GivesPiecesAroundAnOffset) {
  EXPECT_EQ(At(5, QAccessible::WordBoundary), "two");
  EXPECT_EQ(start, 4);
  EXPECT_EQ(end, 7);
  EXPECT_EQ(At(11, QAccessible::CharBoundary), QStringLiteral("r\u0301"));
  EXPECT_EQ(At(2, QAccessible::ParagraphBoundary), "one two.\n");
  EXPECT_EQ(At(2, QAccessible::LineBoundary), "one two.\n");
  EXPECT_EQ(text->textAfterOffset(2, QAccessible::LineBoundary, &start, &end), QStringLiteral("thr\u0301ee"));
  EXPECT_EQ(text->textBeforeOffset(12, QAccessible::LineBoundary, &start, &end), "one two.\n");
  EXPECT_EQ(text->textBeforeOffset(0, QAccessible::LineBoundary, &start, &end), "");
  EXPECT_EQ(text->textAfterOffset(12, QAccessible::LineBoundary, &start, &end), "");
}

TEST_F(AccessibleTest, SelectsAndEdits) {
  text->setSelection(0, 4, 7);
  EXPECT_EQ(box.SelText(), "two");
  ASSERT_EQ(text->selectionCount(), 1);
  text->selection(0, &start, &end);
  EXPECT_EQ(start, 4);
  EXPECT_EQ(end, 7);
  text->removeSelection(0);
  EXPECT_EQ(text->selectionCount(), 0);
  edit->replaceText(4, 7, "2");
  edit->insertText(0, "\n");
  edit->deleteText(1, 4);
  EXPECT_EQ(box.Text(), QStringLiteral("\r\n 2.\r\nthr\u0301ee"));
  box.Undo();
  EXPECT_EQ(box.Text(), QStringLiteral("\r\none 2.\r\nthr\u0301ee"));
  box.SetReadOnly(true);
  edit->deleteText(0, 3);
  EXPECT_EQ(box.Text(), QStringLiteral("\r\none 2.\r\nthr\u0301ee"));
}

TEST_F(AccessibleTest, PlacesAndOffsetsAgree) {
  for (const int offset : {0, 4, 10, 13}) {
    const QRect rect = text->characterRect(offset);
    ASSERT_FALSE(rect.isEmpty()) << offset;
    EXPECT_EQ(text->offsetAtPoint({rect.left() + rect.width() / 4, rect.center().y()}), offset);
  }
}

TEST_F(AccessibleTest, NamesTheFormatOfARun) {
  box.SetSelStart(4);
  box.SetSelLength(3);
  box.SetSelBold(true);
  EXPECT_TRUE(text->attributes(5, &start, &end).contains("font-weight:bold"));
  EXPECT_EQ(end, 7);
  EXPECT_FALSE(text->attributes(1, &start, &end).contains("bold"));
  EXPECT_EQ(end, 4);
}

TEST_F(AccessibleTest, NamesObjectsAndLinks) {
  text::FormatTable& formats = box.document().formats();
  text::EmbeddedObject object;
  object.type = text::PictureType::kEmf;
  object.name = "a \"plan\"; of\nit";
  text::CharFormat format;
  format.object = formats.Add(object);
  format.link = formats.InternLink("https://quillmark.example/");
  const text::CharFormatId id = formats.Intern(format);
  box.document().Reset(box.document().content().WithCharFormats({text::Units(4), text::Units(5)},
                                                                [id](text::CharFormatId) { return id; }));
  box.DocumentEdited();
  const QString attributes = text->attributes(4, &start, &end);
  EXPECT_TRUE(attributes.contains("object-name:\"EMF picture: a plan of it\";")) << attributes.toStdString();
  EXPECT_TRUE(attributes.contains("link:\"https://quillmark.example/\";"));

  const int widgets = root->childCount() - 1;
  QAccessibleInterface* child = root->child(widgets);
  ASSERT_TRUE(child && child->isValid());
  EXPECT_EQ(child->role(), QAccessible::Graphic);
  EXPECT_EQ(child->text(QAccessible::Name), "EMF picture: a \"plan\"; of it");
  EXPECT_EQ(child->text(QAccessible::Description), "a \"plan\"; of it");
  EXPECT_EQ(child->rect(), text->characterRect(4));
  EXPECT_EQ(child->parent(), root);
  EXPECT_EQ(root->indexOfChild(child), widgets);
  EXPECT_EQ(root->child(widgets + 1), nullptr);
  edit->deleteText(4, 5);
  EXPECT_EQ(root->childCount(), widgets);
  EXPECT_FALSE(child->isValid());
  EXPECT_EQ(child->rect(), QRect());
}

TEST_F(AccessibleTest, GivesNoMoreThanAMessageHolds) {
  box.SetSelText(QString(5'000'000, u'x'));
  EXPECT_EQ(At(9, QAccessible::ParagraphBoundary).size(), 1 << 22);
  EXPECT_EQ(end, 1 << 22);
}

// --- What listeners are told

std::string Line(const QAccessibleEvent& event) {
  if (event.type() == QAccessible::TextInserted) {
    const auto& inserted = static_cast<const QAccessibleTextInsertEvent&>(event);
    return "+" + std::to_string(inserted.changePosition()) + inserted.textInserted().toStdString();
  }
  if (event.type() == QAccessible::TextRemoved) {
    const auto& removed = static_cast<const QAccessibleTextRemoveEvent&>(event);
    return "-" + std::to_string(removed.changePosition()) + removed.textRemoved().toStdString();
  }
  if (event.type() == QAccessible::TextUpdated) {
    const auto& updated = static_cast<const QAccessibleTextUpdateEvent&>(event);
    return "=" + std::to_string(updated.changePosition()) + updated.textRemoved().toStdString() + ">" +
           updated.textInserted().toStdString();
  }
  return event.type() == QAccessible::TextAttributeChanged ? "format" : "other";
}

TEST_F(AccessibleTest, ListenersHearOfEdits) {
  std::vector<std::string> heard;
  text::Content before = box.document().content();
  text::Revision since = box.document().revision();
  QObject::connect(&box, &RichTextBox::Change, [&] {
    heard.push_back(Line(*EventOfTextChange(box, before, since)));
    before = box.document().content();
    since = box.document().revision();
  });
  box.SetSelStart(4);
  box.SetSelText(QStringLiteral("X"));
  box.SetSelStart(4);
  box.SetSelLength(1);
  box.SetSelText(QStringLiteral("yz"));
  box.Undo();
  box.SetSelBold(true);
  box.DeleteSelection();
  EXPECT_EQ(heard, (std::vector<std::string>{"+4X", "=4X>yz", "=4yz>X", "format", "-4X"}));
}

TEST_F(AccessibleTest, ListenersHearOfTheSelection) {
  const auto caret = EventOfSelectionChange(box, {text::Units(3), text::Units(3)});
  ASSERT_EQ(caret->type(), QAccessible::TextCaretMoved);
  EXPECT_EQ(static_cast<QAccessibleTextCursorEvent&>(*caret).cursorPosition(), 3);
  const auto selected = EventOfSelectionChange(box, {text::Units(7), text::Units(2)});
  ASSERT_EQ(selected->type(), QAccessible::TextSelectionChanged);
  const auto& selection = static_cast<QAccessibleTextSelectionEvent&>(*selected);
  EXPECT_EQ(selection.selectionStart(), 2);
  EXPECT_EQ(selection.selectionEnd(), 7);
  EXPECT_EQ(selection.cursorPosition(), 2);
}

}  // namespace
}  // namespace ui::test
