// How much there is to do; inside this room only.
#pragma once

#include "files/operations/OperationJob.h"

namespace files {

// Adds the item and everything in it to the totals, `sizes` the bytes of its files too. What cannot be read is left
// out.
void CountItem(OperationJob& job, const std::string& path, bool sizes);

}  // namespace files
