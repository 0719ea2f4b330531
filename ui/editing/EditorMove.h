// Where the keyboard takes the caret.
//
// Along a line the arrows go as it is seen, in right-to-left and mixed text too. Words, lines, paragraphs and what
// Backspace and Delete take go in the order of the text; "left" is then towards the end in a right-to-left paragraph.
#pragma once

#include <cstdint>

namespace ui {

enum class EditorMove : uint8_t {
  kLeft,  // by grapheme, as it is seen
  kRight,
  kWordLeft,  // by word; left is towards the end in a right-to-left paragraph
  kWordRight,
  kLineUp,  // visual lines, keeping x
  kLineDown,
  kPageUp,
  kPageDown,
  kLineStart,  // of the visual line
  kLineEnd,
  kParagraphUp,    // to the paragraph's start, from there to the previous one's
  kParagraphDown,  // to the next paragraph's start
  kDocumentStart,
  kDocumentEnd,
};

}  // namespace ui
