#include "panes/QuotesFile.h"

#include "files/OpenFile.h"
#include "text/plain/PlainText.h"

#include <algorithm>
#include <cerrno>
#include <exception>

namespace panes {
namespace {

constexpr int64_t kMostBytes = int64_t{64} << 20;
// A short line needs some 60 bytes in memory.
constexpr ptrdiff_t kMostLines = 4'000'000;

bool HasTooManyLines(std::string_view bytes) {
  return std::max(std::ranges::count(bytes, '\n'), std::ranges::count(bytes, '\r')) > kMostLines;
}

}  // namespace

std::vector<std::string> ParseQuotesFile(std::string_view bytes) {
  const text::Content content = text::ReadPlainText(bytes).content;
  const std::string all = content.ByteString(content.all());
  std::vector<std::string> quotes;
  for (size_t begin = 0; begin < all.size();) {
    const size_t end = std::min(all.find_first_of("\r\n", begin), all.size());
    if (end > begin) quotes.push_back(all.substr(begin, end - begin));
    begin = end + 1;
  }
  return quotes;
}

namespace {

ReadQuotes Read(const files::Path& path) {
  ReadQuotes read;
  auto file = files::OpenForReading(path);
  if (!file || file.value().size() > kMostBytes) {
    read.couldNotBeOpened = file ? files::SystemError(EFBIG, path) : file.error();
    return read;
  }
  std::string bytes;
  const files::Status status = files::ReadInto(file.value(), bytes, kMostBytes);
  if (!status) read.couldNotBeRead = status.error();
  if (HasTooManyLines(bytes))
    return {.quotes = {}, .couldNotBeOpened = files::SystemError(EFBIG, path), .couldNotBeRead = {}};
  read.quotes = ParseQuotesFile(bytes);
  return read;
}

}  // namespace

ReadQuotes ReadQuotesFile(const files::Path& path) noexcept {
  try {
    return Read(path);
  } catch (const std::exception&) {
    return {.quotes = {}, .couldNotBeOpened = files::SystemError(ENOMEM, path), .couldNotBeRead = {}};
  }
}

}  // namespace panes
