// What stands before the caret and waits to be completed.
#pragma once

#include "text/Content.h"

#include <QString>

namespace autocomplete {

// More than anybody types into a list.
constexpr int64_t kMostFragment = 1000;

// All "<" before the caret; else nothing behind a ">", a blank or a line break; else back to the last blank or line
// break. Nothing as well when that is too far away. An object of the text is never part of it.
text::Range FragmentBefore(const text::Content& content, text::Units caret);

// Whether a list can show it and give it back: one line, and not too long.
bool FitsIntoLine(const QString& text);

}  // namespace autocomplete
