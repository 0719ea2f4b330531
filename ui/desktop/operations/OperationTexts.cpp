#include "ui/desktop/operations/OperationTexts.h"

#include "ui/PathText.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <sys/stat.h>

namespace ui {
namespace {

constexpr size_t kNamed = 8;  // of many items

QString Translated(const char* text) {
  return QCoreApplication::translate("FileOperations", text);
}

QString NameOf(const std::string& path) {
  const size_t end = path.find_last_not_of('/');
  const size_t slash = end == std::string::npos ? end : path.rfind('/', end);
  return NameInText(slash == std::string::npos ? path : path.substr(slash + 1, end - slash));
}

bool IsFolder(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

QString CountOf(size_t items) {
  return QLocale().toString(static_cast<qulonglong>(items));
}

// The first names, each on a line.
QString NamesOf(const std::vector<std::string>& paths) {
  QString text = QStringLiteral("\r\n");
  const size_t named = paths.size() <= kNamed + 1 ? paths.size() : kNamed;
  for (size_t i = 0; i < named; ++i) text += QStringLiteral("\r\n") + NameOf(paths[i]);
  if (named < paths.size()) text += "\r\n" + Translated("and %1 more").arg(CountOf(paths.size() - named));
  return text;
}

QString Question(const std::vector<std::string>& paths, const char* file, const char* folder, const char* many) {
  if (paths.size() != 1) return Translated(many).arg(CountOf(paths.size())) + NamesOf(paths);
  return Translated(IsFolder(paths[0]) ? folder : file).arg(NameOf(paths[0]));
}

}  // namespace

QString TrashQuestion(const std::vector<std::string>& paths) {
  return Question(
      paths, QT_TRANSLATE_NOOP("FileOperations", "Do you want to move \"%1\" to the trash?"),
      QT_TRANSLATE_NOOP("FileOperations", "Do you want to move the folder \"%1\" and everything in it to the trash?"),
      QT_TRANSLATE_NOOP("FileOperations", "Do you want to move these %1 items to the trash?"));
}

QString NoTrashQuestion(const std::vector<std::string>& paths) {
  return Question(
      paths,
      QT_TRANSLATE_NOOP("FileOperations",
                        "There is no trash for \"%1\".  Do you want to delete it for good?  This cannot be undone."),
      QT_TRANSLATE_NOOP("FileOperations",
                        "There is no trash for the folder \"%1\".  Do you want to delete it and everything in it for "
                        "good?  This cannot be undone."),
      QT_TRANSLATE_NOOP("FileOperations",
                        "There is no trash for these %1 items.  Do you want to delete them for good?  This cannot be "
                        "undone."));
}

QString DeletionQuestion(const std::vector<std::string>& paths) {
  return Question(
      paths, QT_TRANSLATE_NOOP("FileOperations", "Do you want to delete \"%1\" for good?  This cannot be undone."),
      QT_TRANSLATE_NOOP(
          "FileOperations",
          "Do you want to delete the folder \"%1\" and everything in it for good?  This cannot be undone."),
      QT_TRANSLATE_NOOP("FileOperations", "Do you want to delete these %1 items for good?  This cannot be undone."));
}

QString TrashProgress(size_t items) {
  return items == 1 ? Translated("Moving 1 item to the trash")
                    : Translated("Moving %1 items to the trash").arg(CountOf(items));
}

QString ProgressText(const files::FileOperation& operation) {
  const size_t items = operation.sources.size();
  const QString folder = operation.folder.empty() ? QString() : NameOf(operation.folder);
  switch (operation.kind) {
    case files::OperationKind::kDelete:
      return items == 1 ? Translated("Deleting 1 item") : Translated("Deleting %1 items").arg(CountOf(items));
    case files::OperationKind::kCopy:
      return items == 1 ? Translated("Copying 1 item to \"%1\"").arg(folder)
                        : Translated("Copying %1 items to \"%2\"").arg(CountOf(items), folder);
    default:
      return items == 1 ? Translated("Moving 1 item to \"%1\"").arg(folder)
                        : Translated("Moving %1 items to \"%2\"").arg(CountOf(items), folder);
  }
}

}  // namespace ui
