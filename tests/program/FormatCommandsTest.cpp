// Commands of the Format and Strip menus that ask, and the tool for super- and subscripts.
#include "services/Numbers.h"
#include "tests/program/ProgramTest.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <functional>

namespace {

using documents::frmText;

class FormatCommandsTest : public ProgramTest {
 protected:
  void SetUp() override {
    document_ = Open(Put("a.txt", "one\r\ntwo"));
    ASSERT_TRUE(document_);
    box().SelectAll();
  }
  ui::RichTextBox& box() { return document_->RichTextBox1(); }

  frmText* document_ = nullptr;
};

TEST(Numbers, TheNumberThatATextBeginsWith) {
  const std::pair<const char16_t*, double> rows[] = {
      {u"1.5", 1.5}, {u"1,5", 1},    {u"abc", 0},    {u"", 0},    {u" 1 2 cm", 12}, {u"-2", -2},
      {u"+3", 3},    {u"1e2x", 100}, {u"1e", 1},     {u".5", .5}, {u"1.2.3", 1.2},  {u"1-2", 1},
      {u"--1", 0},   {u"9e999", 0},  {u"\u0661", 0}, {u"nan", 0}, {u"infinity", 0},
  };
  for (const auto& [text, number] : rows)
    EXPECT_EQ(services::LeadingNumber(text), number) << QStringView(text).toString().toStdString();
}

TEST_F(FormatCommandsTest, IndentsAreCentimetersAndAreOfferedAgain) {
  const struct {
    void (frmText::*command)();
    const char* prompt;
    std::optional<int> (ui::RichTextBox::*get)() const;
  } commands[] = {
      {&frmText::mnuIndentLeft_Click, "Input (in centimeters) the amount of left indentation desired",
       &ui::RichTextBox::SelIndent},
      {&frmText::mnuIndentHang_Click, "Input (in centimeters) the amount of hanging indentation desired",
       &ui::RichTextBox::SelHangingIndent},
      {&frmText::mnuIndentRight_Click, "Input (in centimeters) the amount of right indentation desired",
       &ui::RichTextBox::SelRightIndent},
  };
  for (const auto& command : commands) {
    dialogs.Text(command.prompt, "0", "1.5 cm");
    std::invoke(command.command, *document_);
    EXPECT_EQ(std::invoke(command.get, box()), 850) << command.prompt;
    dialogs.Text(command.prompt, "1.5", std::nullopt);
    std::invoke(command.command, *document_);
    dialogs.Text(command.prompt, "1.5", "");
    std::invoke(command.command, *document_);
    EXPECT_EQ(std::invoke(command.get, box()), 850) << command.prompt;
    dialogs.Text(command.prompt, "1.5", "none");
    std::invoke(command.command, *document_);
    EXPECT_EQ(std::invoke(command.get, box()), 0) << command.prompt;
  }
  dialogs.Text(commands[0].prompt, "0", "1e30");
  document_->mnuIndentLeft_Click();
  dialogs.Text(commands[0].prompt, "0", std::nullopt);
  New().mnuIndentLeft_Click();
}

TEST_F(FormatCommandsTest, BulletsAskOnlyForTheWayThere) {
  const char* prompt = "Input (in centimeters) the amount of indentation desired for bulleted text";
  dialogs.Text(prompt, "0", std::nullopt);
  document_->mnuBullet_Click();
  EXPECT_EQ(box().SelBullet(), false);
  dialogs.Text(prompt, "0", "1");
  document_->mnuBullet_Click();
  EXPECT_EQ(box().SelBullet(), true);
  EXPECT_EQ(box().BulletIndent(), 567);
  EXPECT_TRUE(document_->checks().Bullet);
  document_->mnuBullet_Click();
  EXPECT_EQ(box().SelBullet(), false);
  EXPECT_FALSE(document_->checks().Bullet);
}

TEST_F(FormatCommandsTest, ProtectionGoesOnAndOff) {
  box().SetSelLength(2);
  document_->mnuProtect_Click();
  EXPECT_EQ(box().SelProtected(), true);
  box().SelectAll();
  EXPECT_TRUE(document_->checks().Protect) << "a mixed state leaves the mark";
  document_->mnuProtect_Click();
  EXPECT_EQ(box().SelProtected(), true) << "the inverse of mixed is on";
  document_->mnuProtect_Click();
  EXPECT_EQ(box().SelProtected(), false);
  EXPECT_FALSE(document_->checks().Protect);
}

TEST_F(FormatCommandsTest, TheOffsetToolRaisesAndLowers) {
  document_->mnuSelCharOffset_Click();
  EXPECT_TRUE(document_->checks().SelCharOffset);
  auto* bar = box().findChild<QScrollBar*>("VScroll1");
  auto* readOut = box().findChild<QLabel*>("Text1");
  ASSERT_TRUE(bar && readOut);
  EXPECT_EQ(bar->maximum(), 10);
  EXPECT_EQ(bar->minimum(), -10);
  QKeyEvent up(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier);
  QCoreApplication::sendEvent(bar, &up);
  QCoreApplication::sendEvent(bar, &up);
  EXPECT_EQ(box().SelCharOffset(), 30);
  EXPECT_EQ(readOut->text(), QString("2"));
  box().SetSelLength(1);
  box().SetSelFontSize(20);
  EXPECT_EQ(bar->maximum(), 20);
  box().SetSelCharOffset(-45);
  EXPECT_EQ(bar->value(), -3);
  box().SelectAll();
  EXPECT_EQ(bar->maximum(), 50);
  EXPECT_EQ(bar->value(), 0);
  EXPECT_EQ(box().SelCharOffset(), std::nullopt) << "looking changes nothing";
  bar->setSliderDown(true);
  for (const int value : {5, 6, 7}) bar->setValue(value);
  bar->setSliderDown(false);
  EXPECT_EQ(box().SelCharOffset(), 105);
  document_->mnuUndoItem_Click();
  EXPECT_EQ(box().SelCharOffset(), std::nullopt) << "a drag is one step";
  document_->mnuSelCharOffset_Click();
  EXPECT_TRUE(bar->isHidden() && readOut->isHidden());
  EXPECT_FALSE(document_->checks().SelCharOffset);
}

// Whatever moves the bar, what is at the top raises.
TEST_F(FormatCommandsTest, TheOffsetToolIsHighestAtItsTop) {
  document_->mnuSelCharOffset_Click();
  auto* bar = box().findChild<QScrollBar*>("VScroll1");
  ASSERT_TRUE(bar);
  const QPoint top(bar->width() / 2, 3), bottom(bar->width() / 2, bar->height() - 4);
  const QPoint belowTop(bar->width() / 2, bar->height() / 4), aboveBottom(bar->width() / 2, bar->height() * 3 / 4);
  const auto click = [bar](QPoint at) {
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
      const bool down = type == QEvent::MouseButtonPress;
      QMouseEvent event(type, at, bar->mapToGlobal(at), Qt::LeftButton, down ? Qt::LeftButton : Qt::NoButton, {});
      QCoreApplication::sendEvent(bar, &event);
    }
  };
  const auto press = [bar](Qt::Key key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(bar, &event);
  };
  const auto wheel = [bar, top](int turn) {
    QWheelEvent event(top, bar->mapToGlobal(top), {}, {0, turn}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(bar, &event);
  };
  const int notch = QApplication::wheelScrollLines();
  const struct {
    const char* what;
    std::function<void()> raise, lower;
    int pixels;
  } ways[] = {
      {"arrows", [&] { click(top); }, [&] { click(bottom); }, 1},
      {"groove", [&] { click(belowTop); }, [&] { click(aboveBottom); }, 4},
      {"Up and Down", [&] { press(Qt::Key_Up); }, [&] { press(Qt::Key_Down); }, 1},
      {"pages", [&] { press(Qt::Key_PageUp); }, [&] { press(Qt::Key_PageDown); }, 4},
      {"Home and End", [&] { press(Qt::Key_Home); }, [&] { press(Qt::Key_End); }, 10},
      {"wheel", [&] { wheel(120); }, [&] { wheel(-120); }, notch},
  };
  for (const auto& way : ways) {
    for (const int end : {0, -10, 10}) {  // at an end the way back is open
      bar->setValue(end);
      end > 0 ? way.lower() : way.raise();
      EXPECT_EQ(bar->value(), way.pixels == 10 ? (end > 0 ? -10 : 10) : end + (end > 0 ? -1 : 1) * way.pixels)
          << way.what << " from " << end;
      EXPECT_EQ(box().SelCharOffset(), bar->value() * 15) << way.what;
    }
  }
}

TEST_F(FormatCommandsTest, StripReplacesTheSelectionAsOneStep) {
  box().SetSelBold(true);
  document_->mnuStrip_Click();
  EXPECT_EQ(box().Text(), QString("one two"));
  EXPECT_EQ(box().SelStart(), 0);
  EXPECT_EQ(box().SelLength(), 7);
  document_->mnuUndoItem_Click();
  EXPECT_EQ(box().Text(), QString("one\r\ntwo"));
  box().SetSelStart(1);
  box().SetSelLength(5);
  document_->mnuStrip_Click();
  EXPECT_EQ(box().SelText(), QString("ne t"));
  EXPECT_EQ(box().SelStart(), 1);
}

TEST_F(FormatCommandsTest, StripWithoutASelectionOnlyMarksTheDocument) {
  box().SetSelStart(2);
  EXPECT_FALSE(Changed(*document_));
  document_->mnuStripBlanks_Click();
  EXPECT_TRUE(Changed(*document_));
  EXPECT_EQ(box().Text(), QString("one\r\ntwo"));
  EXPECT_FALSE(box().CanUndo());
}

TEST_F(FormatCommandsTest, StripAsksForTheCharactersCode) {
  const char* prompt = "Input the ASCII code of the character you want to strip.";
  const struct {
    const char *before, *offered, *answer, *after;
  } rows[] = {
      {"1,234,,5", "", "44", "12345"},     {"1,2-3", "44", "44.5", "12-3"},
      {"1,2-3.", "44.5", "45.5", "1,2-3"}, {"\u00E9tude\u20AC", "45.5", "233", "tude\u20AC"},
      {"a\u20AC", "233", "128", "a"},      {"a b", "128", "", "a b"},
      {"a b", "128", "x", "a b"},
  };
  for (const auto& row : rows) {
    box().SelectAll();
    box().SetSelText(row.before);
    box().SelectAll();
    dialogs.Text(prompt, row.offered, row.answer);
    document_->mnuStripASCII_Click();
    EXPECT_EQ(box().Text(), QString(row.after)) << row.answer;
  }
  dialogs.Text(prompt, "x", "256");
  ExpectError("Error: There is no character with the code 256.  Codes go from 0 to 255.");
  document_->mnuStripASCII_Click();
  dialogs.Text(prompt, "256", std::nullopt);
  document_->mnuStripASCII_Click();
}

TEST_F(FormatCommandsTest, WhatKeepsTheStrippingFromItsSelection) {
  dialogs.CancelNextWork();
  document_->mnuStrip_Click();
  dialogs.FailNextWork();
  ExpectError(Error(At("a.txt"), "Cannot allocate memory"));
  document_->mnuStrip_Click();
  dialogs.AfterNextWork([this] { box().SetSelStart(1); });
  document_->mnuStrip_Click();
  box().SelectAll();
  EXPECT_FALSE(Changed(*document_));
  box().SetSelProtected(true);
  ExpectError("Error: The selection holds protected text or a part of a table's row.  Nothing was stripped.");
  document_->mnuStrip_Click();
  EXPECT_EQ(box().Text(), QString("one\r\ntwo"));
  EXPECT_EQ(box().SelLength(), 8);
}

}  // namespace
