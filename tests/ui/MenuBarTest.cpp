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

// The end of a path says which file it is.
TEST(MenuBar, LongEntriesAreShortenedInTheMiddle) {
  const std::vector<ui::MenuRow> rows = {
      {.kind = Kind::kMenu, .name = "m", .caption = "M"}, {.kind = Kind::kList, .name = "list"}, {.kind = Kind::kEnd}};
  QMenuBar widget;
  ui::MenuBar bar(widget, rows);
  const QString middle(300, 'x'), ampersands(300, '&');
  bar.SetList(1,
              {{"&1 /a && b/c.txt"}, {"&1 /a/" + middle + "/c.txt"}, {"&1 /" + ampersands + "b/" + middle + "c.txt"}});
  const QList<QAction*> actions = bar.menu(0)->actions();
  ASSERT_EQ(actions.size(), 3);
  EXPECT_EQ(actions[0]->text(), "&1 /a && b/c.txt");
  EXPECT_EQ(actions[1]->text(), "&1 /a/" + middle.left(34) + QChar(0x2026) + middle.left(64) + "/c.txt");
  EXPECT_EQ(actions[2]->text(), "&1 /" + ampersands + "b" + QChar(0x2026) + middle.left(65) + "c.txt");
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
