// A window inside the document area, and the form that lives in it.
#pragma once

#include "ui/Forms.h"

#include <QMdiSubWindow>
#include <QPointer>

namespace ui {

class ChildArea;
class ChildForm;

class ChildWindow : public QMdiSubWindow {
  Q_OBJECT

 public:
  ChildWindow(ChildForm& form, ChildArea& area, QWidget* content);

  FormId form() const { return formId_; }
  void ActivateForm();
  void PutIn();    // into the area, not shown yet
  void TakeOut();  // and to be destroyed by the event loop
  void ShowTitle(const QString& title);

 protected:
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;

 private:
  ChildForm& owner_;
  FormId formId_;
  ChildArea& area_;
  QPointer<QWidget> rememberedFocus_;
  QString title_;
};

// The part of a document window that needs the toolkit.
class ChildForm : public QObject, public Form {
  Q_OBJECT

 public:
  // Makes the window, which owns `content` and gives it its whole inner size, but does not show it.
  ChildForm(Forms& forms, std::string_view name, ChildArea& area, QWidget* content);
  ~ChildForm() override;

  QWidget* widget() override { return window_; }
  WindowState windowState() const override;
  void SetWindowState(WindowState state) override;
  void Activate() override;

 protected:
  void ShowTitle(const QString& title) override;
  void Show();
  bool isShown() const { return shown_; }
  QWidget* content() const;
  // Takes the window off the screen for good; the form may live a little longer.
  void TakeDown();

 private:
  QPointer<ChildWindow> window_;
  bool shown_ = false;
};

}  // namespace ui
