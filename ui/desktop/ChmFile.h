// The files inside a compiled help file (.chm).
#pragma once

#include "files/Result.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace ui {

// Bytes by path: without the leading "/", ASCII letters in lower case, since such paths mean the same in any case.
using ChmEntries = std::map<std::string, std::string, std::less<>>;

std::string ChmKey(std::string_view path);

constexpr int64_t kLargestChm = int64_t{1} << 30;        // bytes; above it is an error
constexpr int64_t kLargestChmEntry = int64_t{16} << 20;  // above it the entry is left out
constexpr int64_t kLargestChmText = int64_t{128} << 20;  // all entries together; the rest is left out

// All of them at once, as a help file may be anything: it is read by another process with a limit of time and memory,
// so that a damaged one can neither crash nor hold up this one. `goOn` is asked now and then; false ends with an error.
// Any thread. Takes some milliseconds per megabyte.
files::Result<ChmEntries> ReadChm(const files::Path& path, const std::function<bool()>& goOn);

}  // namespace ui
