// Writing into a file that cannot be replaced; inside this room only.
#pragma once

#include "files/saving/RecoveryWriter.h"
#include "files/saving/SaveTarget.h"

namespace files {

// Makes the target's file hold what `content` (the entry's text, `size` bytes, not yet finished) holds. First both
// texts are made safe in the entry. On failure the file has its old bytes and time again and the entry is discarded,
// or, when even that failed, the entry is kept and the error names the copies.
Result<FileStamp> OverwriteFile(const SaveTarget& target, RecoveryWriter& entry, int64_t size, const Path& path);

}  // namespace files
