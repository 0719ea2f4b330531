// What a group inherits and gives back at its end: values on the reader's stack.
#pragma once

#include "text/Formats.h"
#include "text/rtf/RtfLists.h"

#include <cstdint>
#include <memory>

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
  kList,
  kOverride,
  kNumbering,
  kField,
  kNote,
  kAlternative,
};

struct GroupState {
  Mode mode = Mode::kBody;
  Opened opened = Opened::kNothing;
  uint8_t fallbackCount = 1;  // \uc
  bool inObject = false;      // in the result of an object, shown as text
  bool nestedRow = false;     // in {\*\nesttableprops}
  LinkId link = LinkId::kNone;

  // --- Characters. chars.font and codePage follow from fontNumber; -1 = the document's default font.
  CharFormat chars;
  int8_t script = 0;  // \super 1, \sub -1
  bool charIdGood = false;
  CharFormatId charId = CharFormatId::kDefault;  // of all the above
  int32_t fontNumber = -1;
  uint32_t fontGeneration = 0;  // of the font table when chars.font and codePage were looked up
  const CodePage* codePage = nullptr;

  // --- Paragraphs. Tabs and label of `paragraph` follow from what is below it.
  ParaFormat paragraph;
  bool paragraphIdGood = false;
  ParaFormatId paragraphId = ParaFormatId::kDefault;
  ListUse numbering;         // from {\*\pn}
  int32_t listOverride = 0;  // \ls; 0 = none
  int32_t listLevel = 0;
  bool inTable = false;        // \intbl
  uint8_t tableLevel = 0;      // \itap
  std::shared_ptr<Tabs> tabs;  // shared with the groups around until one of them adds a tab

  uint8_t level() const { return tableLevel > 0 ? tableLevel : inTable ? 1 : 0; }
};

}  // namespace text::rtf
