// HTML 5 out of a content.
#pragma once

#include "text/Content.h"
#include "text/PlainText.h"

#include <string>

namespace text::html {

// UTF-8, one element a paragraph, bulleted paragraphs as lists, formats as elements and inline styles. Characters that
// HTML does not allow are left out, stray bytes are U+FFFD, objects nothing, U+2028 and U+2029
// line breaks; a form feed ends its paragraph and puts the rest on a new page.
// False when the sink refused. O(size); memory for one paragraph.
struct Options {
  std::string title;
  std::string defaultFont;  // empty: the reader's own
};
bool Write(const Content& content, const Options& options, const ByteSink& sink);

}  // namespace text::html
