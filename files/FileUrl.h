// file: URLs to paths and back, byte for byte.
#pragma once

#include "files/Result.h"

#include <string_view>

namespace files {

bool IsFileUrl(std::string_view text);  // begins with "file:" in any case

// The path of file:///path, file:/path or file://localhost/path (or this machine's name). Nothing for another machine,
// a path that is not absolute, a damaged percent-escape or an escaped NUL. "?" and "#" are part of the name: a file has
// neither query nor fragment, and those who forget to escape them mean the name.
std::optional<Path> PathFromFileUrl(std::string_view url);

// `path` is absolute. Everything but letters, digits and -._~/ is escaped.
std::string FileUrlFromPath(const Path& path);

}  // namespace files
