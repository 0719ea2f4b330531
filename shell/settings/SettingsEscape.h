// Any bytes as UTF-8 and back.
#pragma once

#include <string>
#include <string_view>

namespace shell {

// A byte that is no UTF-8 becomes \xHH, and so does a backslash that would look like that.
std::string EscapeBytes(std::string_view bytes);
std::string UnescapeBytes(std::string_view text);

}  // namespace shell
