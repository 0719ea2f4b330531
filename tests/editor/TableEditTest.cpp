// What edits do to tables, lists, links and objects.
#include "tests/editor/EditorFixture.h"

#include <gtest/gtest.h>

namespace ui::test {
namespace {

using text::CharFormat;
using text::ParaFormat;
using text::RowMark;
using text::Units;

// Paragraph by paragraph; `marks` has a letter for each: "-" none, "c" ends a cell, "r" ends a row, "i" within a cell,
// "n" a numbered one.
void Fill(Editor& editor, const std::vector<std::string>& paragraphs, const std::string& marks) {
  text::ContentBuilder builder(editor.document.content().store());
  text::FormatTable& formats = editor.document.formats();
  text::TableRow row;
  row.cells = {{1500, 15, {}}, {3000, 15, {}}};
  const text::RowId rowId = formats.Intern(row);
  const text::ListId list = formats.Intern(text::List{1, {{text::NumberStyle::kDecimal, 1, std::string("\0.", 2)}}});
  text::ParaFormatId last = text::ParaFormatId::kDefault;
  for (size_t i = 0; i < paragraphs.size(); ++i) {
    ParaFormat format;
    if (marks[i] == 'n') format.list = list;
    if (marks[i] == 'n') format.leftIndent = 720, format.firstIndent = -360;
    if (std::string("cri").find(marks[i]) != std::string::npos) format.row = rowId;
    if (marks[i] == 'c') format.rowMark = RowMark::kCellEnd;
    if (marks[i] == 'r') format.rowMark = RowMark::kRowEnd;
    last = formats.Intern(format);
    builder.Append(paragraphs[i]);
    if (i + 1 < paragraphs.size()) builder.Append("\n", text::CharFormatId::kDefault, last);
  }
  text::TextProperties properties;
  properties.lineEnd = text::LineEnd::kLf;
  editor.document.Reset(builder.Finish(last), properties);
  editor.controller.Reset();
  editor.host = RecordingHost();
}

std::string Marks(const Editor& editor) {
  std::string marks;
  const text::Content& content = editor.document.content();
  for (text::Breaks i(0); i <= content.breaks(); ++i) {
    const ParaFormat& format = content.formats()[content.ParaFormatOf(i)];
    marks += format.list != text::ListId::kNone    ? 'n'
             : format.row == text::RowId::kNone    ? '-'
             : format.rowMark == RowMark::kCellEnd ? 'c'
             : format.rowMark == RowMark::kRowEnd  ? 'r'
                                                   : 'i';
  }
  return marks;
}

// "before" / ab|cd / ef|gh / "after": offsets 0-6, 7-9, 10-12, 13-15, 16-18, 19-24.
void FillTable(Editor& editor) {
  Fill(editor, {"before", "ab", "cd", "ef", "gh", "after"}, "-crcr-");
}

struct TableCase {
  const char* name;
  int anchor, caret;
  const char* keys;
  const char* text;
  const char* marks;
  int refusals;
};

TEST(TableEdits, KeepTheStructure) {
  const TableCase cases[] = {
      {"backspace at a cell's begin", 10, 10, "Backspace", "before\nab\n|cd\nef\ngh\nafter", "-crcr-", 1},
      {"delete at a cell's end", 9, 9, "Delete", "before\nab|\ncd\nef\ngh\nafter", "-crcr-", 1},
      {"delete at a row's end", 12, 12, "Delete", "before\nab\ncd|\nef\ngh\nafter", "-crcr-", 1},
      {"backspace below the table", 19, 19, "Backspace", "before\nab\ncd\nef\ngh\n|after", "-crcr-", 1},
      {"text above does not flow in", 6, 6, "Delete", "before|\nab\ncd\nef\ngh\nafter", "-crcr-", 1},
      {"a part of two cells", 8, 11, "Delete", "before\na|\nd\nef\ngh\nafter", "-crcr-", 0},
      {"backwards", 15, 8, "Backspace", "before\na|\n\n\ngh\nafter", "-crcr-", 0},
      {"cut, and pasted into a cell", 8, 11, "Ctrl+X Ctrl+V", "before\nab\nc|\nd\nef\ngh\nafter", "-icrcr-", 0},
      {"and undone", 15, 8, "Delete Ctrl+Z", "before\na|b\ncd\nef[\ngh\nafter", "-crcr-", 0},
      {"cells without text", 12, 13, "Delete", "before\nab\ncd[\n|ef\ngh\nafter", "-crcr-", 1},
      {"paragraphs of a cell and another cell", 11, 11,
       "Return Left Left Shift+Right Shift+Right Shift+Right Shift+Right Delete", "before\nab\n|\nef\ngh\nafter",
       "-crcr-", 0},
      {"a cell and text below", 16, 20, "Delete", "before\nab\ncd\nef\n[gh\na|fter", "-crcr-", 1},
      {"a cell and the end of its row", 16, 19, "Delete", "before\nab\ncd\nef\n|\nafter", "-crcr-", 0},
      {"typing over a part of two rows", 8, 14, "'x'", "before\na[b\ncd\ne|f\ngh\nafter", "-crcr-", 1},
      {"within a cell", 7, 9, "Delete", "before\n|\ncd\nef\ngh\nafter", "-crcr-", 0},
      {"a whole row", 7, 13, "Delete", "before\n|ef\ngh\nafter", "-cr-", 0},
      {"all rows and more", 0, 19, "Delete", "|after", "-", 0},
      {"text above and a row", 3, 13, "Delete", "bef[ore\nab\ncd\n|ef\ngh\nafter", "-crcr-", 1},
      {"Enter within a row's last cell", 11, 11, "Return", "before\nab\nc\n|d\nef\ngh\nafter", "-circr-", 0},
      {"Enter and back", 11, 11, "Return Backspace", "before\nab\nc|d\nef\ngh\nafter", "-crcr-", 0},
      {"Tab to the next cell", 7, 7, "Tab", "before\nab\n[cd|\nef\ngh\nafter", "-crcr-", 0},
      {"Tab to the next row", 10, 10, "Tab", "before\nab\ncd\n[ef|\ngh\nafter", "-crcr-", 0},
      {"Tab back", 13, 13, "Shift+Backtab", "before\nab\n[cd|\nef\ngh\nafter", "-crcr-", 0},
      {"Tab at the end adds a row", 18, 18, "Tab", "before\nab\ncd\nef\ngh\n|\n\nafter", "-crcrcr-", 0},
      {"Tab outside is text", 0, 0, "Tab", "\t|before\nab\ncd\nef\ngh\nafter", "-crcr-", 0},
  };
  for (const TableCase& c : cases) {
    Editor editor("|");
    FillTable(editor);
    editor.controller.Select({Units(c.anchor), Units(c.caret)});
    editor.Press(c.keys);
    EXPECT_EQ(editor.Shown(), c.text) << c.name;
    EXPECT_EQ(Marks(editor), c.marks) << c.name;
    EXPECT_EQ(editor.host.refusals, c.refusals) << c.name;
  }
}

// Where the last row is the text's end.
TEST(TableEdits, AtTheEndOfTheText) {
  Editor editor("|");
  Fill(editor, {"ab", "cd"}, "cr");
  editor.Press("Tab Tab");
  EXPECT_EQ(editor.Shown(), "ab\ncd\n|\n");
  EXPECT_EQ(Marks(editor), "crcr");
  editor.Press("'x' Tab 'y' Ctrl+A Delete");
  EXPECT_EQ(editor.Shown(), "|");
  EXPECT_EQ(Marks(editor), "-");
  editor.Press("Ctrl+Z");
  EXPECT_EQ(Marks(editor), "crcr");
}

struct PasteCase {
  const char* name;
  int from, to, at;  // what is copied, and where it goes
  const char* text;
  const char* marks;
};

TEST(TableEdits, PastedRowsFitTheirPlace) {
  const PasteCase cases[] = {
      {"a row below", 7, 13, 19, "before\nab\ncd\nef\ngh\nab\ncd\n|after", "-crcrcr-"},
      {"a row within a line", 7, 13, 2, "be\nab\ncd\n|fore\nab\ncd\nef\ngh\nafter", "-cr-crcr-"},
      {"a row into a cell", 7, 13, 17, "before\nab\ncd\nef\ngab\ncd\n|h\nafter", "-crciir-"},
      {"a part of a row elsewhere", 8, 11, 19, "before\nab\ncd\nef\ngh\nb\nc|after", "-crcr--"},
      {"paragraphs into a cell", 0, 7, 17, "before\nab\ncd\nef\ngbefore\n|h\nafter", "-crcir-"},
  };
  for (const PasteCase& c : cases) {
    Editor editor("|");
    FillTable(editor);
    editor.controller.Select({Units(c.from), Units(c.to)});
    editor.Press("Ctrl+C");
    editor.controller.Select({Units(c.at), Units(c.at)});
    editor.Press("Ctrl+V");
    EXPECT_EQ(editor.Shown(), c.text) << c.name;
    EXPECT_EQ(Marks(editor), c.marks) << c.name;
  }
}

TEST(TableEdits, TextInAnEmptiedCellLooksAsBefore) {
  Editor editor("|");
  FillTable(editor);
  text::CharFormatPatch bold;
  bold.setFlags = text::kBold;
  editor.controller.Select({Units(7), Units(9)});
  editor.controller.PatchChars(bold);
  editor.controller.Select({Units(7), Units(11)});
  editor.Press("Delete 'x'");
  EXPECT_EQ(editor.Shown(), "before\nx|\nd\nef\ngh\nafter");
  EXPECT_EQ(editor.document.formats()[editor.document.content().CharFormatAt(Units(7))].flags, text::kBold);
}

// The cell's only paragraph becomes the list's last one and still ends the cell.
TEST(TableEdits, AListIntoAnEmptyCell) {
  Editor editor("|");
  Fill(editor, {"", "cd"}, "cr");
  QMimeData data;
  data.setHtml("<ul><li>a<li>b</ul>");
  editor.controller.Insert(data, false);
  EXPECT_EQ(editor.Shown(), "a\nb|\ncd");
  EXPECT_EQ(Marks(editor), "icr");
  const text::Content& content = editor.document.content();
  EXPECT_TRUE(content.formats()[content.ParaFormatOf(text::Breaks(1))].bullet);
}

TEST(Lists, EnterGoesOnAndEndsThem) {
  Editor editor("|");
  Fill(editor, {"one", "two"}, "nn");
  editor.Press("Ctrl+End Return 'three'");
  EXPECT_EQ(Marks(editor), "nnn");
  editor.Press("Return Return");
  EXPECT_EQ(editor.Shown(), "one\ntwo\nthree\n|");
  EXPECT_EQ(Marks(editor), "nnn-");
  editor.Press("Ctrl+Home Backspace");
  EXPECT_EQ(editor.Shown(), "|one\ntwo\nthree\n");
  EXPECT_EQ(Marks(editor), "-nn-");
  EXPECT_EQ(editor.controller.ParagraphState().leftIndent, 360);
}

struct LinkCase {
  int caret;
  const char* linked;  // of "see page now", where "page" is one, after an "x" was typed
};

TEST(Links, TypingBesideThemIsNoLink) {
  for (const LinkCase& c : {LinkCase{4, "page"}, {8, "page"}, {6, "paxge"}}) {
    Editor editor("see page |now");
    CharFormat link;
    link.link = editor.document.formats().InternLink("https://quillmark.example/");
    const text::CharFormatId id = editor.document.formats().Intern(link);
    const text::Content linked =
        editor.document.content().WithCharFormats({Units(4), Units(8)}, [id](text::CharFormatId) { return id; });
    editor.document.Reset(linked, {});
    editor.controller.Reset();
    editor.controller.Select({Units(c.caret), Units(c.caret)});
    editor.Press("Ctrl+Return");
    EXPECT_EQ(editor.host.followed, "https://quillmark.example/,");
    editor.Press("'x'");
    std::string found;
    editor.document.content().ForEachPiece(editor.document.content().all(), [&](const text::PieceView& piece) {
      if (editor.document.formats()[piece.charFormat].link != text::LinkId::kNone) found += piece.bytes;
      return true;
    });
    EXPECT_EQ(found, c.linked);
    const auto click = [&](QEvent::Type type, Qt::KeyboardModifiers modifiers) {
      const QPointF point = editor.layout.CaretRect({Units(6)}).center();
      QMouseEvent event(type, point, point, Qt::LeftButton, Qt::LeftButton, modifiers);
      type == QEvent::MouseButtonPress ? editor.mouse.Press(event) : editor.mouse.Release(event);
    };
    editor.host.followed.clear();
    click(QEvent::MouseButtonPress, Qt::NoModifier);
    click(QEvent::MouseButtonRelease, Qt::NoModifier);
    EXPECT_EQ(editor.host.followed, "") << "a mere click sets the caret";
    click(QEvent::MouseButtonPress, Qt::ControlModifier);
    click(QEvent::MouseButtonRelease, Qt::ControlModifier);
    EXPECT_EQ(editor.host.followed, "https://quillmark.example/,");
  }
}

TEST(Objects, AClickSelectsThem) {
  Editor editor("|");
  text::EmbeddedObject object;
  object.width = object.height = 900;
  CharFormat format;
  format.object = editor.document.formats().Add(object);
  text::ContentBuilder builder(editor.document.content().store());
  builder.Append("ab");
  builder.Append("\uFFFC", editor.document.formats().Intern(format));
  builder.Append("cd");
  editor.document.Reset(builder.Finish(), {});
  editor.controller.Reset();
  const QPointF point = editor.layout.CaretRect({Units(2)}).topRight() + QPointF(30, -20);
  QMouseEvent press(QEvent::MouseButtonPress, point, point, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
  editor.mouse.Press(press);
  EXPECT_EQ(editor.Shown(), "ab[\uFFFC|cd");
  editor.Press("'x'");
  EXPECT_EQ(editor.Shown(), "abx|cd");
  EXPECT_EQ(editor.document.formats()[editor.document.content().CharFormatAt(Units(2))].object, text::ObjectId::kNone);
}

}  // namespace
}  // namespace ui::test
