#include "ui/editing/exchange/DroppedFiles.h"

#include "files/FileUrl.h"

#include <QMimeData>

namespace ui {
namespace {

constexpr const char* kUriList = "text/uri-list";

}  // namespace

bool HoldsFiles(const QMimeData& data) {
  return data.hasFormat(QLatin1String(kUriList)) && !FilesOf(data).empty();
}

// Not by way of QUrl, which decodes what is no UTF-8 into something else.
std::vector<std::string> FilesOf(const QMimeData& data) {
  std::vector<std::string> paths;
  for (QByteArray line : data.data(QLatin1String(kUriList)).split('\n')) {
    line = line.trimmed();
    const std::string_view url(line.constData(), static_cast<size_t>(line.size()));
    if (url.starts_with('#') || !files::IsFileUrl(url)) continue;
    if (const auto path = files::PathFromFileUrl(url)) paths.push_back(path->native());
  }
  return paths;
}

std::unique_ptr<QMimeData> MimeDataOfFiles(const std::vector<std::string>& paths) {
  QByteArray list;
  for (const std::string& path : paths)
    if (path.starts_with('/')) list += QByteArray::fromStdString(files::FileUrlFromPath(path)) + "\r\n";
  auto data = std::make_unique<QMimeData>();
  if (list.size() <= kMostDragged) data->setData(QLatin1String(kUriList), list);
  return data;
}

}  // namespace ui
