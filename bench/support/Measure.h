// Shared by the benchmarks: medians, percentiles, peak memory.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace bench {

inline double Seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// part in 0 .. 1; 0.5 = median.
inline double Percentile(std::vector<double> values, double part) {
  std::sort(values.begin(), values.end());
  return values[std::min(values.size() - 1, static_cast<size_t>(part * static_cast<double>(values.size())))];
}
inline double Median(std::vector<double> values) {
  return Percentile(std::move(values), 0.5);
}

// The process's peak resident memory in bytes so far.
inline double PeakMemory() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind("VmHWM:", 0) == 0) return std::stod(line.substr(6)) * 1024;
  return 0;
}

}  // namespace bench
