// The format of project files and the kinds of their entries. Everything is bytes, kept as it was given.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace project {

enum class EntryKind { kDocument, kFolder, kReadOnlyShortcut };

// Derived from the text alone. "/" separates; "\" too, but only in a text without "/" (a project made elsewhere).
EntryKind KindOf(std::string_view entry);

// What the list shows: a folder whole, of anything else the part behind the last separator.
std::string_view ShownPart(std::string_view entry);

// The entries of a file, in order. A line ends at CR LF or a lone CR; a lone LF is part of its line. Empty lines are
// skipped.
std::vector<std::string> ParseProjectFile(std::string_view bytes);

// The file of these entries, none of which holds a CR.
std::string FormatProjectFile(std::span<const std::string> entries);

}  // namespace project
