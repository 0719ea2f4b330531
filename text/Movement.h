// Where a caret goes: pure functions on a content. Each looks only at a bounded stretch of text around the position, at
// most 32K units, so a text without any boundary is cut there instead of being read whole.
// A line break is always a step of its own: no grapheme or word reaches across it.
#pragma once

#include "text/Content.h"

namespace text {

// The next or previous boundary between user-perceived characters; the position itself at the text's end or start.
Units NextGrapheme(const Content& content, Units position);
Units PreviousGrapheme(const Content& content, Units position);

// Where Backspace deletes from: one code point of a combining sequence, but an emoji sequence, a flag or a line break
// as a whole.
Units BackspaceStart(const Content& content, Units position);

// The start of the next word (or run of punctuation) in the paragraph, else the paragraph's end; from there the next
// paragraph's start. PreviousWord: the start of the word before, else the previous paragraph's end.
Units NextWord(const Content& content, Units position);
Units PreviousWord(const Content& content, Units position);

// The word, run of punctuation or run of blanks that the character behind the position belongs to; at a paragraph's end
// the last one. Empty in an empty paragraph.
Range WordAt(const Content& content, Units position);

// The paragraph at the position with its break, if it has one.
Range ParagraphRange(const Content& content, Units position);

}  // namespace text
