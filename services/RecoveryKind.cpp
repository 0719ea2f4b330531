#include "services/RecoveryKind.h"

#include <charconv>
#include <cstdint>

namespace services {
namespace {

constexpr std::string_view kRich = "rtf", kPlain = "text";

// The number behind one blank; false when there is none.
template <class Number>
bool Take(std::string_view& line, Number& number) {
  if (!line.starts_with(' ')) return false;
  line.remove_prefix(1);
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
  if (error != std::errc()) return false;
  line.remove_prefix(static_cast<size_t>(end - line.data()));
  return true;
}

}  // namespace

std::string ToLine(const RecoveryKind& kind) {
  std::string line(kind.rich ? kRich : kPlain);
  if (!kind.original) return line;
  const files::FileStamp& stamp = *kind.original;
  for (const uint64_t number : {stamp.device, stamp.inode}) line += " " + std::to_string(number);
  for (const int64_t number : {stamp.size, stamp.modifiedSeconds, stamp.modifiedNanoseconds})
    line += " " + std::to_string(number);
  return line;
}

RecoveryKind RecoveryKindOf(std::string_view line) {
  RecoveryKind kind;
  const std::string_view word = line.substr(0, line.find(' '));
  kind.rich = word == kRich;
  line.remove_prefix(word.size());
  files::FileStamp stamp;
  if (Take(line, stamp.device) && Take(line, stamp.inode) && Take(line, stamp.size) &&
      Take(line, stamp.modifiedSeconds) && Take(line, stamp.modifiedNanoseconds) && line.empty())
    kind.original = stamp;
  return kind;
}

}  // namespace services
