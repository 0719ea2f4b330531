#include "text/html/HtmlTag.h"

#include "text/html/HtmlStyle.h"

#include <algorithm>

namespace text::html {
namespace {

bool IsSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// A start tag's attributes, from behind its name; the first of a name counts.
class TagScan {
 public:
  explicit TagScan(std::string_view rest) : rest_(rest) {}
  std::string_view Value(std::string_view wanted) {
    for (;;) {
      Take([](char c) { return IsSpace(c) || c == '/'; });
      const std::string_view name = Take([](char c) { return !IsSpace(c) && c != '/' && c != '>' && c != '='; });
      Take(IsSpace);
      const bool hasValue = rest_.starts_with('=');
      if (name.empty() && !hasValue) return {};
      const std::string_view value = hasValue ? TakeValue() : std::string_view();
      if (Lower(name) == wanted) return value;
    }
  }

 private:
  template <class Belongs>
  std::string_view Take(const Belongs& belongs) {
    size_t size = 0;
    while (size < rest_.size() && belongs(rest_[size])) ++size;
    const std::string_view taken = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return taken;
  }
  std::string_view TakeValue() {
    rest_.remove_prefix(1);
    Take(IsSpace);
    if (!rest_.starts_with('"') && !rest_.starts_with('\''))
      return Take([](char c) { return !IsSpace(c) && c != '>'; });
    const char quote = rest_.front();
    rest_.remove_prefix(1);
    const std::string_view value = Take([quote](char c) { return c != quote; });
    rest_.remove_prefix(std::min<size_t>(1, rest_.size()));
    return value;
  }

  std::string_view rest_;
};

}  // namespace

std::string_view FirstAttribute(std::string_view page, std::string_view element, std::string_view attribute) {
  constexpr std::string_view kComment = "<!--", kCommentEnd = "-->";
  constexpr size_t kLongest = 4096;
  for (size_t at = page.find('<'); at != std::string_view::npos; at = page.find('<', at + 1)) {
    const std::string_view rest = page.substr(at);
    if (rest.starts_with(kComment)) {
      at = page.find(kCommentEnd, at + 2);
      if (at == std::string_view::npos) break;
      continue;
    }
    const std::string_view tag = rest.substr(1, kLongest);
    if (tag.size() <= element.size() || Lower(tag.substr(0, element.size())) != element) continue;
    const char behind = tag[element.size()];
    if (IsSpace(behind) || behind == '/' || behind == '>') return TagScan(tag.substr(element.size())).Value(attribute);
  }
  return {};
}

}  // namespace text::html
