// Internal to text/.
#pragma once

#include <cstdint>

namespace text {

// Free memory in bytes as the system tells, or no limit. Blocks are mapped without a reservation: what does not fit
// must be refused before it is filled, since the system would not refuse it afterwards.
int64_t FreeMemory();

}  // namespace text
