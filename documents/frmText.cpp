#include "documents/frmText.h"

#include "documents/objects/ObjectCopies.h"
#include "services/Links.h"
#include "services/Messages.h"
#include "services/RecoveryKind.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"

#include <QEvent>
#include <QMimeData>

#include <cerrno>
#include <new>

namespace documents {
namespace {

bool HoldsObjects(const text::Content& content) {
  return content.Summarize(content.all()).anyObject;
}

}  // namespace

frmText::frmText(services::Services& services, DocumentTable& table, int slot)
    : ChildForm(services.forms(), "frmText", services.documentArea(), new ui::RichTextBox),
      services_(services),
      table_(table),
      slot_(slot),
      RichTextBox1_(static_cast<ui::RichTextBox*>(content())),
      Completion_(services.MakeCompletion(*RichTextBox1_)) {
  ConnectEditor();
}

frmText::~frmText() = default;

void frmText::ConnectEditor() {
  RichTextBox1_->SavesFormatsWhen([this] { return !SavesAsPlain(); });
  connect(RichTextBox1_, &ui::RichTextBox::Change, this, [this] {
    // A window that has gone for the program still exists for a while; its slot may be another's.
    if (!unloaded_) table_.DocInfo(slot_).Changed = RichTextBox1_->document().changed();
  });
  connect(RichTextBox1_, &ui::RichTextBox::SelChange, this, &frmText::UpdateSelectionState);
  connect(RichTextBox1_, &ui::RichTextBox::OvertypeChanged, this, [this](bool on) { services_.ShowOvertype(on); });
  connect(RichTextBox1_, &ui::RichTextBox::ContextMenuRequested, this,
          [this](const QPoint& position) { services_.ShowDocumentMenu(slot_, position); });
  connect(RichTextBox1_, &ui::RichTextBox::LinkActivated, this, [this](const QString& target) {
    services_.forms().Guarded([&] { services::FollowLink(services_, this, target); });
  });
  connect(RichTextBox1_, &ui::RichTextBox::ObjectActivated, this, [this](text::Units place) {
    ui::AfterCommand(this, [this, place] { services_.forms().Guarded([&] { OpenObject(place); }); });
  });
  connect(RichTextBox1_, &ui::RichTextBox::FilesDropped, this, [this](const std::vector<std::string>& paths) {
    ui::AfterCommand(this, [this, paths] { services_.forms().Guarded([&] { InsertFiles(paths); }); });
  });
  connect(RichTextBox1_, &ui::RichTextBox::DragStarting, this,
          [this](QMimeData* data, bool asFile) { services_.forms().Guarded([&] { AddFileToDrag(*data, asFile); }); });
  connect(RichTextBox1_, &ui::RichTextBox::DragRefused, this, [this] {
    ui::AfterCommand(this, [this] {
      services_.forms().Guarded([this] {
        services::ShowError(services_.dialogs(), this,
                            tr("This is too much to be dragged to another program.  Copy and paste it."));
      });
    });
  });
  connect(RichTextBox1_, &ui::RichTextBox::EditFailed, this, [this](const QString& reason) {
    services_.forms().Guarded(
        [&] { services::ShowError(services_.dialogs(), this, services::FileText(caption(), reason)); });
  });
  RichTextBox1_->installEventFilter(this);
}

bool frmText::eventFilter(QObject* watched, QEvent* event) {
  if (watched == RichTextBox1_ && !unloaded_ && event->type() == QEvent::FocusIn) {
    if (!services_.TakeFocusFromFindAll()) Activate();
    ShowState();
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
  if (read.notRtf) SetDefaultFormat();
  if (read.rich) {
    RichTextBox1_->LoadRtf(std::move(read.rtf));
  } else {
    RichTextBox1_->LoadPlain(read.plain);
  }
  origin_.asLoaded = RichTextBox1_->document().content();
}

void frmText::MarkRecovered(const files::RecoveryEntry& entry) {
  origin_ = Origin::Recovered(entry, path(), RichTextBox1_->document().content());
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
  table_.copies().TakeBack(id());
  asked_ = RichTextBox1_->document().content();
  if (!table_.DocInfo(slot_).Changed) return true;
  asking_ = true;
  if (table_.Active() != this) Activate();
  const QString text = tr("The text in [%1] has changed.\r\nDo you want to save the changes?");
  const ui::Answer answer = services_.dialogs().ShowMessage(
      this, {text.arg(ui::DisplayText(caption())), ui::Buttons::kYesNoCancel, ui::Icon::kExclamation});
  ui::LetPendingEventsRun();
  // Text that an input method delivered during the save is not in the file either.
  if (answer == ui::Answer::kYes && !unloaded_) {
    rescue_ = mnuSaveFile_Click() != SaveOutcome::kSaved || table_.DocInfo(slot_).Changed;
    asked_ = RichTextBox1_->document().content();
    // Of what never had a name or a text there is nothing to be kept.
    if (asked_->size() == text::Units(0) && caption().starts_with(kUntitled)) rescue_ = false;
  }
  asking_ = false;
  if (answer == ui::Answer::kCancel) asked_.reset();
  return answer != ui::Answer::kCancel;
}

bool frmText::IsAsAsked() const {
  return !asked_ || RichTextBox1_->document().content().SameAs(*asked_);
}

bool frmText::Unload() {
  if (unloaded_) return true;
  if (!IsAsAsked() && !QueryUnload()) return false;
  if (rescue_ && !WriteRecovery()) {
    rescue_ = false;
    return false;
  }
  ui::LetPendingEventsRun();
  if (!IsAsAsked()) return Unload();
  if (unloaded_) return true;
  unloaded_ = true;
  origin_.ForgetRecovered(path(), false);
  const bool shown = isShown();
  const int state = static_cast<int>(windowState());
  TakeDown();
  const int slot = slot_;
  const ui::FormId form = id();
  table_.Release(slot);
  if (!table_.AnyDocumentOpen()) {
    services_.ToolbarToggle(false);
    services_.ShowSelectionFont({});
  }
  if (shown) table_.LastDocWindowState = state;
  table_.copies().Closed(form);
  return true;
}

std::optional<files::Error> frmText::Work(const QString& text, int64_t total,
                                          const std::function<void(ui::WorkPort&)>& work) {
  try {
    services_.dialogs().RunWork(this, text.arg(ui::DisplayText(caption())), total, work);
  } catch (const std::bad_alloc&) {
    return files::SystemError(ENOMEM, path());
  }
  return std::nullopt;
}

RescuedText frmText::TextToRescue() const {
  // Objects that a plain file cannot hold are kept here all the same.
  const bool rich = !SavesAsPlain() || HoldsObjects(RichTextBox1_->document().content());
  text::TextProperties properties = RichTextBox1_->document().properties();
  const text::Content content = RichTextBox1_->document().content();
  if (!rich && text::FirstUnencodable(content, properties.encoding)) properties = {};
  return {path(), services::ToLine({rich, origin_.stamp}), BytesToSave(content, properties, !rich)};
}

bool frmText::WriteRecovery() {
  const RescuedText rescued = TextToRescue();
  std::optional<files::Error> error, failure;
  failure = Work(tr("Saving %1"), rescued.bytes.content.sums().bytes.value(), [&](ui::WorkPort& port) {
    const auto written =
        RescueDocument(services_.recoveryFolder(), rescued, [&port](int64_t done) { return port.Report(done); });
    if (!written) error = written.error();
  });
  if (failure) error = failure;
  if (error && error->systemError != ECANCELED)
    services::ShowError(services_.dialogs(), this, services::ErrorText(caption(), *error));
  return !error;
}

std::optional<files::Error> frmText::KeepText() {
  if (unloaded_) return std::nullopt;
  table_.copies().TakeBack(id(), true);
  const text::Content content = RichTextBox1_->document().content();
  const bool nothingTyped = content.size() == text::Units(0) && caption().starts_with(kUntitled);
  const bool changed = table_.DocInfo(slot_).Changed && !nothingTyped;
  if (!changed) {
    // Kept before, and since then undone.
    if (origin_.kept) origin_.ForgetRecovered(path(), false);
  } else if (!origin_.kept || !content.SameAs(*origin_.kept)) {
    const auto written = RescueDocument(services_.recoveryFolder(), TextToRescue());
    if (!written) return written.error();
    origin_.ForgetRecovered(path(), false);
    origin_.recovered.push_back(written.value());
    origin_.kept = content;
  }
  // A plain file has none of its objects, but the recovery folder has.
  if (!nothingTyped && (changed || KeepsObjects())) table_.copies().SavedIn(id(), content);
  return std::nullopt;
}

}  // namespace documents
