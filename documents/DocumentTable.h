// The open documents by slot number, and how a document gets into a window.
#pragma once

#include "files/saving/Recovery.h"
#include "services/Services.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace documents {

class ObjectCopies;
class frmText;
struct ReadDocument;

// What a document is called that was never saved; with a colon and its slot until it gets an extension.
constexpr std::string_view kUntitled = "Untitled", kUntitledNumber = "Untitled:";

struct DocRecord {
  bool Free = false;     // no live window
  bool Changed = false;  // differs from what was last loaded or saved
};

class DocumentTable {
 public:
  explicit DocumentTable(services::Services& services);
  ~DocumentTable();

  // The window state of the document window that was closed last, for the next one to be shown; -1 = none.
  int LastDocWindowState = -1;

  // Slots are 1 .. UpperBound(); element 0 is never used and the tables never shrink.
  int UpperBound() const { return static_cast<int>(DocInfo_.size()) - 1; }
  // The lowest free slot, now taken; grows the tables by one when there is none.
  int GetFreeDocIndex();
  bool AnyDocumentOpen() const;
  frmText* Document(int slot) const { return Documents_[slot].get(); }  // null when free
  DocRecord& DocInfo(int slot) { return DocInfo_[slot]; }
  const DocRecord& DocInfo(int slot) const { return DocInfo_[slot]; }

  frmText* Active() const;               // the current window's, if it is a document
  frmText* Find(ui::FormId form) const;  // null when it has been closed

  frmText* NewDocument();
  void LoadIntoWindow(const std::string& path);
  // A text of the recovery folder, under the name it had, as a changed document, which keeps the entry's claim. False
  // when it could not be read.
  bool OpenRecovered(const files::RecoveryEntry& entry);

  // Files of objects that are open in applications.
  ObjectCopies& copies() { return *copies_; }

  // By the window itself, while it unloads.
  void Release(int slot);

 private:
  frmText& MakeWindow(std::string caption);
  ReadDocument Read(const files::Path& path, bool rich);
  void TakeRead(ui::FormId form, ReadDocument read);

  services::Services& services_;
  std::vector<std::unique_ptr<frmText>> Documents_;
  std::vector<std::unique_ptr<frmText>> released_;  // unloaded by the running command
  std::vector<DocRecord> DocInfo_;
  std::unique_ptr<ObjectCopies> copies_;
};

}  // namespace documents
