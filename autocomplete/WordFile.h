// The word file: one entry to a line, in any encoding that documents may have.
#pragma once

#include "files/Result.h"

#include <QString>

#include <optional>
#include <string_view>
#include <vector>

namespace autocomplete {

// Every line that is neither empty nor begins with "#", exactly as it stands. Lines end in CR LF, LF or CR.
std::vector<QString> ParseWordFile(std::string_view bytes);

struct ReadWords {
  std::vector<QString> entries;  // also what was read before an error
  std::optional<files::Error> couldNotBeOpened, couldNotBeRead;
};

ReadWords ReadWordFile(const files::Path& path);

}  // namespace autocomplete
