// The widget itself: events as Qt sends them, painting, scroll bars, signals.
#include "ui/editor/RichTextBox.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QImage>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QThread>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

namespace ui::test {
namespace {

bool SendKey(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = {}, const QString& text = {}) {
  QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
  QApplication::sendEvent(&widget, &event);
  return event.isAccepted();
}

std::string Lines(int count) {
  std::string lines;
  for (int i = 0; i < count; ++i) lines += "line " + std::to_string(i) + "\n";
  return lines;
}

TEST(Widget, TypesAndTellsOnceForAKey) {
  RichTextBox box;
  int changes = 0, selections = 0;
  QObject::connect(&box, &RichTextBox::Change, [&] { ++changes; });
  QObject::connect(&box, &RichTextBox::SelChange, [&] { ++selections; });
  EXPECT_TRUE(SendKey(box, Qt::Key_A, Qt::ShiftModifier, "A"));
  EXPECT_TRUE(SendKey(box, Qt::Key_Tab, {}, "\t"));
  EXPECT_TRUE(SendKey(box, Qt::Key_Return, {}, "\r"));
  EXPECT_TRUE(SendKey(box, Qt::Key_At, Qt::ControlModifier | Qt::AltModifier, "@"));
  EXPECT_EQ(box.Text(), "A\t\r\n@");
  EXPECT_EQ(changes, 4);
  EXPECT_EQ(selections, 4);
}

TEST(Widget, LeavesOtherKeysToTheWindow) {
  RichTextBox box;
  EXPECT_FALSE(SendKey(box, Qt::Key_F3));
  EXPECT_FALSE(SendKey(box, Qt::Key_B, Qt::ControlModifier, "\x02"));
  EXPECT_FALSE(SendKey(box, Qt::Key_X, Qt::AltModifier, "x"));
  EXPECT_FALSE(SendKey(box, Qt::Key_Escape, {}, "\x1B"));
  EXPECT_FALSE(SendKey(box, Qt::Key_Tab, Qt::ControlModifier, "\t"));
  EXPECT_EQ(box.Text(), "");
}

// What the editor has for itself does not reach a menu that has the same shortcut.
TEST(Widget, ClaimsItsOwnKeysFromShortcuts) {
  const std::pair<QKeyCombination, bool> cases[] = {{Qt::CTRL | Qt::Key_Z, true},  {Qt::Key_Delete, true},
                                                    {Qt::CTRL | Qt::Key_B, false}, {Qt::Key_F5, false},
                                                    {Qt::CTRL | Qt::Key_V, true},  {Qt::CTRL | Qt::Key_S, false}};
  RichTextBox box;
  for (const auto& [key, own] : cases) {
    QKeyEvent event(QEvent::ShortcutOverride, key.key(), key.keyboardModifiers());
    event.ignore();
    QApplication::sendEvent(&box, &event);
    EXPECT_EQ(event.isAccepted(), own) << QKeySequence(key).toString().toStdString();
  }
}

TEST(Widget, InsertTogglesOvertypeAndTells) {
  RichTextBox box;
  std::vector<bool> told;
  QObject::connect(&box, &RichTextBox::OvertypeChanged, [&](bool on) { told.push_back(on); });
  SendKey(box, Qt::Key_Insert);
  SendKey(box, Qt::Key_Insert);
  box.SetOvertype(false);
  EXPECT_EQ(told, (std::vector<bool>{true, false}));
}

TEST(Widget, AnEditInTheMiddleOfAnEventIsToldToo) {
  RichTextBox box;
  int changes = 0;
  QObject::connect(&box, &RichTextBox::Change, [&] {
    if (++changes == 1) box.SetSelText("!");
  });
  SendKey(box, Qt::Key_A, {}, "a");
  EXPECT_EQ(box.Text(), "a!");
  EXPECT_EQ(changes, 2);
}

TEST(Widget, AnExceptionDoesNotReachTheEventLoop) {
  RichTextBox box;
  QStringList failures;
  QObject::connect(&box, &RichTextBox::EditFailed, [&](const QString& reason) { failures << reason; });
  bool fail = true;
  QObject::connect(&box, &RichTextBox::Change, [&] {
    if (fail) throw std::runtime_error("no memory");
  });
  SendKey(box, Qt::Key_A, {}, "a");
  EXPECT_EQ(failures, QStringList{"no memory"});
  fail = false;
  SendKey(box, Qt::Key_B, {}, "b");
  EXPECT_EQ(box.Text(), "ab");
  EXPECT_EQ(failures.size(), 1);
}

TEST(Widget, MenusAreAskedForAtThePointerOrTheCaret) {
  RichTextBox box;
  box.resize(300, 200);
  box.SetSelText("some text");
  std::vector<QPoint> asked;
  QObject::connect(&box, &RichTextBox::ContextMenuRequested, [&](QPoint at) { asked.push_back(at); });
  QContextMenuEvent mouse(QContextMenuEvent::Mouse, {20, 10}, {120, 110});
  QApplication::sendEvent(box.viewport(), &mouse);
  QContextMenuEvent key(QContextMenuEvent::Keyboard, {5, 5}, {5, 5});
  QApplication::sendEvent(&box, &key);
  ASSERT_EQ(asked.size(), 2u);
  EXPECT_EQ(asked[0], QPoint(120, 110));
  EXPECT_NE(asked[1], QPoint(5, 5));
  EXPECT_LT(box.SelStart(), 9) << "the press moved the caret";
}

TEST(Widget, ScrollBarAndTextGoTogether) {
  RichTextBox box;
  box.resize(300, 200);
  box.SetSelText(QString::fromStdString(Lines(500)));
  box.SetSelStart(0);
  QScrollBar& bar = *box.verticalScrollBar();
  EXPECT_EQ(bar.value(), 0);
  EXPECT_GT(bar.maximum(), 1000);
  SendKey(box, Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(bar.value(), bar.maximum());
  bar.setValue(0);
  QInputMethodQueryEvent query(Qt::ImCursorRectangle);
  QApplication::sendEvent(&box, &query);
  EXPECT_GT(query.value(Qt::ImCursorRectangle).toRectF().top(), 200) << "the caret stays where it is in the text";
  bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
  EXPECT_GT(bar.value(), 0);
  const int line = bar.value();
  bar.triggerAction(QAbstractSlider::SliderPageStepAdd);
  EXPECT_GT(bar.value(), line + 100);
  box.ScrollToCaret();
  EXPECT_EQ(bar.value(), bar.maximum());
}

TEST(Widget, ZoomStepsLeadBackExactlyAndKeepTheTopLine) {
  RichTextBox box;
  box.resize(300, 200);
  box.SetSelText(QString::fromStdString(Lines(500)));
  box.verticalScrollBar()->setValue(box.verticalScrollBar()->maximum() / 2);
  const auto top = [&] {
    return QAccessible::queryAccessibleInterface(&box)->textInterface()->offsetAtPoint(
        box.viewport()->mapToGlobal(QPoint(2, 6)));
  };
  const int before = top();
  for (int i = 0; i < 5; ++i) SendKey(box, Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_NEAR(box.Zoom(), std::pow(1.1, 5), 1e-4);
  EXPECT_NEAR(top(), before, 10);
  for (int i = 0; i < 5; ++i) SendKey(box, Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_NEAR(box.Zoom(), 1, 1e-5);
  SendKey(box, Qt::Key_Plus, Qt::ControlModifier);
  SendKey(box, Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(box.Zoom(), 1);
  for (const auto& [set, got] : {std::pair{1e9, 10.0}, {0.0, 0.1}}) {
    box.SetZoom(set);
    EXPECT_EQ(box.Zoom(), got);
  }
}

// A desktop without a blinking caret shows a steady one.
TEST(Widget, TheCaretBlinksAsTheDesktopSays) {
  const int flash = QApplication::cursorFlashTime();
  for (const int time : {0, 40}) {
    QApplication::setCursorFlashTime(time);
    RichTextBox box;
    box.resize(200, 100);
    box.show();
    box.activateWindow();
    box.setFocus();
    QApplication::processEvents();
    ASSERT_TRUE(box.hasFocus());
    const QImage with = box.viewport()->grab().toImage();
    bool blinked = false;
    for (int i = 0; i < 100 && !blinked; ++i) {
      QThread::msleep(2);
      QApplication::processEvents();
      blinked = box.viewport()->grab().toImage() != with;
    }
    EXPECT_EQ(blinked, time != 0);
  }
  QApplication::setCursorFlashTime(flash);
}

// --- Painting

int Darkest(const QImage& image) {
  int darkest = 255;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) darkest = std::min(darkest, qGray(image.pixel(x, y)));
  }
  return darkest;
}

int Lightest(QImage image) {
  image.invertPixels();
  return 255 - Darkest(image);
}

QImage Shot(RichTextBox& box) {
  return box.viewport()->grab().toImage();
}

TEST(Painting, TextIsReadableInEveryPaletteAndOnEveryBackground) {
  const QColor grounds[] = {QColor(), Qt::black, Qt::white, QColor(0, 0, 128), QColor(255, 255, 192)};
  for (const bool dark : {false, true}) {
    for (const QColor& ground : grounds) {
      RichTextBox box;
      QPalette palette;
      palette.setColor(QPalette::Base, dark ? QColor(30, 30, 30) : Qt::white);
      palette.setColor(QPalette::Text, dark ? Qt::white : Qt::black);
      box.setPalette(palette);
      box.resize(200, 100);
      box.SetSelText("MMMM");
      box.SetBackgroundColor(ground);
      const QImage image = Shot(box);
      const QColor expected = ground.isValid() ? ground : palette.color(QPalette::Base);
      EXPECT_EQ(image.pixelColor(190, 90), expected);
      EXPECT_GT(Lightest(image) - Darkest(image), 100) << dark << " " << ground.name().toStdString();
    }
  }
}

// --- Drag and drop as Qt delivers it

TEST(Widget, TakesADropAsACopy) {
  RichTextBox box;
  box.resize(300, 100);
  box.SetSelText("one two");
  QMimeData data;
  data.setData("text/rtf", "{\\rtf1 {\\b new }}");
  data.setText("plain");
  QDragEnterEvent enter({2, 10}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(box.viewport(), &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop({2, 10}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
  drop.setDropAction(Qt::MoveAction);
  QApplication::sendEvent(box.viewport(), &drop);
  EXPECT_TRUE(drop.isAccepted());
  EXPECT_EQ(drop.dropAction(), Qt::CopyAction);
  EXPECT_EQ(box.Text(), "new one two");
  QDragEnterEvent moveOnly({2, 10}, Qt::MoveAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(box.viewport(), &moveOnly);
  EXPECT_FALSE(moveOnly.isAccepted());
}

}  // namespace
}  // namespace ui::test
