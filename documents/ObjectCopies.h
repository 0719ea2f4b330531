// Copies of embedded files that applications have open, and how what was changed in them comes back.
#pragma once

#include "files/PrivateFolder.h"
#include "services/Services.h"
#include "text/Document.h"

#include <QFileSystemWatcher>
#include <QTimer>

#include <list>
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
  ~ObjectCopies() override;  // unchanged copies go, others are told of at the next start

  // The user's act: opens a copy of the object in the default application of its type, and says why when it cannot.
  void Open(frmText& document, text::Units place);
  // Takes back what was changed in copies of that document until now. `quietly`: at once and without a message.
  void TakeBack(ui::FormId document, bool quietly = false);
  // Clears what programs that were killed have left, and tells of changes among it.
  void SweepLeftovers();

 private:
  struct Copy {
    ui::FormId document;
    std::string caption;                 // of the document
    std::vector<text::ObjectId> states;  // of the object in it, the last one is what the copy holds
    text::Units place;                   // where it was last,
    text::Revision revision;             // at that revision
    files::PrivateFolder folder;
    std::string name;
    files::FileStamp taken;  // of the file whose bytes are in the document
    files::FileStamp seen;   // when it was looked at last; taken back when it stays so
    bool told = false;       // that it cannot be taken back
    files::Path path() const { return folder.path() / name; }
  };

  bool Launch(frmText& document, const Copy& copy);
  Copy* CopyOf(ui::FormId document, text::ObjectId object);
  Copy* MakeCopy(frmText& document, text::Units place, const std::string& name, std::string_view bytes);
  void WriteAbout(const Copy& copy) const;
  void Watch(const Copy& copy);
  void Look();
  bool IsChanged(const Copy& copy) const;
  std::optional<text::Units> PlaceOf(Copy& copy, const frmText& document) const;
  void TakeBack(Copy& copy, bool quietly);
  QString TakeIn(Copy& copy, bool quietly);  // why not; empty: done
  void TellKept(Copy& copy, const QString& reason);
  files::Path root() const { return services_.recoveryFolder().parent_path() / "objects"; }

  services::Services& services_;
  DocumentTable& table_;
  std::list<Copy> copies_;
  QFileSystemWatcher watcher_;
  QTimer settling_;
};

}  // namespace documents
