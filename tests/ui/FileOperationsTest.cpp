// File operations as the user meets them: questions, trash, progress, report.
#include "tests/support/ScriptedDialogs.h"
#include "ui/controls/DialogControls.h"
#include "ui/desktop/operations/DesktopFileOperations.h"
#include "ui/dialogs/OperationForms.h"

#include <QApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using ui::Answer;
using Result = ui::FileOperations::Result;
namespace fs = std::filesystem;

// There is none for names with "kept", and "locked" fails.
class TestTrash final : public ui::Trash {
 public:
  std::optional<Failure> Put(const std::string& path) override {
    if (path.find("kept") != std::string::npos) return Failure{true, {path, 5, 95, "Not supported"}};
    if (path.find("locked") != std::string::npos) return Failure{false, {path, 70, 13, "Locked"}};
    fs::remove_all(path);
    return std::nullopt;
  }
};

class FileOperationsTest : public testing::Test {
 protected:
  QTemporaryDir temporary;
  const std::string folder = temporary.path().toStdString();
  support::ScriptedDialogs dialogs;
  ui::DesktopFileOperations operations{dialogs, std::make_unique<TestTrash>()};
  static constexpr Result kDone{}, kAborted{7, true};

  std::string Make(const std::string& name, const std::string& text = "1") {
    const std::string path = folder + "/" + name;
    if (name.ends_with('/'))
      fs::create_directory(path);
    else
      std::ofstream(path) << text;
    return path;
  }
  std::string Text(const std::string& name) const {
    std::ifstream file(folder + "/" + name);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "<none>";
  }
  void Asks(const QString& text, Answer answer) {
    dialogs.Message(text, ui::Buttons::kYesNo, ui::Icon::kExclamation, answer);
  }
  // The open form shows the text; the user presses the button, perhaps with the box checked.
  void Presses(const QString& text, const char* button, bool all = false) {
    dialogs.Modal([=](ui::ModalForm& form) {
      EXPECT_EQ(form.findChild<ui::Label*>("Label1")->text().toStdString(), text.toStdString());
      if (all) form.findChild<ui::CheckBox*>("chkAll")->SetValue(true);
      auto* const pressed = form.findChild<ui::Button*>(QLatin1String(button));
      ASSERT_TRUE(pressed && pressed->isEnabled());
      pressed->click();
    });
  }
};

TEST_F(FileOperationsTest, AsksBeforeDeleting) {
  const std::string odd = Make("a\n<b>%1\xFF"), sub = Make("sub/"), inner = Make("sub/x");
  Asks(QString::fromUtf8("Do you want to delete \"a\uFFFD<b>%1\uFFFD\" for good?  This cannot be undone."),
       Answer::kNo);
  EXPECT_EQ(operations.Delete(nullptr, {odd}, false), kAborted);
  EXPECT_TRUE(fs::exists(odd));
  fs::remove(odd);
  EXPECT_TRUE(dialogs.last.noIsPreset);
  Asks("Do you want to delete the folder \"sub\" and everything in it for good?  This cannot be undone.", Answer::kYes);
  EXPECT_EQ(operations.Delete(nullptr, {sub + "/", inner}, false), kDone);
  EXPECT_FALSE(fs::exists(sub));
  std::vector<std::string> many;
  for (int i = 1; i <= 10; ++i) many.push_back(Make(std::to_string(i)));
  Asks("Do you want to move these 10 items to the trash?\r\n\r\n1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7\r\n8\r\nand 2 more",
       Answer::kYes);
  EXPECT_EQ(operations.Delete(nullptr, many, true), kDone);
  EXPECT_FALSE(dialogs.last.noIsPreset);
  EXPECT_FALSE(fs::exists(many[9]));
  EXPECT_EQ(operations.Delete(nullptr, {}, true), kDone);
}

TEST_F(FileOperationsTest, SaysWhereThereIsNoTrash) {
  const std::string kept = Make("kept"), locked = Make("locked"), plain = Make("plain");
  const QString trash = "Do you want to move these 3 items to the trash?\r\n\r\nkept\r\nlocked\r\nplain";
  const QString none = "There is no trash for \"kept\".  Do you want to delete it for good?  This cannot be undone.";
  for (const Answer answer : {Answer::kNo, Answer::kYes}) {
    Make("plain");
    Asks(trash, Answer::kYes);
    Asks(none, answer);
    const bool yes = answer == Answer::kYes;
    Presses(yes ? "Done: 2 items.  Skipped: 0 items.  Failed: 1 item."
                : "Done: 1 item.  Skipped: 0 items.  Failed: 1 item.\nThe rest was not done, as you cancelled.",
            "Command1");
    EXPECT_EQ(operations.Delete(nullptr, {kept, locked, plain}, true), (yes ? Result{70, false} : kAborted));
    EXPECT_EQ(fs::exists(kept), !yes);
    EXPECT_TRUE(fs::exists(locked) && !fs::exists(plain));
  }
}

TEST_F(FileOperationsTest, AsksWhenNamesMeet) {
  const std::string target = Make("t/");
  const std::string shown = QString::fromStdString(target).chopped(1).toStdString();
  const auto taken = [&](const char* name) {
    return QString("There is already a file named \"%1\" in \"%2\".\nDo you want to replace it?")
        .arg(name, QString::fromStdString(shown));
  };
  const std::vector<std::string> paths = {Make("a", "new"), Make("b", "new"), Make("c", "new")};
  for (const char* name : {"t/a", "t/b", "t/c"}) Make(name, "old");
  Presses(taken("a"), "cmdKeepBoth");
  Presses(taken("b"), "cmdCancel");
  EXPECT_EQ(operations.Copy(nullptr, paths, target), kAborted);
  EXPECT_EQ(Text("t/a") + Text("t/a (2)") + Text("t/b"), "oldnewold");
  Presses(taken("a"), "cmdSkip");
  Presses(taken("b"), "cmdReplace", true);
  EXPECT_EQ(operations.Move(nullptr, paths, shown), kDone);
  EXPECT_EQ(Text("t/a") + Text("t/b") + Text("t/c") + Text("a") + Text("b"), "oldnewnewnew<none>");
  dialogs.Modal([](ui::ModalForm& form) { form.reject(); });  // Escape
  EXPECT_EQ(operations.Copy(nullptr, {folder + "/t/a"}, shown), kAborted);
  dialogs.CancelNextWork();
  EXPECT_EQ(operations.CopyThenDelete(nullptr, {folder + "/none"}, shown), kAborted);
}

TEST_F(FileOperationsTest, TellsWhatFailed) {
  const std::string target = Make("t/"), a = Make("a"), none = folder + "/none", fifo = folder + "/fifo";
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  const QString missing = QString("Error: %1\nNo such file or directory").arg(QString::fromStdString(none));
  Presses(missing, "cmdSkip");
  EXPECT_EQ(operations.Copy(nullptr, {none}, target), (Result{53, false}));
  Presses(missing, "cmdRetry");
  Presses(missing, "cmdSkip", true);
  dialogs.Modal([&](ui::ModalForm& form) {
    auto* const list = form.findChild<QListWidget*>("List1");
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(1)->text().toStdString(), fifo + ": Not a regular file");
    form.accept();
  });
  EXPECT_EQ(operations.Copy(nullptr, {none, fifo, a}, target), (Result{70, false}));
  EXPECT_EQ(Text("t/a"), "1");
}

TEST_F(FileOperationsTest, LettersAnswerWithoutAlt) {
  const std::string target = Make("t/"), none = folder + "/none";
  dialogs.Modal([](ui::ModalForm& form) {
    const auto press = [&form](Qt::Key key, Qt::KeyboardModifiers modifiers = {}, bool held = false) {
      QKeyEvent event(QEvent::KeyPress, key, modifiers, {}, held);
      QApplication::sendEvent(form.findChild<ui::Button*>("cmdSkip"), &event);
    };
    const auto* all = form.findChild<ui::CheckBox*>("chkAll");
    press(Qt::Key_S, Qt::ControlModifier);
    press(Qt::Key_S, {}, true);
    EXPECT_FALSE(all->Value());
    press(Qt::Key_S);
    EXPECT_TRUE(all->Value());
    press(Qt::Key_X);
    press(Qt::Key_K);
  });
  EXPECT_EQ(operations.Copy(nullptr, {none}, target), (Result{53, false}));
}

TEST_F(FileOperationsTest, ThrowsWhatTheWorkThrows) {
  dialogs.FailNextWork();
  const std::string a = Make("a"), target = Make("t/");
  EXPECT_THROW(operations.Copy(nullptr, {a}, target), std::bad_alloc);
}

// In a child, as the library looks for its folders once only.
TEST_F(FileOperationsTest, TheDesktopsTrash) {
  const std::string odd = Make("a\n\xFF"), sub = Make("sub/"), inner = Make("sub/x");
  fs::create_symlink(sub, folder + "/link");
  fs::create_directory(folder + "/home");
  struct stat here {
  }, memory{};
  const bool second =
      stat("/dev/shm", &memory) == 0 && stat(folder.c_str(), &here) == 0 && memory.st_dev != here.st_dev;
  const std::string volume = "/dev/shm/quillmark-trash-" + std::to_string(getpid());
  if (second) std::ofstream(volume) << "1";
  const pid_t child = fork();
  if (child == 0) {
    setenv("HOME", (folder + "/home").c_str(), 1);
    setenv("XDG_DATA_HOME", (folder + "/home/made later/data").c_str(), 1);
    ui::DesktopTrash trash;
    int wrong = 0;
    for (const std::string& path : {odd, folder + "/link", sub}) wrong += trash.Put(path).has_value();
    const auto missing = trash.Put(folder + "/none");
    wrong += !missing || missing->noTrash || missing->what.number != 53;
    const auto none = second ? trash.Put(volume) : std::nullopt;
    wrong += second && (!none || !none->noTrash);
    _exit(wrong);
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(fs::exists(volume), second);
  fs::remove(volume);
  const fs::path trashed = folder + "/home/made later/data/Trash/files";
  EXPECT_TRUE(fs::is_symlink(trashed / "link"));
  EXPECT_TRUE(fs::exists(trashed / "sub/x") && fs::exists(trashed / "a\n\xFF"));
  EXPECT_FALSE(fs::exists(sub) || fs::exists(odd));
  fs::remove_all(folder + "/home");
}

}  // namespace
