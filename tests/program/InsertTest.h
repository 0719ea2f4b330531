// What inserting needs: rows of the Edit menu, documents with objects, and copies of these that applications open.
#pragma once

#include "documents/objects/ObjectCopies.h"
#include "tests/program/ProgramTest.h"
#include "text/ObjectAt.h"
#include "text/rtfsyntax/RtfPackage.h"

#include <QAction>

#include <fstream>
#include <sys/stat.h>

class InsertTest : public ProgramTest {
 protected:
  const QAction& Row(const std::string& name) {
    ui::MenuBar& bar = program().menus().bar();
    size_t row = 0;
    while (name != bar.row(row).name) ++row;
    return *bar.action(row);
  }
  void Choose(const std::string& name) { const_cast<QAction&>(Row(name)).trigger(); }
  void OpenEditMenu() {
    size_t row = 0;
    while (std::string("mnuEdit") != program().menus().bar().row(row).name) ++row;
    Q_EMIT program().menus().bar().AboutToShow(row);
  }
};

class ObjectTest : public InsertTest {
 protected:
  // A document "one|two" with the file between.
  documents::frmText& WithObject(const std::string& name, std::string_view bytes) {
    documents::frmText& document = *Open(Put("a.rtf", ""));
    Type(document, "onetwo");
    document.RichTextBox1().SetSelStart(3);
    Q_EMIT document.RichTextBox1().FilesDropped({Put(name, bytes).native()});
    Settle();
    EXPECT_EQ(document.RichTextBox1().Text(), QString("one") + kObject + "two");
    return document;
  }
  static const text::EmbeddedObject& ObjectOf(documents::frmText& document, int64_t place = 3) {
    return *text::ObjectAt(document.RichTextBox1().document().content(), text::Units(place));
  }
  static std::string BytesOf(documents::frmText& document, int64_t place = 3) {
    const auto package = text::rtf::ReadPackage(ObjectOf(document, place).rtf.bytes);
    return package ? package->bytes : "no package";
  }
  // Opens it and gives the copy's path.
  files::Path OpenObject(documents::frmText& document, int64_t at = 3) {
    document.RichTextBox1().SetSelStart(at);
    document.RichTextBox1().SetSelLength(1);
    document.mnuRCObjOpen_Click();
    const std::string asked = desktop.asked.empty() ? "" : desktop.asked.back();
    return asked.starts_with("copy ") ? asked.substr(5) : "";
  }
  static void Write(const files::Path& path, std::string_view bytes) { std::ofstream(path, std::ios::binary) << bytes; }
  static int ModeOf(const files::Path& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
  }
  void ExpectKept(documents::frmText& document, const files::Path& copy, const QString& reason) {
    ExpectError(QString("The changes to [%1] could not be taken back into [%2]:\r\n%3\r\n\r\nThe changed file is "
                        "kept here:\r\n%4")
                    .arg(QString::fromStdString(copy.filename().native()), QString::fromStdString(document.caption()),
                         reason, QString::fromStdString(copy.native())));
  }
  files::Path copies() const { return place.recovery.parent_path() / "objects"; }
  static constexpr QChar kObject{0xFFFC};
};
