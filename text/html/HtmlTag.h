// What is read of a page without its parser.
#pragma once

#include <string_view>

namespace text::html {

// The attribute of the first element of that lower-case name outside of comments, as it is spelled; empty where there
// is none, or further than 4 KB from the element's beginning.
std::string_view FirstAttribute(std::string_view page, std::string_view element, std::string_view attribute);

}  // namespace text::html
