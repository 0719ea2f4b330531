#include "documents/objects/ObjectCopies.h"

#include "documents/DocumentTable.h"
#include "documents/frmText.h"
#include "documents/objects/EmbeddedFile.h"
#include "files/FolderUse.h"
#include "services/Messages.h"
#include "text/ObjectAt.h"
#include "text/rtfsyntax/RtfPackage.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/ObjectTypes.h"
#include "ui/desktop/Shell.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <thread>

namespace documents {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using text::Units;

// Programs write a file in several steps: they empty it, they keep it open. Some keep it open all the time.
constexpr milliseconds kSettling(400), kSettlingWhenOpen(2000), kSettlingWhenEmptied(5000), kPatience(6000),
    kFollowing(2000);

milliseconds AgeOf(const files::FileStamp& stamp) {
  const auto written =
      std::chrono::seconds(stamp.modifiedSeconds) + std::chrono::nanoseconds(stamp.modifiedNanoseconds);
  const auto age = std::chrono::system_clock::now().time_since_epoch() - written;
  return std::max(std::chrono::duration_cast<milliseconds>(age), milliseconds(0));
}

}  // namespace

bool ObjectCopies::Watched::IsChanged() const {
  const auto now = files::StampOf(path);
  return now && *now != taken;
}

bool ObjectCopies::Watched::IsComplete() {
  const auto now = files::StampOf(path);
  if (!now) return true;
  if (*now != seen) seen = *now, since = steady_clock::now();
  const auto unchanged = std::max(AgeOf(*now), std::chrono::duration_cast<milliseconds>(steady_clock::now() - since));
  if (unchanged < (now->size == 0 && taken.size > 0 ? kSettlingWhenEmptied : kSettling)) return false;
  return unchanged >= kSettlingWhenOpen || files::UseOfFolder(folder) != files::FolderUse::kWritten;
}

ObjectCopies::ObjectCopies(services::Services& services, DocumentTable& table) : services_(services), table_(table) {
  settling_.setSingleShot(true);
  settling_.setInterval(kSettling);
  const auto changed = [this] { settling_.start(); };
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, changed);
  connect(&watcher_, &QFileSystemWatcher::fileChanged, this, changed);
  following_.setInterval(kFollowing);
  connect(&following_, &QTimer::timeout, this, [this] { services_.forms().Guarded([this] { FollowAll(); }); });
  connect(&settling_, &QTimer::timeout, this,
          [this] { ui::AfterCommand(this, [this] { services_.forms().Guarded([this] { Look(); }); }); });
}

// --- Opening

void ObjectCopies::Open(frmText& document, Units place) {
  const ui::CommandScope scope;
  const ui::FormId id = document.id();
  TakeBack(id);
  if (!table_.Find(id)) return;
  bool fresh = false;
  const bool readOnly = !document.RichTextBox1().MayChangeObject(place);
  Copy* const copy = CopyForOpening(document, place, fresh);
  if (!copy) return;
  copy->folder.SetReadOnly(copy->name, readOnly);
  Launch(document, *copy, fresh);
}

ObjectCopies::Copy* ObjectCopies::CopyForOpening(frmText& document, Units place, bool& fresh) {
  const text::Content content = document.RichTextBox1().document().content();
  const text::EmbeddedObject* object = text::EmbeddedAt(content, place);
  if (!object) return nullptr;
  const text::ObjectId state = text::ObjectIdAt(content, place);
  Copy* copy = CopyOf(document, place);
  // What an application has changed and what cannot be taken back yet is the object's newest state.
  if (copy && (copy->states.back() == state || copy->file.IsChanged())) return copy;
  std::optional<text::rtf::Package> package;
  services_.dialogs().RunWork(&document, tr("Opening %1").arg(ui::NameInText(object->name)), 0,
                              [&](ui::WorkPort&) { package = text::rtf::ReadPackage(object->rtf.bytes); });
  if (!package) {
    const QString kind = object->name.empty() ? tr("of an unknown kind") : ui::NameInText(object->name);
    services::ShowError(services_.dialogs(), &document,
                        tr("This object (%1) is no file that could be opened by itself.").arg(kind));
    return nullptr;
  }
  if (copy) return BringUpTo(document, *copy, state, package->bytes) ? copy : nullptr;
  fresh = true;
  return MakeCopy(document, place, object->name.empty() ? package->name : object->name, package->bytes);
}

// The same object may stand at several places; what counts is where this one is.
ObjectCopies::Copy* ObjectCopies::CopyOf(frmText& document, Units place) {
  for (Copy& copy : copies_)
    if (!copy.gone && !copy.told && copy.document == document.id() && PlaceOf(copy, document) == place &&
        files::StampOf(copy.path()))
      return &copy;
  return nullptr;
}

ObjectCopies::Copy* ObjectCopies::MakeCopy(frmText& document, Units place, const std::string& name,
                                           std::string_view bytes) {
  ui::RichTextBox& editor = document.RichTextBox1();
  const std::string plain = ui::PlainFileName(name);
  const auto fail = [&](const files::Error& error) -> Copy* {
    services::ShowError(services_.dialogs(), &document, services::ErrorText(plain, error));
    return nullptr;
  };
  auto folder = files::PrivateFolder::Make(root());
  if (!folder) return fail(folder.error());
  Copy made{.document = document.id(),
            .caption = document.caption(),
            .states = {text::ObjectIdAt(editor.document().content(), place)},
            .place = place,
            .revision = editor.document().revision(),
            .alone = true,
            .folder = folder.value(),
            .name = plain,
            .file = {folder.value().path(), folder.value().path() / plain, {}, {}, {}},
            .safe = {},
            .program = {}};
  made.alone = PlacesOf(made, editor.document()).size() <= 1;
  // First of all, so that whatever is in the folder is told of when this program is killed.
  if (const auto about = WriteAbout(made); !about) {
    folder.value().RemoveWith({});
    return fail(about.error());
  }
  const auto written = folder.value().Write(plain, bytes, !editor.MayChangeObject(place));
  if (!written) {
    QStringList none;
    Remove(made, none);
    return fail(written.error());
  }
  made.file.taken = made.file.seen = written.value();
  copies_.push_back(std::move(made));
  following_.start();
  if (!table_.DocInfo(document.slot()).Changed && document.KeepsObjects()) MarkSafe(copies_.back());
  Watch(copies_.back());
  return &copies_.back();
}

// The document has gone back to an earlier state, or on to a later one again.
bool ObjectCopies::BringUpTo(frmText& document, Copy& copy, text::ObjectId state, std::string_view bytes) {
  // Saved while the bytes were being made: that is the newest state.
  if (copy.file.IsChanged()) return true;
  copy.folder.SetReadOnly(copy.name, false);  // for the writing
  const auto written = copy.folder.Overwrite(copy.name, bytes);
  if (written || copy.file.IsChanged()) {
    copy.file.taken = copy.file.seen = files::StampOf(copy.path()).value_or(copy.file.taken);
    copy.states.push_back(written ? state : text::ObjectId::kNone);
    // What a failure left is no state of the object, and nobody's work.
    if (!written) MarkSafe(copy);
  }
  static_cast<void>(WriteAbout(copy));
  if (written) return true;
  services::ShowError(services_.dialogs(), &document, services::ErrorText(copy.name, written.error()));
  return false;
}

void ObjectCopies::Launch(frmText& document, Copy& copy, bool fresh) {
  const int result = services_.shell().OpenCopy(copy.path(), copy.program);
  if (result > ui::Shell::kLastFailure) {
    static_cast<void>(WriteAbout(copy));
    return;
  }
  const QString text = result == ui::Shell::kAccessDenied
                           ? tr("is a program or a link and is not opened.  A program inside a document may do harm.")
                           : tr("cannot be opened: no application is installed for this type of file.");
  const QString message = services::FileText(copy.name, text);
  // Nobody has seen one that was made just now.
  QStringList none;
  if (fresh) Remove(copy, none), Drop(copy);
  services::ShowError(services_.dialogs(), &document, message);
}

// --- Watching

// A program may write the file itself or put another one in its place.
void ObjectCopies::Watch(const Copy& copy) {
  const QString folder = QString::fromStdString(copy.folder.path().native());
  const QString file = QString::fromStdString(copy.path().native());
  if (!watcher_.directories().contains(folder)) watcher_.addPath(folder);
  if (!watcher_.files().contains(file) && files::StampOf(copy.path())) watcher_.addPath(file);
}

void ObjectCopies::Look() {
  const ui::CommandScope scope;
  for (Copy& copy : copies_) {
    if (copy.gone) continue;
    Watch(copy);
    if (!copy.file.IsChanged()) continue;
    if (copy.file.IsComplete()) {
      TakeBack(copy, false);
    } else {
      settling_.start();
    }
  }
}

// --- Where an object is

// Where it was, through the edits since.
std::optional<Units> ObjectCopies::Followed(Copy& copy, const text::Document& document) const {
  if (!copy.place) return std::nullopt;
  const auto changes = document.ChangesSince(copy.revision);
  if (!changes) return std::nullopt;
  for (const text::Change& change : *changes) {
    const bool removed =
        !change.formatOnly && copy.place >= change.position && copy.place < change.position + change.removed;
    // An object that takes the place of another one alone is its next or its earlier state.
    const bool exchanged = change.removed == Units(1) && change.inserted == Units(1);
    if (removed && !exchanged) copy.place.reset();
    if (!copy.place) break;
    if (!removed) copy.place = text::MapPosition(*copy.place, change, text::Bias::kRight);
  }
  copy.revision = document.revision();
  if (!copy.place) return std::nullopt;
  const bool still = std::ranges::count(copy.states, text::ObjectIdAt(document.content(), *copy.place)) > 0;
  return still && text::EmbeddedAt(document.content(), *copy.place) ? copy.place : std::nullopt;
}

// All places where any of its states is, but for those of other copies.
std::vector<Units> ObjectCopies::PlacesOf(const Copy& copy, const text::Document& document) {
  std::vector<Units> others, places;
  for (Copy& other : copies_)
    if (&other != &copy && !other.gone && other.document == copy.document)
      if (const auto place = Followed(other, document)) others.push_back(*place);
  const text::Content& content = document.content();
  Units at(0);
  content.ForEachPiece(content.all(), [&](const text::PieceView& piece) {
    const Units end = at + piece.sums.units;
    const text::ObjectId id = content.formats()[piece.charFormat].object;
    const bool state = id != text::ObjectId::kNone && std::ranges::count(copy.states, id) > 0;
    for (; state && at < end; at = at + Units(1))
      if (std::ranges::count(others, at) == 0) places.push_back(at);
    at = end;
    return true;
  });
  return places;
}

// Followed; else, when it was cut and put in elsewhere, where it is now. Of several equal ones nobody knows which one
// it was.
std::optional<Units> ObjectCopies::PlaceOf(Copy& copy, frmText& window) {
  const text::Document& document = window.RichTextBox1().document();
  if (const auto place = Followed(copy, document)) return place;
  if (!copy.alone) return std::nullopt;
  const std::vector<Units> places = PlacesOf(copy, document);
  if (places.size() != 1) return std::nullopt;
  copy.place = places.front(), copy.revision = document.revision();
  return copy.place;
}

// A document knows its last changes only.
void ObjectCopies::FollowAll() {
  for (Copy& copy : copies_)
    if (frmText* const document = copy.gone ? nullptr : table_.Find(copy.document))
      static_cast<void>(Followed(copy, document->RichTextBox1().document()));
}

// --- Taking back

namespace {

// What the file of a copy holds.
struct NewState {
  files::Status read;
  files::FileStamp stamp;
  std::string rtf;  // empty: the object as it is
};

NewState ReadNewState(const files::Path& path, const text::EmbeddedObject& object, const std::string& name,
                      const text::EmbeddedObject& card) {
  NewState state;
  try {
    const auto bytes = ReadEmbeddable(path, &state.stamp);
    const auto before = bytes ? text::rtf::ReadPackage(object.rtf.bytes) : std::nullopt;
    if (!bytes) {
      state.read = bytes.error();
    } else if (!before || before->bytes != bytes.value()) {
      state.rtf = ObjectRtf(name, bytes.value(), card, &object);
    }
  } catch (const std::bad_alloc&) {
    state.read = files::SystemError(ENOMEM, path);
  }
  return state;
}

}  // namespace

void ObjectCopies::TakeBack(ui::FormId document, bool quietly) {
  const ui::CommandScope scope;
  if (!quietly) WaitForWriters(document);
  for (Copy& copy : copies_)
    if (!copy.gone && copy.document == document && copy.file.IsChanged()) {
      if (copy.file.IsComplete()) {
        TakeBack(copy, quietly);
      } else {
        settling_.start();
      }
    }
}

void ObjectCopies::WaitForWriters(ui::FormId id) {
  frmText* const document = table_.Find(id);
  std::vector<std::pair<Copy*, Watched>> writing;
  for (Copy& copy : copies_)
    if (!copy.gone && copy.document == id && copy.file.IsChanged() && !copy.file.IsComplete())
      writing.emplace_back(&copy, copy.file);
  if (!document || writing.empty()) return;
  const auto wait = [&](ui::WorkPort& port) {
    constexpr milliseconds kStep(50);
    const auto end = steady_clock::now() + kPatience;
    for (auto& [copy, file] : writing)
      while (!file.IsComplete() && port.Report(0) && steady_clock::now() < end) std::this_thread::sleep_for(kStep);
  };
  const QString name = ui::NameInText(writing.front().first->name);
  services_.dialogs().RunWork(document, tr("Waiting for %1 to be written").arg(name), 0, wait);
  for (auto& [copy, file] : writing) copy->file = file;
}

void ObjectCopies::TakeBack(Copy& copy, bool quietly) {
  const std::optional<QString> reason = TakeIn(copy, quietly);
  if (!reason) return;
  if (!reason->isEmpty()) {
    if (!quietly) TellKept(copy, *reason);
  } else if (std::exchange(copy.told, false)) {
    static_cast<void>(WriteAbout(copy));
  }
}

QString ObjectCopies::WhyNoPlace(const Copy& copy, frmText& document) {
  return PlacesOf(copy, document.RichTextBox1().document()).empty()
             ? tr("the object is no longer in the document.")
             : tr("whether the object is still in the document is not known: others there are equal to it.");
}

std::optional<QString> ObjectCopies::TakeIn(Copy& copy, bool quietly) {
  frmText* document = table_.Find(copy.document);
  if (!document) return tr("the document has been closed.");
  copy.caption = document->caption();
  auto place = PlaceOf(copy, *document);
  if (!place) return WhyNoPlace(copy, *document);
  if (!document->RichTextBox1().MayChangeObject(*place)) return tr("the object is protected there.");
  const text::EmbeddedObject object = *text::ObjectAt(document->RichTextBox1().document().content(), *place);
  // Some have their name in their data alone.
  const std::string name = object.name.empty() ? copy.name : object.name;
  const text::EmbeddedObject card = ui::FileCard(name);
  NewState state;
  const auto work = [&] { state = ReadNewState(copy.path(), object, name, card); };
  if (quietly) {
    work();
  } else {
    services_.dialogs().RunWork(document, tr("Taking back %1").arg(ui::NameInText(copy.name)), 0,
                                [&](ui::WorkPort&) { work(); });
  }
  if (!state.read) return QString::fromStdString(state.read.error().text);
  // Written again in the meantime: the watcher looks once more.
  if (files::StampOf(copy.path()) != state.stamp) return settling_.start(), std::nullopt;
  document = table_.Find(copy.document);
  if (!document) return tr("the document has been closed.");
  place = PlaceOf(copy, *document);
  if (!place) return WhyNoPlace(copy, *document);
  const bool same = state.rtf.empty();
  if (!same && !document->RichTextBox1().ReplaceObject(*place, state.rtf)) return tr("the object is protected there.");
  const bool wasSafe = copy.safe == copy.file.taken;
  copy.file.taken = copy.file.seen = state.stamp;
  const text::Document& edited = document->RichTextBox1().document();
  const text::ObjectId held = text::ObjectIdAt(edited.content(), *place);
  if (same && held == copy.states.back()) {
    if (wasSafe) MarkSafe(copy);
    return QString();
  }
  copy.states.push_back(held);
  copy.alone = PlacesOf(copy, edited).size() <= 1;
  return QString();
}

}  // namespace documents
