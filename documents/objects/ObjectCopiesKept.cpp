// Which copies may go, and what the user is told of the others.
#include "documents/DocumentTable.h"
#include "documents/frmText.h"
#include "documents/objects/ObjectCopies.h"
#include "files/FolderUse.h"
#include "services/Messages.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/ObjectTypes.h"

#include <algorithm>

namespace documents {
namespace {

constexpr const char* kAbout = ".about";
constexpr std::string_view kNoStamp = "-";

std::string StampLine(const std::optional<files::FileStamp>& stamp) {
  if (!stamp) return std::string(kNoStamp);
  return std::to_string(stamp->size) + " " + std::to_string(stamp->modifiedSeconds) + " " +
         std::to_string(stamp->modifiedNanoseconds);
}

std::string TakeLine(std::string& text) {
  const size_t end = std::min(text.find('\n'), text.size());
  std::string line = text.substr(0, end);
  text.erase(0, end + 1);
  return line;
}

// What is in a folder without being anybody's work: the copy, what is told of it, the locks of office programs (a few
// words about the user) and the state before the last saving, which some editors keep.
std::vector<files::Path> NamesBeside(const std::string& name) {
  return {name, kAbout, ".~lock." + name + "#", name + "~"};
}

QStringList Shown(const std::vector<files::Path>& paths) {
  QStringList shown;
  for (const files::Path& path : paths) shown += ui::DisplayText(path.native());
  return shown;
}

bool Holds(const text::Content& content, text::ObjectId object) {
  if (object == text::ObjectId::kNone) return false;
  bool found = false;
  content.ForEachPiece(content.all(), [&](const text::PieceView& piece) {
    found = content.formats()[piece.charFormat].object == object;
    return !found;
  });
  return found;
}

}  // namespace

// What is known of a copy beside it, for the next start.
class ObjectCopies::Remains {
 public:
  explicit Remains(files::PrivateFolder folder) : folder_(std::move(folder)) {
    auto file = files::OpenForReading(folder_.path() / kAbout);
    auto read = file ? files::ReadAll(file.value(), 4096) : files::Result<std::string>(file.error());
    if (!read) return;
    std::string about = std::move(read.value());
    safe_ = TakeLine(about);
    name_ = ui::PlainFileName(TakeLine(about));
    boot_ = TakeLine(about);
    program_ = about;
  }
  bool known() const { return !name_.empty(); }
  const files::PrivateFolder& folder() const { return folder_; }
  files::Path path() const { return folder_.path() / name_; }
  bool isSafe() const {
    const auto now = files::StampOf(path());
    return !now || safe_ == StampLine(now);
  }
  bool isUsed() const {
    return boot_ == files::BootId() && files::UseOfFolder(folder_.path(), program_) != files::FolderUse::kNone;
  }
  std::vector<files::Path> Remove() const { return folder_.RemoveWith(NamesBeside(name_)); }

 private:
  files::PrivateFolder folder_;
  std::string safe_, name_, boot_, program_;
};

// Whoever ended the program without a question is told at the next start.
ObjectCopies::~ObjectCopies() {
  QStringList others;
  for (Copy& copy : copies_)
    if (!copy.gone && !copy.told && !IsNeeded(copy)) Remove(copy, others);
}

// --- What is safe

files::Status ObjectCopies::WriteAbout(const Copy& copy) const {
  const std::string about = StampLine(copy.safe) + "\n" + copy.name + "\n" + files::BootId() + "\n" + copy.program;
  const auto written = copy.folder.Replace(kAbout, about);
  return written ? files::Status() : files::Status(written.error());
}

// When it cannot be written, the copy is kept rather than cleared away.
void ObjectCopies::MarkSafe(Copy& copy) {
  if (copy.told || copy.safe == copy.file.taken) return;
  copy.safe = copy.file.taken;
  static_cast<void>(WriteAbout(copy));
}

// What was taken back and has gone out of the text again is in the file no more.
void ObjectCopies::SavedIn(ui::FormId document, const text::Content& written) {
  for (Copy& copy : copies_) {
    const bool unfinished = copy.states.back() == text::ObjectId::kNone;  // and so safe
    if (copy.gone || copy.told || unfinished || copy.document != document) continue;
    if (Holds(written, copy.states.back())) {
      MarkSafe(copy);
    } else if (copy.states.size() > 1 && copy.safe) {
      copy.safe.reset();
      static_cast<void>(WriteAbout(copy));
    }
  }
}

bool ObjectCopies::IsNeeded(const Copy& copy) const {
  const auto now = files::StampOf(copy.path());
  const bool safe = !now || (copy.safe && *now == *copy.safe);
  return !safe || files::UseOfFolder(copy.folder.path(), copy.program) != files::FolderUse::kNone;
}

// Unless the folder holds something else, which is then the user's.
void ObjectCopies::Remove(const Copy& copy, QStringList& others) const {
  others += Shown(copy.folder.RemoveWith(NamesBeside(copy.name)));
}

// The list may be under way.
void ObjectCopies::Drop(Copy& copy) {
  copy.gone = true;
  watcher_.removePaths(
      {QString::fromStdString(copy.folder.path().native()), QString::fromStdString(copy.path().native())});
  ui::AfterCommand(this, [this] {
    copies_.remove_if([](const Copy& each) { return each.gone; });
    if (copies_.empty()) following_.stop();
  });
}

// --- What becomes of it

void ObjectCopies::Closed(ui::FormId document) {
  const ui::CommandScope scope;
  for (Copy& copy : copies_) {
    if (copy.gone || copy.document != document) continue;
    MarkSafe(copy);
    if (!copy.told && !IsNeeded(copy)) Discard(copy);
  }
}

void ObjectCopies::Discard(Copy& copy) {
  QStringList others;
  Remove(copy, others);
  Drop(copy);
  if (others.isEmpty()) return;
  copy.folder.Forget(kAbout);
  ShowFiles(tr("Beside [%1] out of [%2] other files have been saved.  They are kept here:")
                .arg(ui::NameInText(copy.name), ui::DisplayText(copy.caption)),
            others);
}

void ObjectCopies::TellAtEnd() {
  const ui::CommandScope scope;
  QStringList open;
  for (Copy& copy : copies_) {
    if (copy.gone || (copy.told && !copy.file.IsChanged())) continue;
    if (copy.file.IsChanged()) {
      TakeBack(copy, false);
    } else if (!IsNeeded(copy)) {
      Discard(copy);
    } else {
      open += ui::DisplayText(copy.path().native());
    }
  }
  ShowFiles(tr("These files out of documents may still be open in other programs.  What is saved in them from now on "
               "does not come into the documents, but stays here:"),
            open);
}

void ObjectCopies::TellKept(Copy& copy, const QString& reason) {
  // Told once for each change.
  if (const auto now = files::StampOf(copy.path())) copy.file.taken = copy.file.seen = *now;
  copy.told = true;
  copy.safe.reset();
  copy.folder.Forget(kAbout);
  const QString text =
      tr("The changes to [%1] could not be taken back into [%2]:\r\n%3\r\n\r\nThe changed file is kept here:\r\n%4");
  frmText* document = table_.Find(copy.document);
  services::ShowError(services_.dialogs(), document ? static_cast<ui::Form*>(document) : services_.forms().at(0),
                      text.arg(ui::NameInText(copy.name), ui::DisplayText(copy.caption), reason,
                               ui::DisplayText(copy.path().native())));
}

// A folder without a word about it was told of already.
void ObjectCopies::SweepLeftovers() {
  const ui::CommandScope scope;
  QStringList kept, open;
  for (files::PrivateFolder& folder : files::PrivateFolder::Abandoned(root())) {
    const Remains remains(std::move(folder));
    if (!remains.known()) {
      static_cast<void>(remains.folder().RemoveWith({}));
      continue;
    }
    QStringList left;
    if (!remains.isSafe()) {
      left += ui::DisplayText(remains.path().native());
    } else if (remains.isUsed()) {
      open += ui::DisplayText(remains.path().native());
      continue;
    } else {
      left = Shown(remains.Remove());
    }
    if (!left.isEmpty()) remains.folder().Forget(kAbout);
    kept += left;
  }
  ShowFiles(tr("The program ended while files out of documents were being edited.  What was changed in them since is "
               "not in the documents.  These files are kept:"),
            kept);
  ShowFiles(tr("These files out of documents may still be open in other programs.  What is saved in them does not come "
               "into the documents, but stays here:"),
            open);
}

void ObjectCopies::ShowFiles(const QString& text, const QStringList& files) {
  if (files.isEmpty()) return;
  services::ShowError(services_.dialogs(), services_.forms().at(0),
                      text + QStringLiteral("\r\n") + files.join(QStringLiteral("\r\n")));
}

}  // namespace documents
