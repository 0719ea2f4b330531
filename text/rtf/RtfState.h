// What a group inherits and gives back at its end: values on the reader's stack.
#pragma once

#include "text/Formats.h"
#include "text/rtf/RtfLists.h"
#include "text/rtf/RtfStyles.h"

#include <cstdint>

namespace text::rtf {

// Where a group's text goes. Inherited by the groups inside.
enum class Mode : uint8_t {
  kBody,
  kMuted,        // nowhere: the first half of \upr
  kInstruction,  // of a field
  kNote,         // what the anchor of a footnote says
  kShape,        // nowhere: a property of a drawing
  kShapeName,    // the name of one
  kFonts,
  kColors,
  kStyles,
  kLists,
  kOverrides,
  kLevelText,  // the label of a list's level
  kNumbering,  // {\*\pn}
  kLabelBefore,
  kLabelAfter,
};

// What ends with the group itself.
enum class Opened : uint8_t {
  kNothing,
  kFonts,
  kStyles,
  kStyle,
  kList,
  kOverride,
  kNumbering,
  kField,
  kNote,
  kAlternative,
};

struct GroupState : Look {
  Mode mode = Mode::kBody;
  Opened opened = Opened::kNothing;
  uint8_t fallbackCount = 1;  // \uc
  bool inObject = false;      // in the result of an object, shown as text
  bool nestedRow = false;     // in {\*\nesttableprops}
  LinkId link = LinkId::kNone;

  // --- The styles named last, of paragraphs and of characters
  StyleUse style, charStyle;

  // --- What chars and paragraph mean with these, valid while the flag beside it says so
  bool charIdGood = false;
  CharFormatId charId = CharFormatId::kDefault;
  uint32_t fontGeneration = 0;  // of the font table when this was looked up; 0: never
  int32_t lookedUp = 0;         // the font's number
  FontId font = FontId::kDefault;
  const CodePage* codePage = nullptr;
  bool paragraphIdGood = false;
  ParaFormatId paragraphId = ParaFormatId::kDefault;

  // --- Paragraphs
  ListUse numbering;                            // from {\*\pn}
  TabStop nextTab{0};                           // all but its place
  bool startIndent = false, endIndent = false;  // from \lin, \rin: \li and \ri have not come
  bool inTable = false;                         // \intbl
  uint8_t tableLevel = 0;                       // \itap

  uint8_t level() const { return tableLevel > 0 ? tableLevel : inTable ? 1 : 0; }
};

}  // namespace text::rtf
