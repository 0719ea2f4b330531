// A menu bar from a table.
#include "ui/frame/MenuBar.h"

#include <QMenu>
#include <QMenuBar>
#include <gtest/gtest.h>

namespace {

using Kind = ui::MenuRowKind;

// A menu drawn with one letter a row: "i" item, "d" document item, "-" separator; then what shows without a document.
struct SeparatorCase {
  const char* rows;
  const char* without;
  const char* with;
};

std::string Shown(const QMenu& menu) {
  std::string shown;
  for (const QAction* action : menu.actions())
    if (action->isVisible()) shown += action->isSeparator() ? '-' : 'i';
  return shown;
}

TEST(MenuBar, SeparatorsNeverStandFirstLastOrDoubled) {
  const SeparatorCase cases[] = {
      {"i-d-i", "i-i", "i-i-i"}, {"d-i", "i", "i-i"},    {"i-d", "i", "i-i"},
      {"-i-", "i", "i"},         {"i--i", "i-i", "i-i"}, {"d-d-i-d-d", "i", "i-i-i-i-i"},
      {"d-d", "", "i-i"},        {"-", "", ""},
  };
  for (const SeparatorCase& c : cases) {
    std::vector<ui::MenuRow> rows = {{.kind = Kind::kMenu, .name = "m", .caption = "M"}};
    for (const char* letter = c.rows; *letter; ++letter) {
      ui::MenuRow row;
      row.kind = *letter == '-' ? Kind::kSeparator : Kind::kItem;
      row.caption = "Item";
      row.documentOnly = *letter == 'd';
      rows.push_back(row);
    }
    rows.push_back({.kind = Kind::kEnd});
    QMenuBar widget;
    ui::MenuBar bar(widget, rows);
    EXPECT_EQ(Shown(*bar.menu(0)), c.without) << c.rows;
    bar.SetDocumentActive(true);
    EXPECT_EQ(Shown(*bar.menu(0)), c.with) << c.rows;
    bar.SetDocumentActive(false);
    EXPECT_EQ(Shown(*bar.menu(0)), c.without) << c.rows;
  }
}

TEST(MenuBar, KeysDependOnTheDocument) {
  const ui::MenuRow rows[] = {
      {.kind = Kind::kMenu, .name = "m", .caption = "M"},
      {.name = "a", .caption = "A", .keyWithDocument = "Ctrl+S"},
      {.name = "b", .caption = "B", .keyWithDocument = "Ctrl+B", .keyWithoutDocument = "Ctrl+S"},
      {.kind = Kind::kEnd},
  };
  QMenuBar widget;
  ui::MenuBar bar(widget, rows);
  EXPECT_TRUE(bar.action(1)->shortcut().isEmpty());
  EXPECT_EQ(bar.action(2)->shortcut(), QKeySequence("Ctrl+S"));
  bar.SetDocumentActive(true);
  EXPECT_EQ(bar.action(1)->shortcut(), QKeySequence("Ctrl+S"));
  EXPECT_EQ(bar.action(2)->shortcut(), QKeySequence("Ctrl+B"));
}

}  // namespace
