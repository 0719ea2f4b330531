// Copies of embedded files that applications have open, and how what was changed in them comes back.
//
// Nothing of the user's work is ever deleted: a folder goes only when it holds nothing but a copy whose bytes are safe
// (in the saved document or in a kept one, or given up by the user with the document) and when no application has to do
// with it any more, as far as one can know. Otherwise it stays, and the user is told where; at the next start, if not
// before.
#pragma once

#include "files/PrivateFolder.h"
#include "services/Services.h"
#include "text/Document.h"

#include <QFileSystemWatcher>
#include <QTimer>

#include <chrono>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace documents {

class DocumentTable;
class frmText;

class ObjectCopies : public QObject {
  Q_OBJECT

 public:
  ObjectCopies(services::Services& services, DocumentTable& table);
  ~ObjectCopies() override;

  // The user's act: opens a copy of the object in the default application of its type, and says why when it cannot.
  void Open(frmText& document, text::Units place);
  // Takes back what was changed in copies of that document until now. Applications that are just writing are given some
  // seconds; what is not complete then comes back later. `quietly`: at once and without a message.
  void TakeBack(ui::FormId document, bool quietly = false);

  // That text of the document is in its file, or in the recovery folder.
  void SavedIn(ui::FormId document, const text::Content& written);
  // The document has been closed, and what was not saved given up. Copies that nobody has open go.
  void Closed(ui::FormId document);
  // All documents have been closed: tells of files that others may still have open.
  void TellAtEnd();
  // Clears what an earlier run has left, and tells of changes among it.
  void SweepLeftovers();

 private:
  // The file of a copy. Any thread may look at one.
  struct Watched {
    files::Path folder, path;
    files::FileStamp taken;                            // of the file whose bytes are in the document
    files::FileStamp seen;                             // when it was looked at last,
    std::chrono::steady_clock::time_point since = {};  // and so since then
    bool IsChanged() const;
    bool IsComplete();  // a changed file: nobody is in the middle of writing it
  };
  struct Copy {
    ui::FormId document;
    std::string caption;                 // of the document
    std::vector<text::ObjectId> states;  // of the object in it, the last one is what the copy holds;
                                         // kNone: an unfinished writing
    std::optional<text::Units> place;    // where it was last; nothing when it was deleted there,
    text::Revision revision;             // at that revision,
    bool alone;                          // and whether no other object there was the same
    files::PrivateFolder folder;
    std::string name;
    Watched file;
    std::optional<files::FileStamp> safe;  // of the file whose bytes would not be missed
    std::string program;                   // of the application
    bool told = false;                     // that it cannot be taken back, and where it is; it is the user's now
    bool gone = false;
    files::Path path() const { return folder.path() / name; }
  };
  class Remains;

  // ObjectCopies.cpp
  Copy* CopyForOpening(frmText& document, text::Units place, bool& fresh);
  Copy* CopyOf(frmText& document, text::Units place);
  Copy* MakeCopy(frmText& document, text::Units place, const std::string& name, std::string_view bytes);
  bool BringUpTo(frmText& document, Copy& copy, text::ObjectId state, std::string_view bytes);
  void Launch(frmText& document, Copy& copy, bool fresh);
  void Watch(const Copy& copy);
  void Look();
  std::optional<text::Units> Followed(Copy& copy, const text::Document& document) const;
  std::vector<text::Units> PlacesOf(const Copy& copy, const text::Document& document);
  std::optional<text::Units> PlaceOf(Copy& copy, frmText& document);
  void FollowAll();
  void WaitForWriters(ui::FormId document);
  void TakeBack(Copy& copy, bool quietly);
  QString WhyNoPlace(const Copy& copy, frmText& document);
  std::optional<QString> TakeIn(Copy& copy, bool quietly);  // why not; empty: done; nothing: not yet

  // ObjectCopiesKept.cpp
  void MarkSafe(Copy& copy);
  bool IsNeeded(const Copy& copy) const;  // by the user or by an application
  void Remove(const Copy& copy, QStringList& others) const;
  void Drop(Copy& copy);
  void Discard(Copy& copy);
  void TellKept(Copy& copy, const QString& reason);
  files::Status WriteAbout(const Copy& copy) const;
  void ShowFiles(const QString& text, const QStringList& files);
  files::Path root() const { return services_.recoveryFolder().parent_path() / "objects"; }

  services::Services& services_;
  DocumentTable& table_;
  std::list<Copy> copies_;
  QFileSystemWatcher watcher_;
  QTimer settling_, following_;
};

}  // namespace documents
