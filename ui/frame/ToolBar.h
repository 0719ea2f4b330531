// A toolbar made from a table, whose buttons are named by their rows.
#pragma once

#include "ui/frame/ToolButton.h"

#include <QToolBar>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ui {

struct ToolBarMenuRow {
  const char* caption = "";  // with its mnemonic; translated in the context "Toolbar"
  const char* key = "";
};

enum class FaceClick : uint8_t { kRuns, kOpensMenu, kNothing };  // kNothing: only the arrow beside it does something

// All texts are static, English and translated in the context "Toolbar". Keys are compared without regard to case.
struct ToolBarRow {
  const char* key = "";
  const char* longText = "";   // the tooltip
  const char* shortText = "";  // the description, and the name that a screen reader reads
  const char* icon = "";
  FaceClick face = FaceClick::kRuns;
  bool toggles = false;   // it has a state
  bool newGroup = false;  // a separator stands before it at first
  std::span<const ToolBarMenuRow> menu = {};
};

// One place of the layout: a button's row, or a separator.
struct ToolBarPlace {
  std::optional<size_t> row;
  bool visible = true;
  bool operator==(const ToolBarPlace&) const = default;
};

class ToolBar : public QToolBar {
  Q_OBJECT

 public:
  explicit ToolBar(QWidget* parent = nullptr);

  // Once. Rows are named by their index from here on.
  void SetButtons(std::span<const ToolBarRow> rows);
  size_t count() const { return rows_.size(); }
  const ToolBarRow& row(size_t index) const { return rows_[index]; }
  std::optional<size_t> Find(std::string_view key) const;
  std::optional<size_t> FindMenu(size_t row, std::string_view key) const;
  const ToolButton& button(size_t row) const { return *buttons_[row]; }
  QString description(size_t row) const;

  void SetState(size_t row, ButtonState state) { buttons_[row]->SetState(state); }
  ButtonState state(size_t row) const { return buttons_[row]->state(); }
  void SetIcon(size_t row, const char* icon);
  void SetEnabled(size_t row, bool enabled) { buttons_[row]->setEnabled(enabled); }
  bool isEnabled(size_t row) const { return buttons_[row]->isEnabled(); }
  void SetMenuEnabled(size_t row, size_t item, bool enabled);
  bool isMenuEnabled(size_t row, size_t item) const;

  // 1 = flat buttons, 0 = raised ones.
  int style() const { return style_; }
  void SetStyle(int style);

  // --- The layout: order, separators and visibility. No separator shows first, last or doubled.
  const std::vector<ToolBarPlace>& places() const { return places_; }
  void Arrange(std::vector<ToolBarPlace> places);  // as the user wants it; rows that are missing take their old place
  std::vector<ToolBarPlace> FirstPlaces() const;   // as the table has them
  // As one line of text for the settings.
  std::string Layout() const;
  // Keys that the text does not know take their place from the table, keys that no button has are passed over. False,
  // and nothing changes, when it is not such a text at all.
  bool Restore(std::string_view text);

 Q_SIGNALS:
  void Clicked(size_t row);
  void MenuClicked(size_t row, size_t item);
  void RightPressed();
  void LayoutChanged();                      // by Arrange
  void Hovered(const QString& description);  // the button under the pointer; empty when there is none

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent*) override {}

 private:
  void MakeButton(size_t row);
  std::vector<ToolBarPlace> WithMissing(std::vector<ToolBarPlace> places) const;
  void Place(std::vector<ToolBarPlace> places);

  std::vector<ToolBarRow> rows_;
  std::vector<ToolButton*> buttons_;
  std::vector<QAction*> actions_;  // each holds its button's place
  std::vector<QAction*> separators_;
  std::vector<ToolBarPlace> places_;
  int style_ = 1;
};

}  // namespace ui
