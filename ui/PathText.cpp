#include "ui/PathText.h"

#include <QTextDocument>

#include <dirent.h>
#include <memory>
#include <optional>

namespace ui {
namespace {

constexpr QChar kUnknown(0xFFFD);
constexpr QChar kEllipsis(0x2026);
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

}  // namespace

QString DisplayText(std::string_view bytes) {
  QString text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
  for (QChar& c : text)
    if (c.unicode() < 0x20 || c.unicode() == 0x7F) c = kUnknown;
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

QString PlainToolTip(const QString& text) {
  if (!Qt::mightBeRichText(text)) return text;
  return QStringLiteral("<p style='white-space:pre'>%1</p>").arg(text.toHtmlEscaped());
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

}  // namespace ui
