#include "documents/frmText.h"

#include "files/Attributes.h"
#include "services/Messages.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"

#include <QEvent>

namespace documents {

frmText::frmText(services::Services& services, DocumentTable& table, int slot)
    : ChildForm(services.forms(), "frmText", services.documentArea(), new ui::RichTextBox),
      services_(services),
      table_(table),
      slot_(slot),
      RichTextBox1_(static_cast<ui::RichTextBox*>(content())) {
  ConnectEditor();
}

frmText::~frmText() = default;

void frmText::ConnectEditor() {
  connect(RichTextBox1_, &ui::RichTextBox::Change, this,
          [this] { table_.DocInfo(slot_).Changed = RichTextBox1_->document().changed(); });
  connect(RichTextBox1_, &ui::RichTextBox::SelChange, this, &frmText::UpdateSelectionState);
  connect(RichTextBox1_, &ui::RichTextBox::OvertypeChanged, this, [this](bool on) { services_.ShowOvertype(on); });
  connect(RichTextBox1_, &ui::RichTextBox::ContextMenuRequested, this,
          [this](const QPoint& position) { services_.ShowDocumentMenu(slot_, position); });
  connect(RichTextBox1_, &ui::RichTextBox::EditFailed, this, [this](const QString& reason) {
    services::ShowError(services_.dialogs(), this, services::FileText(caption(), reason));
  });
  RichTextBox1_->installEventFilter(this);
}

bool frmText::eventFilter(QObject* watched, QEvent* event) {
  if (watched == RichTextBox1_ && event->type() == QEvent::FocusIn) {
    Activate();
    services_.ShowOvertype(RichTextBox1_->overtype());
    LastFontName_.clear();
    LastFontSize_ = 0;
    UpdateSelectionState();
  }
  return ChildForm::eventFilter(watched, event);
}

void frmText::MyShow() {
  Show();
  if (table_.LastDocWindowState >= 0) {
    SetWindowState(static_cast<ui::WindowState>(table_.LastDocWindowState));
    table_.LastDocWindowState = -1;
  }
  SetUnchanged();
}

void frmText::SetDefaultFormat() {
  const services::DefaultFont& font = services_.defaultFont();
  RichTextBox1_->SetDefaultFormat(font.name, font.size);
}

void frmText::TakeIn(ReadDocument read) {
  origin_ = {};
  origin_.stamp = read.stamp;
  origin_.notRtf = read.notRtf;
  origin_.rtfBytes = std::move(read.rtfBytes);
  origin_.lost = read.rtf.dropped;
  if (read.rtf.limited) origin_.lost.push_back(tr("what was left out because there is too much of it").toStdString());
  if (read.notRtf) SetDefaultFormat();
  if (read.rich) {
    RichTextBox1_->LoadRtf(std::move(read.rtf));
  } else {
    RichTextBox1_->LoadPlain(std::move(read.plain));
  }
  origin_.asLoaded = RichTextBox1_->document().content();
}

void frmText::MarkRecovered(const files::RecoveryEntry& entry) {
  // The file itself was never read: one that is there now is not replaced unasked.
  origin_ = {};
  origin_.recovered = entry;
  origin_.notRtf = IsRichName(caption()) && entry.kind == kRecoveryKindText;
  ForceChanged();
}

void frmText::SetUnchanged() {
  RichTextBox1_->document().SetSaved();
  table_.DocInfo(slot_).Changed = false;
}

void frmText::ForceChanged() {
  RichTextBox1_->document().ForceChanged();
  table_.DocInfo(slot_).Changed = true;
}

bool frmText::Close() {
  const ui::CommandScope scope;
  return QueryUnload() && Unload();
}

bool frmText::QueryUnload() {
  if (unloaded_) return true;
  if (asking_) return false;
  rescue_ = false;
  if (!table_.DocInfo(slot_).Changed) return true;
  asking_ = true;
  const QString text = tr("The text in [%1] has changed.\r\nDo you want to save the changes?");
  const ui::Answer answer = services_.dialogs().ShowMessage(
      this, {text.arg(ui::DisplayText(caption())), ui::Buttons::kYesNoCancel, ui::Icon::kExclamation});
  ui::LetPendingEventsRun();
  // Text that an input method delivered during the save is not in the file either.
  if (answer == ui::Answer::kYes && !unloaded_)
    rescue_ = mnuSaveFile_Click() != SaveOutcome::kSaved || table_.DocInfo(slot_).Changed;
  asking_ = false;
  return answer != ui::Answer::kCancel;
}

bool frmText::Unload() {
  if (unloaded_) return true;
  if (rescue_ && !WriteRecovery()) {
    rescue_ = false;
    return false;
  }
  ui::LetPendingEventsRun();
  if (unloaded_) return true;
  unloaded_ = true;
  ForgetRecovered(false);
  const bool shown = isShown();
  const int state = static_cast<int>(windowState());
  TakeDown();
  const int slot = slot_;
  table_.Release(slot);
  if (!table_.AnyDocumentOpen()) {
    services_.ToolbarToggle(false);
    services_.ShowSelectionFont({});
  }
  if (shown) table_.LastDocWindowState = state;
  return true;
}

// Saved, written anew to the recovery folder, or given up by the user: the old copy has done its work. But what is left
// of a save that was cut short may be all that is whole of its file: only that file's being saved makes it useless.
void frmText::ForgetRecovered(bool saved) {
  if (!origin_.recovered) return;
  const files::RecoveryEntry& entry = *origin_.recovered;
  const bool cutShort = entry.kind.empty() || !entry.complete;
  if (cutShort && !(saved && files::SamePath(entry.originalPath, path()))) return;
  // When it cannot be removed it is offered once more, which loses nothing.
  static_cast<void>(files::RemoveRecovery(entry));
  origin_.recovered.reset();
}

bool frmText::WriteRecovery() {
  const bool rich = !SavesAsPlain();
  text::TextProperties properties = RichTextBox1_->document().properties();
  const text::Content content = RichTextBox1_->document().content();
  if (!rich && text::FirstUnencodable(content, properties.encoding)) properties = {};
  const DocumentBytes bytes = BytesToSave(properties);
  const files::Path named = path();
  const char* const kind = rich ? kRecoveryKindRtf : kRecoveryKindText;
  std::optional<files::Error> error;
  services_.dialogs().RunWork(
      this, tr("Saving %1").arg(ui::DisplayText(caption())), bytes.content.sums().bytes.value(),
      [&](ui::WorkPort&) { error = RescueDocument(services_.recoveryFolder(), named, kind, bytes); });
  if (error) services::ShowError(services_.dialogs(), this, services::ErrorText(caption(), *error));
  return !error;
}

}  // namespace documents
