// Whether a file means what was to be saved.
#pragma once

#include "text/rtf/Rtf.h"

namespace text::rtf {

// True when reading what was written gave the text and the formats that were wanted, but for what RTF cannot hold: how
// breaks are spelled, stray bytes, NUL, fractions of half points. The two may be of different stores. `progress` counts
// the text's bytes; when it says to stop the answer is false.
bool MeansTheSame(const Content& wanted, FontId wantedDefault, const Content& read, FontId readDefault,
                  const Progress& progress = {});

}  // namespace text::rtf
