// Conversion between files without a window.
#pragma once

#include "files/Result.h"

#include <string>

namespace shell {

// Each one line, or empty.
struct Converted {
  std::string error;  // what went wrong; empty: it is done
  std::string note;   // what the new file lacks
};

// Formats go by the names: .txt, .htm, .html, .rtf, and .pdf to write. Text and HTML are copied verbatim between each
// other. The text of RTF is written again, in the groups and words of the file. `recoveryFolder` as for
// files::AtomicSave.
Converted Convert(const files::Path& in, const files::Path& out, const files::Path& recoveryFolder);

// One line for the terminal, whatever bytes the texts hold.
std::string OneLine(const std::string& text);

}  // namespace shell
