// The Internet and Help menus, and documents in other programs.
#include "shell/ExternalPrograms.h"
#include "shell/help/HelpTopics.h"
#include "shell/help/frmHelpCheck.h"
#include "tests/program/ProgramTest.h"
#include "ui/desktop/ObjectTypes.h"
#include "ui/dialogs/FontForm.h"
#include "ui/dialogs/InsertObjectForm.h"
#include "ui/help/HelpWindow.h"

#include <QApplication>
#include <QKeyEvent>

#include <fstream>

namespace {

using ui::Shell;

class ExternalProgramsTest : public ProgramTest {
 protected:
  ExternalProgramsTest() {
    desktop.opens = [this](const std::string& what) { return opening == what ? Shell::kStarted : Shell::kNotFound; };
    desktop.starts = [this](const std::string& program) {
      return starting == program ? Shell::kStarted : Shell::kNotFound;
    };
  }
  // Beside the user's own files, as the installation would.
  void InstallManual() {
    const files::Path manual = std::string(qgetenv("QUILLMARK_BINARY_DIR")) + "/application/UM.chm";
    std::filesystem::copy_file(manual, place.application.path / "UM.chm");
  }
  static void PressF1(QWidget& widget) {
    QKeyEvent key(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &key);
  }
  std::string ShownPage() {
    ui::HelpWindow* const window = program().help().window();
    return window ? window->place().page : std::string();
  }

  std::string opening, starting;  // what the desktop can open and run
};

TEST_F(ExternalProgramsTest, StartProtocolApp) {
  program();
  const std::string here = program().MakeAbsolute(".").native();
  const struct {
    std::string command, opening, starting;
    std::vector<std::string> asked;  // of the desktop; the last one must do
    bool fails = false;
  } kRows[] = {
      {"mailto:", "mailto:", "", {"open mailto:"}},
      {"FTP://", "", "", {"open FTP://"}, true},
      {"mutt", "", "mutt", {"run mutt"}},
      {"/opt/ftp %1 -x", "", "/opt/ftp", {"run /opt/ftp %1 -x", "open /opt/ftp %1 -x", "run /opt/ftp [-x]"}},
      {"/opt/ftp %1 -x \"a b\" c",
       "",
       "/opt/ftp",
       {"run /opt/ftp %1 -x \"a b\" c", "open /opt/ftp %1 -x \"a b\" c", "run /opt/ftp [-x] [a b] [c]"}},
      {"/opt/ftp %1", "", "/opt/ftp", {"run /opt/ftp %1", "open /opt/ftp %1", "run /opt/ftp"}},
      {"\"/a b/ftp\" %1 -x",
       "",
       "/a b/ftp",
       {"run " + here + "/\"/a b/ftp\" %1 -x", "open " + here + "/\"/a b/ftp\" %1 -x", "run /a b/ftp [-x]"}},
      {"/opt/none", "", "", {"run /opt/none", "open /opt/none"}, true},
      {"/opt/none %1", "", "", {"run /opt/none %1", "open /opt/none %1", "run /opt/none"}, true},
      {"%1", "", "", {"run %1", "open " + here + "/%1"}, true},
      {"", "", "", {}, true},
  };
  for (const auto& row : kRows) {
    opening = row.opening;
    starting = row.starting;
    desktop.asked.clear();
    if (row.fails) ExpectError("Error: There was a problem starting " + QString::fromStdString(row.command));
    program().programs().StartProtocolApp(row.command);
    EXPECT_EQ(desktop.asked, row.asked) << row.command;
  }
}

TEST_F(ExternalProgramsTest, SiblingsAreToldTheDirectory) {
  const std::string folder = place.application.path.native();
  starting = folder + "/VelloraFTP.exe";
  program().commands().mnuVelloraFTP_Click();
  EXPECT_EQ(desktop.asked.back(), "run " + starting + " [," + program().MakeAbsolute(".").native() + "]");
  starting.clear();
  ExpectError("Error: There was a problem running Vellora FTP");
  program().commands().mnuVelloraFTP_Click();
  ExpectError("Error: There was a problem running the Trawlex utility");
  program().commands().mnuSAR_Click();
}

TEST_F(ExternalProgramsTest, WithoutAManualThereIsTheNotice) {
  for (const bool install : {false, true}) {
    dialogs.Modal([&](ui::ModalForm& form) {
      EXPECT_EQ(form.windowTitle(), "Program Notice");
      if (install) ExpectError("Error: Microsoft Help Viewer was *not* upgraded.");
      static_cast<shell::frmHelpCheck&>(form).Command1_Click(install ? 0 : 1);
      EXPECT_EQ(static_cast<shell::frmHelpCheck&>(form).Tag, install ? "0" : "1");
    });
    install ? program().commands().mnuHTMLTagRef_Click() : program().commands().mnuUserManual_Click();
  }
  EXPECT_EQ(desktop.asked.back(), "run " + (place.application.path / "hhupd.exe").native());
  Put("UM.chm", "ITSF and no more");
  std::filesystem::copy_file(At("UM.chm"), place.application.path / "UM.chm");
  ExpectError(File(place.application.path / "UM.chm", "The file is no help file, or is damaged."));
  program().ShowHelpContext(4000);
  EXPECT_EQ(ShownPage(), "");
}

TEST_F(ExternalProgramsTest, F1OpensTheTopicOfTheWindow) {
  InstallManual();
  PressF1(*program().frame().widget());
  EXPECT_EQ(ShownPage(), "index.html");
  dialogs.Modal([this](ui::ModalForm& form) {
    PressF1(*form.findChild<QWidget*>("Command1"));
    EXPECT_EQ(ShownPage(), "dialogs.html");
    form.reject();
  });
  program().commands().mnuAbout_Click();
  program().ShowHelpContext(4000);
  EXPECT_EQ(ShownPage(), "preferences.html");
  PressF1(*program().frame().widget());
  EXPECT_EQ(ShownPage(), "preferences.html") << "the reader's place is kept";
  program().ShowHelpPopup({100, 100}, 50);
  ASSERT_TRUE(QApplication::activePopupWidget());
  EXPECT_EQ(QApplication::activePopupWidget()->objectName(), "HelpPopup");
  QApplication::activePopupWidget()->close();
}

TEST_F(ExternalProgramsTest, DialogsAreKnownByTheNamesOfTheTable) {
  ui::CustomColors colors;
  ui::FontForm font({}, colors);
  ui::InsertObjectForm object({}, {});
  for (const ui::ModalForm* form : std::initializer_list<const ui::ModalForm*>{&font, &object}) {
    const auto known = [&](const ui::HelpContext& context) { return form->objectName() == context.name; };
    EXPECT_EQ(std::ranges::count_if(shell::HelpTopics(), known), 1) << form->objectName().toStdString();
  }
}

TEST_F(ExternalProgramsTest, ADamagedManualDoesNotHideTheInstalledOne) {
  InstallManual();
  place.application.installedData = At("installed");
  std::filesystem::create_directory(At("installed"));
  std::filesystem::rename(place.application.path / "UM.chm", At("installed/UM.chm"));
  Put("UM.chm", "ITSF and no more");
  std::filesystem::copy_file(At("UM.chm"), place.application.path / "UM.chm");
  Restart();
  ExpectError(File(place.application.path / "UM.chm", "The file is no help file, or is damaged."));
  program().ShowHelpContext(4000);
  EXPECT_EQ(ShownPage(), "preferences.html");
}

TEST_F(ExternalProgramsTest, TopicsAreThoseOfTheManual) {
  std::ifstream table(std::string(qgetenv("QUILLMARK_SOURCE_DIR")) + "/data/manual/topics.tsv");
  std::map<std::string, int> topics;
  for (std::string line; std::getline(table, line);) topics[line.substr(line.rfind('\t') + 1)] = std::stoi(line);
  for (const ui::HelpContext& context : shell::HelpTopics())
    EXPECT_EQ(topics[context.name], context.topic) << context.name;
}

TEST_F(ExternalProgramsTest, AboutOpensTheHomePage) {
  program();
  dialogs.Modal([this](ui::ModalForm& form) {
    EXPECT_EQ(form.windowTitle(), "About Quillmark");
    auto& about = static_cast<shell::About&>(form);
    about.SetProduct("12.8.3");
    EXPECT_EQ(about.Label1().text(), "Quillmark 12.08");
    ExpectError(
        "An error occurred when trying to open your browser.  Check your availiable memory, and make sure there is an "
        "application associated with .html files.");
    about.Command2_Click(1);
    form.accept();
  });
  program().commands().mnuAbout_Click();
  EXPECT_EQ(desktop.asked, std::vector<std::string>{"open https://quillmark.example/support/"});
}

TEST_F(ExternalProgramsTest, ViewingADocument) {
  const files::Path path = Put("a.rtf", "{\\rtf1 a}");
  documents::frmText* const document = Open(path);
  ASSERT_TRUE(document);
  opening = path.native();
  const QString question = "This document has been changed.  Do you want to save it before continuing?";
  const struct {
    ui::Answer answer;
    bool saved, opened;
  } kRows[] = {{ui::Answer::kCancel, false, false}, {ui::Answer::kNo, false, true}, {ui::Answer::kYes, true, true}};
  Type(*document, "b");
  for (const auto& row : kRows) {
    desktop.asked.clear();
    dialogs.Message(question, ui::Buttons::kYesNoCancel, ui::Icon::kNone, row.answer);
    document->mnuViewFile_Click();
    EXPECT_EQ(Changed(*document), !row.saved);
    EXPECT_EQ(desktop.asked.size(), row.opened ? 1u : 0u);
  }
  opening.clear();
  starting = "Wordpad.exe";
  for (const bool again : {true, false}) {
    dialogs.Modal(
        [again](ui::ModalForm& form) { form.findChild<QPushButton*>(again ? "Command1(0)" : "Command1(1)")->click(); });
  }
  document->mnuViewFile_Click();
  EXPECT_EQ(desktop.asked.back(), "run Wordpad.exe [" + path.native() + "]");
}

}  // namespace
