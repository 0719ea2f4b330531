// The real dialogs, answered by their own buttons.
#include "ui/Hourglass.h"
#include "ui/dialogs/FontForm.h"
#include "ui/dialogs/ModelessForm.h"
#include "ui/dialogs/Printer.h"
#include "ui/dialogs/ProgressForm.h"
#include "ui/dialogs/QtDialogs.h"

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QComboBox>
#include <QFileDialog>
#include <QFontDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPrintDialog>
#include <QProgressDialog>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
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
    const bool noIsPreset = c.press == QMessageBox::No;
    WhenOpen<QMessageBox>([&](QMessageBox& box) {
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      EXPECT_EQ(box.text(), "File: <b>a & b</b>\nsecond");
      EXPECT_EQ(box.windowTitle(), "Quillmark");
      ASSERT_TRUE(box.button(c.press));
      if (noIsPreset) {
        EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
      }
      box.button(c.press)->click();
    });
    const ui::Message message{"File: <b>a & b</b>\r\nsecond", c.buttons, Icon::kExclamation, {}, noIsPreset};
    EXPECT_EQ(dialogs.ShowMessage(nullptr, message), c.answer);
  }
}

TEST(QtDialogs, AMessageShowsAllOfALongName) {
  ui::QtDialogs dialogs;
  WhenOpen<QMessageBox>([](QMessageBox& box) {
    const auto* label = box.findChild<QLabel*>("qt_msgbox_label");
    ASSERT_TRUE(label);
    EXPECT_LE(label->fontMetrics().boundingRect(label->rect(), Qt::TextWordWrap, label->text()).width(),
              label->width());
    EXPECT_EQ(box.text().remove(QChar(0x200B)), QString(250, 'x'));
    box.accept();
  });
  dialogs.ShowMessage(nullptr, {QString(250, 'x'), Buttons::kOk, Icon::kNone});
}

TEST(QtDialogs, NoHourglassStandsOverAQuestion) {
  ui::QtDialogs dialogs;
  {
    const ui::Hourglass outer, inner;
    WhenOpen<QMessageBox>([](QMessageBox& box) {
      EXPECT_FALSE(QApplication::overrideCursor());
      box.reject();
    });
    dialogs.ShowMessage(nullptr, {"text", Buttons::kOk, Icon::kExclamation});
    EXPECT_TRUE(QApplication::overrideCursor());
  }
  EXPECT_FALSE(QApplication::overrideCursor());
}

TEST(QtDialogs, EscapeIsCancel) {
  ui::QtDialogs dialogs;
  WhenOpen<QMessageBox>([](QMessageBox& box) { box.reject(); });
  EXPECT_EQ(dialogs.ShowMessage(nullptr, {"text", Buttons::kYesNoCancel, Icon::kQuestion}), Answer::kCancel);
}

struct PickCase {
  const char* what;
  bool save;
  std::string proposed;
  QString typed;  // nothing: what is proposed
  bool accept;
  std::string chosen;  // within the folder; empty: nothing
};

TEST(QtDialogs, FileDialogs) {
  QTemporaryDir folder;
  const files::Path path(folder.path().toStdString());
  const auto put = [&](const std::string& name) { std::ofstream(path / name) << "text"; };
  put("there.txt");
  put("caf\xE9.txt");
  put("\"there\"");
  const std::vector<PickCase> cases = {
      {"cancel", true, "a.txt", {}, false, ""},
      {"what is proposed", true, "a.txt", {}, true, "a.txt"},
      {"another name", true, "a.txt", "b c.txt", true, "b c.txt"},
      {"no existence is asked for", false, "", "missing.txt", true, "missing.txt"},
      {"overwriting is asked by others", true, "", "there.txt", true, "there.txt"},
      {"a proposed name that is no text", true, "caf\xE9.txt", {}, true, "caf\xE9.txt"},
      {"a file whose name is no text", false, "", "caf\uFFFD.txt", true, "caf\xE9.txt"},
      {"no extension is added", true, "", "README", true, "README"},
      {"quotes", true, "", "5\" disk \"a\".txt", true, "5\" disk \"a\".txt"},
      {"a file with quotes", false, "", "\"there\"", true, "\"there\""},
      {"Hebrew", true, "", "\u05E2\u05D1", true, "\xD7\xA2\xD7\x91"},
  };
  ui::QtDialogs dialogs;
  for (const PickCase& c : cases) {
    SCOPED_TRACE(c.what);
    ui::FileRequest request{.save = c.save,
                            .title = "Title",
                            .filters = {{".txt", "*.txt"}, {"All Files", "*.*"}},
                            .filterIndex = 2,
                            .folder = path,
                            .name = c.proposed};
    WhenOpen<QFileDialog>([&](QFileDialog& dialog) {
      EXPECT_EQ(dialog.windowTitle(), "Title");
      EXPECT_EQ(dialog.acceptMode(), c.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
      EXPECT_EQ(dialog.nameFilters(), QStringList({".txt (*.txt)", "All Files (*)"}));
      EXPECT_EQ(dialog.selectedNameFilter(), "All Files (*)");
      EXPECT_EQ(dialog.directory().path(), folder.path());
      auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
      ASSERT_TRUE(name);
      if (!c.typed.isEmpty()) name->setText(c.typed);
      auto& answered = static_cast<QDialog&>(dialog);
      c.accept ? answered.accept() : answered.reject();
    });
    const auto chosen = dialogs.PickFile(nullptr, request);
    EXPECT_EQ(chosen ? chosen->native() : "", c.chosen.empty() ? "" : (path / c.chosen).native());
  }
  // The toolkit's own clearing away does not know such names.
  std::filesystem::remove(path / "caf\xE9.txt");
}

struct KindCase {
  QString chosenKind, typed;  // nothing typed: what is proposed
  std::string chosen;
};

TEST(QtDialogs, AChosenKindGivesItsExtension) {
  QTemporaryDir folder;
  const files::Path path(folder.path().toStdString());
  std::ofstream(path / "README") << "text";
  const KindCase cases[] = {
      {{}, "letter", "letter"},  // the caller knows the extension
      {".rtf (*.rtf)", "letter", "letter.rtf"},
      {".rtf (*.rtf)", {}, "Untitled.rtf"},
      {".rtf (*.rtf)", "letter.old", "letter.old"},
      {".rtf (*.rtf)", "README", "README"},
      {".htm* (*.htm*)", "letter", "letter.htm"},
      {".htm* (*.htm*)", {}, "Untitled.htm"},
      {"All Files (*)", "letter", "letter"},
  };
  ui::QtDialogs dialogs;
  for (const KindCase& c : cases) {
    SCOPED_TRACE(c.chosenKind.toStdString() + ' ' + c.typed.toStdString());
    const ui::FileRequest request{
        .save = true,
        .title = {},
        .filters = {{".txt", "*.txt"}, {".htm*", "*.htm*"}, {".rtf", "*.rtf"}, {"All Files", "*.*"}},
        .filterIndex = 1,
        .folder = path,
        .name = "Untitled.txt"};
    WhenOpen<QFileDialog>([&](QFileDialog& dialog) {
      auto* kinds = dialog.findChild<QComboBox*>("fileTypeCombo");
      auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
      ASSERT_TRUE(kinds && name);
      const int row = c.chosenKind.isEmpty() ? 0 : kinds->findText(c.chosenKind);
      ASSERT_GE(row, 0);
      while (kinds->currentIndex() < row) {
        QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
        QApplication::sendEvent(kinds, &down);
      }
      if (!c.typed.isEmpty()) name->setText(c.typed);
      static_cast<QDialog&>(dialog).accept();
    });
    const auto chosen = dialogs.PickFile(nullptr, request);
    EXPECT_EQ(chosen ? chosen->filename().native() : "", c.chosen);
  }
}

TEST(QtDialogs, ColoursAndTheUsersOwnOnes) {
  ui::QtDialogs dialogs;
  const QColor others = QColorDialog::customColor(1);
  for (const bool accept : {false, true}) {
    ui::CustomColors custom = {0xB4FFFF, 0x112233};
    WhenOpen<QColorDialog>([&](QColorDialog& dialog) {
      EXPECT_EQ(dialog.currentColor(), QColor(0x30, 0x20, 0x10));
      EXPECT_EQ(QColorDialog::customColor(0), QColor(255, 255, 180));
      QColorDialog::setCustomColor(1, QColor(1, 2, 3));
      dialog.setCurrentColor(QColor(4, 5, 6));
      static_cast<QDialog&>(dialog).done(accept ? QDialog::Accepted : QDialog::Rejected);
    });
    EXPECT_EQ(dialogs.PickColor(nullptr, 0x102030, custom).value_or(-1), accept ? 0x060504 : -1);
    EXPECT_EQ(custom, (ui::CustomColors{0xB4FFFF, accept ? 0x030201 : 0x112233}));
    EXPECT_EQ(QColorDialog::customColor(1), others) << "the row of the process";
  }
}

TEST(QtDialogs, ThePrinterIsSetUpUnlessCancelled) {
  QTemporaryDir folder;
  ui::QtDialogs dialogs;
  ui::Printer printer;
  printer.device().setOutputFileName(folder.filePath("out.pdf"));
  for (const bool accept : {false, true}) {
    for (const ui::PrinterRequest request : {ui::PrinterRequest{false, true}, ui::PrinterRequest{true, false}}) {
      WhenOpen<QPrintDialog>([&](QPrintDialog& dialog) {
        EXPECT_EQ(dialog.testOption(QAbstractPrintDialog::PrintPageRange), request.pages);
        EXPECT_EQ(dialog.testOption(QAbstractPrintDialog::PrintSelection), request.selection);
        EXPECT_FALSE(dialog.testOption(QAbstractPrintDialog::PrintCurrentPage));
        for (const char* name : {"printRange", "pagesRadioButton"})
          EXPECT_EQ(dialog.findChild<QWidget*>(name)->isHidden(), !request.pages) << name;
        EXPECT_EQ(dialog.findChild<QWidget*>("printSelection")->isVisible(), request.selection) << "not folded away";
        auto* copies = dialog.findChild<QSpinBox*>("copies");
        ASSERT_TRUE(copies);
        copies->setValue(3);
        auto& answered = static_cast<QDialog&>(dialog);
        accept ? answered.accept() : answered.reject();
      });
      EXPECT_EQ(dialogs.PickPrinter(nullptr, request, printer), accept);
      EXPECT_EQ(printer.device().copyCount(), accept ? 3 : 1);
      if (!accept) continue;
      EXPECT_EQ(printer.device().printRange() == QPrinter::Selection, request.selection);
    }
  }
}

TEST(QtDialogs, APrinterProposesTheFileOfAnotherDocumentOnlyForThat) {
  const struct {
    const char* document;
    bool accept;
    const char* proposed;  // what is printed into is called like that and "x"
  } kRows[] = {
      {"a.pdf", false, "a.pdf"},  {"a.pdf", true, "a.pdf"}, {"b.pdf", false, "b.pdf"}, {"b.pdf", false, "b.pdf"},
      {"a.pdf", false, "ax.pdf"}, {"b.pdf", true, "b.pdf"}, {"b.pdf", true, "bx.pdf"}, {"a.pdf", false, "a.pdf"},
  };
  QTemporaryDir folder;
  ui::QtDialogs dialogs;
  ui::Printer printer;
  printer.device().setOutputFormat(QPrinter::PdfFormat);
  for (const auto& row : kRows) {
    QString shown;
    WhenOpen<QPrintDialog>([&](QPrintDialog& dialog) {
      auto* const file = dialog.findChild<QLineEdit*>("filename");
      shown = QFileInfo(file->text()).fileName();
      if (row.accept) file->setText(folder.filePath(QString(row.document).replace(".", "x.")));
      auto& answered = static_cast<QDialog&>(dialog);
      row.accept ? answered.accept() : answered.reject();
    });
    printer.ProposeFile(folder.filePath(row.document));
    EXPECT_EQ(dialogs.PickPrinter(nullptr, {}, printer), row.accept);
    EXPECT_EQ(shown, row.proposed) << &row - kRows;
  }
}

TEST(Progress, ShortWorkShowsNothing) {
  int ran = 0;
  ui::RunBehindProgress(nullptr, "working", 0, [&](ui::WorkPort&) { ++ran; });
  EXPECT_EQ(ran, 1);
  EXPECT_FALSE(QApplication::overrideCursor());
}

TEST(Progress, WhatTheWorkThrowsIsThrownHere) {
  for (const int milliseconds : {0, 100}) {
    const auto work = [&](ui::WorkPort&) {
      std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
      throw std::bad_alloc();
    };
    EXPECT_THROW(ui::RunBehindProgress(nullptr, "working", 0, work), std::bad_alloc) << milliseconds;
    EXPECT_FALSE(QApplication::overrideCursor());
  }
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
  ui::CustomColors custom{};
  EXPECT_EQ(ui::FontForm(odd, custom).choice(), odd);
}

TEST(FontForm, WhatIsChangedComesBackChanged) {
  ui::CustomColors custom = {0xB4FFFF};
  ui::FontForm form({"No Such Family", 10, false, false, false, false, -1}, custom);
  QFont font = form.fonts().currentFont();
  font.setUnderline(true);
  font.setPointSize(20);
  form.fonts().setCurrentFont(font);
  WhenOpen<QColorDialog>([](QColorDialog& dialog) {
    EXPECT_EQ(QColorDialog::customColor(0), QColor(255, 255, 180)) << "the program's own row";
    dialog.setCurrentColor(Qt::red);
    static_cast<QDialog&>(dialog).accept();
  });
  form.findChild<QPushButton*>("color")->click();
  EXPECT_EQ(form.choice(), (ui::FontChoice{"No Such Family", 20, false, false, false, true, 0xFF}));
}

// Its upright style is called "Book", and "Oblique" comes first.
TEST(FontForm, AnotherFamilyKeepsTheEmphasis) {
  for (const int emphasis : {0, 1, 2, 3}) {
    SCOPED_TRACE(emphasis);
    ui::CustomColors custom{};
    const ui::FontChoice before{"Liberation Sans", 10, (emphasis & 1) != 0, (emphasis & 2) != 0, false, false, -1};
    ui::FontForm form(before, custom);
    for (QListView* list : form.fonts().findChildren<QListView*>()) {
      const QModelIndexList rows =
          list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, "DejaVu Sans", 1, Qt::MatchExactly);
      if (!rows.empty()) list->setCurrentIndex(rows.first());
    }
    ui::FontChoice after = before;
    after.family = "DejaVu Sans";
    EXPECT_EQ(form.choice(), after);
    const QFont shown = ui::FontForm(after, custom).fonts().currentFont();
    EXPECT_EQ(shown.italic(), after.italic) << shown.styleName().toStdString();
    EXPECT_EQ(shown.bold(), after.bold) << shown.styleName().toStdString();
  }
}

TEST(FontForm, EnterIsOkEverywhere) {
  ui::CustomColors custom{};
  ui::FontForm form({"Liberation Sans", 10, false, false, false, false, -1}, custom);
  for (QListView* list : form.fonts().findChildren<QListView*>()) {
    form.setResult(QDialog::Rejected);
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(list, &enter);
    EXPECT_EQ(form.result(), QDialog::Accepted);
  }
}

struct PlaceCase {
  const char* name;
  QRect frame, rectangle;
  QPoint expected;
};

const PlaceCase kPlaces[] = {
    {"apart", {100, 100, 200, 100}, {400, 100, 50, 10}, {100, 100}},
    {"below is nearest", {100, 100, 200, 100}, {150, 105, 50, 10}, {100, 123}},
    {"above is nearest", {100, 100, 200, 100}, {150, 180, 50, 15}, {100, 72}},
    {"no room below", {100, 500, 200, 100}, {150, 505, 50, 10}, {100, 397}},
    {"to the right of something high", {100, 100, 200, 100}, {0, 0, 120, 600}, {128, 100}},
    {"to the left", {600, 100, 200, 100}, {700, 0, 100, 600}, {492, 100}},
    {"half outside already", {-50, 100, 200, 100}, {0, 150, 50, 10}, {0, 42}},
    {"no room at all", {300, 250, 200, 100}, {10, 10, 780, 590}, {0, 0}},
};

TEST(PlaceClearOf, Table) {
  for (const PlaceCase& row : kPlaces)
    EXPECT_EQ(ui::PlaceClearOf(row.frame, row.rectangle, {0, 0, 800, 600}), row.expected) << row.name;
}

}  // namespace
