#include "text/Memory.h"

#include <cstdio>
#include <limits>

namespace text {

int64_t FreeMemory() {
  int64_t kilobytes = 0;
  FILE* info = std::fopen("/proc/meminfo", "re");
  if (!info) return std::numeric_limits<int64_t>::max();
  char line[128];
  while (std::fgets(line, sizeof line, info)) {
    long long value = 0;
    if (std::sscanf(line, "MemAvailable: %lld", &value) == 1 || std::sscanf(line, "SwapFree: %lld", &value) == 1)
      kilobytes += value;
  }
  std::fclose(info);
  return kilobytes > 0 ? kilobytes * 1024 : std::numeric_limits<int64_t>::max();
}

}  // namespace text
