#include "ui/editing/exchange/DropParts.h"

#include "files/FileUrl.h"
#include "ui/editing/exchange/DroppedFiles.h"
#include "ui/editing/exchange/EditorClipboard.h"

#include <QMimeData>

#include <algorithm>
#include <filesystem>

namespace ui {
namespace {

// By their paths, their names or their addresses, one in a line. What is no text was decoded by the toolkit.
bool NamesFiles(const QString& text, const std::vector<std::string>& files) {
  const QStringList lines = text.split(u'\n', Qt::SkipEmptyParts);
  return std::ranges::all_of(lines, [&](const QString& line) {
    const QString name = line.trimmed();
    const std::string url = name.toStdString();
    return name.isEmpty() || std::ranges::any_of(files, [&](const std::string& file) {
             const std::string last = std::filesystem::path(file).filename().native();
             return name == QString::fromStdString(file) || name == QString::fromStdString(last) ||
                    (files::IsFileUrl(url) && files::PathFromFileUrl(url) == files::Path(file));
           });
  });
}

}  // namespace

DropParts PartsOfDrop(const QMimeData& data) {
  DropParts parts;
  const bool rich = HasRichText(data);
  const EditorMimeData::Drag drag = EditorMimeData::DragOf(data);
  if (drag != EditorMimeData::Drag::kText) parts.files = FilesOf(data);
  if (drag == EditorMimeData::Drag::kFile && !parts.files.empty()) return parts;
  // A list of addresses counts as text for the toolkit.
  const bool hasText = data.hasFormat(QStringLiteral("text/plain"));
  const bool names = !rich && !parts.files.empty() && (!hasText || NamesFiles(data.text(), parts.files));
  parts.text = rich || (!names && (data.hasText() || data.hasHtml()));
  const bool shown =
      rich || data.hasHtml() || !parts.files.empty() || (data.hasImage() && data.hasText() && IsAddress(data.text()));
  parts.picture = data.hasImage() && !shown && parts.text;
  // Alone, or beside its address, it is what there is to insert.
  parts.text |= data.hasImage() && parts.files.empty();
  return parts;
}

}  // namespace ui
