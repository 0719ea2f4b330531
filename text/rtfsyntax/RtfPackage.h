// Files kept in RTF as objects of the class "Package" (the first object format, [MS-OLEDS] 2.2.5): a name and bytes.
#pragma once

#include "text/Objects.h"
#include "text/rtfsyntax/RtfTokenizer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace text::rtf {

// More is refused: in a file every byte is two, and reading and writing need several copies.
constexpr size_t kMaxPackageBytes = 64 << 20;

struct Package {
  std::string name;  // as it was written, UTF-8; may be empty, and may hold anything a path may
  std::string bytes;
};

// Of an object's group. Nothing for objects of other classes, linked files, damaged data and what is too large.
std::optional<Package> ReadPackage(std::string_view group);

// Whether the group's data begin as those of a package, and the name in them. Looks at some hundred bytes.
std::optional<std::string> PackageLabel(std::string_view group);

// The same from behind \objdata.
std::optional<std::string> LabelInData(RtfTokenizer data);

// From behind \objname to the group's end: the name for people, in UTF-8.
std::string ReadObjectName(RtfTokenizer tokenizer);

// The group "{\object ...}" of a package, shown by a PNG or JPEG picture with its size in twips.
std::string PackageGroup(std::string_view name, std::string_view bytes, const EmbeddedObject& shown);

}  // namespace text::rtf
