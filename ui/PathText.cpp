#include "ui/PathText.h"

#include <QTextDocument>

#include <algorithm>
#include <dirent.h>
#include <iterator>
#include <memory>
#include <optional>
#include <vector>

namespace ui {
namespace {

constexpr QChar kUnknown(0xFFFD);
constexpr QChar kEllipsis(0x2026);
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr qsizetype kToolTipLine = 100;  // longer ones are given several lines
constexpr qsizetype kNameBegin = 30, kNameEnd = 50;
constexpr qsizetype kHalfShown = 500;          // characters of each end of a long text
constexpr size_t kHalfBytes = 4 * kHalfShown;  // which hold that many in any case

// The only entry of the folder that shows as `name`.
std::optional<std::string> OnlyEntryShownAs(const files::Path& folder, const QString& name) {
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(folder.c_str()), closedir);
  std::optional<std::string> found;
  while (const dirent* entry = directory ? readdir(directory.get()) : nullptr) {
    if (DisplayText(entry->d_name) != name) continue;
    if (found) return std::nullopt;
    found = entry->d_name;
  }
  return found;
}

// The bytes behind each U+FFFD of what is shown, in their order.
std::vector<std::string_view> BytesOfUnknown(std::string_view name) {
  std::vector<std::string_view> unknown;
  for (size_t at = 0; at < name.size();) {
    size_t length = 4;
    const auto shown = [&] { return DisplayText(name.substr(at, length)); };
    // Of a character of several bytes each shorter part is no character.
    while (length > 1 && (at + length > name.size() || shown().toUcs4().size() != 1)) --length;
    if (shown() == kUnknown) unknown.push_back(name.substr(at, length));
    at += length;
  }
  return unknown;
}

// Also what ends a line, or turns round what stands behind it: "txt.exe" behind U+202E would look like "exe.txt".
bool IsControl(char16_t c) {
  constexpr std::u16string_view kOthers = u"\u007F\u0085\u2028\u2029\u202D\u202E";
  return c < 0x20 || kOthers.find(c) != std::u16string_view::npos;
}

}  // namespace

QString DisplayText(std::string_view bytes) {
  // The toolkit takes a byte-order mark at the beginning away.
  QString text;
  for (; bytes.starts_with(kByteOrderMark); bytes.remove_prefix(kByteOrderMark.size())) text += QChar(0xFEFF);
  text += QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
  for (QChar& c : text)
    if (IsControl(c.unicode())) c = kUnknown;
  return text;
}

QString ShortDisplayText(std::string_view bytes) {
  const bool cut = bytes.size() > 2 * kHalfBytes;
  QString head = DisplayText(cut ? bytes.substr(0, kHalfBytes) : bytes);
  if (!cut && head.size() <= 2 * kHalfShown) return head;
  QString tail = (cut ? DisplayText(bytes.substr(bytes.size() - kHalfBytes)) : head).right(kHalfShown);
  head.truncate(kHalfShown);
  if (head.back().isHighSurrogate()) head.chop(1);
  if (tail.front().isLowSurrogate()) tail.remove(0, 1);
  return head + kEllipsis + tail;
}

QString NameInText(std::string_view bytes) {
  QString text = ShortDisplayText(bytes);
  if (text.size() <= kNameBegin + kNameEnd + 1) return text;
  QString head = text.left(kNameBegin), tail = text.right(kNameEnd);
  if (head.back().isHighSurrogate()) head.chop(1);
  if (tail.front().isLowSurrogate()) tail.remove(0, 1);
  return head + kEllipsis + tail;
}

QString PlainToolTip(const QString& text) {
  const bool wraps = text.size() > kToolTipLine;
  if (!wraps && !Qt::mightBeRichText(text)) return text;
  return QStringLiteral("<p style='white-space:%1'>%2</p>")
      .arg(wraps ? QStringLiteral("pre-wrap") : QStringLiteral("pre"), text.toHtmlEscaped());
}

QString DoubleAmpersands(QString text) {
  return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

files::Path PathOfChosen(const QString& chosen, const files::Path& proposed) {
  if (!proposed.empty() && chosen == DisplayText(proposed.native())) return proposed;
  if (!chosen.contains(kUnknown)) return files::Path(chosen.toStdString());
  files::Path path(chosen.startsWith(QLatin1Char('/')) ? "/" : "");
  for (const QString& part : chosen.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
    const files::Path folder = path.empty() ? files::Path(".") : path;
    const auto entry = part.contains(kUnknown) ? OnlyEntryShownAs(folder, part) : std::nullopt;
    path /= entry ? *entry : part.toStdString();
  }
  return path;
}

std::string EditedName(std::string_view name, const QString& edited) {
  const QString shown = DisplayText(name);
  if (edited == shown) return std::string(name);
  const std::vector<std::string_view> unknown = BytesOfUnknown(name);
  if (static_cast<qsizetype>(unknown.size()) != shown.count(kUnknown)) return std::string(name);
  const auto before = std::mismatch(edited.begin(), edited.end(), shown.begin(), shown.end()).first;
  const auto behind = std::mismatch(edited.rbegin(), std::make_reverse_iterator(before), shown.rbegin(), shown.rend());
  const auto unknownBehind = std::count(edited.rbegin(), behind.first, kUnknown);
  const auto all = edited.count(kUnknown), had = shown.count(kUnknown);
  std::string result;
  qsizetype seen = 0, at = 0;
  for (qsizetype end = 0; (end = edited.indexOf(kUnknown, at)) >= 0; at = end + 1, ++seen) {
    result += edited.mid(at, end - at).toStdString();
    // The last ones stay the last ones, all others are counted from the beginning.
    const qsizetype which = seen >= all - unknownBehind ? had - (all - seen) : seen;
    const bool known = which >= 0 && which < had && (seen >= all - unknownBehind || which < had - unknownBehind);
    result += known ? unknown[static_cast<size_t>(which)] : std::string_view("\xEF\xBF\xBD");
  }
  return result + edited.mid(at).toStdString();
}

}  // namespace ui
