// What a group inherits and gives back at its end: values on the reader's stack.
#pragma once

#include "text/Formats.h"
#include "text/rtf/RtfKeywords.h"

#include <cstdint>
#include <memory>

namespace text::rtf {

class CodePage;

// Where a group's text goes. Inherited by the groups inside.
enum class Mode : uint8_t {
  kBody,
  kMuted,        // nowhere: the first half of \upr
  kInstruction,  // of a field
  kFonts,
  kColors,
  kLists,
  kOverrides,
  kNumbering,  // {\*\pn}
};

// What ends with the group itself.
enum class Opened : uint8_t { kNothing, kFonts, kList, kOverride, kNumbering, kField, kInstruction, kAlternative };

struct GroupState {
  Mode mode = Mode::kBody;
  Opened opened = Opened::kNothing;
  uint8_t fallbackCount = 1;  // \uc

  // --- Characters. chars.font and codePage follow from fontNumber; -1 = the document's default font.
  CharFormat chars;
  int8_t script = 0;  // \super 1, \sub -1
  bool charIdGood = false;
  CharFormatId charId = CharFormatId::kDefault;  // of all the above
  int32_t fontNumber = -1;
  uint32_t fontGeneration = 0;  // of the font table when chars.font and codePage were looked up
  const CodePage* codePage = nullptr;

  // --- Paragraphs. bullet and tabs of `paragraph` follow from what is below it.
  ParaFormat paragraph;
  bool paragraphIdGood = false;
  ParaFormatId paragraphId = ParaFormatId::kDefault;
  ListKind numbering = ListKind::kNone;  // from {\*\pn}
  int32_t listOverride = 0;              // \ls; 0 = none
  int32_t listLevel = 0;
  std::shared_ptr<Tabs> tabs;  // shared with the groups around until one of them adds a tab
};

}  // namespace text::rtf
