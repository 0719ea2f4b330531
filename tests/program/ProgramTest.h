// The real main window off screen, with scripted dialogs, in a folder of its own.
#pragma once

#include "documents/frmText.h"
#include "shell/frmMyMDI.h"
#include "tests/support/ScriptedDialogs.h"
#include "tests/support/ScriptedShell.h"
#include "ui/frame/LeftPane.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

class ProgramTest : public ::testing::Test {
 protected:
  ProgramTest();
  ~ProgramTest() override;

  // --- Files in the test's folder
  const files::Path& folder() const { return folder_; }
  files::Path At(const std::string& name) const { return folder_ / name; }
  files::Path Put(const std::string& name, std::string_view bytes) const;  // writes a file
  static std::string Bytes(const files::Path& path);                       // fails the test when it cannot be read
  static bool Exists(const files::Path& path);

  // --- The program
  shell::frmMyMDI& program() { return *program_; }
  documents::DocumentTable& table() { return program_->documents(); }
  documents::frmText& New();                          // a new document
  documents::frmText* Open(const files::Path& path);  // the window that shows it, if any does
  documents::frmText* Showing(const std::string& caption);
  static void Type(documents::frmText& document, const QString& text);  // at the caret
  bool Changed(documents::frmText& document) { return table().DocInfo(document.slot()).Changed; }
  static void Settle();  // the event loop runs until it has nothing to do
  void Restart();        // another program, same folders

  // --- What the user is told
  static QString File(const files::Path& path, const QString& text);
  static QString Error(const files::Path& path, const QString& text);
  void ExpectError(const QString& text);  // an OK box with the exclamation icon
  void ExpectClosePrompt(const std::string& caption, ui::Answer answer, std::function<void()> meanwhile = {});

  support::ScriptedDialogs dialogs;
  support::ScriptedShell desktop;
  shell::Place place;              // of the next start; everything lies in the test's folder
  std::vector<files::Path> paths;  // of its command line

 private:
  files::Path folder_;
  std::unique_ptr<shell::frmMyMDI> program_;
};

// While it lives the process has an ordinary user's rights. Root may read and write anything, so nothing would be
// tested.
class Unprivileged {
 public:
  Unprivileged();
  ~Unprivileged();
};
