// A window of the program that stays open above the main window while the user works there.
#pragma once

#include "ui/Forms.h"

#include <QRect>

#include <memory>

namespace ui {

class ModelessForm : public QObject, public Form {
  Q_OBJECT

 public:
  ~ModelessForm() override;

  QWidget* widget() override;
  bool isShown() const;
  // There is nothing to minimise such a window to; what was asked for is remembered.
  WindowState windowState() const override { return state_; }
  void SetWindowState(WindowState state) override { state_ = state; }
  void Activate() override;
  // Moves aside when it covers the rectangle of the screen.
  void KeepClearOf(const QRect& rectangle);

 protected:
  // The owner's icon is its own too.
  ModelessForm(Forms& forms, std::string_view name, Form& owner);
  void ShowTitle(const QString& title) override;
  void Hide();
  virtual void Form_Activate() = 0;  // it has become the active window
                                     // Close() is called for the close box and for Escape.

 private:
  class Window;
  std::unique_ptr<Window> window_;
  WindowState state_ = WindowState::kNormal;
};

// Where a window of that frame goes so that it covers nothing of the rectangle: as near as it can, inside the screen;
// where nothing is free, the corner that covers least.
QPoint PlaceClearOf(const QRect& frame, const QRect& rectangle, const QRect& screen);

}  // namespace ui
