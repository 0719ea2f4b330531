// Shows a page of a help file. Whatever the page says, nothing is opened or loaded but what lies in that file.
#pragma once

#include "ui/help/HelpBook.h"

#include <QTextBrowser>

namespace ui {

class HelpView final : public QTextBrowser {
  Q_OBJECT

 public:
  explicit HelpView(QWidget* parent = nullptr);

  // The book outlives the view or another one is shown.
  void Show(const HelpBook& book, const HelpPlace& place);
  void ShowText(const QString& text);
  // The next match after the selection, or before it; begins again at the other end. False when there is none.
  bool FindText(const QString& text, bool backward);

 Q_SIGNALS:
  void LinkClicked(const QString& link);  // as it stands on the page

 protected:
  QVariant loadResource(int type, const QUrl& name) override;
  void changeEvent(QEvent* event) override;

 private:
  void SetLook();

  const HelpBook* book_ = nullptr;
  HelpPlace place_;
  QString page_;  // as it was given to the document
};

}  // namespace ui
