#include "shell/CommonDialogAPI.h"

#include "files/Attributes.h"
#include "ui/PathText.h"
#include "ui/dialogs/Printer.h"

#include <QCoreApplication>
#include <QStringList>

namespace shell {
namespace {

constexpr qsizetype kLongestName = 254;
constexpr const char* kUsualExtensions = ".txt,.htm*,.js,.css,.xml,.rtf";

QString Translated(const char* text) {
  return QCoreApplication::translate("CommonDialogs", text);
}

bool Exists(const files::Path& path) {
  return static_cast<bool>(files::GetAttributes(path));
}

// A proposed name that is too long is cut; the folder is not part of it.
files::Path CutName(const files::Path& name) {
  const QString text = ui::DisplayText(name.native());
  return text.size() <= kLongestName ? name : files::Path(text.left(kLongestName).toStdString());
}

// A name typed without any extension gets the default one, unless it names a file as it stands.
files::Path WithDefaultExtension(const files::Path& path, const std::string& extension) {
  const std::string name = path.filename().native();
  if (extension.empty() || extension.find('/') != std::string::npos || name.find('.') != std::string::npos ||
      Exists(path))
    return path;
  return files::Path(path.native() + extension);
}

bool MatchesExtension(const QString& entry, const QString& extension) {
  const qsizetype star = entry.indexOf(QLatin1Char('*'));
  if (star < 0) return entry.compare(extension, Qt::CaseInsensitive) == 0;
  return entry.left(star).compare(extension.left(star), Qt::CaseInsensitive) == 0;
}

}  // namespace

std::vector<ui::FileFilter> SplitFilter(const QString& filter) {
  std::vector<ui::FileFilter> filters;
  const QStringList parts = filter.split(QLatin1Char('|'));
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) filters.push_back({parts[i], parts[i + 1]});
  return filters;
}

CommonDialogAPI::CommonDialogAPI(ui::Dialogs& dialogs, files::CurrentDirectory directory)
    : dialogs_(dialogs), directory_(std::move(directory)) {
  BuildDocumentFilter({});
}

CommonDialogAPI::~CommonDialogAPI() = default;

int64_t CommonDialogAPI::ShowColorDialog(ui::Form* owner, int64_t initial) {
  return dialogs_.PickColor(owner, initial, customColors_).value_or(-1);
}

bool CommonDialogAPI::ShowPrinterDialog(ui::Form* owner, int flags) {
  return !dialogs_.PickPrinter(
      owner, {.pages = !(flags & services::kNoPageNumbers), .selection = (flags & services::kOfferSelection) != 0},
      currentPrinter());
}

ui::Printer& CommonDialogAPI::currentPrinter() {
  if (!printer_) printer_ = std::make_unique<ui::Printer>();
  return *printer_;
}

files::Path CommonDialogAPI::ShowOpenDialog(const services::FileDialog& dialog) {
  return Show(dialog, false);
}
files::Path CommonDialogAPI::ShowSaveDialog(const services::FileDialog& dialog) {
  return Show(dialog, true);
}

files::Path CommonDialogAPI::Show(const services::FileDialog& dialog, bool save) {
  ui::FileRequest request;
  request.save = save;
  request.title = dialog.title;
  request.filters = SplitFilter(dialog.filter);
  request.filterIndex = dialog.filterIndex;
  request.folder = dialog.initialDirectory.empty() ? directory_.path() : dialog.initialDirectory;
  if (dialog.initialFile.is_absolute()) request.folder = dialog.initialFile.parent_path();
  request.name = CutName(dialog.initialFile.filename());
  request.keepLinks = dialog.flags & services::kNoDereferenceLinks;
  for (;;) {
    auto chosen = dialogs_.PickFile(dialog.owner, request);
    if (!chosen || chosen->empty()) return {};
    const files::Path path = WithDefaultExtension(directory_.MakeAbsolute(*chosen), dialog.defaultExtension);
    request.folder = path.parent_path();
    request.name = path.filename();
    if (!Accept(dialog, save, path)) continue;
    // A folder that has gone meanwhile is no reason to refuse the choice.
    if (!(dialog.flags & services::kNoChangeDir)) static_cast<void>(directory_.Change(path.parent_path()));
    return path;
  }
}

bool CommonDialogAPI::Accept(const services::FileDialog& dialog, bool save, const files::Path& path) {
  const QString shown = ui::DisplayText(path.native()) + QStringLiteral("\r\n");
  const auto ask = [&](const char* text, ui::Buttons buttons, ui::Icon icon) {
    return dialogs_.ShowMessage(dialog.owner, {shown + Translated(text), buttons, icon}) == ui::Answer::kYes;
  };
  if (Exists(path)) {
    if (!save || !(dialog.flags & services::kOverwritePrompt)) return true;
    return ask(QT_TRANSLATE_NOOP("CommonDialogs", "This file already exists.  Do you want to replace it?"),
               ui::Buttons::kYesNo, ui::Icon::kExclamation);
  }
  if (!save && dialog.flags & services::kFileMustExist) {
    return ask(QT_TRANSLATE_NOOP("CommonDialogs", "This file does not exist.  Please check its name."),
               ui::Buttons::kOk, ui::Icon::kExclamation);
  }
  if (!save && dialog.flags & services::kCreatePrompt) {
    return ask(QT_TRANSLATE_NOOP("CommonDialogs", "This file does not exist.  Do you want to create it?"),
               ui::Buttons::kYesNo, ui::Icon::kQuestion);
  }
  return true;
}

void CommonDialogAPI::BuildDocumentFilter(QString extensions) {
  extensions_ = extensions.isEmpty() ? QLatin1String(kUsualExtensions) : std::move(extensions);
  fileExtensions_.clear();
  QStringList pairs;
  for (const QString& entry : extensions_.split(QLatin1Char(','))) {
    fileExtensions_.push_back(entry.trimmed());
    pairs += fileExtensions_.back() + QLatin1String("|*") + fileExtensions_.back();
  }
  pairs += QStringLiteral("All Files|*.*");
  documentFilter_ = pairs.join(QLatin1Char('|'));
}

services::PathFilter CommonDialogAPI::GetFilterForPath(const std::string& path) const {
  const size_t dot = path.rfind('.');
  if (dot == std::string::npos) {
    QString first = fileExtensions_.front();
    if (first.endsWith(QLatin1Char('*'))) first.chop(1);
    return {first.toStdString(), 1};
  }
  const std::string extension = path.substr(dot);
  const QString shown = QString::fromStdString(extension);
  for (size_t i = 0; i < fileExtensions_.size(); ++i)
    if (MatchesExtension(fileExtensions_[i], shown)) return {extension, static_cast<int>(i) + 1};
  return {extension, ExtraFilterCount() + 1};
}

}  // namespace shell
