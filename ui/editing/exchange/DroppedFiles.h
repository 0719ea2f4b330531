// File lists in drags and on the clipboard. Paths are bytes; only file: URLs are files.
#pragma once

#include <QtGlobal>

#include <memory>
#include <string>
#include <vector>

class QMimeData;

namespace ui {

// The toolkit hands what is dragged to other programs over in one message of the display, and the display ends the
// program that sends a longer one than it takes, usually 16 MB.
constexpr qint64 kMostDragged = 12 << 20;  // bytes

bool HoldsFiles(const QMimeData& data);
// In their order; what is no file of this machine is left out.
std::vector<std::string> FilesOf(const QMimeData& data);
// Relative paths are left out: another program could not find them. Nothing when the list is longer than kMostDragged.
std::unique_ptr<QMimeData> MimeDataOfFiles(const std::vector<std::string>& paths);

}  // namespace ui
