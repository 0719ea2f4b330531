// File lists in drags and on the clipboard. Paths are bytes; only file: URLs are files.
#pragma once

#include <memory>
#include <string>
#include <vector>

class QMimeData;

namespace ui {

bool HoldsFiles(const QMimeData& data);
// In their order; what is no file of this machine is left out.
std::vector<std::string> FilesOf(const QMimeData& data);
// Relative paths are left out: another program could not find them.
std::unique_ptr<QMimeData> MimeDataOfFiles(const std::vector<std::string>& paths);

}  // namespace ui
