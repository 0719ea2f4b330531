#include "documents/DocumentTable.h"

#include "documents/DocumentReader.h"
#include "documents/frmText.h"
#include "documents/objects/ObjectCopies.h"
#include "services/Messages.h"
#include "services/RecoveryKind.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/frame/ChildArea.h"

#include <QCoreApplication>

namespace documents {

DocumentTable::DocumentTable(services::Services& services)
    : services_(services), Documents_(1), DocInfo_(1), copies_(std::make_unique<ObjectCopies>(services, *this)) {}

DocumentTable::~DocumentTable() {
  Documents_.clear();
  // Windows that were closed a moment ago still refer to the forms of the main window.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

int DocumentTable::GetFreeDocIndex() {
  for (int slot = 1; slot <= UpperBound(); ++slot) {
    if (!DocInfo_[slot].Free) continue;
    DocInfo_[slot].Free = false;
    return slot;
  }
  Documents_.emplace_back();
  DocInfo_.emplace_back();
  return UpperBound();
}

bool DocumentTable::AnyDocumentOpen() const {
  for (int slot = 1; slot <= UpperBound(); ++slot)
    if (!DocInfo_[slot].Free) return true;
  return false;
}

frmText* DocumentTable::Find(ui::FormId form) const {
  for (int slot = 1; slot <= UpperBound(); ++slot)
    if (Documents_[slot] && Documents_[slot]->id() == form) return Documents_[slot].get();
  return nullptr;
}

frmText* DocumentTable::Active() const {
  return Find(services_.documentArea().current());
}

void DocumentTable::Release(int slot) {
  DocInfo_[slot].Free = true;
  DocInfo_[slot].Changed = false;
  // Its own code may still be running, below nested event loops too.
  if (!Documents_[slot]) return;
  QObject* const window = Documents_[slot].get();
  released_.push_back(std::move(Documents_[slot]));
  ui::AfterCommand(window, [this] {
    for (std::unique_ptr<frmText>& gone : released_) gone.release()->deleteLater();
    released_.clear();
  });
}

frmText& DocumentTable::MakeWindow(std::string caption) {
  const int slot = GetFreeDocIndex();
  try {
    Documents_[slot] = std::make_unique<frmText>(services_, *this, slot);
    DocInfo_[slot].Changed = false;
    if (caption.empty()) caption.append(kUntitledNumber).append(std::to_string(slot));
    Documents_[slot]->SetCaption(std::move(caption));
  } catch (...) {
    Documents_[slot].reset();
    Release(slot);
    throw;
  }
  return *Documents_[slot];
}

frmText* DocumentTable::NewDocument() {
  const ui::CommandScope scope;
  frmText& window = MakeWindow({});
  window.SetDefaultFormat();
  window.MyShow();
  services_.InitDocProperties(window.slot());
  window.ForceChanged();
  return &window;
}

ReadDocument DocumentTable::Read(const files::Path& path, bool rich) {
  ReadDocument read;
  const auto stamp = files::StampOf(path);
  const QString text = QCoreApplication::translate("Documents", "Opening %1").arg(ui::DisplayText(path.native()));
  services_.dialogs().RunWork(services_.forms().at(0), text, stamp ? stamp->size : 0, [&](ui::WorkPort& port) {
    read = ReadDocumentFile(path, rich, [&port](int64_t bytes) { return port.Report(bytes); });
  });
  return read;
}

void DocumentTable::LoadIntoWindow(const std::string& path) {
  const ui::CommandScope scope;
  const bool rich = IsRichName(path);
  frmText& window = MakeWindow(path);
  const ui::FormId form = window.id();
  if (!rich) window.SetDefaultFormat();
  services_.InitDocProperties(window.slot());
  services_.ToolbarToggle(true);
  TakeRead(form, Read(files::Path(path), rich));
}

void DocumentTable::TakeRead(ui::FormId form, ReadDocument read) {
  frmText* window = Find(form);
  if (!window) return;
  if (read.cancelled) {
    window->Unload();
    return;
  }
  if (read.error && read.error->number != files::kFileNotFound && read.error->number != files::kPathAccess) {
    services::ShowError(services_.dialogs(), services_.forms().at(0),
                        services::ErrorText(window->caption(), *read.error));
    if ((window = Find(form))) window->Unload();
    return;
  }
  if (!read.error) window->TakeIn(std::move(read));
  ui::LetPendingEventsRun();
  if (!(window = Find(form))) return;
  window->SetUnchanged();
  ui::LetPendingEventsRun();
  if ((window = Find(form))) window->MyShow();
}

bool DocumentTable::OpenRecovered(const files::RecoveryEntry& entry) {
  const ui::CommandScope scope;
  const bool rich =
      entry.kind.empty() ? IsRichName(entry.originalPath.native()) : services::RecoveryKindOf(entry.kind).rich;
  ReadDocument read = Read(entry.text, rich);
  if (read.cancelled) return false;
  if (read.error) {
    services::ShowError(services_.dialogs(), services_.forms().at(0),
                        services::ErrorText(entry.text.native(), *read.error));
    return false;
  }
  // Its old number may be another document's by now.
  const std::string& name = entry.originalPath.native();
  frmText& window = MakeWindow(name.starts_with(kUntitledNumber) ? std::string() : name);
  const ui::FormId form = window.id();
  if (!rich) window.SetDefaultFormat();
  services_.InitDocProperties(window.slot());
  services_.ToolbarToggle(true);
  TakeRead(form, std::move(read));
  frmText* recovered = Find(form);
  if (recovered) recovered->MarkRecovered(entry);
  return recovered != nullptr;
}

}  // namespace documents
