// Names for a second file beside one of the same name; inside this room only.
#pragma once

#include <cstdint>
#include <string>

namespace files {

// "name.txt" gives "name (2).txt", "name (3).txt", ...; "name (7)" goes on with 8. At most 255 bytes, no UTF-8
// character is cut. Only files have an extension.
class NumberedNames {
 public:
  NumberedNames(const std::string& name, bool folder);
  std::string Next();

 private:
  std::string stem_, extension_;
  uint64_t number_ = 2;
};

}  // namespace files
