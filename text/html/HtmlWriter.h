// HTML 5 out of a content.
#pragma once

#include "text/Content.h"
#include "text/plain/PlainText.h"

#include <string>

namespace text::html {

// UTF-8, one element a paragraph, labelled paragraphs as lists, formats as elements and inline styles. PNG and JPEG
// pictures are in the page itself, other objects are their name. Characters that HTML does not allow are left out,
// stray bytes are U+FFFD, U+2028 and U+2029 line breaks; a form feed ends its paragraph and puts the rest on a new
// page. Of a table in a table only the text stays, and of links those that lead to a place on the network, a file or a
// mark. False when the sink refused. O(size); memory for one paragraph.
struct Options {
  std::string title;
  std::string defaultFont;  // empty: the reader's own
};
bool Write(const Content& content, const Options& options, const ByteSink& sink);

}  // namespace text::html
