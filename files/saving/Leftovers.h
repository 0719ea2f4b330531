// Temporary files of saves that were killed; inside this room only.
#pragma once

namespace files {

// Short, so that it fits beside any name, and hidden.
constexpr char kTemporaryPrefix[] = ".quillmark-";

// Removes them from an open folder (O_PATH will do): this user's, a day old, so that no save is still writing them.
// Looks only at the folder's first ten thousand names, and a failure is none of the caller's business.
void ClearLeftovers(int folder);

}  // namespace files
