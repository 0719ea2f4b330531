// Exceptions end where Qt calls the editor, and what failed leaves everything as it was.
#include "tests/editor/EditorFixture.h"
#include "tests/editor/FailingAllocation.h"
#include "ui/editing/exchange/EditorClipboard.h"
#include "ui/editor/RichTextBox.h"

#include <QAccessible>
#include <QScrollBar>
#include <QSignalBlocker>
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <utility>

namespace ui::test {
namespace {

struct Box : RichTextBox {
  Box() {
    QString lines;
    for (int i = 0; i < 500; ++i) lines += QStringLiteral("line %1\n").arg(i);
    resize(300, 200);
    SetSelText(lines);
    SetSelStart(0);
    ScrollToCaret();
    connect(this, &RichTextBox::EditFailed, [this](const QString& reason) { failures << reason; });
  }
  using RichTextBox::scrollContentsBy;
  QStringList failures;
};

TEST(Failure, OfAScrollBarsStepIsToldAndTheNextOneScrolls) {
  Box box;
  QScrollBar& bar = *box.verticalScrollBar();
  bar.setValue(100);
  bool fail = true;
  QObject::connect(&bar, &QScrollBar::valueChanged, [&] {
    if (std::exchange(fail, false)) throw std::runtime_error("no memory");
  });
  EXPECT_NO_THROW(bar.triggerAction(QAbstractSlider::SliderSingleStepAdd));
  EXPECT_EQ(box.failures, QStringList{"no memory"});
  QAccessibleTextInterface& text = *QAccessible::queryAccessibleInterface(&box)->textInterface();
  const auto firstRow = [&] { return text.offsetAtPoint(box.viewport()->mapToGlobal(QPoint(5, 5))); };
  const int before = firstRow();
  bar.setValue(bar.value() + 200);
  EXPECT_GT(firstRow(), before) << "the text does not follow the bar any more";
}

TEST(Failure, OfScrollingIsTold) {
  Box box;
  {
    const QSignalBlocker blocker(box.verticalScrollBar());
    box.verticalScrollBar()->setValue(box.verticalScrollBar()->maximum() / 2);
  }
  const FailingAllocation failing;
  EXPECT_NO_THROW(box.scrollContentsBy(0, 1));
  EXPECT_TRUE(failing.happened());
  EXPECT_EQ(box.failures.size(), 1);
}

TEST(Failure, OfGivingCopiedTextGivesNothing) {
  Editor editor("[" + std::string(5000, 'x') + "|");
  editor.Press("Ctrl+C");
  const QMimeData& data = *editor.host.data[QClipboard::Clipboard];
  for (const char* type : {"text/plain", "text/rtf"}) {
    const FailingAllocation failing;
    QByteArray given = "something";
    EXPECT_NO_THROW(given = data.data(QLatin1String(type))) << type;
    EXPECT_TRUE(failing.happened()) << type;
    EXPECT_EQ(given, QByteArray()) << type;
  }
  EXPECT_EQ(data.text().size(), 5000);
}

TEST(Failure, OfAnAssistiveProgramsCallIsTold) {
  Box box;
  QAccessibleInterface& root = *QAccessible::queryAccessibleInterface(&box);
  QAccessibleTextInterface& text = *root.textInterface();
  const auto fails = [] { throw std::runtime_error("no memory"); };
  QObject::connect(&box, &RichTextBox::Change, fails);
  QObject::connect(&box, &RichTextBox::SelChange, fails);
  EXPECT_NO_THROW(text.setCursorPosition(3));
  EXPECT_NO_THROW(text.setSelection(0, 1, 4));
  EXPECT_NO_THROW(root.editableTextInterface()->replaceText(0, 1, "y"));
  EXPECT_EQ(box.failures, QStringList(3, "no memory"));
  box.failures.clear();
  bool happened = false;
  {
    const FailingAllocation failing;
    EXPECT_NO_THROW(text.text(0, 2000));
    happened = failing.happened();
  }
  EXPECT_TRUE(happened);
  EXPECT_EQ(box.failures.size(), 1);
}

// The edits that were made behind the editor's back are told by the next operation.
TEST(Failure, BeforeAnOperationLeavesTheEditorTelling) {
  Editor editor("abc [def|");
  editor.document.Replace({text::Units(0), text::Units(2)}, "12345", text::CharFormatId::kDefault,
                          text::EditKind::kCommand, {});
  {
    const FailingAllocation failing;
    EXPECT_THROW(editor.controller.Sync(), std::bad_alloc);
  }
  EXPECT_EQ(editor.host.textChanges, 0);
  editor.controller.Sync();
  EXPECT_EQ(editor.Shown(), "12345c [def|");
  EXPECT_EQ(editor.host.textChanges, 1);
}

}  // namespace
}  // namespace ui::test
