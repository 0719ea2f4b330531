// Shows a page of a help file. Whatever the page says, nothing is opened or loaded but what lies in that file.
#pragma once

#include "ui/help/HelpBook.h"

#include <QTextBrowser>

namespace ui {

class HelpView final : public QTextBrowser {
  Q_OBJECT

 public:
  explicit HelpView(QWidget* parent = nullptr);

  // The book outlives the view, or Forget is called before it goes.
  void Show(const HelpBook& book, const HelpPlace& place);
  void Forget();
  // Marks every place of the words on the page until another one is shown, and goes to the first.
  void Mark(const QStringList& words);
  void Zoom(int steps);  // 0 is back to the usual size
  void ShowText(const QString& text);
  // The next match after the selection, or before it; begins again at the other end. False when there is none.
  bool FindText(const QString& text, bool backward);

 Q_SIGNALS:
  void LinkClicked(const QString& link);  // as it stands on the page

 protected:
  QVariant loadResource(int type, const QUrl& name) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void SetLook();
  void LayOutAgain();
  QTextCursor MarkAll();
  int RoomForPictures() const;

  const HelpBook* book_ = nullptr;
  HelpPlace place_;
  QString page_;  // as it was given to the document
  QStringList marked_;
  int zoomed_ = 0;
  int widest_ = 0;  // pixels of the widest picture on the page, as it is in the file
};

}  // namespace ui
