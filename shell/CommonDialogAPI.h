// The common dialogs: what the desktop's own cannot carry is checked behind them, asked, and the dialog shown again.
#pragma once

#include "files/CurrentDirectory.h"
#include "services/Services.h"

#include <memory>
#include <string>
#include <vector>

namespace shell {

class CommonDialogAPI {
 public:
  CommonDialogAPI(ui::Dialogs& dialogs, files::CurrentDirectory directory);
  ~CommonDialogAPI();

  // The chosen path exactly, or nothing (an empty path) when cancelled.
  files::Path ShowOpenDialog(const services::FileDialog& dialog);
  files::Path ShowSaveDialog(const services::FileDialog& dialog);

  // 0x00BBGGRR, -1 when cancelled.
  int64_t ShowColorDialog(ui::Form* owner, int64_t initial);
  ui::CustomColors& customColors() { return customColors_; }
  // True when cancelled. What the user chose stays set up in the current printer until the program ends.
  bool ShowPrinterDialog(ui::Form* owner, int flags);
  ui::Printer& currentPrinter();

  // Out of the extensions' text, which is set to the usual ones when empty.
  void BuildDocumentFilter(QString extensions);
  const QString& Extensions() const { return extensions_; }
  const std::vector<QString>& FileExtensions() const { return fileExtensions_; }
  const QString& DocumentFilter() const { return documentFilter_; }
  int ExtraFilterCount() const { return static_cast<int>(fileExtensions_.size()); }
  services::PathFilter GetFilterForPath(const std::string& path) const;

  files::CurrentDirectory& currentDirectory() { return directory_; }
  const files::CurrentDirectory& currentDirectory() const { return directory_; }

 private:
  files::Path Show(const services::FileDialog& dialog, bool save);
  bool Accept(const services::FileDialog& dialog, bool save, const files::Path& path);

  ui::Dialogs& dialogs_;
  files::CurrentDirectory directory_;
  ui::CustomColors customColors_ = {0xB4FFFF, 0xE1FFFF, 0xEEFFFF, 0xE6F5FD, 0xE6F0FA, 0xE6E6E6};
  std::unique_ptr<ui::Printer> printer_;  // looking for printers takes its time, so it is made when it is needed
  QString extensions_;
  std::vector<QString> fileExtensions_;
  QString documentFilter_;
};

// "description|pattern|..." in pairs; a last description without a pattern is left out.
std::vector<ui::FileFilter> SplitFilter(const QString& filter);

}  // namespace shell
