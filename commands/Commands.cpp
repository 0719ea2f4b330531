#include "commands/Commands.h"

#include "documents/frmText.h"
#include "ui/Hourglass.h"
#include "ui/PendingEvents.h"
#include "ui/frame/ChildArea.h"
#include "ui/frame/CustomizeForm.h"
#include "ui/frame/ToolBar.h"

namespace commands {

void Commands::mnuNew_Click() {
  table_.NewDocument();
  services_.ToolbarToggle(true);
}

void Commands::mnuOpenFile_Click() {
  opening_.mnuOpenFile_Click();
}

void Commands::mnuSaveAll_Click() {
  const ui::CommandScope scope;
  for (const ui::FormId id : services_.forms().Backwards()) {
    if (documents::frmText* document = table_.Find(id)) document->mnuSaveFile_Click();
    if (panes_.notes().pad() && panes_.notes().pad()->id() == id) mnuNotesSave_Click();
  }
}

void Commands::mnuAddAll_Click() {
  const ui::CommandScope scope;
  const ui::Hourglass hourglass;
  for (int slot = 1; slot <= table_.UpperBound(); ++slot) {
    documents::frmText* document = table_.Document(slot);
    if (!document) continue;
    document->Activate();
    document->mnuAddFile_Click();
    ui::LetPendingEventsRun();
  }
}

void Commands::mnuRecentFile_Click(size_t index) {
  const ui::CommandScope scope;
  if (!services_.fncconfirm("Project")) return;
  ui::LetPendingEventsRun();
  if (index >= services_.recentFiles().size()) return;
  project_.ProjectFile = services_.recentFiles()[index];
  project_.LoadProject();
  services_.LoadRecentFiles();
}

void Commands::mnuExit_Click() {
  services_.forms().at(0)->RequestClose();
}

void Commands::mnuToolBarCustomize_Click() {
  const ui::CommandScope scope;
  ui::CustomizeForm form(Toolbar1_, services_.forms().at(0)->widget());
  if (services_.dialogs().ShowModal(form)) Toolbar1_.Arrange(form.places());
}

void Commands::mnuToolbarButtonRaised_Click() {
  SetToolbarStyle(0);
}
void Commands::mnuToolbarButtonFlat_Click() {
  SetToolbarStyle(1);
}

void Commands::SetToolbarStyle(int style) {
  const ui::CommandScope scope;
  toolbarStyle_ = style;
  Toolbar1_.SetStyle(style);
  RefreshAllDocuments();
}

void Commands::RefreshAllDocuments() {
  for (int slot = 1; slot <= table_.UpperBound(); ++slot) {
    if (table_.DocInfo(slot).Free) continue;
    services_.InitDocProperties(slot);
    ui::LetPendingEventsRun();
  }
}

void Commands::mnuNextPane_Click() {
  services_.documentArea().ActivateNext();
}

void Commands::mnuMinRest_Click() {
  const ui::CommandScope scope;
  ui::Forms& forms = services_.forms();
  const ui::FormId current = services_.documentArea().current();
  minRest_ = minRest_ == ui::WindowState::kMinimized ? ui::WindowState::kNormal : ui::WindowState::kMinimized;
  // Where one is maximised, the toolkit makes every other one that becomes active so.
  if (documents::frmText* document = table_.Find(current))
    if (document->windowState() == ui::WindowState::kMaximized) document->SetWindowState(ui::WindowState::kNormal);
  for (const ui::FormId id : forms.Backwards()) {
    ui::Form* form = forms.Find(id);
    if (!form || form == forms.at(0)) continue;
    form->SetWindowState(minRest_);
    ui::LetPendingEventsRun();
  }
  if (documents::frmText* document = table_.Find(current)) document->Activate();
}

void Commands::Arrange(int code) {
  ui::ChildArea& area = services_.documentArea();
  if (code == 0) area.Cascade();
  if (code == 1) area.TileInRows();
  if (code == 2) area.TileInColumns();
  services_.settings().SaveArrange = code;
}

void Commands::mnuWindowCascade_Click() {
  Arrange(0);
}
void Commands::mnuWindowTileHoriz_Click() {
  Arrange(1);
}
void Commands::mnuWindowTileVertical_Click() {
  Arrange(2);
}

void Commands::mnuWindowArrange_Click() {
  services_.documentArea().ArrangeIcons();
}

void Commands::mnuWindowSendBack_Click() {
  if (documents::frmText* document = table_.Active()) services_.documentArea().SendToBack(document->id());
}

void Commands::mnuCloseAll_Click() {
  const ui::CommandScope scope;
  for (const ui::FormId id : services_.forms().Backwards())
    if (documents::frmText* document = table_.Find(id)) document->Close();
}

}  // namespace commands
