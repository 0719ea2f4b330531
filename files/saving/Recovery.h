// The recovery folder: texts whose save failed while their window closed, and the safety copies of a save in place.
// An entry is a folder of its own (mode 0700) with the files
//   about      what it is: a line with the format, a line with the kind, then the bytes of the original path to the end
//   text       the text's bytes; text.part until all of them are on the disk
//   previous   what the original file held before a save in place began
// all of mode 0600 and fsynced. While a process writes an entry, or deals with its text, it holds a lock on it.
#pragma once

#include "files/saving/AtomicSave.h"

#include <memory>
#include <vector>

namespace files {

class Descriptor;

struct RecoveryEntry {
  Path folder;        // names the entry
  Path originalPath;  // as it was given: a file's path, or the caption of a text that never had one
  std::string kind;   // as it was given, one line; empty for the copies of a save in place
  Path text;
  bool complete = false;         // false: the program died while it wrote, and `text` holds the beginning
  std::optional<Path> previous;  // the old bytes, when a save in place was cut short
  FileStamp stamp;               // of `text`
  // While a copy of it is kept no other process lists or claims the entry.
  std::shared_ptr<const Descriptor> claim;
};

// Writes an entry and makes it durable, claimed; after a failure nothing is left. `folder` is made (mode 0700) when
// needed.
Result<RecoveryEntry> WriteRecovery(const Path& folder, const Path& originalPath, std::string_view kind,
                                    const ByteProducer& write);

// The entries that no running process writes or has claimed, oldest first. Leftovers without any text are cleared away
// when they are an hour old. A folder that does not exist has no entries.
Result<std::vector<RecoveryEntry>> ListRecovery(const Path& folder);

// Sets the claim of a listed entry. False when somebody else has claimed or removed it meanwhile.
bool ClaimRecovery(RecoveryEntry& entry);

Status RemoveRecovery(const RecoveryEntry& entry);

}  // namespace files
