// What the recovery folder remembers of a text beside its name and text: one line.
#pragma once

#include "files/OpenFile.h"

#include <optional>
#include <string>
#include <string_view>

namespace services {

struct RecoveryKind {
  bool rich = false;
  std::optional<files::FileStamp> original;  // of the file as it was read or written last; nothing: there was none
};

std::string ToLine(const RecoveryKind& kind);
// What cannot be understood is plain text of a file that is not known.
RecoveryKind RecoveryKindOf(std::string_view line);

}  // namespace services
