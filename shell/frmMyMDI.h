// The main window: owns one object of each feature and is what they ask for services.
#pragma once

#include "commands/Commands.h"
#include "commands/Menus.h"
#include "commands/Toolbar.h"
#include "documents/DocumentTable.h"
#include "documents/Opening.h"
#include "shell/CommonDialogAPI.h"
#include "ui/frame/FrameForm.h"

#include <functional>

namespace shell {

class frmMyMDI final : public services::Services {
 public:
  frmMyMDI(ui::Dialogs& dialogs, files::Path recoveryFolder, files::CurrentDirectory directory);
  ~frmMyMDI() override;

  // Shows the window; `then` runs once, from the event loop, after it has been painted for the first time.
  void Show(std::function<void()> then);
  // Asks what to do with the texts of the recovery folder.
  void OfferRecovered();
  // Every changed text into the recovery folder, asking nothing; at any moment. The first error, if any.
  std::optional<files::Error> KeepTexts();
  // The end that somebody outside asked for: texts are kept instead of asked about. If one cannot be kept the program
  // says so and stays.
  void EndSession();
  void OpenDocument(std::string path) { opening_.OpenDocument(path); }
  // The whole window as a PNG file.
  files::Status SavePicture(const files::Path& path);

  ui::FrameForm& frame() { return frame_; }
  documents::DocumentTable& documents() { return table_; }
  documents::Opening& opening() { return opening_; }
  commands::Commands& commands() { return commands_; }
  commands::Menus& menus() { return menus_; }
  CommonDialogAPI& commonDialogs() { return commonDialogs_; }

  // --- Services
  ui::Dialogs& dialogs() override { return dialogs_; }
  ui::Forms& forms() override { return forms_; }
  ui::ChildArea& documentArea() override { return frame_.area(); }
  const services::DefaultFont& defaultFont() const override { return defaultFont_; }
  const files::Path& recoveryFolder() const override { return recoveryFolder_; }
  files::Path ShowOpenDialog(const services::FileDialog& dialog) override {
    return commonDialogs_.ShowOpenDialog(dialog);
  }
  files::Path ShowSaveDialog(const services::FileDialog& dialog) override {
    return commonDialogs_.ShowSaveDialog(dialog);
  }
  const QString& documentFilter() const override { return commonDialogs_.DocumentFilter(); }
  services::PathFilter GetFilterForPath(const std::string& path) const override {
    return commonDialogs_.GetFilterForPath(path);
  }
  void InitDocProperties(int slot) override;
  void ToolbarToggle(bool enabled) override;
  void ShowSelectionState(const services::SelectionState& state) override;
  void ShowSelectionFont(const QString& text) override;
  void ShowOvertype(bool overtype) override;
  void ShowDocumentMenu(int slot, const QPoint& globalPosition) override;

 private:
  bool Close();
  bool QueryUnload();
  void OfferRecovered(files::RecoveryEntry& entry);

  ui::Dialogs& dialogs_;
  const files::Path recoveryFolder_;
  services::DefaultFont defaultFont_;
  ui::Forms forms_;
  ui::FrameForm frame_;
  CommonDialogAPI commonDialogs_;
  documents::DocumentTable table_;
  documents::Opening opening_;
  commands::Commands commands_;
  commands::Toolbar toolbar_;
  commands::Menus menus_;
};

}  // namespace shell
