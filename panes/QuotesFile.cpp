#include "panes/QuotesFile.h"

#include "files/OpenFile.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <unistd.h>
#include <utility>

namespace panes {
namespace {

constexpr int64_t kMostBytes = int64_t{64} << 20;
constexpr size_t kPortion = size_t{1} << 20;
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

ReadQuotes Refused(files::Error error) {
  ReadQuotes refused;
  refused.couldNotBeOpened = std::move(error);
  return refused;
}

// Up to the end of the file, the first error, or the moment when `progress` says no.
int ReadPortions(const files::InputFile& file, const text::Progress& progress, std::string& bytes) {
  for (;;) {
    const size_t used = bytes.size();
    if (progress && !progress(static_cast<int64_t>(used))) return ECANCELED;
    bytes.resize(used + kPortion);
    const ssize_t count = pread(file.descriptor(), bytes.data() + used, kPortion, static_cast<off_t>(used));
    const int error = count < 0 ? errno : 0;
    bytes.resize(used + static_cast<size_t>(std::max<ssize_t>(count, 0)));
    if (error == EINTR) continue;
    if (count <= 0 || static_cast<int64_t>(bytes.size()) > kMostBytes) return count <= 0 ? error : EFBIG;
  }
}

ReadQuotes Read(const files::Path& path, const text::Progress& progress) {
  auto file = files::OpenForReading(path);
  if (!file) return Refused(file.error());
  if (file.value().size() > kMostBytes) return Refused(files::SystemError(EFBIG, path));
  ReadQuotes read;
  std::string bytes;
  const int error = ReadPortions(file.value(), progress, bytes);
  read.cancelled = error == ECANCELED;
  if (read.cancelled) return read;
  if (HasTooManyLines(bytes)) return Refused(files::SystemError(EFBIG, path));
  if (error) read.couldNotBeRead = files::SystemError(error, path);
  read.quotes = ParseQuotesFile(bytes);
  return read;
}

}  // namespace

ReadQuotes ReadQuotesFile(const files::Path& path, const text::Progress& progress) noexcept {
  try {
    return Read(path, progress);
  } catch (const std::exception&) {
    return Refused(files::SystemError(ENOMEM, path));
  }
}

}  // namespace panes
