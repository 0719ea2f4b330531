// A menu bar made from a table: one action per row, filled and hidden as the current document wants it.
#pragma once

#include <QAction>
#include <QObject>
#include <QString>

#include <memory>
#include <optional>
#include <span>
#include <vector>

class QMenu;
class QMenuBar;

namespace ui {

class FrameForm;

enum class MenuRowKind : uint8_t { kMenu, kItem, kSeparator, kList, kEnd };

// One row of the table; a menu's rows stand between its kMenu and its kEnd. All texts are static.
struct MenuRow {
  MenuRowKind kind = MenuRowKind::kItem;
  const char* name = "";
  const char* caption = "";  // English, with its mnemonic; translated in the context "Menu"
  const char* hint = "";     // a key that is shown but handled elsewhere
  const char* keyWithDocument = "";
  const char* keyWithoutDocument = "";
  bool documentOnly = false;  // shown only while a document window is active
  bool checkable = false;
  const char* icon = "";       // a picture of data/icons/
  bool editsDocument = false;  // its key does nothing while a pane has the focus
};

// One line of a kList row.
struct MenuListEntry {
  QString caption;
  std::optional<bool> checked = {};  // empty: it has no check mark at all
};

class MenuBar : public QObject {
  Q_OBJECT

 public:
  // Rows are named by their index in the table from here on.
  MenuBar(QMenuBar& bar, std::span<const MenuRow> rows);
  MenuBar(FrameForm& frame, std::span<const MenuRow> rows);
  ~MenuBar() override;

  // Shows, hides and gives keys to the rows; no separator stands first, last or doubled.
  void SetDocumentActive(bool active);
  // Done by itself when the bar is a frame's.
  void SetPaneFocused(bool focused);
  void SetEnabled(size_t row, bool enabled);
  void SetChecked(size_t row, bool checked);
  void SetCaption(size_t row, const QString& caption);  // instead of the table's; an "&" is doubled
  void SetList(size_t row, const std::vector<MenuListEntry>& entries);

  const MenuRow& row(size_t index) const { return rows_[index]; }
  size_t rowCount() const { return rows_.size(); }
  const QAction* action(size_t row) const { return actions_[row]; }  // null for kEnd and kList
  const QMenu* menu(size_t row) const { return menus_[row]; }        // of a kMenu row

 Q_SIGNALS:
  void Triggered(size_t row);
  void ListTriggered(size_t row, size_t index);
  void AboutToShow(size_t row);  // of a kMenu row

 private:
  void Build(QMenuBar& bar);
  void SetKeys();
  QAction* BuildItem(size_t row, QMenu& menu);
  void TidySeparators(QMenu& menu);

  std::vector<MenuRow> rows_;
  std::vector<QAction*> actions_;
  std::vector<QMenu*> menus_;  // of the row itself (kMenu) or the menu that holds it
  std::vector<std::vector<QAction*>> lists_;
  bool documentActive_ = false, paneFocused_ = false;
};

}  // namespace ui
