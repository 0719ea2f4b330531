// Reads bytes straight into blocks of a store, without a copy, on several threads, and makes content of them. A regular
// file is read at the size it has at the beginning. Internal to text/.
#pragma once

#include "text/TextStore.h"
#include "text/plain/PlainText.h"

namespace text {

struct RawText {
  Content content;  // without the UTF-8 byte-order mark
  ScanCounts counts;
  bool utf8Mark = false;
  int error = 0;
};

RawText ReadBlocks(int descriptor, const Progress& progress);
RawText ReadBlocks(std::string_view bytes);

}  // namespace text
