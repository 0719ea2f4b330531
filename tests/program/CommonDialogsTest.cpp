// The file dialogs, the document filter and what it says about a path.
#include "shell/CommonDialogAPI.h"
#include "tests/program/ProgramTest.h"

namespace {

using shell::CommonDialogAPI;
using ui::Answer;
using ui::Buttons;
using ui::Icon;

class CommonDialogsTest : public ProgramTest {
 protected:
  CommonDialogAPI api{dialogs, files::CurrentDirectory(folder())};
  QString Asked(const files::Path& path, const QString& text) {
    return QString::fromStdString(path.native()) + "\r\n" + text;
  }
};

TEST_F(CommonDialogsTest, TheUsualFilter) {
  EXPECT_EQ(api.Extensions(), ".txt,.htm*,.js,.css,.xml,.rtf");
  EXPECT_EQ(api.DocumentFilter(), ".txt|*.txt|.htm*|*.htm*|.js|*.js|.css|*.css|.xml|*.xml|.rtf|*.rtf|All Files|*.*");
  EXPECT_EQ(api.ExtraFilterCount(), 6);
}

struct FilterCase {
  const char* extensions;
  const char* path;
  const char* extension;
  int index;
};

TEST_F(CommonDialogsTest, FilterForAPath) {
  const FilterCase cases[] = {
      {"", "", ".txt", 1},
      {"", "/a/README", ".txt", 1},
      {"", "/a/x.txt", ".txt", 1},
      {"", "/a/x.TXT", ".TXT", 1},
      {"", "/a/x.html", ".html", 2},
      {"", "/a/x.htm", ".htm", 2},
      {"", "/a/x.ht", ".ht", 7},
      {"", "/a/x.rtf", ".rtf", 6},
      {"", "/a/x.tar.gz", ".gz", 7},
      {"", "Untitled:1", ".txt", 1},
      {".htm*, .txt", "/a/x.HTML", ".HTML", 1},
      {".htm*, .txt", "/a/x.txt", ".txt", 2},
      {".htm*, .txt", "/a/x.doc", ".doc", 3},
      {".htm*, .txt", "/a/x", ".htm", 1},
      {"*", "/a/x.anything", ".anything", 1},
      {".c*x,.txt", "/a/x.cpp", ".cpp", 1},
      {".c*x,.txt", "/a/x", ".c*x", 1},
  };
  for (const FilterCase& c : cases) {
    api.BuildDocumentFilter(c.extensions);
    const services::PathFilter filter = api.GetFilterForPath(c.path);
    EXPECT_EQ(filter.extension, c.extension) << c.extensions << " " << c.path;
    EXPECT_EQ(filter.index, c.index) << c.extensions << " " << c.path;
  }
}

TEST_F(CommonDialogsTest, AMissingFileIsAskedAboutAndTheDialogComesBack) {
  const QString question = Asked(At("new.txt"), "This file does not exist.  Do you want to create it?");
  dialogs.File(At("new.txt"));
  dialogs.Message(question, Buttons::kYesNo, Icon::kQuestion, Answer::kNo);
  dialogs.File(At("new.txt"), [](const ui::FileRequest& request) { EXPECT_EQ(request.name, "new.txt"); });
  dialogs.Message(question, Buttons::kYesNo, Icon::kQuestion, Answer::kYes);
  EXPECT_EQ(api.ShowOpenDialog({.flags = services::kCreatePrompt}), At("new.txt"));
}

TEST_F(CommonDialogsTest, AFileThatMustExist) {
  dialogs.File(At("no.txt"));
  dialogs.Message(Asked(At("no.txt"), "This file does not exist.  Please check its name."), Buttons::kOk,
                  Icon::kExclamation, Answer::kOk);
  dialogs.File(std::nullopt);
  EXPECT_EQ(api.ShowOpenDialog({.flags = services::kFileMustExist}), "");
}

TEST_F(CommonDialogsTest, ThePathIsGivenBackExactly) {
  const files::Path path = Put(" odd \xFF name ", "");
  dialogs.File(path);
  EXPECT_EQ(api.ShowOpenDialog({.defaultExtension = ".txt", .flags = services::kFileMustExist}), path);
}

TEST_F(CommonDialogsTest, ALongProposedNameIsCut) {
  dialogs.File(std::nullopt, [](const ui::FileRequest& request) {
    EXPECT_EQ(request.folder, "/some/folder");
    EXPECT_EQ(request.name, std::string(254, 'n'));
  });
  api.ShowSaveDialog({.initialFile = "/some/folder/" + std::string(300, 'n')});
}

TEST_F(CommonDialogsTest, TheFolderIsRememberedUnlessToldOtherwise) {
  std::filesystem::create_directory(At("sub"));
  dialogs.File(At("sub/a.txt"));
  api.ShowSaveDialog({.flags = services::kNoChangeDir});
  EXPECT_EQ(api.currentDirectory().path(), folder());
  dialogs.File(At("sub/a.txt"));
  api.ShowSaveDialog({});
  dialogs.File(std::nullopt, [&](const ui::FileRequest& request) { EXPECT_EQ(request.folder, At("sub")); });
  api.ShowSaveDialog({});
}

TEST_F(CommonDialogsTest, OwnColoursLast) {
  const ui::CustomColors presets = {0xB4FFFF, 0xE1FFFF, 0xEEFFFF, 0xE6F5FD, 0xE6F0FA, 0xE6E6E6};
  dialogs.Color(0xFF, [&](int64_t initial, ui::CustomColors& custom) {
    EXPECT_EQ(initial, 0x102030);
    EXPECT_EQ(custom, presets);
    custom[15] = 0x123456;
  });
  EXPECT_EQ(api.ShowColorDialog(nullptr, 0x102030), 0xFF);
  dialogs.Color(std::nullopt, [](int64_t, ui::CustomColors& custom) { EXPECT_EQ(custom[15], 0x123456); });
  EXPECT_EQ(api.ShowColorDialog(nullptr, 0), -1);
}

TEST_F(CommonDialogsTest, ThePrinterDialogsFlags) {
  for (const int flags : {0, 1, 8, 9}) {
    for (const bool confirmed : {false, true}) {
      dialogs.Printer(confirmed, [flags](const ui::PrinterRequest& request, ui::Printer&) {
        EXPECT_EQ(request.pages, flags < 8) << flags;
        EXPECT_EQ(request.selection, flags % 2 == 1) << flags;
      });
      EXPECT_EQ(api.ShowPrinterDialog(nullptr, flags), !confirmed);
    }
  }
}

TEST_F(CommonDialogsTest, TheOpenCommand) {
  const files::Path path = Put("a.txt", "text");
  dialogs.File(path, [](const ui::FileRequest& request) {
    EXPECT_FALSE(request.save);
    EXPECT_EQ(request.title, "Select a document to open");
    EXPECT_EQ(request.filterIndex, 1);
    EXPECT_TRUE(request.name.empty());
  });
  program().commands().mnuOpenFile_Click();
  EXPECT_TRUE(Showing(path.native()));
  dialogs.File(std::nullopt);
  program().commands().mnuOpenFile_Click();
  EXPECT_EQ(table().UpperBound(), 1);
}

}  // namespace
