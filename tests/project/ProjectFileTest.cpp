#include "project/ItemTable.h"
#include "project/ProjectFile.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace {

using project::EntryKind;
using testing::ElementsAre;

TEST(ProjectFile, EntriesAreWhatTheirTextSays) {
  const struct {
    const char* entry;
    EntryKind kind;
    const char* shown;
  } kRows[] = {
      {"/home/me/texts/", EntryKind::kFolder, "/home/me/texts/"},
      {"/home/me/a.txt", EntryKind::kDocument, "a.txt"},
      {"notes.txt", EntryKind::kDocument, "notes.txt"},
      {"/home/me/manual.pdf.lnk", EntryKind::kReadOnlyShortcut, "manual.pdf.lnk"},
      {"/x/SITE.LNK", EntryKind::kReadOnlyShortcut, "SITE.LNK"},
      {"/x/unlnk", EntryKind::kReadOnlyShortcut, "unlnk"},
      {"nk", EntryKind::kDocument, "nk"},
      {"C:\\Work\\", EntryKind::kFolder, "C:\\Work\\"},
      {"C:\\Work\\a.txt", EntryKind::kDocument, "a.txt"},
      {"/odd/back\\slash", EntryKind::kDocument, "back\\slash"},
      {"/odd/ends with \\", EntryKind::kDocument, "ends with \\"},
      {"/two\nlines.txt", EntryKind::kDocument, "two\nlines.txt"},
      {"/", EntryKind::kFolder, "/"},
      {"/bytes/\xFF\xFE.txt", EntryKind::kDocument, "\xFF\xFE.txt"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(project::KindOf(row.entry), row.kind) << row.entry;
    EXPECT_EQ(project::ShownPart(row.entry), row.shown);
  }
}

TEST(ProjectFile, LinesAreReadAsTheFormatSays) {
  const struct {
    std::string file;
    std::vector<std::string> entries;
  } kRows[] = {
      {"", {}},
      {"\r\n", {}},
      {"a\r\nb\r\n\r\n", {"a", "b"}},
      {"a\rb\r\rc", {"a", "b", "c"}},
      {"\r\n\r\n a \r\n\r\n\tb", {" a ", "\tb"}},
      {"a\nb\r\nc\n\r\n", {"a\nb", "c\n"}},
      {"\na\r\n\n\r\n", {"\na", "\n"}},
      {std::string("n\0l\xFF\r\n", 6), {std::string("n\0l\xFF", 4)}},
  };
  for (const auto& row : kRows) EXPECT_EQ(project::ParseProjectFile(row.file), row.entries) << row.file;
}

TEST(ProjectFile, WhatIsWrittenEndsWithAnEmptyLineAndIsReadBack) {
  EXPECT_EQ(project::FormatProjectFile({}), "\r\n");
  const std::vector<std::string> entries = {"/a", " b ", "c\nd", "C:\\x\\"};
  const std::string file = project::FormatProjectFile(entries);
  EXPECT_EQ(file, "/a\r\n b \r\nc\nd\r\nC:\\x\\\r\n\r\n");
  EXPECT_EQ(project::ParseProjectFile(file), entries);
}

TEST(ItemTable, FindsWithoutRegardToCaseAndAfterChanges) {
  project::ItemTable items;
  for (const char* entry : {"/no/A.txt", "/no/b.txt", "/no/a.TXT", "/no/c"}) items.Append(entry);
  EXPECT_THAT(items.Find("/NO/a.txt"), ElementsAre(1, 3));
  EXPECT_THAT(items.Find("/no"), ElementsAre());
  items.Replace(2, "/no/A.TXT");
  EXPECT_THAT(items.Find("/no/a.txt"), ElementsAre(1, 2, 3));
  EXPECT_THAT(items.Find("/no/b.txt"), ElementsAre());
  items.Remove({false, true, false, false, false});
  EXPECT_THAT(items.Find("/no/a.txt"), ElementsAre(1, 2));
  EXPECT_THAT(items.Find("/no/c"), ElementsAre(3));
  items.Clear();
  EXPECT_EQ(items.Highest(), 0u);
  EXPECT_THAT(items.Find("/no/c"), ElementsAre());
}

TEST(ItemTable, TwoFilesThatDifferByCaseAloneAreTwo) {
  const auto folder =
      std::filesystem::temp_directory_path() / ("quillmark-items-" + std::to_string(std::random_device{}()));
  std::filesystem::create_directory(folder);
  for (const char* name : {"a.txt", "A.TXT"}) std::ofstream(folder / name) << name;
  project::ItemTable items;
  items.Append((folder / "a.txt").native());
  EXPECT_THAT(items.Find((folder / "A.TXT").native()), ElementsAre());
  std::filesystem::remove(folder / "A.TXT");
  EXPECT_THAT(items.Find((folder / "A.TXT").native()), ElementsAre(1));
  std::filesystem::remove_all(folder);
}

}  // namespace
