// The user manual: where it is, its window, and what F1 shows.
#pragma once

#include "files/OpenFile.h"
#include "services/Services.h"
#include "shell/ApplicationFolder.h"

#include <memory>
#include <optional>

namespace ui {
class HelpBook;
class HelpKey;
class HelpWindow;
}  // namespace ui

namespace shell {

class Help {
 public:
  Help(services::Services& services, ApplicationFolder application);
  ~Help();

  // F1 is heard from here on. `open` is what it does where nothing has a topic of its own.
  void ListenForKey(std::function<void()> open);

  // False when there is no window to be had. Why is for the caller to tell, but for a manual that was passed over.
  bool ShowManual();
  bool ShowFile(const files::Path& path);
  // The first page when there is no such topic; no such text, or a manual that cannot be read, is told.
  void ShowHelpContext(int topic);
  void ShowHelpPopup(const QPoint& globalPosition, int text);
  void CloseWindows();

  // In the application folder, else where the program was installed.
  files::Path FindDataFile(const char* name) const;
  ui::HelpWindow* window() { return window_.get(); }

 private:
  std::shared_ptr<ui::HelpBook> Read(const files::Path& path, std::optional<files::Error>& error);
  std::shared_ptr<ui::HelpBook> ReadManual(std::optional<files::Error>& error);
  std::shared_ptr<ui::HelpBook> ReadManualOrTell();
  void Tell(const files::Path& path, const QString& text);
  bool ShowBook(const std::shared_ptr<ui::HelpBook>& book);
  bool Open(std::shared_ptr<ui::HelpBook> book);
  files::Path ManualPath() const { return FindDataFile("UM.chm"); }

  services::Services& services_;
  const ApplicationFolder application_;
  files::Path readPath_;  // what book_ was read from, as it was then
  std::optional<files::FileStamp> readStamp_;
  std::shared_ptr<ui::HelpBook> book_;
  std::unique_ptr<ui::HelpWindow> window_;
  std::unique_ptr<ui::HelpKey> key_;
  bool reading_ = false;
};

}  // namespace shell
