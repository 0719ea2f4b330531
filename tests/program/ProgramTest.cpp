#include "tests/program/ProgramTest.h"

#include "ui/PathText.h"

#include <QApplication>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <unistd.h>

using documents::frmText;

ProgramTest::ProgramTest() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quillmark-program-XXXXXX").native();
  folder_ = mkdtemp(pattern.data());
  place.application = {folder_ / "application", {}, folder_ / "config" / "settings.json"};
  place.recovery = folder_ / "state";
  place.lock = folder_ / "runtime" / "lock";
  place.directory = files::CurrentDirectory(folder_);
  place.offersRecovered = false;
  // Not the first run, for which there is a test of its own.
  std::filesystem::create_directory(place.application.path);
  std::filesystem::create_directory(place.application.settings.parent_path());
  Put("application/.first-run", (place.application.path / "").native() + "\n");
  // Whose setting this is announces what is said without a word file.
  shell::SettingsFile(place.application.settings, place.recovery)
      .SaveSettings(services::kApplicationName, services::kGeneral, {{"AutoCompleteAtStartup", "False"}});
  Restart();
}

ProgramTest::~ProgramTest() {
  program_.reset();
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void ProgramTest::Restart() {
  program_.reset();
  program_ = std::make_unique<shell::frmMyMDI>(dialogs, desktop, place);
  program_->Start(paths);
  Settle();
}

void ProgramTest::Settle() {
  for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
}

files::Path ProgramTest::Put(const std::string& name, std::string_view bytes) const {
  const files::Path path = At(name);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  EXPECT_TRUE(out.good()) << path;
  return path;
}

std::string ProgramTest::Bytes(const files::Path& path) {
  std::ifstream in(path, std::ios::binary);
  EXPECT_TRUE(in.good()) << path;
  return {std::istreambuf_iterator<char>(in), {}};
}

bool ProgramTest::Exists(const files::Path& path) {
  return std::filesystem::exists(std::filesystem::symlink_status(path));
}

frmText& ProgramTest::New() {
  program_->commands().mnuNew_Click();
  Settle();
  return *table().Active();
}

frmText* ProgramTest::Open(const files::Path& path) {
  std::string opened = path.native();
  program_->OpenDocument(opened);
  Settle();
  return Showing(path.native());
}

frmText* ProgramTest::Showing(const std::string& caption) {
  for (int slot = 1; slot <= table().UpperBound(); ++slot)
    if (table().Document(slot) && table().Document(slot)->caption() == caption) return table().Document(slot);
  return nullptr;
}

void ProgramTest::Type(frmText& document, const QString& text) {
  document.RichTextBox1().SetSelText(text);
}

QString ProgramTest::File(const files::Path& path, const QString& text) {
  return "File: " + ui::DisplayText(path.native()) + "\r\n" + text;
}

QString ProgramTest::Error(const files::Path& path, const QString& text) {
  return "Error: " + ui::DisplayText(path.native()) + "\r\n" + text;
}

void ProgramTest::ExpectError(const QString& text) {
  dialogs.Message(text, ui::Buttons::kOk, ui::Icon::kExclamation, ui::Answer::kOk);
}

void ProgramTest::ExpectClosePrompt(const std::string& caption, ui::Answer answer, std::function<void()> meanwhile) {
  const QString shown = ui::DisplayText(caption);
  dialogs.Message("The text in [" + shown + "] has changed.\r\nDo you want to save the changes?",
                  ui::Buttons::kYesNoCancel, ui::Icon::kExclamation, answer, std::move(meanwhile));
}

Unprivileged::Unprivileged() {
  EXPECT_TRUE(geteuid() != 0 || seteuid(65534) == 0);
}

Unprivileged::~Unprivileged() {
  EXPECT_TRUE(getuid() != 0 || seteuid(0) == 0);
}
