// The services that the desktop gives: dialogs, other programs, file operations, the current directory.
#pragma once

#include "shell/CommonDialogAPI.h"
#include "shell/Place.h"
#include "ui/desktop/Shell.h"
#include "ui/desktop/operations/FileOperations.h"

#include <memory>
#include <utility>

namespace shell {

class DesktopServices : public services::Services {
 public:
  DesktopServices(ui::Dialogs& dialogs, ui::Shell& shell, std::unique_ptr<ui::FileOperations> operations, Place place)
      : dialogs_(dialogs),
        shell_(shell),
        fileOperations_(std::move(operations)),
        place_(std::move(place)),
        commonDialogs_(dialogs, place_.directory) {}

  CommonDialogAPI& commonDialogs() { return commonDialogs_; }
  void SetFileOperations(std::unique_ptr<ui::FileOperations> operations) { fileOperations_ = std::move(operations); }

  // --- Services
  ui::Dialogs& dialogs() override { return dialogs_; }
  ui::Shell& shell() override { return shell_; }
  ui::FileOperations& fileOperations() override { return *fileOperations_; }
  const files::Path& recoveryFolder() const override { return place_.recovery; }
  files::Path ShowOpenDialog(const services::FileDialog& dialog) override {
    return commonDialogs_.ShowOpenDialog(dialog);
  }
  files::Path ShowSaveDialog(const services::FileDialog& dialog) override {
    return commonDialogs_.ShowSaveDialog(dialog);
  }
  ui::CustomColors& customColors() override { return commonDialogs_.customColors(); }
  int64_t ShowColorDialog(ui::Form* owner, int64_t initial) override {
    return commonDialogs_.ShowColorDialog(owner, initial);
  }
  bool ShowPrinterDialog(ui::Form* owner, int flags) override { return commonDialogs_.ShowPrinterDialog(owner, flags); }
  ui::Printer& currentPrinter() override { return commonDialogs_.currentPrinter(); }
  const QString& documentFilter() const override { return commonDialogs_.DocumentFilter(); }
  services::PathFilter GetFilterForPath(const std::string& path) const override {
    return commonDialogs_.GetFilterForPath(path);
  }
  files::Path MakeAbsolute(const files::Path& path) const override {
    return commonDialogs_.currentDirectory().MakeAbsolute(path);
  }

 protected:
  ui::Dialogs& dialogs_;
  ui::Shell& shell_;
  std::unique_ptr<ui::FileOperations> fileOperations_;
  const Place place_;
  CommonDialogAPI commonDialogs_;
};

}  // namespace shell
