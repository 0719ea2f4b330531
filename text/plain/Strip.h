// Three ways to clean up a stretch of text. Each gives the new text as engine bytes; breaks keep their spelling.
// Linear. `progress` hears the bytes of the stretch that are done, about every 16 MB and at the end; false ends the
// work with nothing.
#pragma once

#include "text/Content.h"
#include "text/plain/PlainText.h"

#include <optional>
#include <string>

namespace text {

// A break inside a paragraph becomes a blank, unless the next line begins with one; of the breaks around an empty line
// one stays.
std::optional<std::string> JoinedLines(const Content& content, Range range, const Progress& progress = {});
// Without any occurrence of the character. CR and LF, which only occur as line breaks, stay.
std::optional<std::string> WithoutCharacter(const Content& content, Range range, char32_t character,
                                            const Progress& progress = {});
// Runs of blanks (U+0020 only) become one, behind a full stop two; those at the beginning go.
std::optional<std::string> CollapsedBlanks(const Content& content, Range range, const Progress& progress = {});

}  // namespace text
