// Unicode simple case folding, one code point to one. Internal to text/.
#pragma once

#include <string>

namespace text {

// Every code point that folds as c does, c itself among them: 1 .. 4.
std::u32string CaseVariants(char32_t c);

}  // namespace text
