#include "autocomplete/Fragment.h"

#include <algorithm>
#include <string_view>

namespace autocomplete {
namespace {

// A soft break and an object are characters of the engine's text.
constexpr std::u16string_view kEndsWord = u"\n \u2028\uFFFC", kNothingBehind = u">\n \u2028\uFFFC";

size_t SpanBackwards(std::u16string_view text, std::u16string_view set) {
  const size_t last = text.find_last_not_of(set);
  return text.size() - (last == std::u16string_view::npos ? 0 : last + 1);
}

}  // namespace

text::Range FragmentBefore(const text::Content& content, text::Units caret) {
  const text::Units begin = std::max(text::Units(0), caret - text::Units(kMostFragment + 1));
  const std::u16string before = content.Utf16({begin, caret});
  const auto last = [caret](size_t units) {
    return text::Range{caret - text::Units(static_cast<int64_t>(units)), caret};
  };
  size_t length = SpanBackwards(before, u"<");
  if (length == 0 && SpanBackwards(before, kNothingBehind) == 0) {
    const size_t blank = before.find_last_of(kEndsWord);
    length = before.size() - (blank == std::u16string::npos ? 0 : blank + 1);
  }
  return last(length > static_cast<size_t>(kMostFragment) ? 0 : length);
}

bool FitsIntoLine(const QString& text) {
  return text.size() <= kMostFragment && text.toStdU16String().find_first_of(u"\r\n\f\uFFFC") == std::u16string::npos;
}

}  // namespace autocomplete
