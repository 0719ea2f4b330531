#include "project/ProjectFile.h"

#include "files/AnyCase.h"

#include <algorithm>

namespace project {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

char SeparatorOf(std::string_view entry) {
  return entry.find('/') == std::string_view::npos ? '\\' : '/';
}

}  // namespace

EntryKind KindOf(std::string_view entry) {
  if (entry.ends_with(SeparatorOf(entry))) return EntryKind::kFolder;
  return files::EndsWithAnyCase(entry, "lnk") ? EntryKind::kReadOnlyShortcut : EntryKind::kDocument;
}

std::string_view ShownPart(std::string_view entry) {
  if (KindOf(entry) == EntryKind::kFolder) return entry;
  return entry.substr(entry.rfind(SeparatorOf(entry)) + 1);  // npos + 1 is the beginning
}

std::vector<std::string> ParseProjectFile(std::string_view bytes) {
  std::vector<std::string> entries;
  while (!bytes.empty()) {
    const std::string_view line = bytes.substr(0, bytes.find('\r'));
    if (!line.empty()) entries.emplace_back(line);
    bytes.remove_prefix(std::min(bytes.size(), line.size() + 1));
    if (bytes.starts_with('\n') && line.data() + line.size() < bytes.data()) bytes.remove_prefix(1);
  }
  return entries;
}

std::string FormatProjectFile(std::span<const std::string> entries) {
  std::string file;
  for (const std::string& entry : entries) (file += entry) += kLineEnd;
  return file += kLineEnd;
}

}  // namespace project
