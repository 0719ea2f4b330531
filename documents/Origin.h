// Where the text of a document window came from, and what its file is known to hold.
#pragma once

#include "files/saving/Recovery.h"
#include "text/Content.h"
#include "text/Objects.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace documents {

struct Origin {
  std::optional<files::FileStamp> stamp;  // of the file as it was read or written last; nothing: there was none
  std::optional<text::Content> asLoaded;  // what rtfBytes are the file of
  std::shared_ptr<const std::string> rtfBytes;
  bool lossAgreed = false;             // what is in the file and not in the text may go
  bool loseElsewhere = false;          // the user agreed for a file of another name
  std::set<text::ObjectId> objectsGo;  // the user agreed that a plain file is saved without these
  bool notRtf = false;                 // an .rtf name, but the bytes were none, and nobody said what to write
  bool plainByChoice = false;          // the user said: the text it is
  enum class FileHas { kWhatWasRead, kWhatASaveLeft, kTheWholeText };
  FileHas fileHas = FileHas::kWhatWasRead;      // of a file that a recovered text was not made from
  std::vector<files::RecoveryEntry> recovered;  // entries that hold this text, claimed
  std::optional<text::Content> kept;            // what the last of them holds

  // Of an entry of the recovery folder whose text is in the window, as that content, and will be saved to `path`.
  static Origin Recovered(const files::RecoveryEntry& entry, const files::Path& path, const text::Content& content);

  bool IsAsLoaded(const text::Content& content) const { return asLoaded && content.SameAs(*asLoaded); }
  // The text gets another name, and its old file stays as it is.
  void LeaveFile();
  // Saved, written anew to the recovery folder, or given up by the user: removes the entries that have done their work.
  void ForgetRecovered(const files::Path& path, bool saved);
};

}  // namespace documents
