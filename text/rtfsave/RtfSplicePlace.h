// Where something new may go, and what is in force there.
#pragma once

#include "text/rtf/RtfWatcher.h"
#include "text/rtfsave/RtfSpliceOutput.h"

#include <cstdint>

namespace text::rtf {

// What is in force at a place in the output, and where words about paragraphs reach from.
struct SpliceReach {
  SpliceOutput::Place at;
  uint32_t group = 0;          // the number of the innermost one
  uint32_t paragraphWord = 0;  // how many have come
  bool reset = false;          // the next of them is \pard
};

struct SplicePlace : SpliceReach {
  InForce state;
  bool isBreak = false;  // directly behind a break
  bool bare = false;     // text needs no group
  bool behindUtf8 = false;
};

// From here on the paragraph format is another one than the file says.
struct SpliceDeviation : SpliceReach {
  ParaFormat format, original;
  bool afresh = false;  // nothing of the original is in force
};

}  // namespace text::rtf
