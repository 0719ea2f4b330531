#include "autocomplete/WordFile.h"

#include "files/OpenFile.h"
#include "text/plain/PlainText.h"

#include <algorithm>
#include <cerrno>

namespace autocomplete {
namespace {

// As text in memory it needs ten times as much.
constexpr int64_t kMostBytes = int64_t{64} << 20;

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
  words.entries = ParseWordFile(bytes);
  return words;
}

}  // namespace autocomplete
