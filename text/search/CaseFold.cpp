#include "text/search/CaseFold.h"

#include "text/search/Search.h"

#include <unicode/uchar.h>
#include <unicode/uniset.h>

namespace text {

std::u32string CaseVariants(char32_t c) {
  const auto folded = u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT);
  // The closure is by full folding, which takes in more than the simple one.
  icu::UnicodeSet closure(folded, folded);
  closure.closeOver(USET_CASE_INSENSITIVE);
  std::u32string variants(1, c);
  for (int32_t i = 0; i < closure.getRangeCount(); ++i) {
    for (UChar32 other = closure.getRangeStart(i); other <= closure.getRangeEnd(i); ++other) {
      if (static_cast<char32_t>(other) != c && u_foldCase(other, U_FOLD_CASE_DEFAULT) == folded)
        variants += static_cast<char32_t>(other);
    }
  }
  return variants;
}

bool IsWordCharacter(char32_t c) {
  if (c < 0x80) return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') || c == '_';
  return (U_MASK(u_charType(static_cast<UChar32>(c))) & (U_GC_L_MASK | U_GC_ND_MASK | U_GC_M_MASK | U_GC_PC_MASK)) != 0;
}

}  // namespace text
