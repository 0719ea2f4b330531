// The main window: menu bar, toolbar, panes, document area and status bar in a frame.
#pragma once

#include "ui/Forms.h"
#include "ui/frame/ChildArea.h"

#include <QMainWindow>

#include <functional>
#include <memory>

namespace ui {

class LeftPane;
class StatusBar;
class ToolBar;

class FrameForm : public Form {
 public:
  // `close` answers the user's wish to close the frame: true when the program may end.
  FrameForm(Forms& forms, std::string_view name, std::function<bool()> close);
  ~FrameForm() override;

  QWidget* widget() override;
  WindowState windowState() const override;
  void SetWindowState(WindowState state) override;
  void Activate() override;
  bool Close() override;

  // `painted` runs once, from the event loop, after the window has been painted for the first time.
  void Show(std::function<void()> painted = {});
  void Hide();
  QMenuBar& menuBar();
  ToolBar& toolbar();  // Toolbar1
  LeftPane& leftPane();
  ChildArea& area();
  StatusBar& statusBar();
  // What is done with files that are dropped on the window outside of its panes and documents, from the event loop.
  void TakeDrops(std::function<void(const std::vector<std::string>& paths)> take);
  QByteArray PicturePng();  // what the window shows; empty when there is no memory for it

 protected:
  void ShowTitle(const QString& title) override;

 private:
  class Window;
  std::function<bool()> close_;
  std::unique_ptr<Window> window_;
  StatusBar* statusBar_;
};

}  // namespace ui
