// Rich text out of HTML, as browsers and mail programs put it on the clipboard.
#pragma once

#include "text/Content.h"

#include <memory>
#include <string_view>

namespace text::html {

struct ReadResult {
  Content content;
  bool limited = false;  // elements were nested more than 1000 deep, and what came from there on is missing
};

// Never throws on bad input and opens nothing: pictures count only when they are in the page itself (data:), styles
// only as attributes. Text that says nothing of its look has the base format. Paragraphs end in CR LF, <br> is U+2028;
// the last paragraph has no break unless it ends a table's row. Of a table in a table only the text stays. O(size).
ReadResult Read(std::string_view utf8, const std::shared_ptr<TextStore>& store, const CharFormat& base = {});

}  // namespace text::html
