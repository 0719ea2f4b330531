// The folder tree in the real main window; the test's folder is its drive.
#pragma once

#include "tests/program/ProgramTest.h"
#include "ui/PathText.h"

#include <QApplication>
#include <QKeyEvent>

class FolderTreeTest : public ProgramTest {
 protected:
  FolderTreeTest() { desktop.volumes = {folder()}; }

  foldertree::FolderTree& Tree() { return program().folderTree(); }
  ui::TreeView& View() { return program().frame().leftPane().TreeView1(); }
  ui::DriveBox& Drive1() { return program().frame().leftPane().Drive1(); }
  files::CurrentDirectory& Directory() { return program().commonDialogs().currentDirectory(); }
  std::string Key(const std::string& name) { return name.empty() ? folder().native() : At(name).native(); }

  void MakeFolders(std::initializer_list<const char*> names) {
    for (const char* name : names) std::filesystem::create_directories(At(name));
  }
  void Go(const std::string& name) { EXPECT_TRUE(Directory().Change(Key(name))); }
  void Sync() { Tree().TreeSyncWithCurDir(), Settle(); }
  void Toggle(const std::string& name) { Tree().ToggleFolderNode(Key(name)), Settle(); }
  std::string Selected() {
    const auto key = Tree().SelectedKey();
    return !key ? "none" : std::filesystem::path(*key).lexically_relative(folder()).native();
  }

  // The tree below a folder as text: "-" open, "+" closed; "*" checked.
  std::string Shown(const std::string& name = {}) {
    const auto node = Tree().Nodes().Find(Key(name));
    return node ? Below(*node) : "gone";
  }
  std::string Below(ui::TreePlace above) {
    const foldertree::NodeTable& nodes = Tree().Nodes();
    const ui::TreeList list = nodes.ListBelow(above);
    std::string text;
    for (int row = 0; row < nodes.Count(list); ++row) {
      const ui::TreePlace node{list, row};
      const std::string name(nodes.Text(node));
      // What every test's folder holds.
      if (name == "application" || name == "config" || name == "runtime" || name == "state") continue;
      text += text.empty() ? "" : " ";
      text += name + (nodes.Checked(node) ? "*" : "");
      if (nodes.Image(node) == ui::TreeImage::kClosed) text += "+";
      if (nodes.Image(node) == ui::TreeImage::kOpen) text += "-(" + Below(node) + ")";
    }
    return text;
  }
  void ExpectCannotResolve(const std::string& name, const QString& error) {
    ExpectError("Folder: " + ui::DisplayText(Key(name)) + "\r\n" + error + "\r\nCannot resolve to this folder");
  }
  void ShowWindow() {
    View().window()->resize(900, 700);
    View().window()->show();
    View().window()->activateWindow();
    Settle();
  }
  static void Press(QWidget& widget, int key) {
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, key, Qt::NoModifier);
      QApplication::sendEvent(&widget, &event);
    }
    Settle();
  }
};
