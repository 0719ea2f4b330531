// What is asked before deleting, and what stands over a progress. Names are made fit to be shown.
#pragma once

#include "files/operations/FileOperation.h"

#include <QString>

namespace ui {

QString TrashQuestion(const std::vector<std::string>& paths);
QString NoTrashQuestion(const std::vector<std::string>& paths);
QString DeletionQuestion(const std::vector<std::string>& paths);

QString TrashProgress(size_t items);
QString ProgressText(const files::FileOperation& operation);

}  // namespace ui
