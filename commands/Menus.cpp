#include "commands/Menus.h"

#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/frame/ChildArea.h"
#include "ui/frame/PopupMenu.h"

namespace commands {
namespace {

std::vector<ui::MenuRow> MenuRows(std::span<const Row> rows) {
  std::vector<ui::MenuRow> menuRows;
  for (const Row& row : rows) menuRows.push_back(row.menu);
  return menuRows;
}

}  // namespace

Menus::Menus(ui::FrameForm& frame, Commands& commands, services::Services& services, documents::DocumentTable& table)
    : commands_(commands),
      services_(services),
      table_(table),
      bar_(frame, MenuRows(MenuTable())),
      edit_(RowOf("mnuEdit")),
      windowList_(RowOf("mnuWindowList")),
      recentFiles_(RowOf("mnuRecentFile")) {
  QObject::connect(&bar_, &ui::MenuBar::Triggered, &bar_, [this](size_t row) { Run(row); });
  QObject::connect(&bar_, &ui::MenuBar::ListTriggered, &bar_, [this](size_t row, size_t index) {
    if (row == windowList_) return ActivateListed(index);
    const ui::CommandScope scope;
    services_.forms().Guarded([&] { commands_.mnuRecentFile_Click(index); });
  });
  QObject::connect(&bar_, &ui::MenuBar::AboutToShow, &bar_, [this](size_t row) {
    Fill();
    if (row == edit_) AskClipboard(), ShowCaptions();
  });
}

size_t Menus::RowOf(std::string_view name) const {
  size_t row = 0;
  while (bar_.row(row).name != name) ++row;
  return row;
}

// Bare paths, without numbers.
void Menus::ShowRecentFiles(const std::vector<std::string>& paths) {
  std::vector<ui::MenuListEntry> entries;
  for (const std::string& path : paths) entries.push_back({ui::DoubleAmpersands(ui::DisplayText(path))});
  bar_.SetList(recentFiles_, entries);
}

void Menus::FollowActiveDocument() {
  bar_.SetDocumentActive(table_.Active() != nullptr);
  Fill();
}

void Menus::Fill() {
  documents::frmText* document = table_.Active();
  const std::span<const Row> rows = MenuTable();
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].usable) bar_.SetEnabled(i, (commands_.*rows[i].usable)());
    if (rows[i].chosen) bar_.SetChecked(i, (commands_.*rows[i].chosen)());
    if (!document) continue;
    if (rows[i].check) bar_.SetChecked(i, document->checks().*rows[i].check);
    if (rows[i].enabled && !rows[i].asksClipboard) bar_.SetEnabled(i, rows[i].enabled(*document));
  }
  FillWindowList();
}

void Menus::AskClipboard() {
  documents::frmText* document = table_.Active();
  const std::span<const Row> rows = MenuTable();
  for (size_t i = 0; document && i < rows.size(); ++i)
    if (rows[i].asksClipboard) bar_.SetEnabled(i, rows[i].enabled(*document));
}

void Menus::ShowCaptions() {
  const std::span<const Row> rows = MenuTable();
  for (size_t i = 0; i < rows.size(); ++i)
    if (rows[i].caption) bar_.SetCaption(i, rows[i].caption());
}

// In slot order; the first nine have their number as mnemonic.
void Menus::FillWindowList() {
  listed_.clear();
  std::vector<ui::MenuListEntry> entries;
  const ui::FormId current = services_.documentArea().current();
  for (int slot = 1; slot <= table_.UpperBound(); ++slot) {
    const documents::frmText* document = table_.Document(slot);
    if (!document) continue;
    const QString caption = ui::DoubleAmpersands(ui::DisplayText(document->caption()));
    const size_t number = entries.size() + 1;
    entries.push_back({number <= 9 ? QStringLiteral("&%1 %2").arg(QString::number(number), caption) : caption,
                       document->id() == current});
    listed_.push_back(document->id());
  }
  bar_.SetList(windowList_, entries);
}

void Menus::ActivateListed(size_t index) {
  services_.forms().Guarded([this, index] {
    if (documents::frmText* document = table_.Find(listed_[index])) {
      if (document->windowState() == ui::WindowState::kMinimized) document->SetWindowState(ui::WindowState::kNormal);
      document->Activate();
    }
    Fill();
  });
}

void Menus::Run(size_t row) {
  RunRow(MenuTable()[row]);
  // A click has turned the row's check mark; what counts is the document's state.
  Fill();
}

void Menus::RunRow(const Row& row) {
  const ui::CommandScope scope;
  services_.forms().Guarded([&] {
    if (row.command) (commands_.*row.command)();
    if (documents::frmText* document = row.document ? table_.Active() : nullptr) row.document(*document);
  });
}

void Menus::ShowDocumentPopup(documents::frmText& document, const QPoint& globalPosition) {
  const ui::CommandScope scope;
  const std::span<const Row> rows = DocumentPopupTable();
  std::vector<bool> enabled;
  for (const Row& row : rows) enabled.push_back(!row.enabled || row.enabled(document));
  if (const auto chosen = ui::PickFromPopup(globalPosition, MenuRows(rows), enabled)) RunRow(rows[*chosen]);
}

void Menus::ShowListPopup(const QPoint& globalPosition) {
  ShowPopup(ListPopupTable(), globalPosition);
}
void Menus::ShowTreePopup(const QPoint& globalPosition) {
  ShowPopup(TreePopupTable(), globalPosition);
}
void Menus::ShowQuotesPopup(const QPoint& globalPosition) {
  ShowPopup(QuotesPopupTable(), globalPosition);
}

void Menus::ShowPadPopup(ui::RichTextBox& pad, const QPoint& globalPosition) {
  const ui::CommandScope scope;
  const std::span<const Row> rows = PadPopupTable();
  std::vector<bool> enabled;
  for (const Row& row : rows) enabled.push_back(!row.padEnabled || row.padEnabled(pad));
  const auto chosen = ui::PickFromPopup(globalPosition, MenuRows(rows), enabled);
  if (chosen) services_.forms().Guarded([&] { rows[*chosen].pad(pad); });
}

void Menus::ShowPopup(std::span<const Row> rows, const QPoint& globalPosition) {
  const ui::CommandScope scope;
  std::vector<bool> enabled;
  for (const Row& row : rows) enabled.push_back(!row.usable || (commands_.*row.usable)());
  commands_.SetPopupPosition(globalPosition);
  if (const auto chosen = ui::PickFromPopup(globalPosition, MenuRows(rows), enabled)) RunRow(rows[*chosen]);
}

}  // namespace commands
