#include "documents/ObjectCopies.h"

#include "documents/DocumentTable.h"
#include "documents/EmbeddedFile.h"
#include "documents/frmText.h"
#include "services/Messages.h"
#include "text/rtfsyntax/RtfPackage.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/ObjectTypes.h"
#include "ui/desktop/Shell.h"

#include <algorithm>
#include <cerrno>
#include <new>

namespace documents {
namespace {

// Programs write a file in several steps.
constexpr int kSettling = 400;  // milliseconds

constexpr const char* kAbout = ".about";

const text::EmbeddedObject* ObjectAt(const text::Content& content, text::Units place) {
  if (place >= content.size()) return nullptr;
  const text::ObjectId id = content.formats()[content.CharFormatAt(place)].object;
  return id == text::ObjectId::kNone ? nullptr : &content.formats()[id];
}

text::ObjectId IdAt(const text::Content& content, text::Units place) {
  return place < content.size() ? content.formats()[content.CharFormatAt(place)].object : text::ObjectId::kNone;
}

}  // namespace

ObjectCopies::ObjectCopies(services::Services& services, DocumentTable& table) : services_(services), table_(table) {
  settling_.setSingleShot(true);
  settling_.setInterval(kSettling);
  const auto changed = [this] { settling_.start(); };
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, changed);
  connect(&watcher_, &QFileSystemWatcher::fileChanged, this, changed);
  connect(&settling_, &QTimer::timeout, this,
          [this] { ui::AfterCommand(this, [this] { services_.forms().Guarded([this] { Look(); }); }); });
}

ObjectCopies::~ObjectCopies() {
  for (const Copy& copy : copies_)
    if (!copy.told && !IsChanged(copy)) copy.folder.Remove();
}

// --- Opening

void ObjectCopies::Open(frmText& document, text::Units place) {
  const ui::CommandScope scope;
  const ui::FormId id = document.id();
  TakeBack(id);
  if (!table_.Find(id)) return;
  const text::Content content = document.RichTextBox1().document().content();
  const text::EmbeddedObject* object = ObjectAt(content, place);
  if (!object || object->kind != text::ObjectKind::kEmbedded) return;
  Copy* copy = CopyOf(id, IdAt(content, place));
  if (!copy || !files::StampOf(copy->path())) {
    std::optional<text::rtf::Package> package;
    services_.dialogs().RunWork(&document, tr("Opening %1").arg(ui::NameInText(object->name)), 0,
                                [&](ui::WorkPort&) { package = text::rtf::ReadPackage(object->rtf.bytes); });
    if (!package) {
      const QString kind = object->name.empty() ? tr("of an unknown kind") : ui::NameInText(object->name);
      return services::ShowError(services_.dialogs(), &document,
                                 tr("This object (%1) is no file that could be opened by itself.").arg(kind));
    }
    copy = MakeCopy(document, place, object->name.empty() ? package->name : object->name, package->bytes);
  }
  if (copy) Launch(document, *copy);
}

ObjectCopies::Copy* ObjectCopies::CopyOf(ui::FormId document, text::ObjectId object) {
  for (Copy& copy : copies_)
    if (copy.document == document && copy.states.back() == object && !copy.told) return &copy;
  return nullptr;
}

ObjectCopies::Copy* ObjectCopies::MakeCopy(frmText& document, text::Units place, const std::string& name,
                                           std::string_view bytes) {
  ui::RichTextBox& editor = document.RichTextBox1();
  const std::string plain = ui::PlainFileName(name);
  auto folder = files::PrivateFolder::Make(root());
  const auto written = folder ? folder.value().Write(plain, bytes, !editor.MayChangeObject(place))
                              : files::Result<files::FileStamp>(folder.error());
  if (!written) {
    if (folder) folder.value().Remove();
    services::ShowError(services_.dialogs(), &document, services::ErrorText(plain, written.error()));
    return nullptr;
  }
  const text::ObjectId object = IdAt(editor.document().content(), place);
  copies_.push_back({document.id(),
                     document.caption(),
                     {object},
                     place,
                     editor.document().revision(),
                     folder.value(),
                     plain,
                     written.value(),
                     written.value()});
  WriteAbout(copies_.back());
  Watch(copies_.back());
  return &copies_.back();
}

bool ObjectCopies::Launch(frmText& document, const Copy& copy) {
  const int result = services_.shell().OpenCopy(copy.path());
  if (result > ui::Shell::kLastFailure) return true;
  const QString text = result == ui::Shell::kAccessDenied
                           ? tr("is a program or a link and is not opened.  A program inside a document may do harm.")
                           : tr("cannot be opened: no application is installed for this type of file.");
  services::ShowError(services_.dialogs(), &document, services::FileText(copy.name, text));
  copy.folder.Remove();
  copies_.remove_if([&](const Copy& each) { return &each == &copy; });
  return false;
}

// --- Watching

// A program may write the file itself or put another one in its place.
void ObjectCopies::Watch(const Copy& copy) {
  const QString folder = QString::fromStdString(copy.folder.path().native());
  const QString file = QString::fromStdString(copy.path().native());
  if (!watcher_.directories().contains(folder)) watcher_.addPath(folder);
  if (!watcher_.files().contains(file) && files::StampOf(copy.path())) watcher_.addPath(file);
}

bool ObjectCopies::IsChanged(const Copy& copy) const {
  const auto now = files::StampOf(copy.path());
  return now && *now != copy.taken;
}

void ObjectCopies::Look() {
  const ui::CommandScope scope;
  for (Copy& copy : copies_) {
    Watch(copy);
    const auto now = files::StampOf(copy.path());
    if (!now || *now == copy.taken) continue;
    if (*now == copy.seen) {
      TakeBack(copy, false);
    } else {
      copy.seen = *now;
      settling_.start();
    }
  }
}

// --- Taking back

void ObjectCopies::TakeBack(ui::FormId document, bool quietly) {
  const ui::CommandScope scope;
  for (Copy& copy : copies_)
    if (copy.document == document && IsChanged(copy)) TakeBack(copy, quietly);
}

void ObjectCopies::TakeBack(Copy& copy, bool quietly) {
  const QString reason = TakeIn(copy, quietly);
  if (reason.isEmpty()) {
    copy.told = false;
    WriteAbout(copy);
  } else if (!quietly) {
    TellKept(copy, reason);
  }
}

QString ObjectCopies::TakeIn(Copy& copy, bool quietly) {
  frmText* document = table_.Find(copy.document);
  if (!document) return tr("the document has been closed.");
  copy.caption = document->caption();
  auto place = PlaceOf(copy, *document);
  if (!place) return tr("the object is no longer in the document.");
  if (!document->RichTextBox1().MayChangeObject(*place)) return tr("the object is protected there.");
  const text::EmbeddedObject object = *ObjectAt(document->RichTextBox1().document().content(), *place);
  const text::EmbeddedObject card = ui::FileCard(object.name);
  files::FileStamp stamp;
  files::Result<std::string> bytes{std::string()};
  std::string rtf;
  const auto work = [&] {
    try {
      bytes = ReadEmbeddable(copy.path(), &stamp);
      const auto before = bytes ? text::rtf::ReadPackage(object.rtf.bytes) : std::nullopt;
      if (bytes && !(before && before->bytes == bytes.value())) rtf = ObjectRtf(object.name, bytes.value(), card);
    } catch (const std::bad_alloc&) {
      bytes = files::SystemError(ENOMEM, copy.path());
    }
  };
  if (quietly) {
    work();
  } else {
    services_.dialogs().RunWork(document, tr("Taking back %1").arg(ui::NameInText(copy.name)), 0,
                                [&](ui::WorkPort&) { work(); });
  }
  if (!bytes) return QString::fromStdString(bytes.error().text);
  document = table_.Find(copy.document);
  place = document ? PlaceOf(copy, *document) : std::nullopt;
  if (!place) return tr("the object is no longer in the document.");
  copy.taken = copy.seen = stamp;
  if (rtf.empty()) return {};
  if (!document->RichTextBox1().ReplaceObject(*place, rtf)) return tr("the object is protected there.");
  copy.states.push_back(IdAt(document->RichTextBox1().document().content(), *place));
  return {};
}

// Where it was, followed through the edits; else wherever it is now, the last state of it first. Undo brings earlier
// ones back.
std::optional<text::Units> ObjectCopies::PlaceOf(Copy& copy, const frmText& window) const {
  const text::Document& document = const_cast<frmText&>(window).RichTextBox1().document();
  const text::Content& content = document.content();
  const auto isState = [&copy](text::ObjectId id) { return std::ranges::count(copy.states, id) > 0; };
  if (const auto changes = document.ChangesSince(copy.revision)) {
    for (const text::Change& change : *changes) copy.place = text::MapPosition(copy.place, change, text::Bias::kLeft);
    copy.revision = document.revision();
    if (isState(IdAt(content, copy.place))) return copy.place;
  }
  std::optional<text::Units> found;
  text::Units at(0);
  content.ForEachPiece(content.all(), [&](const text::PieceView& piece) {
    const text::ObjectId id = content.formats()[piece.charFormat].object;
    const bool last = id == copy.states.back();
    if (last || (!found && isState(id))) found = at;
    at = at + piece.sums.units;
    return !last;
  });
  if (found) copy.place = *found, copy.revision = document.revision();
  return found;
}

// --- What could not be taken back

void ObjectCopies::TellKept(Copy& copy, const QString& reason) {
  const auto now = files::StampOf(copy.path());
  if (now) copy.taken = copy.seen = *now;  // told once for each change
  copy.told = true;
  std::error_code ignored;
  std::filesystem::remove(copy.folder.path() / kAbout, ignored);
  const QString text =
      tr("The changes to [%1] could not be taken back into [%2]:\r\n%3\r\n\r\nThe changed file is kept here:\r\n%4");
  frmText* document = table_.Find(copy.document);
  services::ShowError(services_.dialogs(), document ? static_cast<ui::Form*>(document) : services_.forms().at(0),
                      text.arg(ui::NameInText(copy.name), ui::DisplayText(copy.caption), reason,
                               ui::DisplayText(copy.path().native())));
}

// For the next start, when this program is killed: the state of the copy whose bytes the document has got, and names.
void ObjectCopies::WriteAbout(const Copy& copy) const {
  const std::string about = std::to_string(copy.taken.size) + " " + std::to_string(copy.taken.modifiedSeconds) + " " +
                            std::to_string(copy.taken.modifiedNanoseconds) + "\n" + copy.name;
  // Without it the copy is kept rather than cleared away.
  static_cast<void>(copy.folder.Replace(kAbout, about));
}

void ObjectCopies::SweepLeftovers() {
  const ui::CommandScope scope;
  QStringList kept;
  for (const files::PrivateFolder& folder : files::PrivateFolder::Abandoned(root())) {
    const files::Path about = folder.path() / kAbout;
    auto file = files::OpenForReading(about);
    const auto read = file ? files::ReadAll(file.value(), 4096) : files::Result<std::string>(file.error());
    if (!read) continue;  // told of already
    const std::string& line = read.value();
    const files::Path path = folder.path() / ui::PlainFileName(line.substr(line.find('\n') + 1));
    const auto now = files::StampOf(path);
    const std::string stamp = now ? std::to_string(now->size) + " " + std::to_string(now->modifiedSeconds) + " " +
                                        std::to_string(now->modifiedNanoseconds)
                                  : std::string();
    if (!now || line.substr(0, line.find('\n')) == stamp) {
      folder.Remove();
    } else {
      kept += ui::DisplayText(path.native());
      std::error_code ignored;
      std::filesystem::remove(about, ignored);
    }
  }
  if (kept.isEmpty()) return;
  services::ShowError(
      services_.dialogs(), services_.forms().at(0),
      tr("The program ended while files out of documents were being edited.  What was changed in them since is not in "
         "the documents.  These files are kept:\r\n%1")
          .arg(kept.join(QStringLiteral("\r\n"))));
}

}  // namespace documents
