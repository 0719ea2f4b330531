// The real dialogs, answered by their own buttons.
#include "ui/dialogs/FontForm.h"
#include "ui/dialogs/ProgressForm.h"
#include "ui/dialogs/QtDialogs.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFontDialog>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using ui::Answer;
using ui::Buttons;
using ui::Icon;

// Acts on the modal window as soon as there is one of that kind.
template <class Dialog>
void WhenOpen(std::function<void(Dialog&)> act) {
  QTimer::singleShot(10, qApp, [act] {
    if (auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget())) return act(*dialog);
    WhenOpen<Dialog>(act);
  });
}

struct BoxCase {
  Buttons buttons;
  QMessageBox::StandardButton press;
  Answer answer;
};

TEST(QtDialogs, MessageBoxes) {
  ui::QtDialogs dialogs;
  const BoxCase cases[] = {
      {Buttons::kOk, QMessageBox::Ok, Answer::kOk},
      {Buttons::kYesNo, QMessageBox::Yes, Answer::kYes},
      {Buttons::kYesNo, QMessageBox::No, Answer::kNo},
      {Buttons::kYesNoCancel, QMessageBox::Yes, Answer::kYes},
      {Buttons::kYesNoCancel, QMessageBox::No, Answer::kNo},
      {Buttons::kYesNoCancel, QMessageBox::Cancel, Answer::kCancel},
  };
  for (const BoxCase& c : cases) {
    WhenOpen<QMessageBox>([&](QMessageBox& box) {
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      EXPECT_EQ(box.text(), "File: <b>a & b</b>\nsecond");
      EXPECT_EQ(box.windowTitle(), "Quillmark");
      ASSERT_TRUE(box.button(c.press));
      box.button(c.press)->click();
    });
    EXPECT_EQ(dialogs.ShowMessage(nullptr, {"File: <b>a & b</b>\r\nsecond", c.buttons, Icon::kExclamation}), c.answer);
  }
}

TEST(QtDialogs, EscapeIsCancel) {
  ui::QtDialogs dialogs;
  WhenOpen<QMessageBox>([](QMessageBox& box) { box.reject(); });
  EXPECT_EQ(dialogs.ShowMessage(nullptr, {"text", Buttons::kYesNoCancel, Icon::kQuestion}), Answer::kCancel);
}

TEST(Progress, ShortWorkShowsNothing) {
  int ran = 0;
  ui::RunBehindProgress(nullptr, "working", 0, [&](ui::WorkPort&) { ++ran; });
  EXPECT_EQ(ran, 1);
  EXPECT_FALSE(QApplication::overrideCursor());
}

TEST(Progress, LongWorkShowsItsProgressAndCanBeCancelled) {
  bool cancelled = false;
  WhenOpen<QProgressDialog>([](QProgressDialog& progress) {
    EXPECT_EQ(progress.labelText(), "working");
    EXPECT_TRUE(QApplication::overrideCursor());
    progress.findChild<QPushButton*>()->click();
  });
  ui::RunBehindProgress(nullptr, "working", 100, [&](ui::WorkPort& port) {
    // Ends by itself too, so that a broken Cancel fails the test instead of hanging it.
    for (int i = 0; i < 2000 && port.Report(i % 100); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    cancelled = port.cancelled();
  });
  EXPECT_TRUE(cancelled);
  EXPECT_FALSE(QApplication::overrideCursor());
  EXPECT_FALSE(QApplication::activeModalWidget());
}

TEST(FontForm, WhatIsNotTouchedComesBackAsItWas) {
  const ui::FontChoice odd{"No Such Family", 10.5, true, false, true, false, 0x102030};
  EXPECT_EQ(ui::FontForm(odd).choice(), odd);
}

TEST(FontForm, WhatIsChangedComesBackChanged) {
  ui::FontForm form({"No Such Family", 10, false, false, false, false, -1});
  QFont font = form.fonts().currentFont();
  font.setUnderline(true);
  font.setPointSize(20);
  form.fonts().setCurrentFont(font);
  form.SetColor(0xFF);
  EXPECT_EQ(form.choice(), (ui::FontChoice{"No Such Family", 20, false, false, false, true, 0xFF}));
}

}  // namespace
