// The quotes file: one quote to a line, in any encoding that documents may have.
#pragma once

#include "files/Result.h"
#include "text/plain/PlainText.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace panes {

// Every line that is not empty, exactly as it stands. Lines end in CR LF, LF or CR.
std::vector<std::string> ParseQuotesFile(std::string_view bytes);

struct ReadQuotes {
  std::vector<std::string> quotes;  // also what was read before an error
  std::optional<files::Error> couldNotBeOpened, couldNotBeRead;
  bool cancelled = false;
};

// On any thread. Files of more than 64 MB or four million lines are refused: a line in the list costs some 60 bytes
// besides its own.
ReadQuotes ReadQuotesFile(const files::Path& path, const text::Progress& progress = {}) noexcept;

}  // namespace panes
