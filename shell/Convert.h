// Conversion between files without a window.
#pragma once

#include "files/Result.h"

#include <string>

namespace shell {

// Formats go by the names: .txt, .htm, .html, .rtf, and .pdf to write. Text and HTML are copied verbatim between each other. An empty
// result is success, else one line that says what went wrong. `recoveryFolder` as for files::AtomicSave.
std::string Convert(const files::Path& in, const files::Path& out, const files::Path& recoveryFolder);

// One line for the terminal, whatever bytes the texts hold.
std::string OneLine(const std::string& text);

}  // namespace shell
