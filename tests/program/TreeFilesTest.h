// The operations on the files of the tree, with file operations that the test carries out, or real ones.
#pragma once

#include "bench/support/AgreeingDialogs.h"
#include "tests/program/FolderTreeTest.h"
#include "tests/support/ScriptedFileOperations.h"

#include <QClipboard>
#include <QDeadlineTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QThread>

// Skips what meets something of its name and what fails.
class SkippingDialogs final : public bench::AgreeingDialogs {
 public:
  bool ShowModal(ui::ModalForm& form) override {
    if (auto* const skip = form.findChild<QPushButton*>("cmdSkip")) skip->click();
    return form.result() == QDialog::Accepted;
  }
};

class TreeFilesTest : public FolderTreeTest {
 protected:
  TreeFilesTest() {
    auto scripted = std::make_unique<support::ScriptedFileOperations>();
    operations = scripted.get();
    program().SetFileOperations(std::move(scripted));
  }

  foldertree::TreeFiles& Files() { return program().treeFiles(); }
  void Check(std::initializer_list<const char*> names) {
    for (const char* name : names) Tree().Check(Key(name));
  }
  void Select(const std::string& name) { Tree().Select(Key(name)); }
  static QString Clipboard() { return QApplication::clipboard()->text(); }
  // Of the selected node; those that were closed go later.
  QLineEdit* Editor() { return qobject_cast<QLineEdit*>(View().indexWidget(View().currentIndex())); }
  // Waits until the name can be changed, and changes it.
  void EnterName(const QString& text, int key = Qt::Key_Return) {
    for (const QDeadlineTimer end(10000); !Editor() && !end.hasExpired(); QThread::msleep(2)) Settle();
    ASSERT_TRUE(Editor());
    Editor()->setText(text);
    Press(*Editor(), key);
  }
  void Drop(const std::string& target, std::vector<std::string> files, bool move, bool own) {
    Q_EMIT View().FilesDropped({Key(target), std::move(files), move, own});
    Settle();
  }

  support::ScriptedFileOperations* operations;
};
