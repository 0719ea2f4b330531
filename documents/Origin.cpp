#include "documents/Origin.h"

#include "documents/DocumentReader.h"
#include "files/Attributes.h"
#include "services/RecoveryKind.h"

namespace documents {
namespace {

// What is left of a save that was cut short may be all that is whole of its file.
bool IsCutShort(const files::RecoveryEntry& entry) {
  return entry.kind.empty() || !entry.complete;
}

}  // namespace

Origin Origin::Recovered(const files::RecoveryEntry& entry, const files::Path& path, const text::Content& content) {
  // The file was not read now: it is replaced unasked only when it still is what this text was made from.
  const services::RecoveryKind kind = services::RecoveryKindOf(entry.kind);
  Origin origin;
  if (!entry.complete) {
    origin.fileHas = FileHas::kTheWholeText;
  } else if (entry.kind.empty()) {
    origin.fileHas = FileHas::kWhatASaveLeft;
  } else {
    origin.stamp = kind.original;
    // Some volumes have another device number after each start of the system.
    auto now = files::StampOf(path);
    if (now && kind.original) now->device = kind.original->device;
    if (now == kind.original) origin.stamp = files::StampOf(path);
  }
  origin.recovered = {entry};
  if (!IsCutShort(entry)) origin.kept = content;
  origin.notRtf = IsRichName(path.native()) && !entry.kind.empty() && !kind.rich;
  return origin;
}

// What was agreed for one name does not hold for another; under the new one the old file keeps what would be lost.
void Origin::LeaveFile() {
  lossAgreed = loseElsewhere;
  notRtf = plainByChoice = false;
  objectsGo.clear();
  kept.reset();
}

// What was cut short becomes useless only when that very file has been saved; a text that never had one, by any save.
void Origin::ForgetRecovered(const files::Path& path, bool saved) {
  std::erase_if(recovered, [&](const files::RecoveryEntry& entry) {
    const bool itsFile = !entry.originalPath.is_absolute() || files::SamePath(entry.originalPath, path);
    if (IsCutShort(entry) && !(saved && itsFile)) return false;
    // When it cannot be removed it is offered once more, which loses nothing.
    static_cast<void>(files::RemoveRecovery(entry));
    return true;
  });
  kept.reset();
}

}  // namespace documents
