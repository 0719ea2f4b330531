#include "autocomplete/WordFile.h"

#include "files/OpenFile.h"
#include "text/plain/PlainText.h"

#include <algorithm>
#include <cerrno>

namespace autocomplete {
namespace {

constexpr int64_t kMostBytes = int64_t{64} << 20;
// A short entry needs some 80 bytes in memory.
constexpr ptrdiff_t kMostLines = 1'000'000;

bool HasTooManyLines(std::string_view bytes) {
  return std::max(std::ranges::count(bytes, '\n'), std::ranges::count(bytes, '\r')) > kMostLines;
}

}  // namespace

std::vector<QString> ParseWordFile(std::string_view bytes) {
  const text::Content content = text::ReadPlainText(bytes).content;
  const std::u16string all = content.Utf16(content.all());
  std::vector<QString> entries;
  for (std::u16string_view rest = all; !rest.empty();) {
    const std::u16string_view line = rest.substr(0, rest.find(u'\n'));
    if (!line.empty() && line.front() != u'#')
      entries.push_back(QString::fromUtf16(line.data(), static_cast<qsizetype>(line.size())));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
  }
  return entries;
}

ReadWords ReadWordFile(const files::Path& path) {
  ReadWords words;
  auto file = files::OpenForReading(path);
  if (!file || file.value().size() > kMostBytes) {
    words.couldNotBeOpened = file ? files::SystemError(EFBIG, path) : file.error();
    return words;
  }
  std::string bytes;
  const files::Status read = files::ReadInto(file.value(), bytes, kMostBytes);
  if (!read) words.couldNotBeRead = read.error();
  if (HasTooManyLines(bytes)) {
    words.couldNotBeOpened = files::SystemError(EFBIG, path);
    return words;
  }
  words.entries = ParseWordFile(bytes);
  return words;
}

}  // namespace autocomplete
