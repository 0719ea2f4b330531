// What cannot be opened.
#include "tests/program/ProgramTest.h"

#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using documents::frmText;

class LoadErrorTest : public ProgramTest {
 protected:
  // The message, no window, and the slot is free again.
  void ExpectRefused(const files::Path& path, const QString& text) {
    ExpectError(Error(path, text));
    EXPECT_FALSE(Open(path));
    EXPECT_FALSE(table().AnyDocumentOpen());
    EXPECT_EQ(program().forms().count(), 1u);
    EXPECT_EQ(table().LastDocWindowState, -1);
  }
};

TEST_F(LoadErrorTest, AMissingFileIsAnEmptyWindow) {
  frmText* document = Open(At("missing.txt"));
  ASSERT_TRUE(document);
  EXPECT_EQ(document->RichTextBox1().Text(), "");
  EXPECT_FALSE(Changed(*document));
  EXPECT_TRUE(document->Close()) << "and asks nothing";
  EXPECT_FALSE(Exists(At("missing.txt")));
}

TEST_F(LoadErrorTest, AMissingFolder) {
  ExpectRefused(At("no/a.txt"), "No such file or directory");
}

TEST_F(LoadErrorTest, AFolder) {
  ExpectRefused(folder(), "Is a directory");
}

TEST_F(LoadErrorTest, AFileWhereAFolderIsMeant) {
  ExpectRefused(Put("a", "") / "b.txt", "Not a directory");
}

TEST_F(LoadErrorTest, AFifoIsRefusedAtOnce) {
  ASSERT_EQ(mkfifo(At("fifo.txt").c_str(), 0600), 0);
  ExpectRefused(At("fifo.txt"), "Not a regular file");
}

TEST_F(LoadErrorTest, ADevice) {
  ExpectRefused("/dev/zero", "Not a regular file");
}

TEST_F(LoadErrorTest, AnUnreadableFileNeverComesUpEmpty) {
  for (const char* name : {"a.txt", "a.rtf"}) {
    const files::Path path = Put(name, "secret");
    chmod(path.c_str(), 0000);
    chmod(folder().c_str(), 0755);
    const Unprivileged unprivileged;
    ASSERT_FALSE(std::ifstream(path).good()) << "this user may read everything";
    ExpectRefused(path, "Permission denied");
  }
}

TEST_F(LoadErrorTest, ACancelledLoadLeavesNoWindow) {
  const files::Path path = Put("a.txt", "x");
  std::filesystem::resize_file(path, 64 << 20);
  dialogs.CancelNextWork();
  EXPECT_FALSE(Open(path));
  EXPECT_FALSE(table().AnyDocumentOpen());
  EXPECT_TRUE(Open(path)) << "nothing stays behind that would stop the next attempt";
}

TEST_F(LoadErrorTest, OtherWindowsStay) {
  frmText* document = Open(Put("a.txt", "text"));
  ExpectError(Error(folder(), "Is a directory"));
  EXPECT_FALSE(Open(folder()));
  EXPECT_EQ(table().Active(), document);
  EXPECT_TRUE(table().DocInfo(2).Free);
}

}  // namespace
