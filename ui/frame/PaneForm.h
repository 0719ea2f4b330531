// A window of its own beside the main window, which it belongs to and stays above, with one control that fills it.
#pragma once

#include "ui/Forms.h"

#include <QRect>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

class QKeyEvent;

namespace ui {

bool IsInPane(const QWidget& widget);

enum class Keyboard : bool { kLeave, kTake };

class PaneForm : public QObject, public Form {
  Q_OBJECT

 public:
  ~PaneForm() override;

  QWidget* widget() override;
  // Desktops minimise such a window only together with its owner, so that is not asked for, but remembered.
  WindowState windowState() const override;
  void SetWindowState(WindowState state) override;
  void Show(Keyboard keyboard);
  void Activate() override { Show(Keyboard::kTake); }
  bool isShown() const;

 protected:
  // The window owns `content`.
  PaneForm(Forms& forms, std::string_view name, Form& owner, QWidget* content);
  QWidget* content() const;
  void ShowTitle(const QString& title) override;
  void ShowChanged(bool changed);  // the mark in the title
  // What a key does while the pane has the focus, whatever the content or the main window have it for.
  void OwnKey(const char* key, std::function<void()> call);
  // Of the content; a new size is as large as the screen at most.
  QSize Size() const;
  bool isMaximized() const;  // also while it counts as minimised
  void SetSize(const QSize& pixels);
  // With these edges at those of the area, on the screen. A desktop that places windows itself ignores it.
  void MoveToEdges(Qt::Edges edges, const QRect& area);
  // After the pane was shown, or has come to rest in another size; not while it is minimised or maximised.
  virtual void Form_Resize() {}
  void Beep();
  // Off the screen and out of the registry for good; the object may live a little longer.
  void TakeDown();

 private:
  class Window;
  friend bool IsInPane(const QWidget& widget);
  bool TakeKey(const QKeyEvent& key);
  void Place();

  struct Key {
    int code;  // with its modifiers
    std::function<void()> call;
  };
  std::unique_ptr<Window> window_;
  QWidget* content_;
  QString title_;
  std::vector<Key> keys_;
  QTimer resized_, lookAgain_;
  Qt::Edges edges_;  // those that MoveToEdges was asked for last
  QRect area_;
  int looks_ = 0;  // still to be taken at where the window has come to stand
  bool minimized_ = false, changed_ = false;
};

// Keeps panes that have closed until the command that closed them is over.
class ClosedPanes {
 public:
  ~ClosedPanes();
  void Take(std::unique_ptr<PaneForm> pane);

 private:
  std::vector<std::unique_ptr<PaneForm>> closed_;
};

// The visible panes of a main window, in load order.
std::vector<QWidget*> PanesOf(const QWidget& owner);

// Where a window of that frame goes, so that those of its edges meet the area's; inside the screen.
QPoint PlaceAtEdges(const QSize& frame, Qt::Edges edges, const QRect& area, const QRect& screen);

}  // namespace ui
